// The Setup page: its sub-pages and fields, the three buttons, the boxes and the colour fields.
#include <algorithm>
#include <string>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "platform/hosts.h"
#include "screen/main/database_location.h"
#include "screen/main/userids.h"
#include "screen/main/userids_rules.h"

namespace lw {
namespace {

constexpr char16_t kMissingLogin[] = u"You must enter valid userid and password details before exiting";
constexpr char16_t kMissingName[] = u"You must enter your name before exiting";

constexpr const char16_t* kSubPages[] = {u"User Properties", u"Internet / Mail Properties",
                                         u"Auction End Properties (Seller)",
                                         u"Auction End Properties (Buyer)", u"General Properties"};
constexpr const char16_t* kGroups[] = {u"Advanced Settings", u"Miscellaneous Settings", u"Time Properties",
                                       u"Edit Feedback Comments"};

// Where each field sits: a sub-page (0..4) or, on "General Properties", a group (10 + group).
constexpr int kFieldPlace[kSetupFieldCount] = {0, 0, 0, 0, 0, 0,  10, 1, 1, 1, 10, 10, 10, 10, 10, 2,
                                               2, 2, 3, 3, 3, 12, 12, 2, 4, 4, 10, 11, 11, 11, 11, 0};
constexpr const char16_t* kFieldCaption[kSetupFieldCount] = {u"Userid",
                                                             u"Password",
                                                             u"Email Address",
                                                             u"Name",
                                                             u"Address",
                                                             u"Sign Off Name",
                                                             u"Server name for Seller Import",
                                                             u"SMTP Mail Server",
                                                             u"Mail Username",
                                                             u"Mail Password",
                                                             u"Server name for Bidder Import",
                                                             u"Server name for Descriptions",
                                                             u"Server name for Email Addresses",
                                                             u"Server name for Dutch Bidders",
                                                             u"Server name for Fees",
                                                             u"Winning Bidder Letter",
                                                             u"Payment Received Letter",
                                                             u"Goods Sent Letter",
                                                             u"Winning Bidder Letter",
                                                             u"Payment Sent Letter",
                                                             u"Goods Received Letter",
                                                             u"Hours",
                                                             u"Minutes",
                                                             u"Request for Feedback",
                                                             u"Auction Description Footer (HTML ok)",
                                                             u"Picture Location",
                                                             u"Server name for Ebaymotors",
                                                             u"Tax Rate",
                                                             u"Even Rows",
                                                             u"Odd Rows",
                                                             u"List Bar",
                                                             u"Location"};

struct CheckInfo {
  const char16_t* caption;
  const char16_t* field;  // nullptr: not bound
  bool misc;
  int place;
};
constexpr CheckInfo kChecks[] = {
    {u"MAPI Compliant Mail", u"mapi_compliant", false, 1},
    {u"Use ESMTP logon", nullptr, false, 1},
    {u"Item Price", u"taxprice", false, 11},
    {u"Shipping", u"taxshipping", false, 11},
    {u"Insurance", u"taxinsurance", false, 11},
    {u"Set Default", nullptr, false, 11},
    {u"Font Sizing", u"fontsizing", true, 11},
    {u"Enable referral program", u"referralenabled", false, 11},
};

// The import hosts the save writes to the misc row by statement, with their fields.
struct MiscServer {
  const char16_t* column;
  int field;
};
constexpr MiscServer kMiscServers[] = {{u"servername_import", 6},
                                       {u"servername_desc", 11},
                                       {u"servername_email", 12},
                                       {u"servername_dutch", 13},
                                       {u"servername_import1", 10}};

Text Number(long n) {
  return FromUtf8(std::to_string(n));
}

}  // namespace

void UseridScreen::BuildSetupPage() {
  MainForm& f = form_;
  // Everything of the page sits in one frame, shown only while the Setup page is the one in use.
  Control& whole = f.Add(ControlKind::Frame, u"setup_page_fra");
  whole.SetVisible(f.SSTab1.tab() == kSetupPage);
  TabStrip& tabs = f.Add<TabStrip>(u"setup_tabs");
  tabs.SetContainer(&whole);
  tabs.SetTabs(5);
  Control* pages[5];
  for (int i = 0; i < 5; ++i) {
    tabs.page(i).caption = kSubPages[i];
    pages[i] = &f.Add(ControlKind::Frame, u"setup_fra", i);
    pages[i]->SetCaption(kSubPages[i]);
    pages[i]->SetVisible(i == 0);
    pages[i]->SetContainer(&tabs);
    pages[i]->layout.page = i;
  }
  f.Get(u"setup_btn", 0).SetContainer(&whole);
  f.Get(u"setup_btn", 2).SetContainer(&whole);
  tabs.OnTabClick = [this, pages](int) {
    for (int i = 0; i < 5; ++i) pages[i]->SetVisible(i == form_.Get<TabStrip>(u"setup_tabs").tab());
  };
  Control* groups[4];
  for (int i = 0; i < 4; ++i) {
    groups[i] = &f.Add(ControlKind::Frame, u"setup_group_fra", i);
    groups[i]->SetCaption(kGroups[i]);
    groups[i]->SetContainer(pages[4]);
  }
  pages[4]->layout.frame_columns = 2;
  groups[3]->layout.stretch = true;
  auto place = [&](int at) { return at >= 10 ? groups[at - 10] : pages[at]; };

  auto fields = SetupFields();
  for (int i = 0; i < kSetupFieldCount; ++i) {
    Control& label = f.Add(ControlKind::Label, u"setup_lbl", i);
    label.SetCaption(kFieldCaption[i]);
    label.SetContainer(place(kFieldPlace[i]));
    Control& t = f.Add(ControlKind::TextBox, u"setup_txt", i);
    t.SetContainer(place(kFieldPlace[i]));
    label.layout.field = &t;
    // The letters and the footer are texts of several lines.
    if ((i >= 15 && i <= 20) || i == 23 || i == 24) t.layout.multiline = t.layout.stretch = true;
    if (fields[i].field) t.Bind(fields[i].misc ? f.Misc : f.setup_datacontrl, fields[i].field);
  }
  // The credentials change only while a user id is added or renamed.
  field(0).SetEnabled(false);
  field(1).SetEnabled(false);
  // The mail logon is seldom needed: shown when asked for or when it is filled in.
  field(8).SetVisible(false);
  field(9).SetVisible(false);
  for (int i = kEvenColourField; i <= kListbarColourField; ++i) field(i).SetLocked(true);

  for (int i = 0; i < static_cast<int>(std::size(kChecks)); ++i) {
    const CheckInfo& c = kChecks[i];
    Control& box = f.Add(ControlKind::CheckBox, u"setup_chk", i);
    box.SetCaption(c.caption);
    box.SetContainer(place(c.place));
    if (c.field) box.Bind(c.misc ? f.Misc : f.setup_datacontrl, c.field);
    box.OnClick = [this, i] { setup_chk_click(i); };
  }
  Control& backup_label = f.Add(ControlKind::Label, u"backup_lbl");
  backup_label.SetCaption(u"Prompt to Backup Database every");
  backup_label.SetContainer(groups[1]);
  f.Get(u"backup_lst").SetContainer(groups[1]);
  backup_label.layout.field = &f.Get(u"backup_lst");
  f.Get(u"MhClock_current_time").SetContainer(groups[2]);
  f.feedback_grid.SetContainer(groups[3]);
  f.Get(u"ctToolBar5").SetContainer(pages[0]);
  f.Get(u"setup_btn", 1).SetContainer(pages[1]);

  field(0).OnLostFocus = [this] { userid_field_left(); };
  for (int i : {1, 2, kEvenColourField, kOddColourField, kListbarColourField})
    field(i).OnClick = [this, i] { setup_txt_click(i); };

  // Entering the page shows the colours in use and a mail logon that is filled in.
  auto entered = std::move(f.SSTab1.OnTabClick);
  f.SSTab1.OnTabClick = [this, entered, &whole](int left) {
    whole.SetVisible(form_.SSTab1.tab() == kSetupPage);
    if (entered) entered(left);
    if (form_.SSTab1.tab() != kSetupPage) return;
    ShowColours();
    if (!field(8).text().empty() || !field(9).text().empty()) {
      field(8).SetVisible(true);
      field(9).SetVisible(true);
    }
  };
}

void UseridScreen::ShowColours() {
  field(kEvenColourField).SetBackcolor(form_.seller_grid.even_colour);
  field(kOddColourField).SetBackcolor(form_.seller_grid.odd_colour);
  field(kListbarColourField).SetBackcolor(form_.ctListBar1.backcolor());
}

void UseridScreen::ApplyColour(int index, int32_t colour) {
  field(index).SetBackcolor(colour);
  for (Grid* g : {&form_.seller_grid, &form_.buyer_grid, &form_.feedback_grid}) {
    if (index == kEvenColourField) g->even_colour = colour;
    if (index == kOddColourField) g->odd_colour = colour;
  }
  if (index == kListbarColourField) form_.ctListBar1.SetBackcolor(colour);
}

void UseridScreen::setup_chk_click(int index) {
  Control& box = check(index);
  if (box.value() != 1) return;
  if (index == 1 && (field(8).text().empty() || field(9).text().empty())) {
    form_.ui().MsgBox(u"Enter Userid and Password",
                      u"You must enter you mail logon Userid and Password\nfor this option.", MsgButtons::OK,
                      MsgIcon::Exclamation);
    field(8).SetVisible(true);
    field(9).SetVisible(true);
    form_.SetFocus(&field(8));
  }
  if (index == 5) {
    ApplyColour(kEvenColourField, kDefaultEvenColour);
    ApplyColour(kOddColourField, kDefaultOddColour);
    ApplyColour(kListbarColourField, kDefaultListbarColour);
  }
}

void UseridScreen::setup_txt_click(int index) {
  Control& t = field(index);
  if (index == 1 || index == 2) {
    Text clean = CleanCredential(t.text());
    if (clean != t.text()) t.SetText(clean);
    return;
  }
  if (std::optional<Colour> chosen = form_.ui().ChooseColour(t.backcolor())) ApplyColour(index, *chosen);
}

void UseridScreen::set_mail_password() {
  MsgAnswer a = form_.ui().MsgBox(u"Mail Username and Password",
                                  u"Normally it's not necessary to enter your Username and Password to send "
                                  u"mail.\nBut if you experience problems in sending mail enter them now.\n\n"
                                  u"Do you want to enter your POP3 Username and Password",
                                  MsgButtons::YesNo, MsgIcon::Question);
  if (a != MsgAnswer::Yes) return;
  field(8).SetVisible(true);
  field(9).SetVisible(true);
  form_.SetFocus(&field(8));
}

void UseridScreen::SaveMisc() {
  DataControl& misc = form_.Misc;
  if (!misc.HasRecordset()) return;
  Recordset& r = misc.recordset();
  if (r.Eof() || r.Bof()) return;
  // The offsets are read as numbers, so a box left empty or with text in it counts as 0.
  if (!r.EditInProgress()) r.Edit();
  try {
    r.SetField(u"Ebay_hour_difference", Variant(Val(field(21).text())));
    r.SetField(u"Ebay_minute_difference", Variant(Val(field(22).text())));
    field(21).SetDataChanged(false);
    field(22).SetDataChanged(false);
    misc.UpdateRecord();
    if (r.EditInProgress()) r.Update();
  } catch (...) {
    if (r.EditInProgress()) r.CancelUpdate();
    throw;
  }
}

void UseridScreen::SaveSetupRow() {
  DataControl& setup = form_.setup_datacontrl;
  Recordset& r = setup.recordset();
  const bool began = !r.EditInProgress();
  if (began) r.Edit();
  try {
    r.SetField(u"mailconnecttype", Variant(check(1).value() == 1 ? 2 : 0));
    setup.UpdateRecord();
    if (r.EditInProgress()) r.Update();
  } catch (...) {
    // A new row stays open with what was typed, so that a corrected save can still write it.
    if (began && r.EditInProgress()) r.CancelUpdate();
    throw;
  }
}

void UseridScreen::save_setup_settings() {
  MainForm& f = form_;
  Program& p = program_;
  Control& id_field = field(0);
  if (id_field.text().empty()) return f.SetStatus(kMissingLogin);
  const Text userid = id_field.text();
  if (renaming()) {
    ComboBox& list = f.Userid_lst;
    if (FindUserid(list, userid, FindUserid(list, old_userid_)) >= 0) {
      f.ui().MsgBox(u"Can't Rename Userid",
                    u"You can't rename this Userid.\nThere is already a Userid with this name.",
                    MsgButtons::OK, MsgIcon::Exclamation);
      return;
    }
    const Text seller = MoveAuctionsStatement(u"Seller", userid, old_userid_);
    const Text bidder = MoveAuctionsStatement(u"Bidder", userid, old_userid_);
    Db().Execute(seller);
    Db().Execute(bidder);
  }
  if (field(1).text().empty()) return f.SetStatus(kMissingLogin);
  if (field(3).text().empty()) return f.SetStatus(kMissingName);
  // The statement that will show the new row is made before anything is written, so an id it cannot
  // carry leaves the store as it was.
  if (adding_ || renaming()) SetupSource(userid);

  SaveMisc();
  SaveSetupRow();
  if (adding_ || renaming()) {
    const bool renamed = renaming();
    ReturnToRest();
    ReloadUserList();
    SelectQuietly(userid);
    if (renamed)
      p.view.condition =
          Replace(p.view.condition, u"username = " + Quoted(old_userid_), u"username = " + Quoted(userid));
    change_user_id();
  }
  f.enable_tabs();

  Database& db = Db();
  for (const MiscServer& s : kMiscServers) db.Execute(MiscServerStatement(s.column, field(s.field).text()));
  const Text referral = FromUtf8(BaseUrlFor(p.settings, "forum")) + u"/cgi-bin/ref.cgi?";
  db.Execute(u"Update Misc SET refurl = " + Quoted(referral));
  f.Misc.Refresh();
  if (p.startup.misc) p.startup.misc->Requery();

  Settings& s = p.settings;
  const int backup = f.Get<ComboBox>(u"backup_lst").list_index();
  s.SaveSetting(kAppKey, u"Database", u"Backupevery", Number(std::max(backup, 0)));
  s.SaveSetting(kAppKey, u"Screen", u"Evengrid", Number(field(kEvenColourField).backcolor()));
  s.SaveSetting(kAppKey, u"Screen", u"Oddgrid", Number(field(kOddColourField).backcolor()));
  s.SaveSetting(kAppKey, u"Screen", u"Listbar", Number(field(kListbarColourField).backcolor()));
  f.CallRoutine("do_query");
}

void UseridScreen::cancel_setup() {
  MainForm& f = form_;
  if (field(0).text().empty() || field(1).text().empty()) return f.SetStatus(kMissingLogin);
  if (field(3).text().empty()) return f.SetStatus(kMissingName);
  if (renaming()) {
    field(0).SetText(old_userid_);
    ReturnToRest();
    DropEdits();
    ReloadUserList();
    SelectQuietly(old_userid_);
  } else if (adding_) {
    const int added = added_entry_;
    ReturnToRest();
    DropEdits();  // the new row was never written: dropping it removes it
    if (added >= 0) f.Userid_lst.RemoveItem(added);
    SelectQuietly(old_userid_);
    change_user_id();
  } else {
    DropEdits();
  }
  f.enable_tabs();
}

}  // namespace lw
