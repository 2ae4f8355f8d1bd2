// The line syntax of driver scripts: one command a line, words split on blanks, a word may be
// double-quoted with the escapes \n \r \t \" \\; lines starting with # and blank lines are skipped.
// A control reference is NAME or NAME(INDEX), optionally FORM.NAME(INDEX), optionally followed by
// .PROPERTY or .PROPERTY(ARGS).
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/primitives/types.h"

namespace lw {

// A line or reference that cannot be read; the message says where and why.
class ScriptSyntaxError : public std::runtime_error {
 public:
  explicit ScriptSyntaxError(const std::string& what) : std::runtime_error(what) {}
};

// The words of one line (UTF-8), unquoted and unescaped; nothing for a blank or comment line. A
// trailing carriage return is ignored, so scripts written with CR LF line ends read the same.
std::optional<std::vector<Text>> SplitScriptLine(std::string_view line);

// Writes a value as the driver prints it: between double quotes, with \n for a line break (a CR LF pair
// counts as one), \r, \t, \" and \\ escaped.
std::string QuoteForScript(TextView value);

// One part of a dotted reference: `emailletter_txt(3)` or `list(2)` or `Width`.
struct RefSegment {
  Text name;
  std::vector<Text> args;  // what stood in the brackets, split at commas and trimmed
  bool bracketed = false;
};

// A reference split at its dots: `main.Width`, `emailletter_txt(3).text`, `wizard.Userid_txt`. Names
// are letters, digits and underscores starting with a letter or underscore; at most three parts.
std::vector<RefSegment> ParseReference(TextView word);

// Reads a segment's brackets as a control index (a whole number from 0): -1 without brackets.
int SegmentIndex(const RefSegment& segment);

}  // namespace lw
