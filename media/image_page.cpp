// The image page (page 3): the picture of the auction on show with its details, the three display modes,
// and the toolbar that takes a picture from a file or a scanner, saves a copy and opens the upload.
//
// A picture has three names kept apart: the local file (`Pic_location`, in `image_loc_txt`), the bare
// file name (`Pic_name`, in `pic_name_txt`), and the web address a listing sends (`picurl`, in
// `image_loc_txt(2)`), which is the user's web location followed directly by the bare name.
#include <system_error>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "media/media_screen.h"
#include "media/picture_file.h"
#include "media/scanner.h"
#include "media/upload_form.h"
#include "screen/main/main_form.h"
#include "screen/picture_box.h"

namespace lw {

namespace {

namespace fs = std::filesystem;

constexpr int kImagePage = 3;
constexpr char16_t kNotAvailableText[] = u"NA";
// Label1 89, 91, 92 and 93: width, height, file size and depth; 90 is the "x" between the first two.
constexpr int kWidthLabel = 89;
constexpr int kHeightLabel = 91;
constexpr int kSizeLabel = 92;
constexpr int kDepthLabel = 93;

struct ToolButton {
  const char16_t* tooltip;
};
constexpr ToolButton kToolbar8[] = {{u"Select the Image Capture Device"},
                                    {u"Get an image from a Twain device"},
                                    {u"Save an jpeg image file"},
                                    {u"Post an image to a webserver"},
                                    {u"Find an image"}};

template <class T>
T& Ensure(MainForm& f, const char16_t* name, int index = -1) {
  if (Control* c = f.Find(name, index)) return dynamic_cast<T&>(*c);
  return f.Add<T>(name, index);
}

Control& EnsurePlain(MainForm& f, ControlKind kind, const char16_t* name, int index = -1) {
  if (Control* c = f.Find(name, index)) return *c;
  return f.Add(kind, name, index);
}

PictureBox& PicBuf1(MainForm& f) {
  return f.Get<PictureBox>(u"PicBuf1");
}

Text Number(std::uintmax_t n) {
  return FromUtf8(std::to_string(n));
}

void ShowDetails(MainForm& f, const PictureDetails* d) {
  auto put = [&](int label, std::uintmax_t value) {
    f.Get(u"Label1", label).SetCaption(d ? Number(value) : Text(kNotAvailableText));
  };
  put(kWidthLabel, d ? d->width : 0);
  put(kHeightLabel, d ? d->height : 0);
  put(kSizeLabel, d ? d->size : 0);
  put(kDepthLabel, d ? d->depth : 0);
}

// The two sides' fields follow the type in view, as the detail pages' pairs do.
void ShowSide(MainForm& f) {
  int side = f.IsSeller() ? 0 : 1;
  for (const char16_t* name : {u"image_loc_txt", u"pic_name_txt"})
    for (int i = 0; i < 2; ++i) f.Get(name, i).SetVisible(i == side);
}

Text SetupText(MediaScreen& s, TextView column) {
  Recordset* row = s.SetupRow();
  if (!row || !row->HasField(column)) return {};
  Variant v = row->Fields(column);
  return v.text() ? *v.text() : Text();
}

}  // namespace

void refresh_picture(MediaScreen& s) {
  MainForm& f = s.main();
  PictureBox& picture = PicBuf1(f);
  picture.SetFileName(Text());
  const Text& file = f.Get(u"image_loc_txt", f.Auction_type_lst.text() == u"Bidder" ? 1 : 0).text();
  try {
    picture.SetFileName(file);
  } catch (const RuntimeError& e) {
    // A file that is gone or holds no picture shows nothing, and says why.
    picture.SetVisible(false);
    ShowDetails(f, nullptr);
    f.SetStatus(FromUtf8(e.description()));
    return;
  }
  picture.SetVisible(!file.empty());
  ShowDetails(f, file.empty() ? nullptr : &picture.details());
}

namespace {

// Steps 3 to 6 of Save Image As, which Browse shares: the field takes the chosen file in lower case,
// the row takes its bare name as the dialog gave it, the web address follows, and a JPEG or GIF is shown.
void place_picture(MediaScreen& s, DataControl& side, int index, const fs::path& chosen_path) {
  MainForm& f = s.main();
  Text chosen = FromUtf8(chosen_path.string());
  Control& location = f.Get(u"image_loc_txt", index);
  {
    FlagRaised placing(s.placing_picture);
    location.SetText(LCase(chosen));
  }
  Text name = GetFileName(chosen);
  f.Get(u"pic_name_txt", index).SetText(name);
  side.UpdateRecord();
  f.Get(u"image_loc_txt", 2).SetText(SetupText(s, u"ebay_image_loc") + name);
  if (location.text().empty()) {
    PicBuf1(f).SetVisible(false);
    return;
  }
  Text ending = Right(chosen, 3);
  if (ending == u"jpg" || ending == u"JPG" || ending == u"GIF" || ending == u"gif") refresh_picture(s);
}

void save_image_as(MediaScreen& s) {
  MainForm& f = s.main();
  const Text& current = f.Get(u"image_loc_txt", 0).text();
  FileDialogRequest request;
  request.title = u"Image Save";
  request.filter = u"Image Files (*.jpg)|*.jpg";
  request.initial_dir = FromUtf8(ExistingPath(current).parent_path().string());
  std::optional<FileDialogAnswer> answer = f.ui().ShowSave(request);
  if (!answer) return;
  std::error_code ec;
  fs::copy_file(ExistingPath(current), answer->path, fs::copy_options::overwrite_existing, ec);
  if (ec) return;
  place_picture(s, f.seller, 0, answer->path);
}

void browse_image(MediaScreen& s) {
  MainForm& f = s.main();
  FileDialogRequest request;
  request.title = u"Image Display";
  request.filter = u"Image Files (*.jpg;*.gif)|*.jpg;*.gif";
  std::optional<FileDialogAnswer> answer = f.ui().ShowOpen(request);
  if (!answer) return;
  bool bidder = f.Auction_type_lst.text() == u"Bidder";
  place_picture(s, bidder ? f.Bidder : f.seller, bidder ? 1 : 0, answer->path);
}

void image_loc_changed(MediaScreen& s, Control& changed) {
  MainForm& f = s.main();
  int side = f.Auction_type_lst.text() == u"Seller" ? 0 : 1;
  // Showing a stored row is no renaming: the row's own name stays as it was stored.
  if (changed.data_changed())
    f.Get(u"pic_name_txt", side).SetText(GetFileName(f.Get(u"image_loc_txt", side).text()));
  if (!s.placing_picture) refresh_picture(s);
}

void BuildImagePage(MediaScreen& s) {
  MainForm& f = s.main();
  Control& page = EnsurePlain(f, ControlKind::Frame, u"image_page_fra");
  page.SetContainer(&f.Page(kImagePage));  // on its page of SSTab1, where the user sees it
  page.SetVisible(f.SSTab1.tab() == kImagePage);
  f.Get(u"ctToolBar8").SetContainer(&page);
  Toolbar& bar = f.Get<Toolbar>(u"ctToolBar8");
  for (int i = 1; i <= bar.ButtonCount() && i <= 5; ++i) bar.button(i).tooltip = kToolbar8[i - 1].tooltip;

  struct Field {
    const char16_t* name;
    const char16_t* label;
    const char16_t* caption;
    const char16_t* column;
  };
  // The location is bound before the name, so that showing a row shows the name it stored.
  for (const Field& fd : {Field{u"image_loc_txt", u"image_loc_lbl", u"Image Location", u"Pic_location"},
                          Field{u"pic_name_txt", u"pic_name_lbl", u"Picture Name", u"Pic_name"}}) {
    Control& label = EnsurePlain(f, ControlKind::Label, fd.label);
    label.SetCaption(fd.caption);
    label.SetContainer(&page);
    for (int i = 0; i < 2; ++i) {
      Control& box = EnsurePlain(f, ControlKind::TextBox, fd.name, i);
      box.SetContainer(&page);
      box.Bind(i == 0 ? static_cast<DataControl&>(f.seller) : f.Bidder, fd.column);
    }
  }
  // The Sell page's address of the picture; the listing places it on its page.
  Control& url = EnsurePlain(f, ControlKind::TextBox, u"image_loc_txt", 2);
  if (!url.data_source()) url.Bind(f.seller, u"picurl");
  for (int i = 0; i < 2; ++i) {
    Control& box = f.Get(u"image_loc_txt", i);
    box.OnChange = [&s, &box] { image_loc_changed(s, box); };
  }
  ShowSide(f);

  PictureBox& picture = Ensure<PictureBox>(f, u"PicBuf1");
  picture.SetContainer(&page);
  picture.reader = [](const fs::path& file) {
    return ReadPictureFile(ExistingPath(FromUtf8(file.string())));
  };
  picture.SetVisible(false);

  Control& details = EnsurePlain(f, ControlKind::Frame, u"image_details_fra");
  details.SetCaption(u"Image Details (pixels)/filesize/depth");
  details.SetContainer(&page);
  for (int i : {kWidthLabel, 90, kHeightLabel, kSizeLabel, kDepthLabel}) {
    Control& label = EnsurePlain(f, ControlKind::Label, u"Label1", i);
    label.SetContainer(&details);
    label.SetCaption(i == 90 ? Text(u"x") : Text(kNotAvailableText));
  }

  struct Mode {
    const char16_t* name;
    const char16_t* caption;
    int mode;
  };
  for (const Mode& m : {Mode{u"image_btn1", u"Best Fit", PictureBox::kBestFit},
                        Mode{u"image_btn2", u"Fit to Width", PictureBox::kFitToWidth},
                        Mode{u"image_btn3", u"Actual Size", PictureBox::kActualSize}}) {
    Control& button = EnsurePlain(f, ControlKind::Button, m.name);
    button.SetCaption(m.caption);
    button.SetContainer(&page);
    int mode = m.mode;
    button.OnClick = [&picture, mode] { picture.SetDisplayMode(mode); };
  }

  // The page's controls are in use only while it shows; entering it the first time asks for scanners.
  auto entered = std::move(f.SSTab1.OnTabClick);
  f.SSTab1.OnTabClick = [&s, &page, entered](int left) {
    bool here = s.main().SSTab1.tab() == kImagePage;
    page.SetVisible(here);
    if (here) {
      ShowSide(s.main());
      StartScannerProbe(s);
    }
    if (entered) entered(left);
  };
  auto type_changed = std::move(f.Auction_type_lst.OnClick);
  f.Auction_type_lst.OnClick = [&f, type_changed] {
    if (type_changed) type_changed();
    ShowSide(f);
  };
}

// The toolbar's one error handler: a cancelled dialog, a failed copy or a failing scanner ends the
// command without a word, and what was done so far stays.
template <class F>
void Quietly(F&& command) {
  try {
    command();
  } catch (const RuntimeError&) {
  }
}

}  // namespace

void RegisterImagePage(MediaScreen& screen) {
  BuildImagePage(screen);
  MediaScreen* s = &screen;
  Routines& r = screen.program().routines;
  r.Register("refresh_picture", [s] { refresh_picture(*s); });
  r.Register("ctToolBar8(1)", [s] { Quietly([s] { select_image_source(*s); }); });
  r.Register("ctToolBar8(2)", [s] { Quietly([s] { acquire_image(*s); }); });
  r.Register("ctToolBar8(3)", [s] { Quietly([s] { save_image_as(*s); }); });
  r.Register("ctToolBar8(4)", [s] { Quietly([s] { show_upload_form(*s); }); });
  r.Register("ctToolBar8(5)", [s] { Quietly([s] { browse_image(*s); }); });
}

}  // namespace lw
