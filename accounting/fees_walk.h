// The walk over the account page: from behind the heading of the fee table ("DebitBalance") line by line
// to the line that holds the site's closing notice, or to the account balance line, whichever comes
// first. The page is the normalised text the import leaves in "\parsed_data.htm".
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

#include "core/primitives/types.h"

namespace lw {

// Reads the normalised page as the page buffer holds it: decoded by its byte order mark or declared
// charset, every line end a CR LF. Raises 53 when the file is not there or cannot be read.
Text load_fee_page(const std::filesystem::path& path);
// The same from the page's bytes.
Text fee_page_text(std::string_view bytes);

// Hands each line of the walk to `take`, in order. A line is taken as the page buffer's selection grows
// over it two characters at a time, so it carries its line end and, where its length is odd, the first
// character of the next line, which the next line then lacks. A page without "eBay Inc. All Rights
// Reserved" or without "DebitBalance" gives no line; the end of the text ends the walk too.
void walk_fee_page(TextView page, const std::function<void(const Text& fee_line)>& take);

}  // namespace lw
