#include "import/seller_list.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <new>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "import/normalise.h"

namespace lw {

namespace {

constexpr char16_t kCrLf[] = u"\r\n";
// Failures that carry no number of their own are reported under the runtime's numbers for them.
constexpr int kOutOfMemory = 7;
constexpr int kInternalError = 51;
constexpr char16_t kNoBids[] = u"No Bids";
constexpr char16_t kStoreSale[] = u"Store Sale";
constexpr char16_t kPrivateAuction[] = u"Private Auction";

// The whole number the text starts with, as decimal text: "( 123 )" is read as 123.
Text ValText(TextView text) {
  double v = Val(text);
  char buf[32];
  if (std::isfinite(v) && v == std::trunc(v) && std::fabs(v) < 1e15) {
    std::snprintf(buf, sizeof buf, "%.0f", v);
  } else {
    std::snprintf(buf, sizeof buf, "%.15g", v);
  }
  return T(buf);
}

Text RatingText(TextView text) {
  Text r = Replace(text, u"(", u"");
  r = Replace(r, u")", u"");
  return ValText(Trim(r));
}

bool Contains(const Variant& field, TextView what) {
  const Text* t = field.text();
  return t && InStr(*t, what) != 0;
}

// Phase 1: the ended marker has no use to us, and the cell padding must not count as text.
Text CleanSellerLine(TextView line) {
  Text l = Replace(line, u" (*)", u"");
  l = Replace(l, u"(*)", u"");
  l = Replace(l, u"\r", u"");
  l = Replace(l, Text(1, u'\u00A0'), u"");
  l = Replace(l, u"&nbsp;", u"");
  return LTrim(l);
}

// The site quotes prices in its own currency; the store reads money under the user's locale, so the
// text is turned into something that locale can read where we know how.
Text PriceForLocale(Text p, const Regional& r) {
  p = Replace(p, u"C $", u"$");
  p = Replace(p, u"AU $", u"$");
  if (Like(p, u"GBP*")) {
    p = Replace(p, u"GBP ", u"");
    p = Replace(p, u"GBP", u"");
    if (r.currency_symbol == u"€") p = Replace(p, u".", u",");
  }
  if (Like(p, u"EUR*")) {
    p = Replace(p, u"EUR ", u"");
    p = Replace(p, u"EUR", u"");
    if (r.money_decimal_mark == u",") p = Replace(p, u".", u",");
  }
  if (Like(p, u"$*")) {
    const Text& lang = r.language_name;
    const bool dutch = lang == u"Dutch (Standard)" || lang == u"Dutch (Belgian)" ||
                       lang == u"Dutch (Belgium)" || lang == u"Dutch(Belgium)" ||
                       lang == u"Dutch (Netherlands)" || lang == u"Dutch(Netherlands)";
    const bool british = lang == u"English (United Kingdom)" || lang == u"English(United Kingdom)";
    if (dutch && r.currency_symbol == u"€") {
      p = Replace(p, u".", u",");
      p = Replace(p, u"$", r.currency_symbol);
    } else if (british && (r.currency_symbol == u"€" || r.currency_symbol == u"£")) {
      p = Replace(p, u"$", r.currency_symbol);
    } else if (lang == u"Spanish (Traditional Sort)" && r.currency_symbol == u"€") {
      p = Replace(p, u"$", r.currency_symbol);
    }
  }
  return p;
}

// Bidder rules: the bidder cell decides the record's kind, and the special kinds fill their slots at
// once because their pages carry no rating and no address.
void FillBidder(ImportState& s, const Text& line) {
  auto& f = s.current_fields;
  if (Like(line, u"*(*")) {
    size_t at = InStr(2, line, u"(");
    // A bracket only in the first place leaves nothing for the id: the same failure the page's other
    // shifts give, reported through the handler.
    if (at == 0) throw RuntimeError(err::kInvalidProcedureCall, "Invalid procedure call or argument");
    f[6] = Left(line, at - 1);
    f[7] = RatingText(Mid(line, at));
  } else {
    f[6] = line;
  }
  if (Like(f[6], u"*No Bids*")) {
    f[6] = kNoBids;
    f[8] = f[6];
    f[7] = u" ";
    f[4] = u"0";
  } else if (Like(f[6], u"*Dutch bids*")) {
    f[6] = line;
    f[8] = f[6];
    f[7] = u" ";
    if (Val(line) == 0) f[4] = u"0";
  } else if (f[6] == u"Available" || f[6] == u"See Buyers") {
    f[6] = kStoreSale;
    f[8] = f[6];
    f[7] = u" ";
    if (Val(line) == 0) f[4] = u"0";
  } else if (f[6] == u"Private") {
    f[6] = kPrivateAuction;
    f[8] = f[6];
    f[7] = u" ";
  }
}

// Phase 3: the first empty slot decides what the line is.
void FillSlot(ImportContext& ctx, const Text& line) {
  ImportState& s = ctx.state;
  auto& f = s.current_fields;
  int slot = 1;
  while (slot <= 8 && !f[slot].empty()) ++slot;
  switch (slot) {
    case 1:
      f[1] = line;
      if (Like(f[1], u"*@*")) restore_previous_data(s);
      break;
    case 2:
    case 3:
    case 5:
      f[slot] = line;
      break;
    case 4:
      f[4] = PriceForLocale(line, ctx.regional);
      s.previous_fields[4] = f[4];
      break;
    case 6:
      if (!line.empty()) FillBidder(s, line);
      break;
    case 7:
      f[7] = line;
      if (Like(f[7], u"*private*")) f[7] = u"0";
      if (!f[7].empty()) f[7] = RatingText(f[7]);
      break;
    case 8:
      if (line != u" ") f[8] = line;
      break;
    default:
      break;
  }
}

// A site date the locale cannot read gets its month names translated; where that cannot be done the
// text stays as it was (after the message), and the store refuses it when the record is written.
Text SiteDate(ImportContext& ctx, Text text) {
  if (!IsDate(Variant(text), ctx.regional)) {
    if (auto message = convert_date(ctx.regional.language_name, text, ctx.regional)) {
      ctx.ui.MsgBox(message->title, message->text, MsgButtons::OK, MsgIcon::Critical);
    }
  }
  return text;
}

double DatePart(const Variant& d) {
  return std::floor(d.date() ? d.date()->serial : 0);
}

struct SellerRecord {
  Text item, price, title, id, rating, email;
  Text start, end;  // as the page gives them, month names translated
};

// Start and End go to the row as text, so the store reads them under the locale; the length in days
// follows from what it read.
void SetDates(Recordset& rs, const SellerRecord& r) {
  rs.SetField(u"start", r.start);
  rs.SetField(u"End", r.end);
  rs.SetField(u"Length", DatePart(rs.Fields(u"End")) - DatePart(rs.Fields(u"start")));
}

Date EndOf(const Recordset& rs) {
  const Variant end = rs.Fields(u"End");
  return end.date() ? *end.date() : Date();
}

bool ReserveMet(const Recordset& rs) {
  return Val(rs.Fields(u"Price")) >= Val(rs.Fields(u"Reserve"));
}

bool NeedsReserveNote(const Recordset& rs) {
  const Variant c = rs.Fields(u"Comments");
  return !(c.text() && Like(*c.text(), u"*Reserve not met*"));
}

Text CommentsWithReserveNote(const Recordset& rs) {
  const Variant c = rs.Fields(u"Comments");
  return Text(u"Reserve not met") + (c.text() ? *c.text() : Text());
}

bool ClosesUnsold(const Text& id) {
  return id == kNoBids || id == u"0 Dutch bids";
}

void AddSellerRow(ImportContext& ctx, Recordset& rs, const SellerRecord& r, int& added) {
  ctx.Status(u"Adding Item Number " + r.item);
  rs.AddNew();
  rs.SetField(u"Item", r.item);
  SetDates(rs, r);
  rs.SetField(u"Price", r.price);
  rs.SetField(u"Title", r.title);
  rs.SetField(u"Id", r.id);
  rs.SetField(u"Email", r.email);
  rs.SetField(u"quantity", 1);
  rs.SetField(u"total_tax", 0);
  rs.SetField(u"total_charges", 0);
  rs.SetField(u"total_purchase", 0);
  rs.SetField(u"pending", false);
  rs.SetField(u"username", ctx.userid);
  rs.SetField(u"site", ctx.site);
  if (r.rating != u" ") rs.SetField(u"rating", Val(r.rating));
  rs.SetField(u"lastupdated", ctx.clock.Now());

  const bool met = ReserveMet(rs);
  rs.SetField(u"Reserve_met", met);
  const bool ended = auction_has_ended(ctx, EndOf(rs));
  if (ended && ClosesUnsold(r.id)) rs.SetField(u"Trans_comp", true);
  if (ended && !met) {
    if (NeedsReserveNote(rs)) rs.SetField(u"Comments", CommentsWithReserveNote(rs));
    rs.SetField(u"Trans_comp", true);
  }
  rs.SetField(u"Completed", ended);
  rs.Update();
  ++added;
}

// Once the buyer has been contacted the row is the user's; and a real address from the buyers' page is
// never to be replaced by a placeholder.
bool SellerUpdateAllowed(const Recordset& rs, const SellerRecord& r) {
  const Variant contact = rs.Fields(u"contact");
  if (contact.boolean() && *contact.boolean()) return false;
  const Variant email = rs.Fields(u"Email");
  if (InStr(r.email, u"Dutch") != 0 && Contains(email, u"@")) return false;
  if (InStr(r.email, kPrivateAuction) != 0 && Contains(email, u"@")) return false;
  return true;
}

void EditOne(Recordset& rs, TextView field, const Variant& value) {
  rs.Edit();
  rs.SetField(field, value);
  rs.Update();
}

void UpdateSellerRow(ImportContext& ctx, Recordset& rs, const SellerRecord& r, int& updated) {
  if (!SellerUpdateAllowed(rs, r)) return;
  announce_update(ctx, r.item);
  rs.Edit();
  rs.SetField(u"Item", r.item);
  SetDates(rs, r);
  rs.SetField(u"Price", r.price);
  rs.SetField(u"Id", r.id);
  rs.SetField(u"Email", r.email);
  rs.SetField(u"site", ctx.site);
  rs.SetField(u"pending", false);
  if (r.rating != u" ") rs.SetField(u"rating", Val(r.rating));
  rs.SetField(u"lastupdated", ctx.clock.Now());
  const bool met = ReserveMet(rs);
  rs.SetField(u"Reserve_met", met);
  const bool ended = auction_has_ended(ctx, EndOf(rs));
  rs.Update();

  if (ended && ClosesUnsold(r.id)) EditOne(rs, u"Trans_comp", true);
  if (ended && !met) {
    if (NeedsReserveNote(rs)) EditOne(rs, u"Comments", CommentsWithReserveNote(rs));
    EditOne(rs, u"Trans_comp", true);
  }
  EditOne(rs, u"Completed", ended);
  ++updated;
}

// Phases 5 to 8: the finished record into the store.
void MergeSellerRecord(ImportContext& ctx, int& added, int& updated) {
  auto& f = ctx.state.current_fields;
  SellerRecord r;
  r.item = f[1];
  r.start = SiteDate(ctx, f[2]);
  r.end = SiteDate(ctx, f[3]);
  r.price = f[4];
  r.id = f[6];
  r.rating = f[7];
  r.email = f[8];
  r.title = f[5];
  remove_odd_characters_from_title(r.title);
  r.title = Left(r.title, 45);

  CursorSource& seller = ctx.seller;
  seller.RecordSource = u"Select * From seller where item = " + Quoted(r.item) +
                        u" and Duplicated = no and username = " + Quoted(ctx.userid);
  seller.Refresh();
  if (seller.recordset().Eof()) {
    // A row posted from here has no item number until the site gives it one; its title finds it.
    seller.RecordSource =
        u"Select * From seller where title = " + QuotedDoubling(r.title) + u" and End is Null";
    seller.Refresh();
  }
  Recordset& rs = seller.recordset();
  if (rs.Eof()) {
    AddSellerRow(ctx, rs, r, added);
  } else {
    UpdateSellerRow(ctx, rs, r, updated);
  }
}

void SellerParserFailed(ImportContext& ctx) {
  report_line_error(ctx);
  for (Text& slot : ctx.state.current_fields) slot.clear();
  ctx.state.stop_import = true;
}

}  // namespace

void offer_last_import(ImportContext& ctx, const Text& title, const Text& first_line) {
  MsgAnswer answer =
      ctx.ui.MsgBox(title, first_line + kCrLf + u"Do you want to check the 'Last Import' Form for errors.",
                    MsgButtons::YesNo, MsgIcon::Exclamation);
  if (answer == MsgAnswer::Yes) {
    if (ctx.show_last_import) ctx.show_last_import();
    ctx.Status(u"Displaying Last Imported Data");
  } else if (ctx.auction_filter) {
    ctx.auction_filter();
  }
}

void report_line_error(ImportContext& ctx) {
  if (ctx.seller.HasRecordset() && ctx.seller.recordset().EditInProgress()) {
    try {
      ctx.seller.recordset().CancelUpdate();
    } catch (const RuntimeError&) {
    }
  }
  // The rows written before the failure stay, and are kept before the user is asked anything.
  if (ctx.run) ctx.run->Keep();
  offer_last_import(ctx, u"Errors Importing Data.",
                    u"Errors Importing Data. Check the message in the status bar for the auction concerned.");
  if (ctx.enable_advanced_edit) ctx.enable_advanced_edit(true);
}

bool walk_list_lines(ImportContext& ctx, FileDisplay& buffer, const ListWalk& walk,
                     const std::function<void(int&, int&)>& parse_line, int& added, int& updated) {
  const long end_mark = buffer.Find(u"eBay Inc. All Rights Reserved", 0);
  const long last_line = buffer.GetLineFromChar(end_mark);
  buffer.SetSelStart(0);
  buffer.Find(walk.heading);
  buffer.SetSelStart(buffer.SelStart() + walk.offset);

  // Line numbers are counted as the caret moves rather than from the top each time: a long list would
  // otherwise take time growing with the square of its length.
  const Text& text = buffer.text();
  long caret = buffer.SelStart();
  long line_no = buffer.GetLineFromChar(caret);
  while (true) {
    const long noted = line_no;
    Text line = buffer.LineAtCaret();
    bool leave = false;
    for (const Text& pattern : walk.leave_patterns) leave = leave || Like(line, pattern);
    if (leave) break;
    const long next = caret + static_cast<long>(line.size()) + 2;
    ctx.state.current_line = std::move(line);
    parse_line(added, updated);
    if (walk.honour_stop_import && ctx.state.stop_import) return false;
    // A page cut short has no end mark to stop at; its own end stops the walk.
    if (next > static_cast<long>(text.size())) break;
    buffer.SetSelStart(next);
    line_no += static_cast<long>(std::count(text.begin() + caret, text.begin() + next, u'\n'));
    caret = next;
    if (noted > last_line) break;
  }
  return true;
}

void report_line_loop_error(ImportContext& ctx, int number) {
  if (number == 32000) {
    ctx.Status(
        u"Unable to Import - More information may be available by going to the Browser tab and clicking the "
        u"Last Import button.");
  } else {
    ctx.Status(u"Import error. Error message is " + T(std::to_string(number)));
  }
  ctx.ui.SetWaitCursor(false);
}

void guard_line_loop(ImportContext& ctx, const std::function<void()>& loop) {
  try {
    loop();
  } catch (const RuntimeError& e) {
    report_line_loop_error(ctx, e.number());
  } catch (const std::bad_alloc&) {
    report_line_loop_error(ctx, kOutOfMemory);
  } catch (const std::exception&) {
    report_line_loop_error(ctx, kInternalError);
  }
}

bool auction_has_ended(const ImportContext& ctx, Date end) {
  const int64_t minutes_left =
      DateDiff(u"n", ctx.clock.Now(), end) - static_cast<int64_t>(ctx.offsets.hour_difference * 60);
  return minutes_left < 0;
}

void announce_update(const ImportContext& ctx, const Text& item) {
  ctx.Status(u"Duplicate Auction Item Found ........ Not appending.");
  ctx.Status(u"Updating Auction Number " + item);
}

Text import_summary(int added, int updated) {
  return u"Importing Auctions Completed.  " + T(std::to_string(added)) + u" Auctions Added.  " +
         T(std::to_string(updated)) + u" Auctions Updated.";
}

void restore_previous_data(ImportState& state) {
  for (int slot = 1; slot <= 8; ++slot) state.current_fields[slot] = state.previous_fields[slot];
  state.current_fields[6] = state.current_line;
  state.current_fields[8] = state.current_line;
}

void parse_ebay_seller_import_data(ImportContext&) {}

void parse_ebay_seller_import_data_2(ImportContext& ctx, int& added, int& updated) {
  ImportState& s = ctx.state;
  auto& f = s.current_fields;
  try {
    s.current_line = CleanSellerLine(s.current_line);

    // The number of a Dutch auction's bids stands on the line before this marker.
    if (s.current_line == u"Dutch bids") {
      f[6] = f[6] + u" " + u"Dutch bids";
      f[8] = f[6];
      f[7] = u" ";
      if (Val(f[6]) == 0) f[4] = u"0";
      s.current_line.clear();
    }

    FillSlot(ctx, s.current_line);
    if (f[8].empty()) return;

    MergeSellerRecord(ctx, added, updated);

    for (int slot = 1; slot <= 8; ++slot) {
      if (slot != 4) s.previous_fields[slot] = f[slot];
      f[slot].clear();
    }
  } catch (const std::exception&) {
    SellerParserFailed(ctx);
  }
}

void get_ebay_seller_auctions_2(ImportContext& ctx, FileDisplay& buffer) {
  ImportRun run(ctx);
  guard_line_loop(ctx, [&] {
    buffer.SaveFile(ctx.folder / "parsed_data.htm");
    if (InStr(buffer.text(), u"User Error") != 0) {
      ctx.ui.MsgBox(u"Unable to Import",
                    Text(u"The import failed due to possible user error.") + kCrLf +
                        u"Check that your userid and/or password is correct in setup." + kCrLf +
                        u"Check your import by going to Browser Mode (F6) and click the Last Import button",
                    MsgButtons::OK, MsgIcon::Critical);
      return;
    }
    for (Text& slot : ctx.state.current_fields) slot.clear();
    ctx.state.stop_import = false;
    int added = 0;
    int updated = 0;

    const ListWalk walk{u"High Bidder's Email", 23, {u"*Announcements |*", u"*eBay Inc. All Rights*"}, true};
    const bool finished = walk_list_lines(
        ctx, buffer, walk, [&ctx](int& a, int& u) { parse_ebay_seller_import_data_2(ctx, a, u); }, added,
        updated);
    if (!finished) return;

    run.End();
    ctx.Status(import_summary(added, updated));
    if (added + updated != 0) {
      if (ctx.auction_filter) ctx.auction_filter();
      return;
    }
    offer_last_import(ctx, u"No Auctions Imported.", u"No auctions were imported.");
  });
  // What a failed line loop wrote stays as well.
  run.End();
}

}  // namespace lw
