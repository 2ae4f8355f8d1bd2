// The category tree in a real store: a site's rows are replaced whole or not at all, and the tree shows
// every category under its own parent with its own number, siblings from A to Z.
#include "listing/category_tree.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/primitives/encoding.h"
#include "core/store/store.h"
#include "screen/testing.h"
#include "screen/tree_view.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class CategoryTree : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = testing::FreshTestHome("lw_categories_",
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::copy_file(LW_BINARY_DIR "/share/lw.mdb", dir_ / "lw.mdb");
    db_ = Database::OpenDatabase(dir_ / "lw.mdb", regional_);
    // Another site's tree, and an older one of site 0.
    db_->Execute(
        u"INSERT INTO Categories (AppSiteId, Categoryid, CategoryLevel, CategoryName, CategoryParentId) "
        u"VALUES (77, 5, 1, 'Bücher', 5)");
    db_->Execute(
        u"INSERT INTO Categories (AppSiteId, Categoryid, CategoryLevel, CategoryName, CategoryParentId) "
        u"VALUES (0, 1, 1, 'Old Things', 1)");
    rows_ = db_->OpenRecordset(u"Select * From Categories");
  }
  void TearDown() override {
    rows_.reset();
    db_.reset();
    fs::remove_all(dir_);
  }
  // Replaces site 0's rows with `reply` written as the reply file.
  void Replace(const std::string& reply) {
    fs::path file = dir_ / "getallcategories.xml";
    ReplaceCategories(*db_, *rows_, u"0", file, [&] { std::ofstream(file, std::ios::binary) << reply; });
  }
  std::vector<Text> Names(const Text& site) {
    std::vector<Text> out;
    auto rs = db_->OpenRecordset(u"Select CategoryName From Categories Where AppSiteId = " + site +
                                 u" Order by Categoryid");
    for (; !rs->Eof(); rs->MoveNext()) out.push_back(*rs->Fields(u"CategoryName").text());
    return out;
  }
  static std::string Fixture() {
    std::ifstream in(LW_SOURCE_DIR "/tests/e2e/api/GetCategories-1.xml", std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  }

  Regional regional_ = Regional::FromLocale("en_US");
  fs::path dir_;
  std::unique_ptr<Database> db_;
  std::unique_ptr<Recordset> rows_;
};

TEST_F(CategoryTree, ASiteIsReplacedWholeOrNotAtAll) {
  Replace(Fixture());
  EXPECT_EQ(Names(u"0"), (std::vector<Text>{u"Antiques", u"Furniture", u"Silver", u"Accessories", u"Chairs",
                                            u"Tables & Desks", u"Books", u"Accessories", u"Orphaned Lots"}));
  EXPECT_EQ(Names(u"77"), std::vector<Text>{u"Bücher"});
  auto chairs = db_->OpenRecordset(u"Select * From Categories Where Categoryid = 164");
  EXPECT_EQ(chairs->Fields(u"CategoryLevel"), Variant(3.0));
  EXPECT_EQ(chairs->Fields(u"CategoryParentId"), Variant(161.0));
  EXPECT_EQ(chairs->Fields(u"LeafCategory"), Variant(true));
  EXPECT_EQ(chairs->Fields(u"AppSiteId"), Variant(0.0));

  // A reply cut short, one that is no XML, and one with a value the store can't take leave the site's
  // rows as they were.
  std::string whole = Fixture();
  std::string bad_id = whole;
  bad_id.replace(bad_id.find("<CategoryId>165"), 15, "<CategoryId>1x5");
  for (const std::string& reply : {whole.substr(0, whole.size() / 2), std::string("garbage"), bad_id}) {
    EXPECT_THROW(Replace(reply), RuntimeError);
    EXPECT_EQ(Names(u"0").size(), 9u);
    EXPECT_FALSE(db_->InTransaction());
  }
  // A reply without categories empties the site, as the site said.
  Replace("<?xml version='1.0'?><eBay><Categories><Version>1</Version></Categories></eBay>");
  EXPECT_TRUE(Names(u"0").empty());
  EXPECT_EQ(Names(u"77").size(), 1u);
}

TEST_F(CategoryTree, EveryCategoryUnderItsParent) {
  Replace(Fixture());
  // A seventh level is more than the tree shows.
  db_->Execute(
      u"INSERT INTO Categories (AppSiteId, Categoryid, CategoryLevel, CategoryName, CategoryParentId) "
      u"VALUES (0, 7000, 7, 'Too Deep', 164)");
  testing::TestScreen t;
  TreeView& tree = t.form.Add<TreeView>(u"ctcategorytree");
  tree.AddTop(u"left over");
  FillCategoryTree(*db_, tree, u"0", regional_);
  EXPECT_TRUE(tree.redraw());
  EXPECT_EQ(tree.NodeCount(), 8);  // the orphan and the seventh level stay out
  EXPECT_EQ(tree.FindPath(u"Orphaned Lots"), -1);
  std::vector<Text> top;
  for (int item : tree.Roots()) top.push_back(tree.node(item).text);
  EXPECT_EQ(top, (std::vector<Text>{u"Antiques", u"Books"}));
  int antiques = tree.FindPath(u"Antiques");
  std::vector<Text> under;
  for (int item : tree.node(antiques).children) under.push_back(tree.node(item).text);
  EXPECT_EQ(under, (std::vector<Text>{u"Accessories", u"Furniture", u"Silver"}));
  EXPECT_EQ(tree.Data(tree.FindPath(u"Antiques > Accessories")), 163);
  EXPECT_EQ(tree.Data(tree.FindPath(u"Books > Accessories")), 268);
  int chairs = tree.FindPath(u"Antiques > Furniture > Chairs");
  EXPECT_EQ(tree.Data(chairs), 164);
  EXPECT_FALSE(tree.HasChildren(chairs));
  EXPECT_TRUE(tree.HasChildren(tree.FindPath(u"Antiques > Furniture")));

  // Another site shows its own tree only.
  FillCategoryTree(*db_, tree, u"77", regional_);
  EXPECT_EQ(tree.NodeCount(), 1);
  EXPECT_EQ(tree.node(tree.Roots()[0]).text, u"Bücher");
}

}  // namespace
}  // namespace lw
