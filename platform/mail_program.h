// The user's own mail program, reached the way desktop programs on this platform reach it: the letter
// (address, copy, subject, body) is handed to `xdg-email`, which opens the mail program's composer with
// it. The program then belongs to the user; this side only learns whether the hand-over worked.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace lw {

struct MailProgramLetter {
  std::string to;
  std::string cc;  // empty for none
  std::string subject;
  std::string body;
};

class MailProgram {
 public:
  // `program` is looked up on PATH unless it holds a slash.
  explicit MailProgram(std::string program = "xdg-email") : program_(std::move(program)) {}
  ~MailProgram();
  MailProgram(const MailProgram&) = delete;
  MailProgram& operator=(const MailProgram&) = delete;

  // Starts the program with the letter and waits up to `wait` for its answer. Raises RuntimeError 53
  // when it cannot be started and 3 plus its exit status (xdg-email's 1 to 5) when it says it failed.
  // A program still running after `wait` has the letter open before the user: that counts as handed
  // over, and it is left running.
  void Hand(const MailProgramLetter& letter, std::chrono::milliseconds wait);

  // The arguments Hand gives the program, in order.
  static std::vector<std::string> Arguments(const MailProgramLetter& letter);

 private:
  void Reap();
  std::string program_;
  std::vector<int> running_;  // process ids still open from earlier letters
};

}  // namespace lw
