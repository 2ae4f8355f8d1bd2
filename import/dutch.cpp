#include "import/dutch.h"

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "import/seller_list.h"

namespace lw {

namespace {

const Text kCrLf = u"\r\n";

bool HasRow(CursorSource& source) {
  if (!source.HasRecordset()) return false;
  Recordset& rs = source.recordset();
  return !rs.Eof() && !rs.Bof();
}

Text FieldText(const Recordset& rs, TextView name, const Regional& regional) {
  Variant v = rs.Fields(name);
  return v.IsNull() ? Text() : CStr(v, regional);
}

bool FieldTrue(const Recordset& rs, TextView name, const Regional& regional) {
  Variant v = rs.Fields(name);
  if (v.boolean()) return *v.boolean();
  return !v.IsNull() && CDbl(v, regional) != 0;
}

Currency FieldMoney(const Recordset& rs, TextView name, const Regional& regional) {
  Variant v = rs.Fields(name);
  return v.IsNull() ? Currency{} : CCur(v, regional);
}

// The criteria of a buyer's row of this sale. No blank between the quote and "and": the statement
// reads the same either way and the rows written by earlier versions were found by exactly this.
Text BuyerCriteria(const Text& item, const Text& id) {
  return u"Item = " + Quoted(item) + u"and id = " + Quoted(id);
}

// The text from `from` up to and with the next line feed (or to the end).
Text LineFrom(const Text& text, size_t from) {
  size_t lf = text.find(u'\n', from);
  return text.substr(from, lf == Text::npos ? Text::npos : lf - from + 1);
}

bool EndsTheWalk(const Text& line) {
  return Like(line, u"*Announcements|Register*") || Like(line, u"*Quantity still available*") ||
         line.find(u'\t') != Text::npos;
}

// The part of the page that holds the bid lines: up to the line of the copyright notice.
size_t LastLineEnd(const Text& text) {
  size_t notice = text.find(u"eBay Inc. All Rights Reserved");
  return notice == Text::npos ? text.size() : notice;
}

// After the rewriting every line end is a lone line feed, so the positions below count one each.
template <typename OnLine>
void WalkLines(const Text& text, size_t from, OnLine&& on_line) {
  size_t last = LastLineEnd(text);
  while (from < last) {
    Text line = LineFrom(text, from);
    if (line.empty() || EndsTheWalk(line)) break;
    if (!on_line(line)) break;
    from += line.size();
  }
}

}  // namespace

Text rewrite_dutch_page(const Text& page, bool bidder_page) {
  Text t = Replace(page, u"eBay Online Payments", kCrLf);
  t = Replace(t, u"&nbsp;", u"");
  t = Replace(t, u"High Bidder: Pay Now/View Order DetailsSeller: Send Invoice or view Order Details", u"");
  t = Replace(t, u"High Bidder: Pay Now/View Order DetailsSeller: View/Update Order Details", u"");
  t = Replace(t, u"PDT", kCrLf);
  t = Replace(t, u"PST", kCrLf);
  t = Replace(t, u"            ", u" ");
  t = Replace(t, u"       ", u" ");
  if (bidder_page) t = Replace(t, u"Quantity", u"");
  t = Replace(t, u"Date of Bid", kCrLf + u"Date of Bid");
  t = Replace(t, u"\r", u" ");
  t = Replace(t, u"  \n", u" ");
  t = Replace(t, u" \n", u"\n");
  return t;
}

std::optional<Text> import_dutch_btn_2(ImportContext& ctx, DutchScreen& screen) {
  if (!HasRow(ctx.seller) || !FieldTrue(ctx.seller.recordset(), u"Completed", ctx.regional)) {
    ctx.ui.MsgBox(u"Auction Still in Progress", u"Auction must be ended before importing.", MsgButtons::OK,
                  MsgIcon::None);
    return std::nullopt;
  }
  Recordset* rs = &ctx.seller.recordset();
  Text item = FieldText(*rs, u"Item", ctx.regional);
  Text id = FieldText(*rs, u"id", ctx.regional);
  if (id == u"Store Sale" || InStr(id, u"Dutch bids") != 0) screen.dutch_item = Left(item, 20);
  if (screen.clear_auctimp) screen.clear_auctimp();
  screen.import_cancelled = false;
  if (screen.clear_job_flags) screen.clear_job_flags();
  screen.seller_dutch_pending = true;
  screen.txtIP = screen.servername_dutch;
  if (screen.save_data_changed) screen.save_data_changed();
  rs = &ctx.seller.recordset();
  rs->Edit();
  rs->SetField(u"Quantity", Val(screen.Quantity_txt[0]));
  rs->Update();
  if (InStr(screen.id_pnl[0], u"Dutch bids") == 0 && InStr(screen.id_pnl[0], u"Store Sale") == 0) {
    ctx.ui.MsgBox(u"Incorrect Auction Type",
                  Text(u"This is not a Dutch Auction/Store Sale.") + kCrLf +
                      u"Make sure the current record is a Dutch Auction or a Store Sale.",
                  MsgButtons::OK, MsgIcon::Critical);
    return std::nullopt;
  }
  if (screen.auction_type == u"Seller") {
    ctx.seller.RecordSource =
        Text(u"Select * From seller ") + u"where item = " + Quoted(item) + u"" + u" order by end desc ";
    ctx.seller.Refresh();
    ctx.seller.recordset().FindFirst(BuyerCriteria(item, id));
    if (screen.select_tab) screen.select_tab(4);
  }
  Text address;
  if (!screen.pass1) {
    address = u"http://" + screen.servername_dutch + u"/aw-cgi/eBayISAPI.dll?GetBidderEmails&item=" + item +
              u"&pagetype=269&ed=" + id;
  } else {
    address = u"http://" + screen.servername_dutch +
              u"/aw-cgi/eBayISAPI.dll?ViewBidDutchHighBidderEmails&de=off&item=" + item +
              u"&acceptcookie=0&ed=0&pass=" + *screen.pass1 + u"&userid=" + ctx.userid;
  }
  if (screen.navigate) screen.navigate(address);
  return address;
}

std::optional<Text> import_dutch_bidder_btn(ImportContext& ctx, DutchScreen& screen) {
  if (!HasRow(ctx.bidder) || !FieldTrue(ctx.bidder.recordset(), u"Completed", ctx.regional)) {
    ctx.ui.MsgBox(u"Auction Still in Progress", u"Auction must be ended before importing.", MsgButtons::OK,
                  MsgIcon::None);
    return std::nullopt;
  }
  if (screen.clear_auctimp) screen.clear_auctimp();
  screen.import_cancelled = false;
  if (screen.clear_job_flags) screen.clear_job_flags();
  screen.bidder_dutch_pending = true;
  screen.txtIP = screen.servername_dutch;
  Recordset& rs = ctx.bidder.recordset();
  Text item = FieldText(rs, u"Item", ctx.regional);
  rs.Edit();
  rs.SetField(u"Quantity", Val(screen.Quantity_txt[1]));
  rs.Update();
  if (InStr(screen.id_pnl[1], u"Dutch bids") == 0) {
    ctx.ui.MsgBox(
        u"Incorrect Auction Type",
        Text(u"This is not a Dutch Auction.") + kCrLf + u"Make sure the current record is a Dutch Auction.",
        MsgButtons::OK, MsgIcon::Critical);
    return std::nullopt;
  }
  if (screen.auction_type != u"Bidder") return std::nullopt;
  ctx.Status(u"Importing Dutch Auction High Bidders for Auction ...." + item);
  screen.txtURL = u"/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewBidsDutchHighBidder&item=" + item;
  return screen.txtURL;
}

namespace {

void WalkSellerPage(ImportContext& ctx, FileDisplay& buffer) {
  buffer.SaveFile(ctx.folder / "parsed_data.htm");
  Text text = rewrite_dutch_page(buffer.text(), false);
  // The buffer holds the rewritten page, as the Advanced Import Edit page shows it.
  buffer.set_text(text);
  if (InStr(text, u"Error: Requestor not the seller") != 0) {
    // The site's page stays in the browser: the user signs in on it.
    if (ctx.show_browser_page) ctx.show_browser_page();
    return;
  }
  if (!HasRow(ctx.seller)) {
    ctx.Status(u"No Buyers Found");
    return;
  }
  Recordset& rs = ctx.seller.recordset();
  DutchWalk walk;
  walk.is_store_sale = Like(FieldText(rs, u"id", ctx.regional), u"Store Sale");
  walk.item_price = FieldMoney(rs, u"Price", ctx.regional);
  Text item = FieldText(rs, u"Item", ctx.regional);

  if (size_t q = text.find(u"Quantity"); q != Text::npos) {
    walk.quantity_available = Val(Replace(LineFrom(text, q + 9), u"\n", u""));
  }
  size_t heading = text.find(u"Date of Bid");
  if (heading != Text::npos) {
    WalkLines(text, heading + 17, [&](const Text& line) {
      parse_seller_dutch_auctions(ctx, line, walk);
      return true;
    });
  }
  if (ctx.run) ctx.run->End();
  if (walk.buyers_added == 0) {
    ctx.Status(u"No Buyers Found");
  } else {
    ctx.Status(u"Importing Auctions Completed.  Auctions Added " +
               CStr(Variant(walk.buyers_added), ctx.regional) + u" Items Sold " +
               CStr(Variant(walk.items_sold), ctx.regional));
  }
  if (ctx.auction_filter) ctx.auction_filter();
  if (ctx.seller.HasRecordset() && ctx.seller.recordset().RecordCount() > 0) {
    ctx.seller.recordset().FindFirst(u"Item = " + Quoted(item));
  }
}

}  // namespace

void get_seller_dutch_auctions(ImportContext& ctx, FileDisplay& buffer) {
  // A line's failure is handled by the line parser; this catches what fails around the walk (the
  // working file, the cursor), so that the command ends in the same message.
  ImportRun run(ctx);
  try {
    WalkSellerPage(ctx, buffer);
  } catch (const std::exception&) {
    report_line_error(ctx);
  }
  run.End();
}

void parse_seller_dutch_auctions(ImportContext& ctx, const Text& raw_line, DutchWalk& walk) {
  try {
    Text line = Replace(Replace(raw_line, u"\n", u""), u"\r", u"");
    line = Replace(line, u"  ", u" ");
    line = Replace(line, u"(not a registered user)", u"");
    line = Replace(line, u" AU", u" ");
    line = Replace(line, u" GBP", u"$");
    line = LTrim(line);
    if (line.empty() || IsDate(Variant(line), ctx.regional)) return;

    size_t open1 = InStr(line, u"(");
    if (open1 < 2) throw RuntimeError(5, "Invalid procedure call or argument");
    Text buyer = Left(line, open1 - 2);
    size_t close1 = InStr(open1, line, u")");
    size_t open2 = close1 ? InStr(close1, line, u"(") : 0;
    size_t close2 = open2 ? InStr(open2, line, u")") : 0;
    if (close1 == 0 || open2 == 0 || close2 == 0) throw RuntimeError(5, "Invalid procedure call or argument");
    Text email = Mid(line, open1 + 1, close1 - open1 - 1);
    Text rating = Mid(line, open2 + 1, close2 - open2 - 1);
    Text rest = Mid(line, close2 + 1);

    double quantity = 0;
    if (walk.is_store_sale) {
      size_t dollar = InStr(rest, u"$");
      if (dollar == 0) throw RuntimeError(5, "Invalid procedure call or argument");
      Text after = Mid(rest, dollar + 1);
      size_t blank = InStr(after, u" ");
      Text price = blank ? Left(after, blank - 1) : after;
      walk.item_price = Currency::FromDouble(Val(price));
      quantity = blank ? Val(Mid(after, blank + 1)) : 0;
    } else {
      Text words = LTrim(rest);
      size_t blank = InStr(words, u" ");
      quantity = blank ? Val(Mid(words, blank + 1)) : 0;
    }

    Recordset& rs = ctx.seller.recordset();
    static constexpr const char16_t* kCopied[] = {u"Item",     u"Title",   u"Description1", u"Length",
                                                  u"Cost",     u"Minbid",  u"Ship_cost",    u"Pic_location",
                                                  u"Pic_name", u"Reserve", u"Start",        u"End"};
    std::vector<Variant> copied;
    for (const char16_t* name : kCopied) copied.push_back(rs.Fields(name));
    Text item = CStr(copied[0], ctx.regional);
    Text current_id = FieldText(rs, u"id", ctx.regional);

    if (Like(current_id, u"*Dutch bids*") || Like(current_id, u"*Store Sale*")) {
      RecordBookmark placeholder = rs.Bookmark();
      rs.FindFirst(BuyerCriteria(item, buyer));
      if (!rs.Eof() && FieldText(rs, u"id", ctx.regional) == buyer) {
        // This buyer came in on an earlier run; the placeholder is a fresh one from a later list
        // import and goes.
        RecordBookmark buyers_row = rs.Bookmark();
        rs.SetBookmark(placeholder);
        rs.Delete();
        rs.SetBookmark(buyers_row);
        return;
      }
      rs.SetBookmark(placeholder);
      rs.Edit();
      rs.SetField(u"Duplicated", true);
    } else {
      rs.FindFirst(BuyerCriteria(item, buyer));
      if (!rs.Eof() && FieldText(rs, u"id", ctx.regional) == buyer) return;
      rs.AddNew();
      rs.SetField(u"Duplicated", true);
    }

    if (quantity + walk.items_sold > walk.quantity_available)
      quantity = walk.quantity_available - walk.items_sold;
    rs.SetField(u"Item", copied[0]);
    rs.SetField(u"Title", copied[1]);
    rs.SetField(u"Completed", true);
    rs.SetField(u"Reserve_met", true);
    for (size_t i = 2; i < std::size(kCopied); ++i) rs.SetField(kCopied[i], copied[i]);
    rs.SetField(u"Email", email);
    rs.SetField(u"id", buyer);
    rs.SetField(u"rating", rating);
    rs.SetField(u"Quantity", quantity);
    rs.SetField(u"Price", Currency::FromDouble(quantity * walk.item_price.ToDouble()));
    rs.SetField(u"username", ctx.userid);
    rs.SetField(u"site", ctx.site);
    rs.SetField(u"total_tax", Currency{});
    rs.SetField(u"total_charges", Currency{});
    rs.SetField(u"total_purchase", Currency{});
    rs.Update();
    // Stay on the row just written so that the next buyer is tested against it.
    rs.SetBookmark(rs.LastModified());
    walk.buyers_added += 1;
    walk.items_sold += quantity;
    ctx.Status(u"Processing ...... please wait.");
  } catch (const std::exception&) {
    report_line_error(ctx);
  }
}

bool get_bidder_dutch_auctions(ImportContext& ctx, FileDisplay& buffer) {
  Text text = rewrite_dutch_page(buffer.text(), true);
  buffer.set_text(text);
  bool found = false;
  size_t heading = text.find(u"Item Price");
  if (heading != Text::npos && HasRow(ctx.bidder)) {
    try {
      WalkLines(text, heading + 10, [&](const Text& line) {
        found = parse_bidder_dutch_auctions(ctx, line);
        return !found;
      });
    } catch (const std::exception&) {
      // The row could not take the values: cancel the edit so that nothing half-written is left.
      if (ctx.bidder.recordset().EditInProgress()) ctx.bidder.recordset().CancelUpdate();
      found = false;
    }
  }
  if (found) {
    ctx.Status(u"Dutch Bid Auction Updated");
  } else {
    ctx.Status(u"Current userid not found in this Dutch Auction");
    ctx.ui.MsgBox(u"Userid Not Found", u"You are not a high bidder in this Dutch Auction", MsgButtons::OK,
                  MsgIcon::None);
  }
  return found;
}

bool parse_bidder_dutch_auctions(ImportContext& ctx, const Text& line) {
  size_t at = InStr(line, ctx.userid);
  if (ctx.userid.empty() || at == 0) return false;
  size_t bracket = InStr(at, line, u")");
  size_t dollar = InStr(at, line, u"$");
  double quantity = bracket ? Val(Mid(line, bracket + 1)) : 0;
  double price = dollar ? Val(Mid(line, dollar + 1)) : 0;
  Recordset& rs = ctx.bidder.recordset();
  rs.Edit();
  rs.SetField(u"Quantity", quantity);
  rs.SetField(u"Price", Currency::FromDouble(price));
  rs.SetField(u"id", ctx.userid);
  rs.Update();
  return true;
}

}  // namespace lw
