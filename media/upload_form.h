// The form `upload` ("Upload Image"): the user's FTP account, a toolbar to connect, send the picture of
// the auction on show and disconnect, the log of what the server said, and a status bar with the last
// error in words. The FTP work is done by the main form's client `mFTP1`, whose events write to the log.
#pragma once

#include "screen/form.h"

namespace lw {

class MediaScreen;

class UploadForm : public Form {
 public:
  UploadForm(Screen& screen, MediaScreen& media);

  // Site address, login name, password, account and default login directory, kept in the columns
  // ftphost, ftplogonname, ftplogonpass, ftpaccount and ftpdirectory of the user id's setup row.
  Control& ftpvalues(int index) const { return Get(u"ftpvalues", index); }
  Toolbar& ctToolBar1;
  ListBox& listTrace;
  StatusBar& StatusBar1;

  // Shows the FTP client's last error in words.
  void display_status();

 private:
  void Load();
  void Connect();
  void Disconnect();
  void UploadFile();
  void Exit();
  void SaveFields();
  void Connected(bool connected);
  // Every step of a button goes on after a failed one; the failure shows in the status bar.
  template <class F>
  void Resume(F&& step) {
    try {
      step();
    } catch (const RuntimeError&) {
      display_status();
    }
  }
  MediaScreen& media_;
};

// The words for an FTP error number in the status bar.
Text FtpErrorWords(int number);

// Writes text to a log list, a line an entry, keeping about a hundred entries and the newest selected.
void ftp_trace(ListBox& list, const Text& text);

// Button 4 of the image page: the upload form, modal.
void show_upload_form(MediaScreen& media);

}  // namespace lw
