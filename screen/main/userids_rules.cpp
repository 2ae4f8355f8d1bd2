#include "screen/main/userids_rules.h"

#include "core/primitives/text.h"
#include "core/store/store.h"
#include "screen/control.h"

namespace lw {

Text CleanCredential(TextView text) {
  return LCase(Trim(text));
}

bool WizardFieldMissing(TextView text) {
  return text.empty() || text == u" ";
}

int FindUserid(const ListControl& list, TextView userid, int except) {
  const Text wanted = LCase(userid);
  for (int i = 0; i < list.ListCount(); ++i)
    if (i != except && LCase(list.List(i)) == wanted) return i;
  return -1;
}

std::span<const SetupFieldInfo> SetupFields() {
  static constexpr SetupFieldInfo kFields[kSetupFieldCount] = {
      {u"Userid", false},
      {u"Password", false},
      {u"UserEmail", false},
      {u"Name", false},
      {u"address", false},
      {u"Signiture", false},
      {u"servername_import", true},
      {u"smtphost", false},
      {u"emailusername", false},
      {u"emailpassword", false},
      {u"servername_import1", true},
      {u"servername_desc", true},
      {u"servername_email", true},
      {u"servername_dutch", true},
      {u"servername_fees", true},
      {u"Sale_conditions", false},
      {u"Rec_payment_comment", false},
      {u"Goods_sent_comment", false},
      {u"Bidder_comments", false},
      {u"Sent_payment_comment", false},
      {u"Goods_received_comment", false},
      {u"Ebay_hour_difference", true},
      {u"Ebay_minute_difference", true},
      {u"feedback_request", false},
      {u"description_footer", false},
      {u"ebay_image_loc", false},
      {u"servername_ebaymotors", true},
      {u"taxrate", false},
      {nullptr, false},
      {nullptr, false},
      {nullptr, false},
      {u"Location", false},
  };
  return kFields;
}

std::span<const SetupPlaceholder> SetupPlaceholders() {
  // Field 6 is the import host, not the mail server, although its placeholder reads like one.
  static constexpr SetupPlaceholder kPlaceholders[] = {
      {0, u"Your Username here"},
      {1, u"Your Password here"},
      {2, u"Your emailaddress here"},
      {3, u"Your name here"},
      {4, u"Your address here"},
      {5, u"Sign off name here"},
      {6, u"mail.yourmailserver.com"},
      {21, u"0"},
      {22, u"0"},
      {25, u"http://www.yourwebspace.com/images/"},
  };
  return kPlaceholders;
}

Text SetupSource(TextView userid) {
  return u"Select * from setup where Userid = " + Quoted(userid);
}

Text MoveAuctionsStatement(TextView table, TextView to, TextView from) {
  return u"Update " + Text(table) + u" SET username = " + Quoted(to) + u" Where username = " + Quoted(from);
}

Text DeleteAuctionsStatement(TextView table, TextView userid) {
  return u"Delete FROM " + Text(table) + u" WHERE username = " + Quoted(userid);
}

Text MiscServerStatement(TextView column, TextView value) {
  return u"Update Misc SET " + Text(column) + u" = " + Quoted(value);
}

}  // namespace lw
