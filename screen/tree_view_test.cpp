#include "screen/tree_view.h"

#include <gtest/gtest.h>

#include "screen/testing.h"

namespace lw {
namespace {

using testing::TestScreen;

// The way the category tree loads: top items, then children found by their parent's data value.
TEST(TreeViews, ItemsAddedUnderTheCurrentOneAreFoundByTheirData) {
  TestScreen t;
  auto& tree = t.form.Add<TreeView>(u"ctcategorytree");
  EXPECT_THROW(tree.AddUnderCurrent(u"orphan"), RuntimeError);

  tree.SetRedraw(false);
  int books = tree.AddTop(u"Books");
  tree.SetData(books, 267);
  int art = tree.AddTop(u"Art", TreeView::End::kFirst);
  tree.SetData(art, 550);
  tree.SetCurrent(tree.FindData(267));
  int maps = tree.AddUnderCurrent(u"Maps");
  tree.SetData(maps, 1001);
  // Two categories of the same name keep their own values; the lower number wins a shared value.
  tree.SetCurrent(tree.FindData(550));
  int maps2 = tree.AddUnderCurrent(u"Maps");
  tree.SetData(maps2, 1002);
  int dup = tree.AddTop(u"Duplicate");
  tree.SetData(dup, 267);
  tree.SetRedraw(true);

  EXPECT_EQ(tree.Roots(), (std::vector<int>{art, books, dup}));
  EXPECT_EQ(tree.FindData(267), books);
  EXPECT_EQ(tree.FindData(1002), maps2);
  EXPECT_EQ(tree.FindData(4242), -1);
  EXPECT_TRUE(tree.HasChildren(books));
  EXPECT_FALSE(tree.HasChildren(maps));
  EXPECT_EQ(tree.Path(maps2), u"Art > Maps");

  // A value moved elsewhere is no longer found where it was.
  tree.SetData(books, 9);
  EXPECT_EQ(tree.FindData(267), dup);
  EXPECT_EQ(tree.FindData(9), books);
  // Items never given a value hold 0.
  int bare = tree.AddTop(u"Bare");
  EXPECT_EQ(tree.FindData(0), bare);

  EXPECT_THROW(tree.node(99), RuntimeError);
  EXPECT_THROW(tree.AddNode(42, Text(), u"x"), RuntimeError);
  EXPECT_THROW(tree.SetCurrent(99), RuntimeError);
  uint64_t before = tree.revision();
  tree.Clear();
  EXPECT_GT(tree.revision(), before);
  EXPECT_EQ(tree.NodeCount(), 0);
  EXPECT_EQ(tree.current(), -1);
  EXPECT_EQ(tree.FindData(9), -1);
}

TEST(TreeViews, UserClicksAPathOfCaptionsAndOpensTheItemsOnTheWay) {
  TestScreen t;
  auto& tree = t.form.Add<TreeView>(u"ctTree");
  int seller = tree.AddNode(-1, u"s", u"Seller");
  int accounting = tree.AddNode(seller, Text(), u"Accounting");
  int invoice = tree.AddNode(accounting, Text(), u"Print Invoice");
  int bidder = tree.AddNode(-1, Text(), u"Bidder");
  int bidder_accounting = tree.AddNode(bidder, Text(), u"Accounting");
  EXPECT_THROW(tree.AddNode(-1, u"s", u"Again"), RuntimeError);

  std::vector<int> clicked;
  tree.OnNodeClick = [&](int n) { clicked.push_back(n); };
  Text path = u"Seller > Accounting > Print Invoice";
  tree.UserClick(&path);
  EXPECT_EQ(clicked, std::vector<int>{invoice});
  EXPECT_TRUE(tree.node(seller).expanded);
  EXPECT_TRUE(tree.node(accounting).expanded);
  EXPECT_FALSE(tree.node(bidder).expanded);
  EXPECT_EQ(tree.Property(u"path", {}), Text(u"Seller > Accounting > Print Invoice"));
  EXPECT_EQ(tree.Property(u"index", {}), Text(u"2"));

  // The same caption under another parent is another item.
  Text other = u"Bidder > Accounting";
  tree.UserClick(&other);
  EXPECT_EQ(clicked.back(), bidder_accounting);
  EXPECT_EQ(tree.FindPath(u"Bidder > Accounting"), bidder_accounting);
  EXPECT_EQ(tree.FindPath(u"Bidder > Nothing"), -1);

  Text missing = u"Seller > Auction";
  EXPECT_THROW(tree.UserClick(&missing), UserError);
  Text past_leaf = u"Seller > Accounting > Print Invoice > More";
  EXPECT_THROW(tree.UserClick(&past_leaf), UserError);
  // The desktop view clicks by number: an item inside a closed one is out of reach.
  tree.UserExpand(seller, false);
  EXPECT_THROW(tree.UserClickNode(invoice), UserRefused);
  tree.SetEnabled(false);
  EXPECT_THROW(tree.UserClick(&path), UserRefused);
  EXPECT_EQ(clicked.size(), 2u);

  EXPECT_EQ(tree.Property(u"node", {u"1"}), Text(u"Accounting"));
  EXPECT_EQ(tree.Property(u"haschildren", {u"2"}), Text(u"False"));
  EXPECT_EQ(tree.Property(u"children", {u"0"}), Text(u"1"));
  EXPECT_THROW(tree.Property(u"node", {u"7"}), UserError);
}

}  // namespace
}  // namespace lw
