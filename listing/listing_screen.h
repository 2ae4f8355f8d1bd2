// The listing's side of the main screen: the Sell page, the request in hand and the state of a listing
// on its way to the site, the client of the site's XML interface, and the working files the exchanges
// leave in the database folder. One of these lives for the run; the listing's commands work through it.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/primitives/encoding.h"
#include "core/primitives/regional.h"
#include "core/primitives/types.h"
#include "listing/item_request.h"
#include "platform/api_http.h"

namespace lw {

struct Program;
class MainForm;
class Recordset;
class Toolbar;

class ListingScreen {
 public:
  explicit ListingScreen(Program& program);

  Program& program() const { return *program_; }
  MainForm& main() const;

  // The request in hand: emptied at each build, kept after the call, and what posting or queuing
  // takes once it has been validated.
  Text api_request;
  // The site's logo address, for the validation page.
  Text ebay_logo_url;
  // The request in hand passed validation: the next Validate/Post posts it.
  bool auction_validated = false;
  // The title, description and location as the last preview cleaned them.
  Text clean_title;
  Text clean_description;
  Text clean_location;
  // The version of the site's category tree, as the last check read it.
  Date category_version_date;

  // The client of the XML interface, made at first use with the configured wait.
  ApiHttp& http();
  void set_http(std::unique_ptr<ApiHttp> http) { http_ = std::move(http); }

  // One call: opens the client on the interface's address, sets the call's headers, runs
  // `before_send` (the callers write their request file and show their status there), sends
  // `request` and gives back the reply's bytes.
  std::string Exchange(std::string_view call_name, const Text& site_id, int detail_level, const Text& request,
                       const std::function<void()>& before_send = {});

  // A working file of the database folder ("\name"): written as one text and a line end, replacing
  // what was there.
  std::filesystem::path File(TextView name) const;
  void WriteFile(TextView name, const std::string& bytes) const;
  // Puts the stylesheets that ship with the program beside the replies, where the web view looks for
  // them, when they aren't there yet.
  void InstallStylesheets() const;

  // The current rows of the setup and seller data controls; a column of them as text ("" for Null).
  // Reading a row that isn't there raises 3021, as the store does.
  Recordset& SetupRow() const;
  Recordset& SellerRow() const;
  Text SetupText(TextView column) const;
  Text SellerText(TextView column) const;

  // What the Sell page shows, read for a request with a new UUID.
  SellForm ReadSellForm(const Text& uuid) const;

  // Registers a command of the listing under its routine name, run with the screen's catch-all.
  void Register(const char* name, void (*command)(ListingScreen&));

  void Status(const Text& text) const;
  // Buttons 1 (Validate/Post) and 2 (Bulk Listing Item) of the posting toolbar.
  Toolbar& PostingBar() const;
  void EnablePosting(int button, bool enabled) const;

 private:
  Program* program_;
  std::unique_ptr<ApiHttp> http_;
  // The site reads a schedule's date in the United States order, whatever this computer uses.
  Regional us_ = Regional::FromLocale("en_US");
};

// Runs a command with the catch-all every handler of the screen has: a failure shows its description
// on the status line.
template <class F>
void Guarded(const ListingScreen& screen, F&& body) {
  try {
    body();
  } catch (const RuntimeError& e) {
    screen.Status(FromUtf8(e.description()));
  }
}

// Creates the listing screen, keeps it in the program, builds the Sell page and registers every listing
// routine.
void RegisterListing(Program& program);

// The units of the listing screen, each registering its own routines.
// The Sell page's settings and preview, the validation and the interface test.
void RegisterSellPage(ListingScreen& screen);
// Validate/Post and the bulk collection.
void RegisterPosting(ListingScreen& screen);
// The category tree.
void RegisterCategories(ListingScreen& screen);

}  // namespace lw
