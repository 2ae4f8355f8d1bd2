// The site's category tree in the store and on the screen: the rows of a site replaced from the site's
// reply, and the tree control filled from the rows, level by level.
#pragma once

#include <filesystem>
#include <functional>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

class Database;
class Recordset;
class TreeView;

// Replaces the rows of Categories of `site` with the categories of a GetCategories reply at detail
// level 1: deletes the site's rows, has `write_reply` write the reply to `reply_file`, reads it, and adds
// a row through `rows` for each Category element, its columns from the element's children by position.
// All of it happens or none: a reply that can't be read, or a value that can't be stored, raises and
// leaves the site's rows as they were.
void ReplaceCategories(Database& db, Recordset& rows, const Text& site,
                       const std::filesystem::path& reply_file, const std::function<void()>& write_reply);

// Fills the tree with the rows of `site`: level 1 at the top, each deeper level under the item whose
// data is its parent's number, six levels deep. A row whose parent isn't in the tree stays out.
// Siblings show from A to Z. Each item's data is its category number.
void FillCategoryTree(Database& db, TreeView& tree, const Text& site, const Regional& regional);

}  // namespace lw
