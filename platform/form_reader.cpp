#include "platform/form_reader.h"

#include <cctype>

namespace lw {

bool FormReader::FindForm(const Text& page) {
  forms_ = HtmlDocument::Parse(page).forms;
  index_ = 0;
  return !forms_.empty();
}

bool FormReader::FindForm() {
  if (index_ >= forms_.size()) return false;
  ++index_;
  return index_ < forms_.size();
}

std::string FormReader::FormQuery() const {
  const HtmlForm* form = current();
  if (!form) return {};
  std::string query;
  for (const auto& [name, value] : form->fields) {
    if (!query.empty()) query += "&";
    query += PercentEncode(name) + "=" + PercentEncode(value);
  }
  return query;
}

std::string PercentEncode(const std::string& value) {
  static const char* kHex = "0123456789ABCDEF";
  std::string out;
  for (unsigned char ch : value) {
    if (std::isalnum(ch) || ch == '-' || ch == '_' || ch == '.' || ch == '~') {
      out.push_back(static_cast<char>(ch));
    } else {
      out.push_back('%');
      out.push_back(kHex[ch >> 4]);
      out.push_back(kHex[ch & 15]);
    }
  }
  return out;
}

}  // namespace lw
