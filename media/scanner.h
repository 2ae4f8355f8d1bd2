// The scanner of the image page. The devices are reached through SANE when the program was built with
// it; without SANE, or while no device answers, the scanner's two toolbar buttons stay hidden. Asking
// which devices answer and scanning both block, so they run on worker threads and report back to the
// model thread as events.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace lw {

class MediaScreen;

// A picture as it comes off the scanner: 8 bits a channel, one channel (grey) or three (colour), rows
// from the top.
struct ScannedPicture {
  int width = 0;
  int height = 0;
  int channels = 0;
  std::vector<unsigned char> pixels;
};

// The scanner interface of the platform.
class ScannerDevices {
 public:
  virtual ~ScannerDevices() = default;
  // The names of the devices that answer, in the order the platform gives them.
  virtual std::vector<std::string> Sources() = 0;
  // Scans one picture from `source`, or from the first device when it is empty. Raises RuntimeError
  // with the device's own words when the scan fails.
  virtual ScannedPicture Acquire(const std::string& source) = 0;
};

// The SANE devices; nullptr when the program was built without SANE.
std::unique_ptr<ScannerDevices> MakeSaneDevices();

// Writes the picture as a JPEG file; false when it cannot be written.
bool SaveJpeg(const std::filesystem::path& file, const ScannedPicture& picture);

// What the image page keeps of its scanner for the run.
struct ScannerState {
  std::unique_ptr<ScannerDevices> devices;
  bool probe_started = false;
  std::vector<std::string> sources;  // those that answered the probe
  std::string selected;              // the source the user chose; empty for the first
  ~ScannerState();

  // Runs `work` on a thread of its own; the state waits for every such thread before it goes.
  void Spawn(std::function<void()> work);

 private:
  std::mutex mutex_;
  std::vector<std::thread> workers_;
};

// Asks, once a run, which scanners answer; shows buttons 1 and 2 of `ctToolBar8` when one does.
void StartScannerProbe(MediaScreen& screen);
// Button 1: opens a session and lets the user choose the source in the "Select Source" form.
void select_image_source(MediaScreen& screen);
// Button 2: starts a scan; when it arrives it is saved as "{path}\acquiredimage.jpg" and shown.
void acquire_image(MediaScreen& screen);

}  // namespace lw
