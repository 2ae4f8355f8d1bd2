// The page buffer: one text holding the page being imported, with a caret and a selection, behaving
// like the rich text box the import code was written against. Positions count from 0. Every line end
// it holds is CR LF: a lone LF or a lone CR becomes CR LF whenever text is written or loaded, because
// the line walk of the parsers steps over exactly two characters at each line end.
#pragma once

#include <filesystem>

#include "core/primitives/types.h"

namespace lw {

class FileDisplay {
 public:
  static constexpr long kNotFound = -1;

  const Text& text() const { return text_; }
  // Replaces the whole text; caret to the start, selection empty.
  void set_text(TextView text);

  // Writes the text as plain text (UTF-8 with a byte order mark, so that nothing is lost and the
  // page reads back the same), replacing the file. `format` 1 is plain text, the only form used.
  // Raises 75 when the file cannot be written.
  void SaveFile(const std::filesystem::path& path, int format = 1) const;
  // Replaces the text with the file's content, decoded as a page is (byte order mark, then declared
  // charset, else windows-1252). Raises 53 when the file does not exist or cannot be read.
  void LoadFile(const std::filesystem::path& path);

  // Case-sensitive search from `from` (or from the caret when negative). Selects the hit and returns
  // its position, or -1 with the selection unchanged.
  long Find(TextView what, long from = -1);
  // Line number (from 0) of a position; a position past the end counts as on the last line.
  long GetLineFromChar(long pos) const;

  long SelStart() const { return sel_start_; }
  long SelLength() const { return sel_length_; }
  Text SelText() const;
  // Moves the caret (clamped to the text) and empties the selection.
  void SetSelStart(long pos);
  // A negative length raises 380, as the control refuses it; a length past the end is cut short.
  void SetSelLength(long length);
  // Replaces the selection (line ends made CR LF) and leaves the caret after the new text.
  void SetSelText(TextView text);

  // From the caret to the end of its line, without the line end.
  Text LineAtCaret() const;

  // CR LF for every lone CR or LF.
  static Text NormaliseLineEnds(TextView text);

 private:
  Text text_;
  long sel_start_ = 0;
  long sel_length_ = 0;
};

}  // namespace lw
