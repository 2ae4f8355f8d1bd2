// The tree control: items with a caption, an optional unique key and a numeric data value, each under a
// parent or at the top. Items are numbered from 0 in the order they were added, and keep their number
// until the tree is cleared, so code that adds a fixed list can branch on the number of the item
// clicked. Siblings are shown in the order kept in their parent's list of children, which is the order
// of adding unless an item was put first.
//
// A user reaches an item by its captions from the top, joined by " > " ("Seller > Accounting > Print
// Invoice"): the items on the way are expanded, as the user opens them, and the last one is clicked. The
// desktop view draws the tree from the same model, and holds back its painting while `redraw` is off.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "screen/control.h"

namespace lw {

class TreeView : public Control {
 public:
  struct Node {
    Text key;
    Text text;
    int parent = -1;
    Text tag;
    bool expanded = false;
    int64_t data = 0;
    std::vector<int> children;  // in the order shown
  };
  // Where a new item goes among its siblings.
  enum class End { kLast, kFirst };

  TreeView(Form& form, Text name, int index = -1)
      : Control(form, ControlKind::TreeView, std::move(name), index) {}

  // Adds an item under `parent` (-1 for the top) and returns its number. A parent that is not there
  // raises 35601; a key already in use raises 35602 (an empty key is no key).
  int AddNode(int parent, const Text& key, const Text& text, End end = End::kLast);
  // Adds an item at the top of the tree.
  int AddTop(const Text& text, End end = End::kLast) { return AddNode(-1, Text(), text, end); }
  // Adds an item under the current one; raises 35601 when no item is current.
  int AddUnderCurrent(const Text& text, End end = End::kLast);
  void Clear();

  int NodeCount() const { return static_cast<int>(nodes_.size()); }
  // Raises 35600 for a number that is not an item.
  const Node& node(int at) const;
  // The top items in the order shown.
  const std::vector<int>& Roots() const { return roots_; }
  bool HasChildren(int at) const { return !node(at).children.empty(); }

  void SetNodeText(int at, const Text& text);
  void SetTag(int at, const Text& tag);
  int64_t Data(int at) const { return node(at).data; }
  void SetData(int at, int64_t data);
  // The first item (lowest number) whose data is `data`, or -1. Items whose data was never set hold 0.
  int FindData(int64_t data) const;
  // The item with this key, or -1.
  int FindKey(TextView key) const;
  // The item at the end of a path of captions from the top ("A > B > C"), or -1. Among siblings of the
  // same caption the first shown wins.
  int FindPath(TextView path) const;
  // The captions from the top to the item, joined by " > ".
  Text Path(int at) const;

  // Expanding an item shows its children; it does not open its parents.
  void SetExpanded(int at, bool expanded);
  // Shown: every parent up the chain is expanded.
  bool Shown(int at) const;

  // The current (selected) item, -1 for none. Setting it from code fires nothing.
  int current() const { return current_; }
  void SetCurrent(int at);

  // Painting switch: while off, the desktop view does not repaint; adding thousands of items stays
  // cheap. `revision` counts every change of the items, so a view knows when to rebuild.
  bool redraw() const { return redraw_; }
  void SetRedraw(bool on);
  uint64_t revision() const { return revision_; }

  // Place on its page, in twips.
  int left = 0, top = 0, width = 0, height = 0;

  // A click on an item by the user: fires OnNodeClick with its number, then OnClick.
  std::function<void(int node)> OnNodeClick;

  // What a user does. The argument of a click is a path of captions; the desktop view clicks an item
  // by its number and opens or closes it with UserExpand. A click on an item that is not shown, or on
  // a tree the user cannot reach, is refused.
  void UserClick(const Text* argument) override;
  void UserClickNode(int at);
  void UserExpand(int at, bool expanded);

  // Besides the common ones: nodes (the count), text and path of the current item, index (its number),
  // selectedkey, redraw; and by item number node(I) (its caption), path(I), data(I), haschildren(I),
  // expanded(I), parent(I), children(I) (the count).
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  Node& mutable_node(int at);
  // Counts the change and tells the screen's observer, so a front end rebuilds or reselects.
  void ItemsChanged(unsigned changes = change::kItems) {
    ++revision_;
    Changed(changes);
  }

  std::vector<Node> nodes_;
  std::vector<int> roots_;
  // Items by data value, each list in ascending item number: the category tree finds thousands of
  // parents by their data while it loads.
  std::unordered_map<int64_t, std::vector<int>> by_data_;
  std::unordered_map<Text, int> by_key_;
  int current_ = -1;
  bool redraw_ = true;
  uint64_t revision_ = 0;
};

}  // namespace lw
