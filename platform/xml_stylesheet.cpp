#include "platform/xml_stylesheet.h"

#include <libxml/parser.h>
#include <libxslt/security.h>
#include <libxslt/transform.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <mutex>

namespace lw {

namespace {

constexpr int kParseOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

bool StartsWithXmlDeclaration(const std::string& bytes) {
  size_t start = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  return bytes.compare(start, 5, "<?xml") == 0;
}

// A stylesheet may read nothing but files and write nothing at all.
int Refuse(xsltSecurityPrefsPtr, xsltTransformContextPtr, const char*) {
  return 0;
}

xsltSecurityPrefsPtr Prefs() {
  static xsltSecurityPrefsPtr prefs = [] {
    xsltSecurityPrefsPtr p = xsltNewSecurityPrefs();
    xsltSetSecurityPrefs(p, XSLT_SECPREF_WRITE_FILE, Refuse);
    xsltSetSecurityPrefs(p, XSLT_SECPREF_CREATE_DIRECTORY, Refuse);
    xsltSetSecurityPrefs(p, XSLT_SECPREF_READ_NETWORK, Refuse);
    xsltSetSecurityPrefs(p, XSLT_SECPREF_WRITE_NETWORK, Refuse);
    return p;
  }();
  return prefs;
}

struct Owned {
  xmlDocPtr doc = nullptr;
  xsltStylesheetPtr sheet = nullptr;
  xmlDocPtr result = nullptr;
  xsltTransformContextPtr ctxt = nullptr;
  ~Owned() {
    if (ctxt) xsltFreeTransformContext(ctxt);
    if (result) xmlFreeDoc(result);
    if (sheet) xsltFreeStylesheet(sheet);  // frees the stylesheet's own document too
    if (doc) xmlFreeDoc(doc);
  }
};

}  // namespace

std::unique_ptr<StyledPage> ApplyXmlStylesheet(const std::string& bytes, const std::string& url) {
  if (url.compare(0, 7, "file://") != 0 || !StartsWithXmlDeclaration(bytes)) return nullptr;
  if (bytes.find("<?xml-stylesheet") == std::string::npos) return nullptr;
  if (bytes.size() > static_cast<size_t>(INT32_MAX)) return nullptr;
  static std::once_flag init;
  std::call_once(init, [] {
    xmlInitParser();
    xsltInit();
    // The stylesheet named by the page is read under the same rules as what it reads itself.
    xsltSetDefaultSecurityPrefs(Prefs());
  });

  Owned o;
  // The document's address is its path, so that a relative href finds the stylesheet beside it.
  std::string path = url.substr(7);
  o.doc = xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), path.c_str(), nullptr, kParseOptions);
  if (!o.doc) return nullptr;
  o.sheet = xsltLoadStylesheetPI(o.doc);
  if (!o.sheet) return nullptr;
  o.ctxt = xsltNewTransformContext(o.sheet, o.doc);
  if (!o.ctxt) return nullptr;
  xsltSetCtxtSecurityPrefs(Prefs(), o.ctxt);
  o.result = xsltApplyStylesheetUser(o.sheet, o.doc, nullptr, nullptr, nullptr, o.ctxt);
  if (!o.result || o.ctxt->state != XSLT_STATE_OK) return nullptr;

  xmlChar* out = nullptr;
  int size = 0;
  if (xsltSaveResultToString(&out, &size, o.result, o.sheet) != 0) return nullptr;
  auto page = std::make_unique<StyledPage>();
  if (out) {
    page->bytes.assign(reinterpret_cast<const char*>(out), static_cast<size_t>(size));
    xmlFree(out);
  }
  const xmlChar* encoding = o.sheet->encoding;
  page->content_type =
      std::string("text/html; charset=") + (encoding ? reinterpret_cast<const char*>(encoding) : "utf-8");
  return page;
}

}  // namespace lw
