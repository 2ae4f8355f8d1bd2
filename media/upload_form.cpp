#include "media/upload_form.h"

#include <string>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "media/media_screen.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

constexpr const char16_t* kCaptions[] = {u"Site Address", u"Login Name", u"Password", u"Account",
                                         u"Default Login Directory"};
constexpr const char16_t* kColumns[] = {u"ftphost", u"ftplogonname", u"ftplogonpass", u"ftpaccount",
                                        u"ftpdirectory"};
constexpr char16_t kPleaseWait[] = u"Please wait .....";
constexpr char16_t kCrLf[] = u"\r\n";

struct ToolButton {
  const char16_t* caption;
  const char16_t* tooltip;
};
constexpr ToolButton kButtons[] = {{u"Connect", u"Connect to FTP/Webserver"},
                                   {u"Disconnect", u"Disconnect from FTP/Webserver"},
                                   {u"Upload File", u"Post file to Webserver"},
                                   {u"Exit", u"Disconnect from FTP/Webserver and Exit Screen"}};

std::string U8(const Control& c) {
  return ToUtf8(c.text());
}

}  // namespace

Text FtpErrorWords(int number) {
  switch (number) {
    case 0:
      return u"No Errors";
    case ftp_error::kInvalidAddress:
      return u"The IP address provided is not valid or doesn't exist";
    case ftp_error::kHostNotFound:
      return u"Remote host could not be found.";
    case ftp_error::kNotLoggedIn:
      return u"Not logged in. ";
    case ftp_error::kAlreadyConnected:
      return u"Already connected to server.";
    case ftp_error::kCannotOpenFile:
      return u"Could not open file";
    default:
      return u"Unspecified Error Number: " + FromUtf8(std::to_string(number));
  }
}

void ftp_trace(ListBox& list, const Text& text) {
  if (list.ListCount() > 100) list.RemoveItem(0);
  Text rest = text;
  if (rest.find(kCrLf) == Text::npos) rest += kCrLf;
  size_t start = 0;
  while (start < rest.size()) {
    size_t end = rest.find(kCrLf, start);
    Text line = rest.substr(start, end == Text::npos ? Text::npos : end - start);
    list.AddItem(line);
    list.SetListIndex(list.new_index());
    if (end == Text::npos) break;
    start = end + 2;
  }
}

UploadForm::UploadForm(Screen& screen, MediaScreen& media)
    : Form(screen, u"upload"),
      ctToolBar1(Add<Toolbar>(u"ctToolBar1")),
      listTrace(Add<ListBox>(u"listTrace")),
      StatusBar1(Add<StatusBar>(u"StatusBar1")),
      media_(media) {
  caption = u"Upload Image";
  width = 6600;
  height = 6000;
  Control& frame = Add(ControlKind::Frame, u"ftp_fra");
  frame.SetCaption(u"FTP Properties");
  for (int i = 0; i < 5; ++i) {
    Control& label = Add(ControlKind::Label, u"ftp_lbl", i);
    label.SetCaption(kCaptions[i]);
    label.SetContainer(&frame);
    Add(ControlKind::TextBox, u"ftpvalues", i).SetContainer(&frame);
  }
  for (const ToolButton& b : kButtons) ctToolBar1.AddButton(b.caption, b.tooltip);
  // The log is read in a fixed-width font, so that the server's listings line up.
  listTrace.font_name = u"Courier New";
  StatusBar1.SetPanels(1);
  ctToolBar1.OnButtonClick = [this](int n) {
    if (n == 1) Connect();
    if (n == 2) Disconnect();
    if (n == 3) UploadFile();
    if (n == 4) Exit();
  };
  OnLoad = [this] { Load(); };
}

void UploadForm::display_status() {
  StatusBar1.SetPanel(1, FtpErrorWords(media_.mFTP1().last_error()));
}

void UploadForm::Connected(bool connected) {
  ctToolBar1.button(1).enabled = !connected;
  ctToolBar1.button(2).enabled = connected;
  ctToolBar1.button(3).enabled = connected;
}

void UploadForm::Load() {
  // A form shown again starts as a fresh one.
  listTrace.Clear();
  Recordset* row = media_.SetupRow();
  for (int i = 0; i < 5; ++i) {
    Variant v = row && row->HasField(kColumns[i]) ? row->Fields(kColumns[i]) : Variant();
    ftpvalues(i).SetText(v.IsNull() ? Text() : CStr(v, media_.program().regional));
  }
  Connected(false);
  ctToolBar1.button(4).enabled = true;
  display_status();
}

void UploadForm::Connect() {
  WaitCursor wait(ui());
  StatusBar1.SetPanel(1, kPleaseWait);
  FtpClient& ftp = media_.mFTP1();
  ftp.host = U8(ftpvalues(0));
  ftp.user = U8(ftpvalues(1));
  ftp.password = U8(ftpvalues(2));
  ftp.account = U8(ftpvalues(3));
  Resume([&] { ftp.Act(ftp_action::kConnect); });
  if (!ftpvalues(4).text().empty()) {
    ftp.remote_directory = U8(ftpvalues(4));
    Resume([&] { ftp.Act(ftp_action::kChangeDirectory); });
  }
  if (ftp.last_error() == 0) Connected(true);
  Resume([&] { ftp.Act(ftp_action::kPrintDirectory); });
}

void UploadForm::Disconnect() {
  WaitCursor wait(ui());
  StatusBar1.SetPanel(1, kPleaseWait);
  FtpClient& ftp = media_.mFTP1();
  Resume([&] { ftp.Act(ftp_action::kDisconnect); });
  if (ftp.last_error() == 0) Connected(false);
  Resume([&] { SaveFields(); });
}

void UploadForm::UploadFile() {
  FtpClient& ftp = media_.mFTP1();
  MainForm& main = media_.main();
  ftp.local_file = ExistingPath(main.Get(u"image_loc_txt", 0).text());
  ftp.remote_file = U8(main.Get(u"pic_name_txt", 0));
  Resume([&] { ftp.Act(ftp_action::kSendFile); });
}

void UploadForm::Exit() {
  {
    WaitCursor wait(ui());
    StatusBar1.SetPanel(1, kPleaseWait);
    Resume([&] { media_.mFTP1().Act(ftp_action::kDisconnect); });
    ctToolBar1.button(1).enabled = true;
    Resume([&] { SaveFields(); });
  }
  Unload();
}

void UploadForm::SaveFields() {
  Recordset* row = media_.SetupRow();
  if (!row) throw RuntimeError(err::kNoCurrentRecord, "No current record");
  row->Edit();
  try {
    for (int i = 0; i < 5; ++i) {
      const Text& text = ftpvalues(i).text();
      row->SetField(kColumns[i], text.empty() ? Variant() : Variant(text));
    }
    row->Update();
  } catch (...) {
    if (row->EditInProgress()) row->CancelUpdate();
    throw;
  }
}

void show_upload_form(MediaScreen& media) {
  if (media.upload) media.upload->Show(true);
}

void RegisterUpload(MediaScreen& media) {
  Program& p = media.program();
  media.upload = &p.screen.Create<UploadForm>(media);
  UploadForm* form = media.upload;
  FtpClient* ftp = &media.mFTP1();
  ftp->set_handlers({[form](int number, const std::string& text) {
                       ftp_trace(form->listTrace,
                                 u"Async Error:" + FromUtf8(std::to_string(number)) + u" " + FromUtf8(text));
                     },
                     [form, ftp](const std::string& line) {
                       // The listing actions bring their data as lines of their own.
                       int action = ftp->last_action();
                       if (action != ftp_action::kNameList && action != ftp_action::kList)
                         ftp_trace(form->listTrace, FromUtf8(line));
                     },
                     [form, ftp] {
                       ftp_trace(form->listTrace, u"done event fired");
                       if (ftp->last_action() == ftp_action::kQuote)
                         ftp_trace(form->listTrace, FromUtf8(ftp->last_reply()));
                     }});
}

}  // namespace lw
