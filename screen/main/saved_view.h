// The view the user last looked at, kept in lw.ini in the database folder between runs: five lines,
// auction type, user id (in double quotes), status, the full query, site.
#pragma once

#include <filesystem>
#include <optional>

#include "core/primitives/types.h"

namespace lw {

struct SavedView {
  Text auction_type;  // "Seller"
  Text userid;
  Text status;  // "All Auctions" ...
  Text query;   // base, condition and " order by end desc"
  Text site;
};

// Reads the five items by comma-or-line-end input, so a comma in the query cuts it short and shifts
// the site. A missing file or one that ends early gives nothing; it never raises.
std::optional<SavedView> ImportIniFile(const std::filesystem::path& file);

// Replaces the file with the five lines, the user id in double quotes, CR LF after each.
// Raises RuntimeError 75 when the file cannot be written.
void WriteIniFile(const std::filesystem::path& file, const SavedView& view);

}  // namespace lw
