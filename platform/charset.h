// Decoding of page bytes to text by the charset the page declares: a byte order mark first, then the
// HTTP Content-Type header, then a <meta charset> or http-equiv declaration near the top, and
// windows-1252 when nothing is declared, as the site's pages have always been read.
#pragma once

#include <string>
#include <string_view>

#include "core/primitives/types.h"

namespace lw {

// The charset named in a Content-Type value ("text/html; charset=UTF-8" gives "utf-8"), lower case;
// empty when none is named.
std::string CharsetFromContentType(std::string_view content_type);
// The charset a page declares in a <meta> element within its first few kilobytes; empty when none.
std::string CharsetFromMeta(std::string_view page);
// Decodes page bytes. `content_type` is the HTTP header value (empty for a file).
Text DecodePage(std::string_view bytes, std::string_view content_type = {});
// Decodes bytes in a named charset: utf-8, windows-1252, iso-8859-1 (and its aliases) directly, any
// other name ICU knows through ICU; a name nobody knows falls back to windows-1252.
Text DecodeCharset(std::string_view bytes, std::string_view charset);

}  // namespace lw
