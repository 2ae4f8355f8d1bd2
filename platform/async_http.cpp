#include "platform/async_http.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <thread>
#include <vector>

#include "core/primitives/encoding.h"
#include "platform/charset.h"
#include "platform/html_document.h"

namespace lw {

// One fetch in flight. The worker and the posted events share it; `live` is read and written on the
// model thread only and is what keeps a cancelled fetch quiet.
struct CurlAsyncHttp::Flight {
  std::atomic<bool> cancel{false};
  std::atomic<bool> finished{false};
  std::mutex mutex;
  std::condition_variable cv;
  bool start = false;
  bool gate_timed_out = false;
  bool live = true;
  std::thread worker;
};

namespace {

// Outcome of a fetch, carried from the worker to the model thread.
struct Outcome {
  bool ok = false;
  int number = 0;
  Text description;
  Text raw;
  Text text;
};

bool WriteRawPage(const std::filesystem::path& path, const Text& page) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  // UTF-8 with its mark, so that the page reads back the same whatever charset it declared.
  std::string bytes = "\xEF\xBB\xBF" + ToUtf8(page);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(out);
}

}  // namespace

CurlAsyncHttp::CurlAsyncHttp(const HttpSession& session, EventPort port)
    : session_(session), port_(std::move(port)) {}

CurlAsyncHttp::~CurlAsyncHttp() {
  Cancel();
  for (auto& f : retired_)
    if (f->worker.joinable()) f->worker.join();
}

bool CurlAsyncHttp::busy() const {
  return flight_ && flight_->live;
}

void CurlAsyncHttp::Cancel() {
  if (!flight_) return;
  flight_->live = false;
  {
    std::lock_guard<std::mutex> lock(flight_->mutex);
    flight_->cancel = true;
  }
  flight_->cv.notify_all();
  // The worker notices within moments; it is joined later so that the model never waits for it.
  retired_.push_back(std::move(flight_));
}

void CurlAsyncHttp::Reset() {
  Cancel();
  text_.clear();
  raw_page_.clear();
  text_without_tags_ = false;
  keep_raw_page_ = false;
  save_file_.clear();
}

void CurlAsyncHttp::StartTransfer() {
  if (!flight_) return;
  {
    std::lock_guard<std::mutex> lock(flight_->mutex);
    flight_->start = true;
  }
  flight_->cv.notify_all();
}

void CurlAsyncHttp::Connect() {
  Cancel();
  ReapRetired();
  auto flight = std::make_shared<Flight>();
  flight_ = flight;
  std::shared_ptr<void> hold = port_.Hold();
  EventPort port = port_;
  const HttpSession* session = &session_;
  HttpRequest request;
  request.url = url_;
  bool without_tags = text_without_tags_;

  flight->worker = std::thread([this, flight, hold, port, session, request, without_tags]() mutable {
    FetchControl control;
    control.cancel = &flight->cancel;
    control.connected = [&]() {
      port.post([this, flight] {
        if (flight->live && handlers_.connected) handlers_.connected();
      });
      std::unique_lock<std::mutex> lock(flight->mutex);
      bool go = flight->cv.wait_for(lock, session->timeout(),
                                    [&] { return flight->start || flight->cancel.load(); });
      if (!go) flight->gate_timed_out = true;
      return flight->start && !flight->cancel.load();
    };
    Outcome outcome;
    try {
      HttpResponse response = session->Perform(request, control);
      if (response.status >= 400) {
        outcome.number = static_cast<int>(response.status);
        outcome.description = T("The server answered with status " + std::to_string(response.status));
      } else {
        outcome.ok = true;
        outcome.raw = DecodePage(response.body, response.content_type);
        outcome.text = without_tags ? PageTextWithoutTags(outcome.raw) : outcome.raw;
      }
    } catch (const RuntimeError& e) {
      bool timed_out;
      {
        std::lock_guard<std::mutex> lock(flight->mutex);
        timed_out = flight->gate_timed_out;
      }
      outcome.number = timed_out ? kCurlTimedOut : e.number();
      outcome.description =
          FromUtf8(timed_out ? "Connection Failed: the transfer was never started" : e.what());
    }
    port.post([this, flight, outcome = std::move(outcome)]() mutable {
      if (!flight->live) return;
      flight->live = false;
      if (outcome.ok)
        Finish(std::move(outcome.raw), std::move(outcome.text));
      else if (handlers_.error)
        handlers_.error(outcome.number, outcome.description);
    });
    flight->finished = true;
    hold.reset();
  });
}

void CurlAsyncHttp::Finish(Text raw, Text text) {
  raw_page_ = std::move(raw);
  text_ = std::move(text);
  if (keep_raw_page_ && !save_file_.empty() && !WriteRawPage(save_file_, raw_page_)) {
    if (handlers_.error) handlers_.error(75, T("Path/File access error: " + save_file_.string()));
    return;
  }
  if (handlers_.done) handlers_.done();
}

void CurlAsyncHttp::ReapRetired() {
  std::vector<std::shared_ptr<Flight>> still;
  for (auto& f : retired_) {
    if (f->finished) {
      if (f->worker.joinable()) f->worker.join();
    } else {
      still.push_back(std::move(f));
    }
  }
  retired_ = std::move(still);
}

}  // namespace lw
