// Test support: starts tests/e2e/http_server.py on the loopback for the life of the object and stops
// it at the end. Header only, for test programs; the library does not use it.
#pragma once

#include <string>
#include <vector>

#include "platform/loopback_process.h"

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
  LoopbackHttpServer(const Script& script, std::vector<std::string> args)
      : process_(Argv(script, std::move(args)), "loopback HTTP server") {}

  int port() const { return process_.port(); }
  std::string base() const { return "http://127.0.0.1:" + std::to_string(port()); }
  std::string host() const { return process_.host(); }
  void Stop() { process_.Stop(); }

 private:
  static std::vector<std::string> Argv(const Script& script, std::vector<std::string> args) {
    std::vector<std::string> argv = {
        "/usr/bin/python3", std::string(LW_SOURCE_DIR) + "/tests/e2e/" + script.name, "--watch-stdin"};
    argv.insert(argv.end(), args.begin(), args.end());
    return argv;
  }
  static std::vector<std::string> Concat(std::vector<std::string> a, std::vector<std::string> b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
  }

  LoopbackProcess process_;
};

}  // namespace lw::testing
