// Test support: starts one of the loopback mail servers of tests/e2e (smtp_server.py, pop3_server.py)
// under Debian's python for the life of the object, in a folder of its own where it records what it
// receives, and stops it at the end. Header only, for test programs.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace lw::testing {

class MailTestServer {
 public:
  // `name` is "smtp" or "pop3"; `args` follow --port-file and --dir.
  MailTestServer(const std::string& name, const std::filesystem::path& dir,
                 std::vector<std::string> args = {})
      : dir_(dir) {
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
    std::filesystem::path port_file = dir_ / "port";
    std::vector<std::string> argv = {"/usr/bin/python3",
                                     std::string(LW_SOURCE_DIR) + "/tests/e2e/" + name + "_server.py",
                                     "--port-file",
                                     port_file.string(),
                                     "--dir",
                                     dir_.string()};
    argv.insert(argv.end(), args.begin(), args.end());
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("fork failed");
    if (pid_ == 0) {
      std::vector<char*> cargv;
      for (auto& a : argv) cargv.push_back(a.data());
      cargv.push_back(nullptr);
      execv(cargv[0], cargv.data());
      _exit(127);
    }
    for (int i = 0; i < 200 && port_ == 0; ++i) {
      std::ifstream in(port_file);
      if (!(in >> port_)) port_ = 0;
      if (port_ == 0) std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
    if (port_ == 0) {
      Stop();
      throw std::runtime_error("the " + name + " test server did not start");
    }
  }
  ~MailTestServer() { Stop(); }
  MailTestServer(const MailTestServer&) = delete;
  MailTestServer& operator=(const MailTestServer&) = delete;

  int port() const { return port_; }
  std::string host() const { return "127.0.0.1:" + std::to_string(port_); }
  // A file the server wrote ("log", "events", "001.eml"), whole; empty when it is not there.
  std::string Read(const std::string& file) const {
    std::ifstream in(dir_ / file, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }

 private:
  void Stop() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
  }
  std::filesystem::path dir_;
  pid_t pid_ = -1;
  int port_ = 0;
};

}  // namespace lw::testing
