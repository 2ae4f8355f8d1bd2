// The media side of the main screen: the image page with its picture display and toolbar, the scanner,
// and the upload form with the main form's FTP client. One MediaScreen lives for the run, kept by the
// program context; the units below each register their own routines and controls.
#pragma once

#include <filesystem>
#include <memory>

#include "core/primitives/types.h"
#include "core/store/store.h"
#include "platform/ftp_client.h"

namespace lw {

struct Program;
class MainForm;
class UploadForm;
struct ScannerState;

class MediaScreen {
 public:
  explicit MediaScreen(Program& program);
  ~MediaScreen();
  MediaScreen(const MediaScreen&) = delete;
  MediaScreen& operator=(const MediaScreen&) = delete;

  Program& program() const { return *program_; }
  MainForm& main() const;

  // The main form's FTP client `mFTP1`, made at first use. Its waits follow the network timeout of the
  // settings, as the page fetches do.
  FtpClient& mFTP1();

  // The current user id's setup row on the screen, or nullptr when there is none.
  Recordset* SetupRow() const;

  UploadForm* upload = nullptr;
  std::shared_ptr<ScannerState> scanner;
  // Set while a command of the image toolbar puts a new location into the field: the command itself
  // decides at its end what the display shows.
  bool placing_picture = false;

 private:
  Program* program_;
  std::unique_ptr<FtpClient> ftp_;
};

// The last part of a path, whichever separator it uses ("C:\pics\a.jpg" and "/pics/a.jpg" give "a.jpg").
Text GetFileName(TextView path);

// The file a stored path names. Locations are kept in lower case while folders on this system often
// are not: when the path as written does not exist, each part is looked up without regard to case. The
// path as written when nothing matches.
std::filesystem::path ExistingPath(TextView path);

// Creates the media screen, keeps it in the program and registers the image page, the scanner and the
// upload form.
void RegisterMedia(Program& program);

// Shows the picture of the auction on show in `PicBuf1`, with its details under it.
void refresh_picture(MediaScreen& screen);

void RegisterImagePage(MediaScreen& screen);
void RegisterScanner(MediaScreen& screen);
void RegisterUpload(MediaScreen& screen);

}  // namespace lw
