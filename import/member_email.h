// Buyer e-mail retrieval: the site gives a seller's address only to the high bidder, on a page of its
// own. The bidder page's command asks for that page in the browser view; the parser takes the address
// from it into seller_email_txt.
#pragma once

#include <functional>
#include <optional>

#include "core/primitives/types.h"
#include "import/file_display.h"
#include "import/import_context.h"

namespace lw {

// What the command reads and sets on the main form.
struct MemberEmailScreen {
  Text servername_email;  // of the misc row
  Text seller_id_txt;
  Text seller_email_txt;
  Text id_pnl_1;  // the high bidder shown on the bidder page
  // The address that failed for want of a sign-in, kept so that the same page is asked for again.
  Text email_page_url;
  Text txtIP;
  bool import_cancelled = false;
  bool email_pending = false;
  std::function<void()> clear_job_flags{};
  std::function<void()> clear_auctimp{};
  std::function<void(int)> select_tab{};        // SSTab1.Tab
  std::function<void(const Text&)> navigate{};  // WebBrowser1.Navigate
};

// The bidder page's command. Works on the current row of the Bidder cursor and ctx.userid
// (Userid_lst). Returns the address navigated to, or nothing when a check refused the fetch.
std::optional<Text> get_email_btn_2(ImportContext& ctx, MemberEmailScreen& screen);

// Reads the address off the member e-mail page in the buffer into `seller_email_txt`: the text between
// the marker and "User ID", line feeds taken out. A page where "User ID" does not follow leaves the field
// as it was.
void get_seller_email(ImportContext& ctx, FileDisplay& buffer, Text& seller_email_txt);

}  // namespace lw
