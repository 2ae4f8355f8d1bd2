#include "screen/ui.h"

#include "core/primitives/encoding.h"

namespace lw {

std::vector<MsgAnswer> ButtonsOf(MsgButtons buttons) {
  using A = MsgAnswer;
  switch (buttons) {
    case MsgButtons::OK:
      return {A::OK};
    case MsgButtons::OKCancel:
      return {A::OK, A::Cancel};
    case MsgButtons::AbortRetryIgnore:
      return {A::Abort, A::Retry, A::Ignore};
    case MsgButtons::YesNoCancel:
      return {A::Yes, A::No, A::Cancel};
    case MsgButtons::YesNo:
      return {A::Yes, A::No};
    case MsgButtons::RetryCancel:
      return {A::Retry, A::Cancel};
  }
  return {A::OK};
}

const char* ButtonsName(MsgButtons buttons) {
  switch (buttons) {
    case MsgButtons::OK:
      return "OK";
    case MsgButtons::OKCancel:
      return "OKCancel";
    case MsgButtons::AbortRetryIgnore:
      return "AbortRetryIgnore";
    case MsgButtons::YesNoCancel:
      return "YesNoCancel";
    case MsgButtons::YesNo:
      return "YesNo";
    case MsgButtons::RetryCancel:
      return "RetryCancel";
  }
  return "OK";
}

const char* IconName(MsgIcon icon) {
  switch (icon) {
    case MsgIcon::None:
      return "none";
    case MsgIcon::Critical:
      return "critical";
    case MsgIcon::Question:
      return "question";
    case MsgIcon::Exclamation:
      return "exclamation";
    case MsgIcon::Information:
      return "information";
  }
  return "none";
}

const char* AnswerName(MsgAnswer answer) {
  switch (answer) {
    case MsgAnswer::OK:
      return "OK";
    case MsgAnswer::Cancel:
      return "Cancel";
    case MsgAnswer::Abort:
      return "Abort";
    case MsgAnswer::Retry:
      return "Retry";
    case MsgAnswer::Ignore:
      return "Ignore";
    case MsgAnswer::Yes:
      return "Yes";
    case MsgAnswer::No:
      return "No";
  }
  return "OK";
}

std::optional<MsgAnswer> ParseAnswer(TextView name) {
  std::string lower;
  for (char16_t c : name) {
    if (c > 127) return std::nullopt;
    lower += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  }
  static const std::pair<const char*, MsgAnswer> kNames[] = {
      {"ok", MsgAnswer::OK},       {"cancel", MsgAnswer::Cancel}, {"abort", MsgAnswer::Abort},
      {"retry", MsgAnswer::Retry}, {"ignore", MsgAnswer::Ignore}, {"yes", MsgAnswer::Yes},
      {"no", MsgAnswer::No}};
  for (const auto& [n, a] : kNames)
    if (lower == n) return a;
  return std::nullopt;
}

}  // namespace lw
