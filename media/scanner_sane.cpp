// The scanner interface on SANE. Each probe and each scan is a session of its own, from sane_init to
// sane_exit, and one session runs at a time: SANE's backends are not made for two at once.
#include "media/scanner.h"

#include "core/primitives/types.h"

#ifdef LW_HAVE_SANE

#include <sane/sane.h>

#include <cstdint>
#include <cstring>
#include <mutex>

namespace lw {

namespace {

// More than any flatbed gives at a sensible resolution: a device that keeps sending is cut off here.
constexpr size_t kMostBytes = size_t(512) << 20;

[[noreturn]] void Fail(SANE_Status status, const char* what) {
  throw RuntimeError(err::kInvalidProcedureCall, std::string(what) + ": " + sane_strstatus(status));
}

class Session {
 public:
  Session() {
    SANE_Int version = 0;
    SANE_Status status = sane_init(&version, nullptr);
    if (status != SANE_STATUS_GOOD) Fail(status, "The scanner interface did not start");
  }
  ~Session() { sane_exit(); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  std::vector<std::string> Devices() {
    const SANE_Device** list = nullptr;
    SANE_Status status = sane_get_devices(&list, SANE_FALSE);
    if (status != SANE_STATUS_GOOD) Fail(status, "No scanner list");
    std::vector<std::string> names;
    for (int i = 0; list && list[i]; ++i) names.emplace_back(list[i]->name);
    return names;
  }
};

class Device {
 public:
  explicit Device(const std::string& name) {
    SANE_Status status = sane_open(name.c_str(), &handle_);
    if (status != SANE_STATUS_GOOD) Fail(status, "The scanner did not open");
  }
  ~Device() {
    sane_cancel(handle_);
    sane_close(handle_);
  }
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;
  SANE_Handle handle() const { return handle_; }

 private:
  SANE_Handle handle_ = nullptr;
};

// One frame's samples as 8-bit values: lineart bits (1 is black) widened, 16-bit samples cut to their
// high byte.
std::vector<unsigned char> EightBit(const std::vector<unsigned char>& raw, const SANE_Parameters& p,
                                    int lines, int samples_per_line) {
  std::vector<unsigned char> out(static_cast<size_t>(lines) * samples_per_line);
  for (int y = 0; y < lines; ++y) {
    const unsigned char* row = raw.data() + static_cast<size_t>(y) * p.bytes_per_line;
    unsigned char* to = out.data() + static_cast<size_t>(y) * samples_per_line;
    for (int x = 0; x < samples_per_line; ++x) {
      if (p.depth == 1)
        to[x] = (row[x / 8] & (0x80 >> (x % 8))) ? 0 : 255;
      else if (p.depth == 16) {
        uint16_t v;
        std::memcpy(&v, row + 2 * x, 2);
        to[x] = static_cast<unsigned char>(v >> 8);
      } else
        to[x] = row[x];
    }
  }
  return out;
}

class SaneDevices : public ScannerDevices {
 public:
  std::vector<std::string> Sources() override {
    std::lock_guard lock(mutex_);
    Session session;
    return session.Devices();
  }

  ScannedPicture Acquire(const std::string& source) override {
    std::lock_guard lock(mutex_);
    Session session;
    std::string name = source;
    if (name.empty()) {
      std::vector<std::string> devices = session.Devices();
      if (devices.empty()) throw RuntimeError(err::kInvalidProcedureCall, "No scanner answers");
      name = devices.front();
    }
    Device device(name);
    ScannedPicture picture;
    std::vector<unsigned char> planes[3];
    bool last = false;
    while (!last) {
      SANE_Status status = sane_start(device.handle());
      if (status != SANE_STATUS_GOOD) Fail(status, "The scan did not start");
      SANE_Parameters p;
      status = sane_get_parameters(device.handle(), &p);
      if (status != SANE_STATUS_GOOD) Fail(status, "The scan has no size");
      if ((p.depth != 1 && p.depth != 8 && p.depth != 16) || p.bytes_per_line <= 0 || p.pixels_per_line <= 0)
        throw RuntimeError(err::kInvalidProcedureCall,
                           "The scanner sends a picture of a kind this program does not read");
      std::vector<unsigned char> raw = ReadFrame(device.handle());
      int lines = static_cast<int>(raw.size() / static_cast<size_t>(p.bytes_per_line));
      if (p.lines > 0 && p.lines < lines) lines = p.lines;
      if (lines <= 0) throw RuntimeError(err::kInvalidProcedureCall, "The scanner sent no picture");
      bool colour = p.format == SANE_FRAME_RGB;
      int samples = p.pixels_per_line * (colour ? 3 : 1);
      if (static_cast<long long>(samples) * (p.depth == 16 ? 2 : 1) >
          p.bytes_per_line * (p.depth == 1 ? 8LL : 1LL))
        throw RuntimeError(err::kInvalidProcedureCall, "The scanner's lines are shorter than its pictures");
      std::vector<unsigned char> frame = EightBit(raw, p, lines, samples);
      picture.width = p.pixels_per_line;
      picture.height = lines;
      switch (p.format) {
        case SANE_FRAME_GRAY:
          picture.channels = 1;
          picture.pixels = std::move(frame);
          break;
        case SANE_FRAME_RGB:
          picture.channels = 3;
          picture.pixels = std::move(frame);
          break;
        case SANE_FRAME_RED:
        case SANE_FRAME_GREEN:
        case SANE_FRAME_BLUE:
          picture.channels = 3;
          planes[p.format - SANE_FRAME_RED] = std::move(frame);
          break;
        default:
          throw RuntimeError(err::kInvalidProcedureCall,
                             "The scanner sends frames this program does not read");
      }
      last = p.last_frame;
    }
    if (!planes[0].empty() || !planes[1].empty() || !planes[2].empty()) {
      // Three passes, one colour each: woven into one colour picture.
      size_t count = static_cast<size_t>(picture.width) * picture.height;
      picture.pixels.assign(count * 3, 0);
      for (int c = 0; c < 3; ++c)
        for (size_t i = 0; i < count && i < planes[c].size(); ++i) picture.pixels[i * 3 + c] = planes[c][i];
    }
    return picture;
  }

 private:
  static std::vector<unsigned char> ReadFrame(SANE_Handle handle) {
    std::vector<unsigned char> raw;
    unsigned char buffer[32768];
    for (;;) {
      SANE_Int length = 0;
      SANE_Status status = sane_read(handle, buffer, sizeof buffer, &length);
      if (status == SANE_STATUS_EOF) break;
      if (status != SANE_STATUS_GOOD) Fail(status, "The scan broke off");
      raw.insert(raw.end(), buffer, buffer + length);
      if (raw.size() > kMostBytes) throw RuntimeError(err::kInvalidProcedureCall, "The scan is too large");
    }
    return raw;
  }

  std::mutex mutex_;
};

}  // namespace

std::unique_ptr<ScannerDevices> MakeSaneDevices() {
  return std::make_unique<SaneDevices>();
}

}  // namespace lw

#else

namespace lw {

std::unique_ptr<ScannerDevices> MakeSaneDevices() {
  return nullptr;
}

}  // namespace lw

#endif
