// Test support: starts tests/e2e/http_server.py on the loopback for the life of the object and stops
// it at the end. Header only, for test programs; the library does not use it.
#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

namespace lw::testing {

class LoopbackHttpServer {
 public:
  // `args` go to the server after --root.
  explicit LoopbackHttpServer(const std::string& root, std::vector<std::string> args = {})
      : LoopbackHttpServer(Script{"http_server.py"}, Concat({"--root", root}, std::move(args))) {}

  // Another server of tests/e2e that prints its port on a line of its own and stops when its standard
  // input closes (--watch-stdin): the XML interface's api_server.py.
  struct Script {
    std::string name;
  };
  LoopbackHttpServer(const Script& script, std::vector<std::string> args) {
    std::vector<std::string> argv = {
        "/usr/bin/python3", std::string(LW_SOURCE_DIR) + "/tests/e2e/" + script.name, "--watch-stdin"};
    argv.insert(argv.end(), args.begin(), args.end());
    int out[2], in[2];
    if (pipe(out) != 0 || pipe(in) != 0) throw std::runtime_error("pipe failed");
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("fork failed");
    if (pid_ == 0) {
      dup2(out[1], STDOUT_FILENO);
      dup2(in[0], STDIN_FILENO);
      close(out[0]);
      close(out[1]);
      close(in[0]);
      close(in[1]);
      std::vector<char*> cargv;
      for (auto& a : argv) cargv.push_back(a.data());
      cargv.push_back(nullptr);
      execv(cargv[0], cargv.data());
      _exit(127);
    }
    close(out[1]);
    close(in[0]);
    stdin_ = in[1];  // closing it also stops the server should this process die first
    std::string line;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (line.find('\n') == std::string::npos) {
      auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
      pollfd p{out[0], POLLIN, 0};
      if (left.count() <= 0 || poll(&p, 1, static_cast<int>(left.count())) <= 0) break;
      char buf[64];
      ssize_t n = read(out[0], buf, sizeof buf);
      if (n <= 0) break;
      line.append(buf, static_cast<size_t>(n));
    }
    close(out[0]);
    port_ = std::atoi(line.c_str());
    if (port_ <= 0) {
      Stop();
      throw std::runtime_error("the loopback HTTP server did not start");
    }
  }
  ~LoopbackHttpServer() { Stop(); }
  LoopbackHttpServer(const LoopbackHttpServer&) = delete;
  LoopbackHttpServer& operator=(const LoopbackHttpServer&) = delete;

  int port() const { return port_; }
  std::string base() const { return "http://127.0.0.1:" + std::to_string(port_); }
  std::string host() const { return "127.0.0.1:" + std::to_string(port_); }

  void Stop() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    if (stdin_ >= 0) close(stdin_);
    stdin_ = -1;
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
  }

 private:
  static std::vector<std::string> Concat(std::vector<std::string> a, std::vector<std::string> b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
  }
  pid_t pid_ = -1;
  int stdin_ = -1;
  int port_ = 0;
};

}  // namespace lw::testing
