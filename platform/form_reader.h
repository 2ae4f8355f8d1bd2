// Reads the forms out of a page's text, one after the other, and gives the current one as an address
// query, the way the bid code fills in the site's own bid form.
#pragma once

#include <string>
#include <vector>

#include "core/primitives/types.h"
#include "platform/html_document.h"

namespace lw {

class FormReader {
 public:
  // Reads the forms of a page and stands on the first; false when the page has none.
  bool FindForm(const Text& page);
  // Moves on to the next form; false when no further form follows.
  bool FindForm();
  // The current form's fields as "name=value" pairs joined by "&", in the order the page has them,
  // values percent-encoded. Empty when there is no current form.
  std::string FormQuery() const;
  const HtmlForm* current() const { return index_ < forms_.size() ? &forms_[index_] : nullptr; }

 private:
  std::vector<HtmlForm> forms_;
  size_t index_ = 0;
};

}  // namespace lw
