#include "screen/tree_view.h"

#include <algorithm>

#include "core/primitives/encoding.h"
#include "screen/form.h"
#include "screen/names.h"
#include "screen/property_args.h"

namespace lw {

namespace {

constexpr std::u16string_view kPathSeparator = u" > ";

[[noreturn]] void OutOfBounds() {
  throw RuntimeError(35600, "Index out of bounds");
}
[[noreturn]] void NotFound() {
  throw RuntimeError(35601, "Element not found");
}

std::vector<TextView> SplitPath(TextView path) {
  std::vector<TextView> parts;
  size_t from = 0;
  for (;;) {
    size_t at = path.find(kPathSeparator, from);
    if (at == TextView::npos) {
      parts.push_back(path.substr(from));
      return parts;
    }
    parts.push_back(path.substr(from, at - from));
    from = at + kPathSeparator.size();
  }
}

}  // namespace

const TreeView::Node& TreeView::node(int at) const {
  if (at < 0 || at >= NodeCount()) OutOfBounds();
  return nodes_[at];
}

TreeView::Node& TreeView::mutable_node(int at) {
  if (at < 0 || at >= NodeCount()) OutOfBounds();
  return nodes_[at];
}

int TreeView::AddNode(int parent, const Text& key, const Text& text, End end) {
  if (parent < -1 || parent >= NodeCount()) NotFound();
  if (!key.empty() && by_key_.count(key)) throw RuntimeError(35602, "Key is not unique in collection");
  const int at = NodeCount();
  Node node;
  node.key = key;
  node.text = text;
  node.parent = parent;
  nodes_.push_back(std::move(node));
  std::vector<int>& siblings = parent < 0 ? roots_ : nodes_[parent].children;
  if (end == End::kFirst)
    siblings.insert(siblings.begin(), at);
  else
    siblings.push_back(at);
  if (!key.empty()) by_key_[key] = at;
  by_data_[0].push_back(at);
  ItemsChanged();
  return at;
}

int TreeView::AddUnderCurrent(const Text& text, End end) {
  if (current_ < 0) NotFound();
  return AddNode(current_, Text(), text, end);
}

void TreeView::Clear() {
  nodes_.clear();
  roots_.clear();
  by_data_.clear();
  by_key_.clear();
  current_ = -1;
  ItemsChanged(change::kItems | change::kSelection);
}

void TreeView::SetNodeText(int at, const Text& text) {
  mutable_node(at).text = text;
  ItemsChanged();
}

void TreeView::SetTag(int at, const Text& tag) {
  mutable_node(at).tag = tag;
}

void TreeView::SetData(int at, int64_t data) {
  Node& n = mutable_node(at);
  if (n.data == data) return;
  // Items are numbered in order of adding, so each list stays sorted by inserting in place; the usual
  // case, the item just added, goes to the end of its new list and comes off the end of the old one.
  std::vector<int>& old_list = by_data_[n.data];
  auto it = std::lower_bound(old_list.begin(), old_list.end(), at);
  if (it != old_list.end() && *it == at) old_list.erase(it);
  if (old_list.empty()) by_data_.erase(n.data);
  std::vector<int>& new_list = by_data_[data];
  new_list.insert(std::lower_bound(new_list.begin(), new_list.end(), at), at);
  n.data = data;
}

int TreeView::FindData(int64_t data) const {
  auto it = by_data_.find(data);
  return it == by_data_.end() || it->second.empty() ? -1 : it->second.front();
}

int TreeView::FindKey(TextView key) const {
  auto it = by_key_.find(Text(key));
  return it == by_key_.end() ? -1 : it->second;
}

int TreeView::FindPath(TextView path) const {
  const std::vector<int>* level = &roots_;
  int found = -1;
  for (TextView caption : SplitPath(path)) {
    found = -1;
    for (int at : *level)
      if (nodes_[at].text == caption) {
        found = at;
        break;
      }
    if (found < 0) return -1;
    level = &nodes_[found].children;
  }
  return found;
}

Text TreeView::Path(int at) const {
  Text path = node(at).text;
  for (int p = nodes_[at].parent; p >= 0; p = nodes_[p].parent)
    path = nodes_[p].text + Text(kPathSeparator) + path;
  return path;
}

void TreeView::SetExpanded(int at, bool expanded) {
  Node& n = mutable_node(at);
  if (n.expanded == expanded) return;
  n.expanded = expanded;
  ItemsChanged();
}

bool TreeView::Shown(int at) const {
  for (int p = node(at).parent; p >= 0; p = nodes_[p].parent)
    if (!nodes_[p].expanded) return false;
  return true;
}

void TreeView::SetCurrent(int at) {
  if (at < -1 || at >= NodeCount()) OutOfBounds();
  if (current_ == at) return;
  current_ = at;
  Changed(change::kSelection);
}

void TreeView::SetRedraw(bool on) {
  if (redraw_ == on) return;
  redraw_ = on;
  ItemsChanged();
}

void TreeView::UserClick(const Text* argument) {
  if (!argument) return Control::UserClick(nullptr);
  RequireReachable("click");
  // The user opens each item on the way down before the next one can be seen.
  const std::vector<int>* level = &roots_;
  int at = -1;
  Text walked;
  for (TextView caption : SplitPath(*argument)) {
    if (at >= 0) {
      if (nodes_[at].children.empty())
        throw UserError(ToUtf8(Reference()) + ": \"" + ToUtf8(walked) + "\" has no items under it");
      SetExpanded(at, true);
    }
    int found = -1;
    for (int child : *level)
      if (nodes_[child].text == caption) {
        found = child;
        break;
      }
    walked += (walked.empty() ? Text() : Text(kPathSeparator)) + Text(caption);
    if (found < 0) throw UserError(ToUtf8(Reference()) + " has no item \"" + ToUtf8(walked) + "\"");
    at = found;
    level = &nodes_[at].children;
  }
  UserClickNode(at);
}

void TreeView::UserClickNode(int at) {
  RequireReachable("click");
  if (at < 0 || at >= NodeCount()) OutOfBounds();
  if (!Shown(at)) throw UserRefused("item \"" + ToUtf8(Path(at)) + "\" is inside a closed item");
  form().SetFocus(this);
  if (current_ != at) {
    current_ = at;
    Changed(change::kSelection);
  }
  if (OnNodeClick) OnNodeClick(at);
  Fire(OnClick);
}

void TreeView::UserExpand(int at, bool expanded) {
  RequireReachable("expand");
  if (!Shown(at)) throw UserRefused("item \"" + ToUtf8(Path(at)) + "\" is inside a closed item");
  SetExpanded(at, expanded);
}

std::optional<Text> TreeView::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (args.empty()) {
    if (n == u"nodes") return IntText(NodeCount());
    if (n == u"text") return current_ >= 0 ? nodes_[current_].text : Text();
    if (n == u"path") return current_ >= 0 ? Path(current_) : Text();
    if (n == u"index") return IntText(current_);
    if (n == u"selectedkey") return current_ >= 0 ? nodes_[current_].key : Text();
    if (n == u"redraw") return BoolText(redraw_);
  } else if (n == u"node" || n == u"path" || n == u"data" || n == u"haschildren" || n == u"expanded" ||
             n == u"parent" || n == u"children") {
    int at = IntArgument(args, 0, name);
    if (at < 0 || at >= NodeCount())
      throw UserError(ToUtf8(Reference()) + " has no item " + std::to_string(at));
    const Node& nd = nodes_[at];
    if (n == u"node") return nd.text;
    if (n == u"path") return Path(at);
    if (n == u"data") return IntText(nd.data);
    if (n == u"haschildren") return BoolText(!nd.children.empty());
    if (n == u"expanded") return BoolText(nd.expanded);
    if (n == u"parent") return IntText(nd.parent);
    return IntText(static_cast<long long>(nd.children.size()));
  }
  return Control::Property(name, args);
}

}  // namespace lw
