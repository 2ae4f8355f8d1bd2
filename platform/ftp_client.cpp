#include "platform/ftp_client.h"

#include <curl/curl.h>

#include <cstdio>
#include <system_error>
#include <utility>
#include <vector>

#include "core/primitives/types.h"

namespace lw {

namespace {

// libcurl's global set-up is made once for the process, before the first handle.
void InitCurlOnce() {
  static const bool done = [] {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    return true;
  }();
  (void)done;
}

bool NeedsSession(int action) {
  return action != ftp_action::kConnect && action != ftp_action::kDisconnect;
}

int NumberFor(CURLcode code, long reply) {
  if (reply >= 400 && reply < 600) return 20000 + static_cast<int>(reply);
  switch (code) {
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL:
      return ftp_error::kInvalidAddress;
    case CURLE_COULDNT_RESOLVE_HOST:
      return ftp_error::kHostNotFound;
    case CURLE_COULDNT_CONNECT:
      return ftp_error::kConnectionRefused;
    case CURLE_OPERATION_TIMEDOUT:
      return ftp_error::kTimedOut;
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
      return ftp_error::kConnectionReset;
    case CURLE_LOGIN_DENIED:
      return ftp_error::kNotLoggedIn;
    case CURLE_READ_ERROR:
    case CURLE_WRITE_ERROR:
      return ftp_error::kCannotOpenFile;
    default:
      return ftp_error::kTransferFailed;
  }
}

// "ftp://name:21/x" and "name:21" both give "name:21".
std::string BareHost(std::string host) {
  size_t scheme = host.find("://");
  if (scheme != std::string::npos) host.erase(0, scheme + 3);
  size_t slash = host.find('/');
  if (slash != std::string::npos) host.erase(slash);
  return host;
}

bool PlainHost(const std::string& host) {
  if (host.empty()) return false;
  for (unsigned char c : host)
    if (c <= ' ' || c == '@' || c == '?' || c == '#' || c == '\\' || c >= 0x7F) return false;
  return true;
}

}  // namespace

std::string JoinFtpDirectory(const std::string& current, const std::string& change) {
  if (change.empty()) return current;
  if (change.front() == '/') return change;
  if (current.empty()) return change;
  std::string joined = current;
  if (joined.back() != '/') joined += '/';
  return joined + change;
}

struct FtpClient::Curl {
  CURL* handle = nullptr;
  char error[CURL_ERROR_SIZE] = {};
  std::string partial;               // a reply line not yet ended
  std::vector<std::string> replies;  // the lines of the action running
  std::string* last_reply = nullptr;
  std::string* sink = nullptr;  // where a listing or a fetched file goes
  std::FILE* file = nullptr;    // the file being sent or fetched

  Curl() {
    InitCurlOnce();
    handle = curl_easy_init();
  }
  ~Curl() {
    if (handle) curl_easy_cleanup(handle);
  }

  void Line(std::string line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.pop_back();
    *last_reply = line;
    replies.push_back(std::move(line));
  }

  static int Debug(CURL*, curl_infotype type, char* data, size_t size, void* self) {
    if (type != CURLINFO_HEADER_IN) return 0;
    auto* c = static_cast<Curl*>(self);
    c->partial.append(data, size);
    size_t end;
    while ((end = c->partial.find('\n')) != std::string::npos) {
      c->Line(c->partial.substr(0, end + 1));
      c->partial.erase(0, end + 1);
    }
    return 0;
  }
  static size_t Write(char* data, size_t size, size_t count, void* self) {
    auto* c = static_cast<Curl*>(self);
    size_t n = size * count;
    if (c->file) return std::fwrite(data, 1, n, c->file);
    if (c->sink) c->sink->append(data, n);
    return n;
  }
  static size_t Read(char* buffer, size_t size, size_t count, void* self) {
    auto* c = static_cast<Curl*>(self);
    size_t n = std::fread(buffer, 1, size * count, c->file);
    if (n == 0 && std::ferror(c->file)) return CURL_READFUNC_ABORT;
    return n;
  }
};

struct FtpClient::Outcome {
  CURLcode code = CURLE_OK;
  long reply = 0;
  std::string text;
};

FtpClient::FtpClient(EventPort port) : port_(std::move(port)), handlers_(std::make_shared<Handlers>()) {}

FtpClient::~FtpClient() = default;

void FtpClient::set_handlers(Handlers handlers) {
  *handlers_ = std::move(handlers);
}

void FtpClient::Post(std::function<void(const Handlers&)> event) {
  std::weak_ptr<Handlers> handlers = handlers_;
  auto run = [handlers, event = std::move(event)] {
    if (auto h = handlers.lock()) event(*h);
  };
  if (port_.post)
    port_.post(std::move(run));
  else
    run();
}

std::string FtpClient::Url(const std::string& path, bool file) const {
  std::string url = "ftp://" + BareHost(host) + "/";
  std::string rest = path;
  // A path from the top is written with an encoded slash, or libcurl would take it from the logon folder.
  if (!rest.empty() && rest.front() == '/') {
    url += "%2F";
    rest.erase(0, 1);
  }
  size_t start = 0;
  while (start <= rest.size()) {
    size_t slash = rest.find('/', start);
    std::string part = rest.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
    if (!part.empty()) {
      char* escaped = curl_easy_escape(curl_->handle, part.data(), static_cast<int>(part.size()));
      url += escaped ? escaped : "";
      curl_free(escaped);
    }
    if (!part.empty() && (slash != std::string::npos || !file)) url += '/';
    if (slash == std::string::npos) break;
    start = slash + 1;
  }
  return url;
}

FtpClient::Outcome FtpClient::Perform(int action, const std::string& path, const std::string& quote_text) {
  if (!curl_) curl_ = std::make_unique<Curl>();
  Curl& c = *curl_;
  CURL* h = c.handle;
  Outcome out;
  if (!h) {
    out.code = CURLE_FAILED_INIT;
    out.text = "The FTP library could not start";
    return out;
  }
  c.error[0] = 0;
  c.partial.clear();
  c.replies.clear();
  c.last_reply = &last_reply_;
  c.sink = nullptr;

  long seconds = static_cast<long>((timeout_.count() + 999) / 1000);
  if (seconds < 1) seconds = 1;
  std::string url = Url(path, action == ftp_action::kSendFile || action == ftp_action::kGetFile);
  curl_easy_setopt(h, CURLOPT_URL, url.c_str());
  curl_easy_setopt(h, CURLOPT_ERRORBUFFER, c.error);
  curl_easy_setopt(h, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(h, CURLOPT_PROTOCOLS_STR, "ftp");
  curl_easy_setopt(h, CURLOPT_VERBOSE, 1L);
  curl_easy_setopt(h, CURLOPT_DEBUGFUNCTION, &Curl::Debug);
  curl_easy_setopt(h, CURLOPT_DEBUGDATA, &c);
  curl_easy_setopt(h, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeout_.count()));
  curl_easy_setopt(h, CURLOPT_SERVER_RESPONSE_TIMEOUT, seconds);
  curl_easy_setopt(h, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(h, CURLOPT_LOW_SPEED_TIME, seconds);
  curl_easy_setopt(h, CURLOPT_USERNAME, user.c_str());
  curl_easy_setopt(h, CURLOPT_PASSWORD, password.c_str());
  curl_easy_setopt(h, CURLOPT_FTP_ACCOUNT, account.empty() ? nullptr : account.c_str());
  curl_easy_setopt(h, CURLOPT_WRITEFUNCTION, &Curl::Write);
  curl_easy_setopt(h, CURLOPT_WRITEDATA, &c);
  curl_easy_setopt(h, CURLOPT_READFUNCTION, &Curl::Read);
  curl_easy_setopt(h, CURLOPT_READDATA, &c);
  curl_easy_setopt(h, CURLOPT_NOBODY, 0L);
  curl_easy_setopt(h, CURLOPT_UPLOAD, 0L);
  curl_easy_setopt(h, CURLOPT_DIRLISTONLY, 0L);
  curl_easy_setopt(h, CURLOPT_QUOTE, nullptr);

  struct curl_slist* quote = nullptr;
  std::FILE* file = nullptr;
  std::filesystem::path fetched;
  switch (action) {
    case ftp_action::kSendFile: {
      file = std::fopen(local_file.c_str(), "rb");
      std::error_code ec;
      auto size = std::filesystem::file_size(local_file, ec);
      curl_easy_setopt(h, CURLOPT_UPLOAD, 1L);
      curl_easy_setopt(h, CURLOPT_INFILESIZE_LARGE, ec ? curl_off_t(-1) : static_cast<curl_off_t>(size));
      break;
    }
    case ftp_action::kGetFile:
      fetched = local_file;
      file = std::fopen(local_file.c_str(), "wb");
      break;
    case ftp_action::kList:
    case ftp_action::kNameList:
      listing_.clear();
      c.sink = &listing_;
      curl_easy_setopt(h, CURLOPT_DIRLISTONLY, action == ftp_action::kNameList ? 1L : 0L);
      break;
    case ftp_action::kQuote:
      quote = curl_slist_append(nullptr, quote_text.c_str());
      curl_easy_setopt(h, CURLOPT_QUOTE, quote);
      curl_easy_setopt(h, CURLOPT_NOBODY, 1L);
      break;
    default:
      curl_easy_setopt(h, CURLOPT_NOBODY, 1L);
      break;
  }
  c.file = file;
  out.code = curl_easy_perform(h);
  c.file = nullptr;
  if (file) std::fclose(file);
  curl_slist_free_all(quote);
  curl_easy_getinfo(h, CURLINFO_RESPONSE_CODE, &out.reply);
  if (out.code != CURLE_OK) {
    if (out.reply >= 400 && !last_reply_.empty())
      out.text = last_reply_;
    else
      out.text = c.error[0] ? std::string(c.error) : std::string(curl_easy_strerror(out.code));
    // A fetch that failed leaves no half file behind to be read as a whole one.
    if (!fetched.empty()) {
      std::error_code ec;
      std::filesystem::remove(fetched, ec);
    }
  }
  return out;
}

void FtpClient::Fail(int number, std::string text) {
  last_error_ = number;
  last_error_text_ = std::move(text);
  throw RuntimeError(number, last_error_text_);
}

void FtpClient::Close() {
  curl_.reset();
  state_ = State::kDisconnected;
  current_dir_.clear();
}

void FtpClient::Act(int action) {
  last_action_ = action;
  last_error_ = 0;
  last_error_text_.clear();
  try {
    Run(action);
  } catch (const RuntimeError& e) {
    int number = e.number();
    std::string text = e.description();
    Post([number, text](const Handlers& h) {
      if (h.error) h.error(number, text);
    });
    throw;
  }
  Post([](const Handlers& h) {
    if (h.done) h.done();
  });
}

void FtpClient::Run(int action) {
  using namespace ftp_action;
  if (action != kChangeDirectory && action != kConnect && action != kDisconnect &&
      action != kPrintDirectory && action != kList && action != kNameList && action != kGetFile &&
      action != kSendFile && action != kQuote)
    Fail(ftp_error::kUnknownAction, "Unknown action " + std::to_string(action));
  if (action == kDisconnect) {
    if (state_ == State::kConnected && curl_) {
      Perform(kQuote, current_dir_, "QUIT");  // the session ends whatever the server says to it
      for (std::string& line : curl_->replies) {
        Post([line](const Handlers& h) {
          if (h.reply_line) h.reply_line(line);
        });
      }
    }
    Close();
    return;
  }
  if (action == kConnect && state_ == State::kConnected)
    Fail(ftp_error::kAlreadyConnected, "Already connected to server.");
  if (NeedsSession(action) && state_ == State::kFailed) Fail(failure_, failure_text_);
  if (NeedsSession(action) && state_ == State::kDisconnected)
    Fail(ftp_error::kNotConnected, "Not connected to server.");
  if (action == kConnect) {
    std::string bare = BareHost(host);
    if (!PlainHost(bare)) {
      state_ = State::kFailed;
      failure_ = ftp_error::kInvalidAddress;
      failure_text_ = "The address \"" + host + "\" is not a host name or IP address";
      Fail(failure_, failure_text_);
    }
    // A new logon starts afresh, on a connection of its own.
    curl_.reset();
    current_dir_.clear();
  }
  if ((action == kSendFile || action == kGetFile) && (local_file.empty() || remote_file.empty()))
    Fail(ftp_error::kCannotOpenFile, local_file.empty() ? "Could not open file: no local file name"
                                                        : "Could not open file: no remote file name");
  if (action == kSendFile) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(local_file, ec))
      Fail(ftp_error::kCannotOpenFile, "Could not open file " + local_file.string());
  }

  std::string path = current_dir_;
  if (action == kChangeDirectory) path = JoinFtpDirectory(current_dir_, remote_directory);
  if (action == kSendFile || action == kGetFile) path = JoinFtpDirectory(current_dir_, remote_file);
  Outcome out = action == kPrintDirectory ? Perform(kQuote, path, "PWD") : Perform(action, path, command);
  for (std::string& line : curl_->replies) {
    Post([line](const Handlers& h) {
      if (h.reply_line) h.reply_line(line);
    });
  }
  if (out.code != CURLE_OK) {
    int number = NumberFor(out.code, out.reply);
    if (last_action_ == kConnect) {
      state_ = State::kFailed;
      failure_ = number;
      failure_text_ = out.text;
      curl_.reset();
    }
    Fail(number, out.text);
  }
  if (last_action_ == kConnect) state_ = State::kConnected;
  if (last_action_ == kChangeDirectory) current_dir_ = path;
}

}  // namespace lw
