#include "import/member_email.h"

#include "core/primitives/convert.h"
#include "core/primitives/text.h"

namespace lw {

namespace {

constexpr TextView kAddressMarker = u"The email address for this member is: ";

}  // namespace

std::optional<Text> get_email_btn_2(ImportContext& ctx, MemberEmailScreen& screen) {
  screen.import_cancelled = false;
  if (screen.clear_job_flags) screen.clear_job_flags();
  screen.email_pending = true;
  if (screen.clear_auctimp) screen.clear_auctimp();
  screen.txtIP = screen.servername_email;

  Text item;
  bool completed = false;
  if (ctx.bidder.HasRecordset()) {
    Recordset& rs = ctx.bidder.recordset();
    if (!rs.Eof() && !rs.Bof()) {
      item = CStr(rs.Fields(u"Item"), ctx.regional);
      Variant done = rs.Fields(u"Completed");
      completed = done.boolean() ? *done.boolean() : !done.IsNull() && CDbl(done, ctx.regional) != 0;
    }
  }
  ctx.Status(u"Importing E-mail address for auction ...." + item);

  if (screen.seller_id_txt.empty()) {
    ctx.ui.MsgBox(u"User ID Not Found", u"You must have a valid User Id to find an email address.",
                  MsgButtons::OK, MsgIcon::None);
    return std::nullopt;
  }
  if (!completed) {
    ctx.ui.MsgBox(u"Auction not Finished",
                  u"The auction must be completed before you can retrieve an email address", MsgButtons::OK,
                  MsgIcon::None);
    return std::nullopt;
  }
  if (InStr(screen.id_pnl_1, u"Dutch") == 0 && screen.id_pnl_1 != ctx.userid) {
    ctx.ui.MsgBox(u"You're Not the High Bidder",
                  u"You can only retrieve the email address if you are the high bidder", MsgButtons::OK,
                  MsgIcon::None);
    return std::nullopt;
  }
  if (Like(screen.seller_email_txt, u"*@*")) {
    ctx.Status(u"Email address already found");
    return std::nullopt;
  }
  if (screen.select_tab) screen.select_tab(4);

  Text address;
  if (!screen.email_page_url.empty() && Like(screen.email_page_url, u"*userid=" + ctx.userid + u"*")) {
    // The page that asked for a sign-in, for this very user: ask for it again now that they are in.
    address = screen.email_page_url;
  } else {
    address = u"http://" + screen.servername_email + u"/aw-cgi/eBayISAPI.dll?ReturnUserEmail&requested=" +
              screen.seller_id_txt + u"&iid=" + item + u"&frm=284";
  }
  if (screen.navigate) screen.navigate(address);
  return address;
}

void get_seller_email(ImportContext& ctx, FileDisplay& buffer, Text& seller_email_txt) {
  try {
    // The hit moves the caret to the marker's start; the address begins right after the marker. On a
    // page without the marker the caret stays where it was and the count starts from there.
    buffer.Find(kAddressMarker);
    const long from = buffer.SelStart() + static_cast<long>(kAddressMarker.size());
    buffer.SetSelStart(from);
    const long end = buffer.Find(u"User ID");
    buffer.SetSelStart(from);
    buffer.SetSelLength(end - from);  // negative without "User ID" after the address: 380
    seller_email_txt = Replace(buffer.SelText(), u"\n", u"");
    ctx.Status(u"Email Address retrieved");
  } catch (const RuntimeError&) {
    // Not the member's page: the field keeps what it had.
  }
}

}  // namespace lw
