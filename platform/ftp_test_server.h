// Test support: starts tests/e2e/ftp_server.py on the loopback for the life of the object, serving and
// recording in a folder of its own, and stops it at the end. Header only, for test programs.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/loopback_process.h"

namespace lw::testing {

class LoopbackFtpServer {
 public:
  // `dir` is the server's folder (made when missing); `args` go to the server after --dir.
  explicit LoopbackFtpServer(const std::filesystem::path& dir, std::vector<std::string> args = {})
      : dir_(dir), process_(Argv(dir, std::move(args)), "loopback FTP server") {}

  int port() const { return process_.port(); }
  std::string host() const { return process_.host(); }
  // The folder the server serves: the anonymous root, with each account's home below it.
  std::filesystem::path root() const { return dir_ / "root"; }
  // The commands the server received, one a line.
  std::string Commands() const {
    std::ifstream in(dir_ / "commands.log", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  void Stop() { process_.Stop(); }

 private:
  static std::vector<std::string> Argv(const std::filesystem::path& dir, std::vector<std::string> args) {
    std::filesystem::create_directories(dir);
    std::vector<std::string> argv = {"/usr/bin/python3",
                                     std::string(LW_SOURCE_DIR) + "/tests/e2e/ftp_server.py", "--dir",
                                     dir.string(), "--watch-stdin"};
    argv.insert(argv.end(), args.begin(), args.end());
    return argv;
  }
  std::filesystem::path dir_;
  LoopbackProcess process_;
};

}  // namespace lw::testing
