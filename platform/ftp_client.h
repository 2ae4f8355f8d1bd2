// The FTP client of the upload screen and the update check, on libcurl. Like the control it stands in
// for, it takes its parameters as properties and then performs the action it is given: connect, change
// directory, send or fetch a file, disconnect. An action blocks the calling thread until it ends (every
// wait is bounded by the timeouts), sets the last error and raises it; what the server said reaches
// the model thread afterwards as events through the event port: each reply line, then done, or error
// with its number and text.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/event_port.h"

namespace lw {

// Action numbers, as the screens write them to the client.
namespace ftp_action {
inline constexpr int kChangeDirectory = 4;
inline constexpr int kConnect = 5;
inline constexpr int kDisconnect = 9;
// The step after connecting: asks where the session stands, so the log shows the folder a send lands in.
inline constexpr int kPrintDirectory = 10;
inline constexpr int kList = 11;      // the long listing of the current directory
inline constexpr int kNameList = 13;  // names only
inline constexpr int kGetFile = 14;
inline constexpr int kSendFile = 15;
inline constexpr int kQuote = 22;  // one command of the user's, its reply kept as the last reply
}  // namespace ftp_action

// Last error numbers. A refusal by the server is 20000 plus its reply code (530 gives 20530); trouble
// on the client's side is 206xx; the socket's own troubles keep the numbers of the platform's sockets.
namespace ftp_error {
inline constexpr int kNone = 0;
inline constexpr int kConnectionReset = 10054;
inline constexpr int kTimedOut = 10060;
inline constexpr int kConnectionRefused = 10061;
inline constexpr int kInvalidAddress = 10025;
inline constexpr int kHostNotFound = 11001;
inline constexpr int kNotLoggedIn = 20530;
inline constexpr int kUnknownAction = 20600;
inline constexpr int kAlreadyConnected = 20602;
inline constexpr int kNotConnected = 20603;
inline constexpr int kCannotOpenFile = 20608;
inline constexpr int kTransferFailed = 20699;  // a failure the server gave no reply code for
}  // namespace ftp_error

class FtpClient {
 public:
  struct Handlers {
    std::function<void(int number, const std::string& text)> error;
    std::function<void(const std::string& line)> reply_line;
    std::function<void()> done;
  };

  explicit FtpClient(EventPort port);
  ~FtpClient();
  FtpClient(const FtpClient&) = delete;
  FtpClient& operator=(const FtpClient&) = delete;

  void set_handlers(Handlers handlers);

  // The server: "name", "name:port", optionally written with "ftp://" in front.
  std::string host;
  std::string user;
  std::string password;
  std::string account;
  // Where the next change of directory goes: relative to where the session stands, or from the top
  // with a leading "/".
  std::string remote_directory;
  std::filesystem::path local_file;
  std::string remote_file;
  std::string command;  // for kQuote

  // The longest wait for a connection, and for each answer of the server or stretch of a transfer in
  // which no byte moves.
  void set_timeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }
  std::chrono::milliseconds timeout() const { return timeout_; }

  // Performs the action. Raises RuntimeError with the last error number and its text when it fails.
  // Connecting again while connected fails with kAlreadyConnected. An action that needs the session
  // while the last connection failed gives that failure again without asking the server, so that one
  // dead server costs one wait; before any connection it gives kNotConnected. Disconnecting always
  // succeeds.
  void Act(int action);

  int last_error() const { return last_error_; }
  int last_action() const { return last_action_; }
  const std::string& last_error_text() const { return last_error_text_; }
  // The last line the server answered with.
  const std::string& last_reply() const { return last_reply_; }
  // What kList or kNameList received.
  const std::string& listing() const { return listing_; }
  bool connected() const { return state_ == State::kConnected; }
  // Where the session stands, relative to where the logon put it ("" there).
  const std::string& current_directory() const { return current_dir_; }

 private:
  enum class State { kDisconnected, kConnected, kFailed };
  struct Curl;
  struct Outcome;
  void Run(int action);
  Outcome Perform(int action, const std::string& path, const std::string& quote_text);
  void Fail(int number, std::string text);
  void Post(std::function<void(const Handlers&)> event);
  // A directory's address ends in a slash, a file's in its name.
  std::string Url(const std::string& path, bool file) const;
  void Close();

  EventPort port_;
  std::shared_ptr<Handlers> handlers_;
  std::unique_ptr<Curl> curl_;
  std::chrono::milliseconds timeout_{60000};
  State state_ = State::kDisconnected;
  int failure_ = 0;
  std::string failure_text_;
  std::string current_dir_;
  int last_error_ = 0;
  int last_action_ = 0;
  std::string last_error_text_;
  std::string last_reply_;
  std::string listing_;
};

// The text of a directory joined to where the session stands: "a" then "b" is "a/b", "/x" starts over
// from the top, "" stays.
std::string JoinFtpDirectory(const std::string& current, const std::string& change);

}  // namespace lw
