// The work of lotwright-convert: a dated backup beside the store, compaction, and bringing a store of an
// older layout up to the current one. Every change is made on a copy in the store's folder that replaces
// the store only once it is complete, so a failure at any step leaves the store as it was.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/primitives/types.h"

namespace lw {

// A step that could not be done; the message says what and why.
class ConvertError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Copies the store to "<stem>-YYYY-MM-DD<ext>" beside it ("-2", "-3" ... appended when a copy of that day
// exists already) and returns the copy's path. The copy is written under a temporary name first.
std::filesystem::path BackupStore(const std::filesystem::path& store, Date today);

// What the store lacks against the layout that the SQL script describes: one "table" or "table.column"
// entry each, in the script's order. Empty when the store is current.
std::vector<std::string> MissingLayout(const std::filesystem::path& store,
                                       const std::filesystem::path& schema_sql);

// Adds every missing table (with the script's seed rows) and column (with its declared type and default),
// and compacts the result when `compact` is set, then swaps the new file in. Returns one line per change.
std::vector<std::string> ConvertStore(const std::filesystem::path& store,
                                      const std::filesystem::path& schema_sql, bool compact);

// Compacts the store (VACUUM into a copy, then swap).
void CompactStore(const std::filesystem::path& store);

}  // namespace lw
