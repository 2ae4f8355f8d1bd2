// The XML document object the interface's replies are read with: a file loaded synchronously, the
// elements of a name in document order, and child nodes taken by position with their text. As the
// document object of the desktop does by default, text nodes of blanks alone are no child nodes, so a
// reply reads the same laid out on lines or all on one.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/primitives/types.h"

struct _xmlDoc;
struct _xmlNode;

namespace lw {

class XmlNode {
 public:
  XmlNode() = default;
  bool IsNull() const { return node_ == nullptr; }
  // Element, text, CDATA, comment and processing instruction children in order; blank text left out.
  std::vector<XmlNode> ChildNodes() const;
  // Child `index` from 0; a null node outside the children.
  XmlNode Item(size_t index) const;
  // The text of the node and everything under it, with leading and trailing blanks dropped; "" for a
  // null node.
  Text text() const;
  // The element's name ("#text", "#cdata-section", "#comment" for the others).
  std::string name() const;

 private:
  friend class XmlDocument;
  XmlNode(_xmlNode* node, std::shared_ptr<_xmlDoc> doc) : node_(node), doc_(std::move(doc)) {}
  _xmlNode* node_ = nullptr;
  std::shared_ptr<_xmlDoc> doc_;  // keeps the document alive while a node of it is held
};

class XmlDocument {
 public:
  // Loads a file; false when there is no such file or it is not a well-formed document, which leaves
  // the document empty (the reason is in parse_error()). Never reaches the network.
  bool Load(const std::filesystem::path& file);
  // The same from bytes in memory.
  bool LoadXml(std::string_view bytes);
  const std::string& parse_error() const { return parse_error_; }
  bool empty() const { return doc_ == nullptr; }

  // Every element of that name (exact case) in document order; none for an empty document.
  std::vector<XmlNode> GetElementsByTagName(std::string_view name) const;

 private:
  bool Take(_xmlDoc* doc);
  std::shared_ptr<_xmlDoc> doc_;
  std::string parse_error_;
};

}  // namespace lw
