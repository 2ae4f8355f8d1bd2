// Fuzzes what the transports make of a page the site sent: the browser view's parse (title, body,
// forms) and the background fetch's text without tags. Neither may crash, and the tagless text must
// hold no tag (no "<" that opens one: before a letter, "/", "!" or "?") and no line end other than
// CR LF.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/charset.h"
#include "platform/html_document.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  lw::Text page = lw::DecodePage(bytes);
  lw::HtmlDocument doc = lw::HtmlDocument::Parse(page);
  (void)doc;
  lw::Text text = lw::PageTextWithoutTags(page);
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\r' && (i + 1 >= text.size() || text[i + 1] != u'\n')) std::abort();
    if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) std::abort();
    if (text[i] == u'<' && i + 1 < text.size()) {
      const char16_t next = text[i + 1];
      const bool letter = (next >= u'a' && next <= u'z') || (next >= u'A' && next <= u'Z');
      if (letter || next == u'/' || next == u'!' || next == u'?') std::abort();
    }
  }
  return 0;
}
