// Letters on paper: each letter of the print list on its own pages of a PDF file, in a fixed-width
// type so that the auction lines keep their columns. The file is what the desktop's viewer opens and
// prints.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/primitives/types.h"

namespace lw {

struct PrintedLetter {
  Text to;
  Text subject;
  Text body;
};

// Writes the letters to `file` (replacing it): "To:" and "Subject:" at the head, then the body, with
// long lines wrapped and pages added as needed. `letter_size` chooses US Letter paper over A4.
// Raises RuntimeError 75 when the file cannot be written.
void WriteLetterPdf(const std::filesystem::path& file, const std::vector<PrintedLetter>& letters,
                    bool letter_size);

// The lines of `text` as a page of `width` characters shows them: line ends kept, longer lines broken
// at the last blank that fits, or cut where none does.
std::vector<Text> WrapLines(const Text& text, size_t width);

}  // namespace lw
