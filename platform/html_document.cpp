#include "platform/html_document.h"

#include <libxml/HTMLparser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <memory>
#include <string_view>

#include "core/primitives/encoding.h"

namespace lw {

namespace {

// Elements that start a line of their own. A line break inside a cell does not: the parsers read a
// cell as one line whatever it holds.
constexpr std::array<std::string_view, 32> kBlockElements = {
    "table", "tbody",  "thead",      "tfoot", "tr", "td",    "th",     "caption", "p",       "div", "ul",
    "ol",    "li",     "dl",         "dt",    "dd", "h1",    "h2",     "h3",      "h4",      "h5",  "h6",
    "form",  "center", "blockquote", "pre",   "hr", "title", "select", "option",  "address", "body"};

constexpr std::array<std::string_view, 14> kVoidElements = {"br",   "img",   "input",  "hr",      "meta",
                                                            "link", "area",  "base",   "col",     "param",
                                                            "wbr",  "embed", "source", "basefont"};

bool IsOneOf(std::string_view name, auto const& list) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

std::string LowerAscii(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

std::string UpperAscii(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

std::string_view Name(const xmlNode* n) {
  return n->name ? reinterpret_cast<const char*>(n->name) : "";
}

std::string Attr(const xmlNode* n, const char* name) {
  xmlChar* v = xmlGetProp(n, reinterpret_cast<const xmlChar*>(name));
  if (!v) return {};
  std::string out(reinterpret_cast<const char*>(v));
  xmlFree(v);
  return out;
}

bool HasAttr(const xmlNode* n, const char* name) {
  return xmlHasProp(n, reinterpret_cast<const xmlChar*>(name)) != nullptr;
}

std::string Content(const xmlNode* n) {
  xmlChar* v = xmlNodeGetContent(n);
  if (!v) return {};
  std::string out(reinterpret_cast<const char*>(v));
  xmlFree(v);
  return out;
}

struct DocCloser {
  void operator()(xmlDoc* d) const { xmlFreeDoc(d); }
};

// Serialises a subtree as the browser's outer HTML does.
class Serialiser {
 public:
  void Node(const xmlNode* n) {
    switch (n->type) {
      case XML_ELEMENT_NODE:
        Element(n);
        break;
      case XML_TEXT_NODE:
      case XML_CDATA_SECTION_NODE:
        if (raw_depth_ > 0)
          out_ += reinterpret_cast<const char*>(n->content ? n->content : BAD_CAST "");
        else
          Escaped(reinterpret_cast<const char*>(n->content ? n->content : BAD_CAST ""), false);
        break;
      case XML_COMMENT_NODE:
        out_ += "<!--";
        out_ += reinterpret_cast<const char*>(n->content ? n->content : BAD_CAST "");
        out_ += "-->";
        break;
      default:
        break;
    }
  }

  const std::string& out() const { return out_; }

 private:
  void LineStart() {
    if (!out_.empty() && out_.back() != '\n') out_ += "\r\n";
  }

  void Escaped(const char* s, bool attribute) {
    for (const char* p = s; *p; ++p) {
      unsigned char c = static_cast<unsigned char>(*p);
      if (c == '&') {
        out_ += "&amp;";
      } else if (c == '<' && !attribute) {
        out_ += "&lt;";
      } else if (c == '>' && !attribute) {
        out_ += "&gt;";
      } else if (c == '"' && attribute) {
        out_ += "&quot;";
      } else if (c == 0xC2 && static_cast<unsigned char>(p[1]) == 0xA0) {
        out_ += "&nbsp;";  // the no-break blank goes back to the entity the parsers strip
        ++p;
      } else {
        out_.push_back(static_cast<char>(c));
      }
    }
  }

  void Element(const xmlNode* n) {
    std::string name = LowerAscii(Name(n));
    if (IsOneOf(name, kBlockElements)) LineStart();
    out_ += "<" + UpperAscii(name);
    for (const xmlAttr* a = n->properties; a; a = a->next) {
      out_ += " ";
      out_ += reinterpret_cast<const char*>(a->name);
      if (a->children) {
        out_ += "=\"";
        Escaped(Content(reinterpret_cast<const xmlNode*>(a)).c_str(), true);
        out_ += "\"";
      }
    }
    out_ += ">";
    if (IsOneOf(name, kVoidElements)) return;
    bool raw = name == "script" || name == "style";
    if (raw) ++raw_depth_;
    for (const xmlNode* c = n->children; c; c = c->next) Node(c);
    if (raw) --raw_depth_;
    out_ += "</" + UpperAscii(name) + ">";
  }

  std::string out_;
  int raw_depth_ = 0;
};

const xmlNode* FindElement(const xmlNode* n, std::string_view name) {
  for (; n; n = n->next) {
    if (n->type == XML_ELEMENT_NODE && LowerAscii(Name(n)) == name) return n;
    if (const xmlNode* found = FindElement(n->children, name)) return found;
  }
  return nullptr;
}

std::string CollapseBlanks(const std::string& s) {
  std::string out;
  bool blank = false;
  for (char c : s) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      blank = !out.empty();
    } else {
      if (blank) out.push_back(' ');
      blank = false;
      out.push_back(c);
    }
  }
  return out;
}

void CollectFields(const xmlNode* n, HtmlForm& form, bool& submit_taken) {
  for (; n; n = n->next) {
    if (n->type != XML_ELEMENT_NODE) continue;
    std::string tag = LowerAscii(Name(n));
    std::string name = Attr(n, "name");
    if (tag == "input" && !name.empty()) {
      std::string type = LowerAscii(Attr(n, "type"));
      if (type == "checkbox" || type == "radio") {
        if (HasAttr(n, "checked"))
          form.fields.emplace_back(name, HasAttr(n, "value") ? Attr(n, "value") : "on");
      } else if (type == "submit" || type == "image") {
        if (!submit_taken) form.fields.emplace_back(name, Attr(n, "value"));
        submit_taken = true;
      } else if (type != "button" && type != "reset" && type != "file") {
        form.fields.emplace_back(name, Attr(n, "value"));
      }
      continue;
    }
    if (tag == "select" && !name.empty()) {
      const xmlNode* chosen = nullptr;
      const xmlNode* first = nullptr;
      for (const xmlNode* o = FindElement(n->children, "option"); o; o = o->next) {
        if (o->type != XML_ELEMENT_NODE || LowerAscii(Name(o)) != "option") continue;
        if (!first) first = o;
        if (HasAttr(o, "selected")) {
          chosen = o;
          break;
        }
      }
      if (!chosen) chosen = first;
      if (chosen)
        form.fields.emplace_back(
            name, HasAttr(chosen, "value") ? Attr(chosen, "value") : CollapseBlanks(Content(chosen)));
      continue;
    }
    if (tag == "textarea" && !name.empty()) {
      form.fields.emplace_back(name, Content(n));
      continue;
    }
    if (tag == "button" && !name.empty()) {
      std::string type = LowerAscii(Attr(n, "type"));
      if ((type.empty() || type == "submit") && !submit_taken) {
        form.fields.emplace_back(name, Attr(n, "value"));
        submit_taken = true;
      }
      continue;
    }
    CollectFields(n->children, form, submit_taken);
  }
}

void CollectForms(const xmlNode* n, std::vector<HtmlForm>& forms) {
  for (; n; n = n->next) {
    if (n->type != XML_ELEMENT_NODE) continue;
    if (LowerAscii(Name(n)) == "form") {
      HtmlForm form;
      form.name = HasAttr(n, "name") ? Attr(n, "name") : Attr(n, "id");
      form.action = Attr(n, "action");
      form.method = UpperAscii(Attr(n, "method")) == "POST" ? "POST" : "GET";
      bool submit_taken = false;
      CollectFields(n->children, form, submit_taken);
      forms.push_back(std::move(form));
      // Forms do not nest; whatever the parser put inside belongs to this one.
      continue;
    }
    CollectForms(n->children, forms);
  }
}

}  // namespace

HtmlDocument HtmlDocument::Parse(const Text& page) {
  HtmlDocument d;
  std::string utf8 = ToUtf8(page);
  if (utf8.empty()) return d;
  std::unique_ptr<xmlDoc, DocCloser> doc(htmlReadMemory(
      utf8.data(), static_cast<int>(utf8.size()), nullptr, "UTF-8",
      // The text is decoded already; a <meta charset> in it must not make the parser decode it again.
      HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET |
          HTML_PARSE_IGNORE_ENC));
  if (!doc) return d;
  const xmlNode* root = xmlDocGetRootElement(doc.get());
  if (!root) return d;
  if (const xmlNode* title = FindElement(root, "title")) d.title = FromUtf8(CollapseBlanks(Content(title)));
  Serialiser s;
  if (const xmlNode* body = FindElement(root, "body")) {
    s.Node(body);
  } else {
    for (const xmlNode* c = root->children; c; c = c->next) s.Node(c);
  }
  d.body_outer_html = FromUtf8(s.out());
  CollectForms(root, d.forms);
  return d;
}

namespace {

bool IsAsciiLetter(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

std::string TagName(TextView tag) {
  std::string name;
  size_t i = 0;
  if (i < tag.size() && tag[i] == u'/') ++i;
  while (i < tag.size() && (IsAsciiLetter(tag[i]) || (tag[i] >= u'0' && tag[i] <= u'9')))
    name.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(tag[i++]))));
  return name;
}

size_t FindCaseless(TextView text, std::string_view what, size_t from) {
  for (size_t i = from; i + what.size() <= text.size(); ++i) {
    size_t k = 0;
    while (k < what.size() && text[i + k] < 128 &&
           std::tolower(static_cast<int>(text[i + k])) == static_cast<unsigned char>(what[k]))
      ++k;
    if (k == what.size()) return i;
  }
  return TextView::npos;
}

}  // namespace

namespace {

Text StripTagsOnce(TextView page) {
  // The text as the page's source lays it out, tags taken away and nothing else touched, so that a page
  // fetched in the background reads exactly as the same page saved to a file and stripped by hand. Only
  // where the source puts two cells or blocks on one line are they broken apart, as a text rendering of
  // the page would show them.
  Text out;
  out.reserve(page.size() / 2);
  bool break_pending = false;
  auto line_has_text = [&] {
    for (size_t k = out.size(); k > 0; --k) {
      char16_t ch = out[k - 1];
      if (ch == u'\n' || ch == u'\r') return false;
      if (ch != u' ' && ch != u'\t') return true;
    }
    return false;
  };
  size_t i = 0;
  while (i < page.size()) {
    char16_t c = page[i];
    if (c == u'<' && page.substr(i, 4) == u"<!--") {
      size_t end = page.find(u"-->", i + 4);
      i = end == TextView::npos ? page.size() : end + 3;
      continue;
    }
    if (c == u'<' && i + 1 < page.size() &&
        (IsAsciiLetter(page[i + 1]) || page[i + 1] == u'/' || page[i + 1] == u'!' || page[i + 1] == u'?')) {
      size_t end = page.find(u'>', i);
      if (end == TextView::npos) end = page.size() - 1;
      std::string name = TagName(page.substr(i + 1, end - i));
      bool closing = page[i + 1] == u'/';
      i = end + 1;
      if (!closing && (name == "script" || name == "style")) {
        size_t close = FindCaseless(page, "</" + name, i);
        if (close == TextView::npos) break;
        size_t gt = page.find(u'>', close);
        i = gt == TextView::npos ? page.size() : gt + 1;
        continue;
      }
      if (IsOneOf(name, kBlockElements)) break_pending = true;
      continue;
    }
    bool blank = c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
    if (!blank && break_pending && line_has_text()) {
      while (!out.empty() && (out.back() == u' ' || out.back() == u'\t')) out.pop_back();
      out += u"\r\n";
    }
    if (!blank) break_pending = false;
    if (c == u'\r' || c == u'\n') {
      // Every line end as CR LF, whatever the server sent.
      out += u"\r\n";
      i += (c == u'\r' && i + 1 < page.size() && page[i + 1] == u'\n') ? 2 : 1;
      continue;
    }
    out.push_back(c);
    ++i;
  }
  return out;
}

// "<" before a letter, "/", "!" or "?": where a tag begins.
bool HasTagStart(const Text& text) {
  for (size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != u'<') continue;
    const char16_t next = text[i + 1];
    if (IsAsciiLetter(next) || next == u'/' || next == u'!' || next == u'?') return true;
  }
  return false;
}

}  // namespace

Text PageTextWithoutTags(TextView page) {
  // A "<" of the text can meet the start of a word once the markup between them is gone ("<<b>x>"):
  // stripped again until no tag is left, as the other roads' tag removal would strip it. Every round
  // takes away more than it adds, so this ends.
  Text out = StripTagsOnce(page);
  while (HasTagStart(out)) out = StripTagsOnce(out);
  return out;
}

}  // namespace lw
