#include "screen/main/userids.h"

#include <memory>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/main/main_parts.h"
#include "screen/main/userids_rules.h"

namespace lw {
namespace {

Text FieldText(Recordset& rs, TextView name) {
  Variant v = rs.Fields(name);
  return v.text() ? *v.text() : Text();
}

}  // namespace

UseridScreen::UseridScreen(MainForm& form) : form_(form), program_(form.program()) {
  BuildSetupPage();
  form_.Userid_lst.OnClick = [this] { userid_lst_click(); };
}

bool UseridScreen::renaming() const {
  return program_.main_screen.renaming;
}

Control& UseridScreen::field(int index) const {
  return form_.Get(u"setup_txt", index);
}

Control& UseridScreen::check(int index) const {
  return form_.Get(u"setup_chk", index);
}

Database& UseridScreen::Db() const {
  if (!program_.startup.db) throw RuntimeError(err::kObjectVariableNotSet, "Object variable not set");
  return *program_.startup.db;
}

void UseridScreen::Report(const RuntimeError& e) {
  form_.SetStatus(FromUtf8(e.description()));
}

void UseridScreen::SelectQuietly(const Text& userid) {
  FlagRaised settle(program_.main_screen.settling);
  form_.Userid_lst.SetText(userid);
}

void UseridScreen::ReloadUserList() {
  if (program_.startup.setup) program_.startup.setup->Requery();
  form_.load_userids();
}

void UseridScreen::change_user_id() {
  DataControl& setup = form_.setup_datacontrl;
  setup.RecordSource = SetupSource(form_.Userid_lst.text());
  setup.Refresh();
  Recordset& rs = setup.recordset();
  program_.main_screen.password = rs.Eof() ? Text() : FieldText(rs, u"Password");
  form_.CallRoutine("load_lister_settings");
}

void UseridScreen::userid_lst_click() {
  if (program_.main_screen.settling) return;
  try {
    form_.CallRoutine("save_data_changed");
    change_user_id();
    form_.CallRoutine("which_letter_icon_status_to_display");
    form_.CallRoutine("auction_filter");
    if (form_.SSTab1.tab() != 0)
      form_.SSTab1.SetTab(0);  // entering the page runs tab_refresh
    else
      form_.tab_refresh();
    form_.CallRoutine("records_returned");
    form_.CallRoutine("sum_grid");
    // The filter is off for a new user id; clearing it must not run the view a second time.
    FlagRaised settle(program_.main_screen.settling);
    form_.Get(u"Apply_flt_chk").SetValue(0);
  } catch (const RuntimeError& e) {
    Report(e);
  }
}

void UseridScreen::ReturnToRest() {
  adding_ = false;
  program_.main_screen.renaming = false;
  added_entry_ = -1;
  new_userid_.clear();
  field(0).SetEnabled(false);
  field(1).SetEnabled(false);
  Toolbar& bar = form_.Get<Toolbar>(u"ctToolBar5");
  for (int i = 1; i <= bar.ButtonCount(); ++i) bar.button(i).enabled = true;
}

void UseridScreen::DropEdits() {
  // UpdateControls also cancels a row added and not yet written.
  form_.setup_datacontrl.UpdateControls();
  form_.Misc.UpdateControls();
}

void UseridScreen::add_userid() {
  if (adding_ || renaming()) return;
  try {
    DataControl& setup = form_.setup_datacontrl;
    old_userid_ = form_.Userid_lst.text();
    setup.AddNew();
    adding_ = true;
    added_entry_ = -1;
    new_userid_.clear();
  } catch (const RuntimeError& e) {
    Report(e);
    return;
  }
  Toolbar& bar = form_.Get<Toolbar>(u"ctToolBar5");
  for (int i = 1; i <= bar.ButtonCount(); ++i) bar.button(i).enabled = false;
  field(0).SetEnabled(true);
  field(1).SetEnabled(true);
  form_.SetFocus(&field(0));
}

void UseridScreen::rename_userid() {
  if (adding_ || renaming()) return;
  program_.main_screen.renaming = true;
  old_userid_ = form_.Userid_lst.text();
  new_userid_ = field(0).text();
  Toolbar& bar = form_.Get<Toolbar>(u"ctToolBar5");
  for (int i = 1; i <= bar.ButtonCount(); ++i) bar.button(i).enabled = false;
  field(0).SetEnabled(true);
  field(1).SetEnabled(true);
  form_.SetFocus(&field(0));
}

void UseridScreen::userid_field_left() {
  Control& id_field = field(0);
  Text id = LCase(id_field.text());
  if (id != id_field.text()) id_field.SetText(id);
  if (renaming()) {
    new_userid_ = id;
    return;
  }
  if (!adding_) return;
  ComboBox& list = form_.Userid_lst;
  // Case is ignored in the comparison: the store compares user ids without regard to case, so an id
  // that differs from another only in its capitals would share that id's auctions.
  if (FindUserid(list, id, added_entry_) >= 0) {
    form_.ui().MsgBox(u"Can't Add Userid",
                      u"You can't add this Userid.\nThere is already a Userid with this name.",
                      MsgButtons::OK, MsgIcon::Exclamation);
    const int added = added_entry_;
    ReturnToRest();
    try {
      form_.setup_datacontrl.UpdateControls();  // the new row goes
      if (added >= 0) list.RemoveItem(added);
      SelectQuietly(old_userid_);
      change_user_id();
    } catch (const RuntimeError& e) {
      Report(e);
    }
    form_.enable_tabs();
    return;
  }
  if (added_entry_ >= 0) {
    list.SetList(added_entry_, id);
  } else {
    added_entry_ = list.AddItem(id);
  }
  new_userid_ = id;
  SelectQuietly(id);
}

void UseridScreen::delete_userid() {
  if (adding_ || renaming()) return;
  Ui& ui = form_.ui();
  ComboBox& list = form_.Userid_lst;
  if (list.ListCount() <= 1) {
    ui.MsgBox(u"Can't Delete", u"You can't delete the last UserId in the Database", MsgButtons::OK,
              MsgIcon::Critical);
    return;
  }
  if (ui.MsgBox(
          u"Delete User Id",
          u"Deleting this User Id will also delete all auctions for this User.\nDo you want to continue",
          MsgButtons::YesNo, MsgIcon::Question) != MsgAnswer::Yes)
    return;
  try {
    const Text userid = list.text();
    // Both statements are made before anything goes, so an id they cannot carry leaves all in place.
    const Text seller = DeleteAuctionsStatement(u"Seller", userid);
    const Text bidder = DeleteAuctionsStatement(u"Bidder", userid);
    int at = FindUserid(list, userid);
    if (at >= 0) list.RemoveItem(at);
    form_.SetStatus(u"Deleting username and associated records");
    Database& db = Db();
    db.Execute(seller);
    db.Execute(bidder);
    DataControl& setup = form_.setup_datacontrl;
    setup.UpdateControls();  // what the page held for the row goes with it
    setup.recordset().Delete();
    setup.RecordSource = u"Select * from setup";
    setup.Refresh();
    setup.MoveFirst();
    // The list and the duplicate menus lose the id as well.
    ReloadUserList();
    const Text first = list.List(0);
    // Selected as the user selects an id, so the Setup page, the settings rows and the view follow it.
    list.SetListIndex(0);
    program_.view.condition = Replace(program_.view.condition, userid, first);
  } catch (const RuntimeError& e) {
    Report(e);
  }
}

void UseridScreen::set_default_options() {
  for (const SetupPlaceholder& p : SetupPlaceholders()) field(p.index).SetText(p.text);
}

void RegisterUserids(MainForm& form) {
  auto screen = std::make_shared<UseridScreen>(form);
  Routines& r = form.program().routines;
  auto guarded = [screen, &form](void (UseridScreen::*routine)()) {
    return [screen, &form, routine] {
      try {
        ((*screen).*routine)();
      } catch (const RuntimeError& e) {
        form.SetStatus(FromUtf8(e.description()));
      }
    };
  };
  r.Register("change_user_id", guarded(&UseridScreen::change_user_id));
  r.Register("add_userid", guarded(&UseridScreen::add_userid));
  r.Register("rename_userid", guarded(&UseridScreen::rename_userid));
  r.Register("delete_userid", guarded(&UseridScreen::delete_userid));
  // The Setup page's toolbar: "Add Userid", "Rename Userid", "Delete Userid".
  r.Register("ctToolBar5(1)", guarded(&UseridScreen::add_userid));
  r.Register("ctToolBar5(2)", guarded(&UseridScreen::rename_userid));
  r.Register("ctToolBar5(3)", guarded(&UseridScreen::delete_userid));
  r.Register("set_default_options", guarded(&UseridScreen::set_default_options));
  r.Register("save_setup_settings", guarded(&UseridScreen::save_setup_settings));
  r.Register("cancel_setup", guarded(&UseridScreen::cancel_setup));
  r.Register("set_mail_password", guarded(&UseridScreen::set_mail_password));
  r.Register("wizard_savebtn", guarded(&UseridScreen::wizard_savebtn));
}

}  // namespace lw
