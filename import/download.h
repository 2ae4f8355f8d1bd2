// Getting a page into the page buffer and handing it to its parser: the update command, the three
// transports and their routes, the dispatch on the job flags, the browser's completion events, the
// sign-in round trip, the last import and the manual imports from a file.
//
// The other import units reach the fetch through these functions. They put the host and the path of
// the next fetch into the main form's text boxes `txtIP` and `txtURL` (added by RegisterDownload), set
// their job flag in ImportScreen::jobs and call the route.
#pragma once

#include <filesystem>
#include <memory>

#include "core/primitives/types.h"
#include "import/import_screen.h"

namespace lw {

class Control;
class HttpSession;
class Inet;
class AsyncHttp;
class WebBrowser;

// The transports of the import, sharing one session (and so one sign-in). Made on libcurl at first
// use; a front end with its own web view, or a test, may put its own in before the first command.
struct Transports {
  std::shared_ptr<HttpSession> session;  // the program's one session
  std::unique_ptr<Inet> Inet1;
  std::unique_ptr<AsyncHttp> CIHTTP1;
  std::unique_ptr<WebBrowser> WebBrowser1;
};

// The transports of the screen, made and wired to the main form's events at first call.
Transports& transports(ImportScreen& screen);

// The address boxes of the next fetch: host, and path with query.
Control& txtIP(ImportScreen& screen);
Control& txtURL(ImportScreen& screen);
// "http://{txtIP}{txtURL}"
Text fetch_address(ImportScreen& screen);

// The work files in the database folder.
std::filesystem::path auctimp_file(ImportScreen& screen);
// "\last_good_ebay_seller_import.htm" for type "Seller", else its bidder twin.
std::filesystem::path last_good_file(ImportScreen& screen);

// The list bar's "Update Auctions".
void import_sell_btn(ImportScreen& screen);
// Empties "\auctimp.htm".
void clear_auctimp(ImportScreen& screen);
// Starts the background fetch of txtIP/txtURL; its done event dispatches.
void download_auctions_with_CIHTTP1(ImportScreen& screen);
// The blocking fetch (web_view_mode 0) or the browser's page (web_view_mode 1), then the dispatch.
void download_auctions_2(ImportScreen& screen);
// The blocking fetch for the motors description with its HTML.
void download_auctions_3(ImportScreen& screen);
// The seller's Dutch page without the browser, with the sign-in form as its fallback.
void download_auctions(ImportScreen& screen);
// Whether the page in the buffer asks for a sign-in; when it does the filled-in sign-in form is shown
// in the browser page with the message to import again.
bool sign_in_form(ImportScreen& screen);

// The dispatch table shared by download_auctions_2 and the CIHTTP1 done event: the parser of the job
// flag that is set, on the site and the type in view. Clears each flag it handles.
void dispatch_import(ImportScreen& screen, bool clear_web_view_mode);

// The events of the transports.
void CIHTTP1_Connected(ImportScreen& screen);
void CIHTTP1_Done(ImportScreen& screen);
void CIHTTP1_Error(ImportScreen& screen, int number);
void WebBrowser1_DocumentComplete(ImportScreen& screen);
void WebBrowser1_NavigateComplete(ImportScreen& screen, const Text& url);

// Shows the last-good file of the type in the browser page (site "eBay" only).
void show_last_import(ImportScreen& screen);
// Shows the last-good file, then lets the user pick another page to show.
void manual_import_auctions(ImportScreen& screen);

// The dispatch points of the sites other than "eBay": nothing is imported from them.
void get_amazon_seller_auctions(ImportContext& ctx);
void get_yahoo_seller_auctions(ImportContext& ctx);

}  // namespace lw
