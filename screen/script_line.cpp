#include "screen/script_line.h"

#include "core/primitives/encoding.h"
#include "screen/names.h"

namespace lw {

namespace {

bool Blank(char c) {
  return c == ' ' || c == '\t';
}

}  // namespace

std::optional<std::vector<Text>> SplitScriptLine(std::string_view line) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  size_t i = 0;
  while (i < line.size() && Blank(line[i])) ++i;
  if (i == line.size() || line[i] == '#') return std::nullopt;

  std::vector<Text> words;
  while (i < line.size()) {
    if (Blank(line[i])) {
      ++i;
      continue;
    }
    const size_t start = i;
    std::string word;
    if (line[i] == '"') {
      ++i;
      bool closed = false;
      while (i < line.size()) {
        char c = line[i++];
        if (c == '"') {
          closed = true;
          break;
        }
        if (c != '\\') {
          word += c;
          continue;
        }
        if (i == line.size()) throw ScriptSyntaxError("a backslash ends the line inside a quoted word");
        char e = line[i++];
        switch (e) {
          case 'n':
            word += '\n';
            break;
          case 'r':
            word += '\r';
            break;
          case 't':
            word += '\t';
            break;
          case '"':
            word += '"';
            break;
          case '\\':
            word += '\\';
            break;
          default:
            throw ScriptSyntaxError("unknown escape \\" + std::string(1, e) + " in column " +
                                    std::to_string(i - 1));
        }
      }
      if (!closed)
        throw ScriptSyntaxError("a quoted word starting in column " + std::to_string(start + 1) +
                                " is not closed");
      if (i < line.size() && !Blank(line[i]))
        throw ScriptSyntaxError("a quoted word must be followed by a blank (column " + std::to_string(i + 1) +
                                ")");
    } else {
      while (i < line.size() && !Blank(line[i])) {
        if (line[i] == '"')
          throw ScriptSyntaxError("a double quote inside a word (column " + std::to_string(i + 1) +
                                  "); quote the whole word");
        word += line[i++];
      }
    }
    words.push_back(FromUtf8(word));
  }
  return words;
}

std::string QuoteForScript(TextView value) {
  std::string out = "\"";
  for (size_t i = 0; i < value.size(); ++i) {
    char16_t c = value[i];
    switch (c) {
      case u'\r':
        if (i + 1 < value.size() && value[i + 1] == u'\n') {
          out += "\\n";
          ++i;
        } else {
          out += "\\r";
        }
        break;
      case u'\n':
        out += "\\n";
        break;
      case u'\t':
        out += "\\t";
        break;
      case u'"':
        out += "\\\"";
        break;
      case u'\\':
        out += "\\\\";
        break;
      default: {
        // Surrogate pairs go to UTF-8 together.
        size_t n = (c >= 0xD800 && c <= 0xDBFF && i + 1 < value.size()) ? 2 : 1;
        out += ToUtf8(value.substr(i, n));
        i += n - 1;
      }
    }
  }
  out += '"';
  return out;
}

std::vector<RefSegment> ParseReference(TextView word) {
  auto fail = [&](const std::string& why) -> ScriptSyntaxError {
    return ScriptSyntaxError("bad reference \"" + ToUtf8(word) + "\": " + why);
  };
  std::vector<RefSegment> segments;
  size_t i = 0;
  if (word.empty()) throw fail("it is empty");
  for (;;) {
    RefSegment seg;
    auto letter = [](char16_t c) {
      return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_';
    };
    auto digit = [](char16_t c) { return c >= u'0' && c <= u'9'; };
    if (i >= word.size() || !letter(word[i])) throw fail("a name must start with a letter or _");
    while (i < word.size() && (letter(word[i]) || digit(word[i]))) seg.name += word[i++];
    if (i < word.size() && word[i] == u'(') {
      seg.bracketed = true;
      size_t close = word.find(u')', i);
      if (close == TextView::npos) throw fail("a bracket is not closed");
      TextView inside = word.substr(i + 1, close - i - 1);
      if (inside.find(u'(') != TextView::npos) throw fail("brackets inside brackets");
      size_t from = 0;
      for (;;) {
        size_t comma = inside.find(u',', from);
        TextView arg = inside.substr(from, comma == TextView::npos ? TextView::npos : comma - from);
        while (!arg.empty() && arg.front() == u' ') arg.remove_prefix(1);
        while (!arg.empty() && arg.back() == u' ') arg.remove_suffix(1);
        if (arg.empty()) throw fail("an empty argument in brackets");
        seg.args.emplace_back(arg);
        if (comma == TextView::npos) break;
        from = comma + 1;
      }
      i = close + 1;
    }
    segments.push_back(std::move(seg));
    if (i == word.size()) break;
    if (word[i] != u'.') throw fail("unexpected character after " + ToUtf8(segments.back().name));
    ++i;
    if (segments.size() == 3) throw fail("more than three parts");
  }
  return segments;
}

int SegmentIndex(const RefSegment& segment) {
  if (!segment.bracketed) return -1;
  int index = 0;
  if (segment.args.size() != 1 || !ParseInt(segment.args[0], index) || index < 0)
    throw ScriptSyntaxError("the index of " + ToUtf8(segment.name) + " must be one whole number from 0");
  return index;
}

}  // namespace lw
