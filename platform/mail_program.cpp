#include "platform/mail_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "core/primitives/types.h"

extern char** environ;

namespace lw {

namespace {
// The program's own exit statuses come out as run-time errors above this number.
constexpr int kExitStatusBase = 3;
}  // namespace

MailProgram::~MailProgram() {
  Reap();
}

std::vector<std::string> MailProgram::Arguments(const MailProgramLetter& letter) {
  std::vector<std::string> args;
  if (!letter.cc.empty()) {
    args.push_back("--cc");
    args.push_back(letter.cc);
  }
  args.push_back("--subject");
  args.push_back(letter.subject);
  args.push_back("--body");
  args.push_back(letter.body);
  // The address comes last. xdg-email knows no "--", so an address that starts with "-" goes as a
  // mailto: address rather than pass for an option.
  args.push_back(!letter.to.empty() && letter.to.front() == '-' ? "mailto:" + letter.to : letter.to);
  return args;
}

void MailProgram::Reap() {
  for (auto it = running_.begin(); it != running_.end();) {
    int status = 0;
    pid_t r = waitpid(*it, &status, WNOHANG);
    it = (r == 0) ? it + 1 : running_.erase(it);
  }
}

void MailProgram::Hand(const MailProgramLetter& letter, std::chrono::milliseconds wait) {
  Reap();
  std::vector<std::string> args{program_};
  for (std::string& a : Arguments(letter)) args.push_back(std::move(a));
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  pid_t pid = 0;
  int rc = posix_spawnp(&pid, program_.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) throw RuntimeError(err::kFileNotFound, "Cannot start the mail program " + program_);

  const auto deadline = std::chrono::steady_clock::now() + wait;
  for (;;) {
    int status = 0;
    pid_t r = waitpid(pid, &status, WNOHANG);
    if (r == pid) {
      if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return;
      int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      throw RuntimeError(kExitStatusBase + code,
                         "The mail program " + program_ + " ended with status " + std::to_string(code));
    }
    if (r < 0) return;  // reaped elsewhere: nothing more to learn
    if (std::chrono::steady_clock::now() >= deadline) {
      running_.push_back(pid);
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

}  // namespace lw
