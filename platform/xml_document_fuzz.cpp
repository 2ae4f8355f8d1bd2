// Fuzzes the document object with the site's replies as they may come: whatever the bytes, a document
// loads or doesn't, and the elements and children the category and logo readers take by position give
// text or nothing, never a crash; a document that doesn't load has no elements.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/xml_document.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  lw::XmlDocument doc;
  bool loaded = doc.LoadXml(std::string_view(reinterpret_cast<const char*>(data), size));
  for (const char* name : {"Category", "Categories", "Logo"}) {
    auto elements = doc.GetElementsByTagName(name);
    if (!loaded && !elements.empty()) std::abort();
    for (const lw::XmlNode& e : elements) {
      if (e.name() != name) std::abort();
      size_t children = e.ChildNodes().size();
      for (size_t i = 0; i < 8; ++i) {
        lw::XmlNode child = e.Item(i);
        if (child.IsNull() != (i >= children)) std::abort();
        child.text();
      }
    }
  }
  return 0;
}
