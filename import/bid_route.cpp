#include "import/bid_route.h"

#include "core/primitives/encoding.h"
#include "import/download.h"
#include "import/download_state.h"
#include "platform/async_http.h"
#include "screen/main/main_form.h"

namespace lw {

BidRoute MakeBidRoute(ImportScreen& screen) {
  ImportScreen* s = &screen;
  BidRoute route;
  route.raise_bid_pending = [s] {
    s->jobs.ClearFlags();
    s->jobs.bid_pending = true;
  };
  route.fetch = [s](const Text& address) {
    s->jobs.ClearFlags();
    s->jobs.bid_pending = true;
    AsyncHttp& http = *transports(*s).CIHTTP1;
    http.set_text_without_tags(true);
    http.set_keep_raw_page(false);
    http.set_url(ToUtf8(address));
    s->program().screen.ui().SetWaitCursor(true);
    http.Connect();
  };
  route.page = [s] { return transports(*s).CIHTTP1->raw_page(); };
  route.address = [s] { return FromUtf8(transports(*s).CIHTTP1->url()); };
  route.current_item = [s] { return s->download ? s->download->current_item : Text(); };
  return route;
}

}  // namespace lw
