#include "listing/category_tree.h"

#include <optional>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/store/store.h"
#include "platform/xml_document.h"
#include "screen/tree_view.h"

namespace lw {

namespace {

constexpr int kDeepestLevel = 6;

}  // namespace

void ReplaceCategories(Database& db, Recordset& rows, const Text& site,
                       const std::filesystem::path& reply_file, const std::function<void()>& write_reply) {
  StoreTransaction replace(db);
  db.Execute(u"DELETE * FROM Categories where AppSiteId = " + site);
  write_reply();
  XmlDocument doc;
  if (!doc.Load(reply_file))
    throw RuntimeError(err::kTypeMismatch, "The category list could not be read: " + doc.parse_error());
  for (const XmlNode& category : doc.GetElementsByTagName("Category")) {
    // The children are taken by position, in the order of the site's reply.
    rows.AddNew();
    rows.SetField(u"Categoryid", Variant(category.Item(0).text()));
    rows.SetField(u"CategoryLevel", Variant(category.Item(1).text()));
    rows.SetField(u"CategoryName", Variant(category.Item(2).text()));
    rows.SetField(u"CategoryParentId", Variant(category.Item(3).text()));
    rows.SetField(u"LeafCategory", Variant(category.Item(6).text()));
    rows.SetField(u"AppSiteId", Variant(site));
    rows.Update();
  }
  replace.Commit();
}

void FillCategoryTree(Database& db, TreeView& tree, const Text& site, const Regional& regional) {
  tree.Clear();
  // Thousands of items go in: the view paints once they are all there.
  tree.SetRedraw(false);
  struct Redraw {
    TreeView& tree;
    ~Redraw() { tree.SetRedraw(true); }
  } redraw{tree};
  // One read of the store for all six levels, rather than a lock taken and given back for every row;
  // inside a caller's transaction that one serves, and a failure here must not roll it back.
  std::optional<StoreTransaction> read;
  if (!db.InTransaction()) read.emplace(db);
  for (int level = 1; level <= kDeepestLevel; ++level) {
    // No blank between the site and "and": the statement has always been written so, and the store
    // reads the number up to the first letter.
    auto rs =
        db.OpenRecordset(u"Select * From Categories Where AppSiteId = " + site + u"and CategoryLevel = " +
                         FromUtf8(std::to_string(level)) + u" Order by CategoryName desc");
    for (; !rs->Eof(); rs->MoveNext()) {
      Variant name = rs->Fields(u"CategoryName");
      auto id = static_cast<int64_t>(CDbl(rs->Fields(u"Categoryid"), regional));
      // The rows come by name from Z to A; each goes first among its siblings, so they show from A to Z.
      int item;
      if (level == 1) {
        item = tree.AddTop(name.IsNull() ? Text() : CStr(name, regional), TreeView::End::kFirst);
      } else {
        Variant parent_id = rs->Fields(u"CategoryParentId");
        int parent = parent_id.IsNull() ? -1 : tree.FindData(static_cast<int64_t>(CDbl(parent_id, regional)));
        if (parent < 0) continue;
        tree.SetCurrent(parent);
        item = tree.AddUnderCurrent(name.IsNull() ? Text() : CStr(name, regional), TreeView::End::kFirst);
      }
      tree.SetData(item, id);
    }
  }
  if (read) read->Commit();
}

}  // namespace lw
