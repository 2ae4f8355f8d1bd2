// Page normalisation: turns the page in the buffer into the shape every parser reads, the visible text
// one cell to a line with CR LF line ends, and decodes the entities a title may carry.
#pragma once

#include <functional>

#include "core/primitives/types.h"
#include "import/file_display.h"

namespace lw {

// Where parse_HTML reports its progress (status panel 1).
using StatusSink = std::function<void(const Text&)>;

// The fixed replacement rows, in order, each one pass over the whole buffer that never rescans what
// it has put in. The order is part of what the parsers rely on.
void pre_parse_HTML(FileDisplay& buffer);
Text pre_parse_HTML(TextView text);

// Removes the tags: each distinct tag text found from the left is removed wherever it occurs in the
// buffer. A "<" with no ">" after it raises 380, leaving the buffer as far as it got.
void parse_HTML(FileDisplay& buffer, const StatusSink& status);
// The same on a text; on failure raises 380 and leaves `text` as far as it got.
void parse_HTML_text(Text& text);

// Decodes the entities a title carries, searching again from the start after each replacement, so
// that "&amp;amp;" ends as "&".
void remove_odd_characters_from_title(Text& title);

}  // namespace lw
