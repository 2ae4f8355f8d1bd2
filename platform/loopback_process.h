// Test support: a loopback server started as a child process for the life of the object. The server
// prints the port it listens on as its first line; closing its standard input (also when this process
// dies first) stops it, and so does the end of the object. Header only, for test programs.
#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace lw::testing {

class LoopbackProcess {
 public:
  // Runs argv[0] with the arguments and waits up to ten seconds for the port; `what` names the server
  // in the error raised when it does not come.
  LoopbackProcess(std::vector<std::string> argv, const std::string& what) {
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
    stdin_ = in[1];
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
      throw std::runtime_error("the " + what + " did not start");
    }
  }
  ~LoopbackProcess() { Stop(); }
  LoopbackProcess(const LoopbackProcess&) = delete;
  LoopbackProcess& operator=(const LoopbackProcess&) = delete;

  int port() const { return port_; }
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
  pid_t pid_ = -1;
  int stdin_ = -1;
  int port_ = 0;
};

}  // namespace lw::testing
