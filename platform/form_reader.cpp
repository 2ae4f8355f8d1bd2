#include "platform/form_reader.h"

#include "platform/http_session.h"

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

}  // namespace lw
