// Owners of libcurl's handles, so that every way out of a transfer frees them.
#pragma once

#include <curl/curl.h>

#include <memory>

namespace lw {

struct CurlEasyCloser {
  void operator()(CURL* c) const { curl_easy_cleanup(c); }
};
struct CurlListCloser {
  void operator()(curl_slist* l) const { curl_slist_free_all(l); }
};
using CurlEasy = std::unique_ptr<CURL, CurlEasyCloser>;
using CurlList = std::unique_ptr<curl_slist, CurlListCloser>;

}  // namespace lw
