#include "media/scanner.h"

#include <stb/stb_image_write.h>

#include <fstream>

#include "core/primitives/encoding.h"
#include "media/media_screen.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

// The quality of a scanned picture saved for the web: small files that still show the item well.
constexpr int kJpegQuality = 90;

// The user's choice among the sources that answered.
class SelectSourceForm : public Form {
 public:
  SelectSourceForm(Screen& screen, ScannerState& state)
      : Form(screen, u"select_source_frm"),
        source_lst(Add<ListBox>(u"source_lst")),
        select_btn(Add(ControlKind::Button, u"select_btn")),
        cancel_btn(Add(ControlKind::Button, u"cancel_btn")) {
    caption = u"Select Source";
    width = 4500;
    height = 3300;
    select_btn.SetCaption(u"Select");
    cancel_btn.SetCaption(u"Cancel");
    OnLoad = [this, &state] {
      source_lst.Clear();
      for (const std::string& name : state.sources) source_lst.AddItem(FromUtf8(name));
      int at = source_lst.Find(FromUtf8(state.selected));
      source_lst.SetListIndex(at >= 0 ? at : 0);
    };
    select_btn.OnClick = [this, &state] {
      if (source_lst.list_index() >= 0) state.selected = ToUtf8(source_lst.List(source_lst.list_index()));
      Unload();
    };
    cancel_btn.OnClick = [this] { Unload(); };
  }
  ListBox& source_lst;
  Control& select_btn;
  Control& cancel_btn;
};

ScannerState& State(MediaScreen& s) {
  if (!s.scanner) {
    s.scanner = std::make_shared<ScannerState>();
    s.scanner->devices = MakeSaneDevices();
  }
  return *s.scanner;
}

void ShowScannerButtons(MainForm& f, bool shown) {
  Toolbar& bar = f.Get<Toolbar>(u"ctToolBar8");
  bar.button(1).visible = shown;
  bar.button(2).visible = shown;
}

void acquired(MediaScreen& s, const ScannedPicture& picture) {
  MainForm& f = s.main();
  std::filesystem::path file = s.program().DbFile(u"\\acquiredimage.jpg");
  if (!SaveJpeg(file, picture)) return;
  // Through the empty text, so that the display reads the file again even when the name is the same.
  // A scan always lands on the seller's side, whatever the type on show.
  Control& location = f.Get(u"image_loc_txt", 0);
  location.SetText(Text());
  location.SetText(FromUtf8(file.string()));
}

}  // namespace

ScannerState::~ScannerState() {
  std::vector<std::thread> workers;
  {
    std::lock_guard lock(mutex_);
    workers.swap(workers_);
  }
  for (std::thread& t : workers)
    if (t.joinable()) t.join();
}

void ScannerState::Spawn(std::function<void()> work) {
  std::lock_guard lock(mutex_);
  workers_.emplace_back(std::move(work));
}

bool SaveJpeg(const std::filesystem::path& file, const ScannedPicture& picture) {
  if (picture.width <= 0 || picture.height <= 0 || (picture.channels != 1 && picture.channels != 3) ||
      picture.pixels.size() < static_cast<size_t>(picture.width) * picture.height * picture.channels)
    return false;
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  int ok = stbi_write_jpg_to_func(
      [](void* to, void* data, int size) {
        static_cast<std::ofstream*>(to)->write(static_cast<char*>(data), size);
      },
      &out, picture.width, picture.height, picture.channels, picture.pixels.data(), kJpegQuality);
  out.close();
  return ok && out.good();
}

void StartScannerProbe(MediaScreen& s) {
  ScannerState& state = State(s);
  if (state.probe_started) return;
  state.probe_started = true;
  MainForm& f = s.main();
  ShowScannerButtons(f, false);
  if (!state.devices) return;
  EventPort port = s.program().screen.queue().Port();
  std::weak_ptr<ScannerState> weak = s.scanner;
  ScannerDevices* devices = state.devices.get();
  MediaScreen* screen = &s;
  state.Spawn([port, weak, devices, screen, hold = port.Hold()]() mutable {
    std::vector<std::string> sources;
    try {
      sources = devices->Sources();
    } catch (const std::exception&) {
      // A scanner interface that fails to start offers no scanner.
    }
    port.post([weak, screen, sources] {
      auto state = weak.lock();
      if (!state) return;
      state->sources = sources;
      ShowScannerButtons(screen->main(), !sources.empty());
    });
    hold.reset();
  });
}

void select_image_source(MediaScreen& s) {
  ScannerState& state = State(s);
  if (state.sources.empty()) return;
  auto* form = dynamic_cast<SelectSourceForm*>(s.program().screen.FindForm(u"select_source_frm"));
  if (!form) form = &s.program().screen.Create<SelectSourceForm>(state);
  form->Show(true);
}

void acquire_image(MediaScreen& s) {
  ScannerState& state = State(s);
  if (!state.devices || state.sources.empty()) return;
  EventPort port = s.program().screen.queue().Port();
  std::weak_ptr<ScannerState> weak = s.scanner;
  ScannerDevices* devices = state.devices.get();
  MediaScreen* screen = &s;
  std::string source = state.selected;
  state.Spawn([port, weak, devices, screen, source, hold = port.Hold()]() mutable {
    std::shared_ptr<ScannedPicture> picture;
    try {
      picture = std::make_shared<ScannedPicture>(devices->Acquire(source));
    } catch (const std::exception&) {
      // A failing scanner ends the command without a word; the session closes all the same.
    }
    port.post([weak, screen, picture] {
      if (!weak.lock() || !picture) return;
      try {
        acquired(*screen, *picture);
      } catch (const RuntimeError&) {
      }
    });
    hold.reset();
  });
}

}  // namespace lw

namespace lw {

void RegisterScanner(MediaScreen& s) {
  // Hidden until a device has answered the probe made on entering the image page.
  ShowScannerButtons(s.main(), false);
}

}  // namespace lw
