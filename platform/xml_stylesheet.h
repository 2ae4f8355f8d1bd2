// What a browser does with a page of XML that names a stylesheet in an xml-stylesheet instruction: it
// shows the page the stylesheet makes of it. The program's own pages of replies are shown this way.
#pragma once

#include <memory>
#include <string>

namespace lw {

// The transformed page of `bytes` loaded from `url`. Only files are transformed, and their stylesheet is
// read from the disk, never fetched from the network. Nothing when the page is no XML, names no
// stylesheet, or the stylesheet cannot be read or applied; the browser then shows the bytes as they are.
struct StyledPage {
  std::string bytes;
  std::string content_type;  // "text/html; charset=utf-8" and the like
};
std::unique_ptr<StyledPage> ApplyXmlStylesheet(const std::string& bytes, const std::string& url);

}  // namespace lw
