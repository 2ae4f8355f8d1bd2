// The background fetch. Connect starts a worker thread; once the connection stands the connected event
// reaches the model thread, whose handler lets the request go with StartTransfer; the done event then
// delivers the page, or the error event a number. Events run on the model thread through the event
// port, never on the worker, and a cancelled or replaced fetch delivers nothing more.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/primitives/types.h"
#include "platform/event_port.h"
#include "platform/http_session.h"

namespace lw {

class AsyncHttp {
 public:
  struct Handlers {
    std::function<void()> connected;
    std::function<void()> done;
    std::function<void(int number, const Text& description)> error;
  };

  virtual ~AsyncHttp() = default;
  virtual void set_handlers(Handlers handlers) = 0;
  virtual void set_url(std::string url) = 0;
  virtual const std::string& url() const = 0;
  // Where the raw page is kept when keep_raw_page is on.
  virtual void set_save_file(std::filesystem::path path) = 0;
  // The done event's text is the page without its tags, one cell to a line.
  virtual void set_text_without_tags(bool on) = 0;
  // The raw page is written to the save file when the fetch is done.
  virtual void set_keep_raw_page(bool on) = 0;

  virtual void Connect() = 0;
  // Called from the connected event: sends the request. A fetch that is never let go ends in the error
  // event once the session's timeout has passed.
  virtual void StartTransfer() = 0;
  // Stops the fetch in flight; no further event of it arrives.
  virtual void Cancel() = 0;
  // Cancel, and forget the last page and the options.
  virtual void Reset() = 0;
  virtual bool busy() const = 0;

  // The page of the last done event (without tags when that option was on), and as it came.
  virtual const Text& text() const = 0;
  virtual const Text& raw_page() const = 0;
};

class CurlAsyncHttp : public AsyncHttp {
 public:
  CurlAsyncHttp(const HttpSession& session, EventPort port);
  ~CurlAsyncHttp() override;

  void set_handlers(Handlers handlers) override { handlers_ = std::move(handlers); }
  void set_url(std::string url) override { url_ = std::move(url); }
  const std::string& url() const override { return url_; }
  void set_save_file(std::filesystem::path path) override { save_file_ = std::move(path); }
  void set_text_without_tags(bool on) override { text_without_tags_ = on; }
  void set_keep_raw_page(bool on) override { keep_raw_page_ = on; }

  void Connect() override;
  void StartTransfer() override;
  void Cancel() override;
  void Reset() override;
  bool busy() const override;

  const Text& text() const override { return text_; }
  const Text& raw_page() const override { return raw_page_; }

 private:
  struct Flight;
  void Finish(Text raw, Text text);
  void ReapRetired();

  const HttpSession& session_;
  EventPort port_;
  Handlers handlers_;
  std::string url_;
  std::filesystem::path save_file_;
  bool text_without_tags_ = false;
  bool keep_raw_page_ = false;
  Text text_;
  Text raw_page_;
  std::shared_ptr<Flight> flight_;
  std::vector<std::shared_ptr<Flight>> retired_;  // cancelled fetches whose threads are still ending
};

}  // namespace lw
