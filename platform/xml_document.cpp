#include "platform/xml_document.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <fstream>
#include <iterator>

#include "core/primitives/encoding.h"

namespace lw {

namespace {

// No entity reaches outside the document, and the parser's complaints go to parse_error(), not to the
// terminal.
constexpr int kParseOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

bool IsChildNode(const xmlNode* n) {
  switch (n->type) {
    case XML_TEXT_NODE:
      return !xmlIsBlankNode(const_cast<xmlNode*>(n));
    case XML_ELEMENT_NODE:
    case XML_CDATA_SECTION_NODE:
    case XML_COMMENT_NODE:
    case XML_PI_NODE:
    case XML_ENTITY_REF_NODE:
      return true;
    default:
      return false;
  }
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

struct DocDeleter {
  void operator()(xmlDoc* d) const { xmlFreeDoc(d); }
};

}  // namespace

std::vector<XmlNode> XmlNode::ChildNodes() const {
  std::vector<XmlNode> out;
  if (!node_) return out;
  for (xmlNode* c = node_->children; c; c = c->next)
    if (IsChildNode(c)) out.push_back(XmlNode(c, doc_));
  return out;
}

XmlNode XmlNode::Item(size_t index) const {
  if (!node_) return {};
  for (xmlNode* c = node_->children; c; c = c->next) {
    if (!IsChildNode(c)) continue;
    if (index == 0) return XmlNode(c, doc_);
    --index;
  }
  return {};
}

Text XmlNode::text() const {
  if (!node_) return {};
  xmlChar* content = xmlNodeGetContent(node_);
  if (!content) return {};
  std::string s(reinterpret_cast<const char*>(content));
  xmlFree(content);
  size_t b = 0, e = s.size();
  while (b < e && IsBlank(s[b])) ++b;
  while (e > b && IsBlank(s[e - 1])) --e;
  return FromUtf8(std::string_view(s).substr(b, e - b));
}

std::string XmlNode::name() const {
  if (!node_) return {};
  switch (node_->type) {
    case XML_TEXT_NODE:
      return "#text";
    case XML_CDATA_SECTION_NODE:
      return "#cdata-section";
    case XML_COMMENT_NODE:
      return "#comment";
    default:
      return node_->name ? reinterpret_cast<const char*>(node_->name) : "";
  }
}

bool XmlDocument::Take(xmlDoc* doc) {
  doc_.reset();
  if (!doc) return false;
  doc_ = std::shared_ptr<xmlDoc>(doc, DocDeleter());
  return true;
}

bool XmlDocument::LoadXml(std::string_view bytes) {
  parse_error_.clear();
  xmlInitParser();
  xmlParserCtxtPtr ctxt = xmlNewParserCtxt();
  if (!ctxt) {
    parse_error_ = "out of memory";
    return Take(nullptr);
  }
  xmlDoc* doc = nullptr;
  if (bytes.size() > static_cast<size_t>(INT32_MAX)) {
    parse_error_ = "document too large";
  } else {
    doc = xmlCtxtReadMemory(ctxt, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                            kParseOptions);
    if (!doc || !ctxt->wellFormed) {
      const xmlError* e = xmlCtxtGetLastError(ctxt);
      parse_error_ = e && e->message ? e->message : "not a well-formed document";
      while (!parse_error_.empty() && IsBlank(parse_error_.back())) parse_error_.pop_back();
      if (doc) xmlFreeDoc(doc);
      doc = nullptr;
    }
  }
  xmlFreeParserCtxt(ctxt);
  return Take(doc);
}

bool XmlDocument::Load(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    parse_error_ = "cannot open " + file.string();
    return Take(nullptr);
  }
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  return LoadXml(bytes);
}

std::vector<XmlNode> XmlDocument::GetElementsByTagName(std::string_view name) const {
  std::vector<XmlNode> out;
  if (!doc_) return out;
  // Walked without recursion: a document may nest as deep as the parser lets it.
  xmlNode* n = xmlDocGetRootElement(doc_.get());
  while (n) {
    if (n->type == XML_ELEMENT_NODE && n->name && name == reinterpret_cast<const char*>(n->name))
      out.push_back(XmlNode(n, doc_));
    if (n->type == XML_ELEMENT_NODE && n->children) {
      n = n->children;
      continue;
    }
    while (n && !n->next) {
      n = n->parent;
      if (n && n->type == XML_DOCUMENT_NODE) n = nullptr;
    }
    if (n) n = n->next;
  }
  return out;
}

}  // namespace lw
