// User ids and the Setup page: which `setup` row is current, adding, renaming and deleting a user id,
// the page's fields, buttons and boxes, and the first-start wizard. One object per main form holds the
// state of a change in progress; its routines are hung on the registry by RegisterUserids.
#pragma once

#include "screen/main/main_form.h"

namespace lw {

class UseridScreen {
 public:
  explicit UseridScreen(MainForm& form);
  UseridScreen(const UseridScreen&) = delete;
  UseridScreen& operator=(const UseridScreen&) = delete;

  // Rebinds `setup_datacontrl` to the text of `Userid_lst`. Raises when the statement fails.
  void change_user_id();
  // The user picked an entry of `Userid_lst`.
  void userid_lst_click();
  void add_userid();
  void rename_userid();
  void delete_userid();
  void set_default_options();

  // The Setup page.
  void save_setup_settings();
  void cancel_setup();
  void set_mail_password();
  void userid_field_left();
  void setup_chk_click(int index);
  void setup_txt_click(int index);

  // The wizard's "Save and Exit".
  void wizard_savebtn();

  bool adding() const { return adding_; }
  bool renaming() const;

 private:
  void BuildSetupPage();
  void BuildWizardHooks();
  void RegisterRoutines();
  Control& field(int index) const;
  Control& check(int index) const;
  // Selects an entry of the user list as code does, with the settling flag up: the list's handler
  // stays quiet.
  void SelectQuietly(const Text& userid);
  // Reads the user ids again from the store into the list and the duplicate menus.
  void ReloadUserList();
  // Back to rest: fields 0 and 1 locked again, the toolbar usable.
  void ReturnToRest();
  // Drops what the page's fields hold for the current row (and a new row not yet written).
  void DropEdits();
  void ShowColours();
  void ApplyColour(int index, int32_t colour);
  void SaveSetupRow();
  void SaveMisc();
  void Report(const RuntimeError& e);
  // The open store; raises 91 when start-up could not open one.
  Database& Db() const;

  MainForm& form_;
  Program& program_;
  bool adding_ = false;
  Text old_userid_;
  Text new_userid_;
  // The list entry an add put there, until it is saved or dropped; -1 for none.
  int added_entry_ = -1;
};

}  // namespace lw
