// A fetched page as the browser view holds it: title, the body serialised the way a desktop browser
// gives it (upper-case tag names, each table cell starting a line of its own), and its forms. Parsed
// with libxml2's HTML parser, which copes with the broken markup the site sends.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/primitives/types.h"

namespace lw {

struct HtmlForm {
  std::string name;    // name or id attribute
  std::string action;  // as written, unresolved
  std::string method;  // "GET" or "POST"
  // The fields a browser would send, in document order: named inputs (checked ones only for check
  // boxes and radio buttons), selects with their selected or first option, text areas, and the
  // first named submit button.
  std::vector<std::pair<std::string, std::string>> fields;
};

struct HtmlDocument {
  Text title;
  Text body_outer_html;
  std::vector<HtmlForm> forms;

  static HtmlDocument Parse(const Text& page);
};

// The text of a page without its tags: the source's characters and lines as they stand, every line end
// made CR LF, script, style and comments left out, and a line break where a cell or block follows text
// on the same source line. Entities stay as they were written. No tag is left: a "<" of the text that
// meets a word once the markup between them is gone is taken away as a tag as well.
Text PageTextWithoutTags(TextView page);

}  // namespace lw
