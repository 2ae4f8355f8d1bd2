#include "import/bidder_list.h"

#include <new>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "import/normalise.h"
#include "import/seller_list.h"

namespace lw {

namespace {

struct BidderRecord {
  Text item, price, title, id, seller;
  Date start, end;
};

void FillBidderSlot(ImportState& s, const Text& line) {
  auto& f = s.bidder_fields;
  int slot = 1;
  while (slot <= 7 && !f[slot].empty()) ++slot;
  switch (slot) {
    case 4: {
      Text p = Replace(line, u"C $", u"$");
      p = Replace(p, u"AU $", u"$");
      p = Replace(p, u"GBP ", u"");
      f[4] = Replace(p, u"EUR ", u"");
      break;
    }
    case 6:
      f[6] = Replace(line, Text(1, u'\u00A0'), u"");
      break;
    case 7:
      if (line != u" ") f[7] = line;
      break;
    case 8:
      break;
    default:
      f[slot] = line;
      break;
  }
}

// A price the store cannot read as money is kept as the number it starts with rather than losing the row.
void SetPrice(Recordset& rs, const Text& price) {
  try {
    rs.SetField(u"Price", price);
  } catch (const RuntimeError& e) {
    if (e.number() != err::kDataTypeConversion) throw;
    rs.SetField(u"Price", Val(price));
  }
}

void SetSeller(Recordset& rs, const BidderRecord& r) {
  rs.SetField(u"seller_id", r.seller);
  if (Like(r.seller, u"*@*")) rs.SetField(u"seller_email", r.seller);
}

// An auction lost to another bidder, or ended with no winner, leaves the work list by itself; a won one
// stays open. Dutch rows wait for their buyers and are never closed here.
void CloseBidderRow(ImportContext& ctx, Recordset& rs, const BidderRecord& r, bool in_edit) {
  const bool ended = auction_has_ended(ctx, r.end);
  if (!in_edit) rs.Edit();
  rs.SetField(u"Completed", ended);
  if (ended && ctx.setup_userid != r.id && InStr(r.id, u"Dutch") == 0) rs.SetField(u"Trans_comp", true);
  if (!in_edit) rs.Update();
}

void AddBidderRow(ImportContext& ctx, Recordset& rs, const BidderRecord& r, int& added) {
  rs.AddNew();
  rs.SetField(u"Item", r.item);
  ctx.Status(u"Adding Item Number " + r.item);
  rs.SetField(u"start", r.start);
  rs.SetField(u"End", r.end);
  SetPrice(rs, r.price);
  rs.SetField(u"Title", r.title);
  rs.SetField(u"Id", r.id);
  rs.SetField(u"Quantity", 1);
  SetSeller(rs, r);
  rs.SetField(u"Ship_cost", 0);
  rs.SetField(u"username", ctx.userid);
  rs.SetField(u"site", ctx.site);
  rs.SetField(u"lastupdated", ctx.clock.Now());
  CloseBidderRow(ctx, rs, r, true);
  rs.Update();
  ++added;
}

void UpdateBidderRow(ImportContext& ctx, Recordset& rs, const BidderRecord& r, int& updated) {
  const Variant contact = rs.Fields(u"contact");
  if (contact.boolean() && *contact.boolean()) return;
  const Variant email = rs.Fields(u"Seller_email");
  if (InStr(r.id, u"Dutch") != 0 && email.text() && InStr(*email.text(), u"@") != 0) return;
  announce_update(ctx, r.item);
  rs.Edit();
  rs.SetField(u"Item", r.item);
  rs.SetField(u"Title", r.title);
  rs.SetField(u"start", r.start);
  rs.SetField(u"End", r.end);
  SetPrice(rs, r.price);
  rs.SetField(u"Id", r.id);
  SetSeller(rs, r);
  rs.SetField(u"lastupdated", ctx.clock.Now());
  rs.Update();
  CloseBidderRow(ctx, rs, r, false);
  ++updated;
}

}  // namespace

void get_amazon_bidder_auctions(ImportContext&) {}
void get_yahoo_bidder_auctions(ImportContext&) {}

void parse_ebay_bidder_import_data(ImportContext& ctx, int& added, int& updated) {
  ImportState& s = ctx.state;
  auto& f = s.bidder_fields;
  s.current_line = Replace(s.current_line, u"(*)", u"");
  if (s.current_line == u"Dutch bids") {
    f[6] = f[6] + u" " + u"Dutch bids";
    s.current_line.clear();
  }
  FillBidderSlot(s, s.current_line);
  if (f[7].empty()) return;

  BidderRecord r;
  r.item = f[1];
  try {
    r.start = CDate(Variant(f[2]), ctx.regional);
    r.end = CDate(Variant(f[3]), ctx.regional);
    r.price = f[4];
    r.title = f[5];
    remove_odd_characters_from_title(r.title);
    r.id = f[6];
    r.seller = f[7];

    // An auction bid on under two of the user's ids is one row: the lookup does not test the user.
    CursorSource& bidder = ctx.bidder;
    bidder.RecordSource = u"Select * From bidder where item = " + Quoted(r.item) + u" and Duplicated = no";
    bidder.Refresh();
    Recordset& rs = bidder.recordset();
    if (rs.Eof()) {
      AddBidderRow(ctx, rs, r, added);
    } else {
      UpdateBidderRow(ctx, rs, r, updated);
    }
  } catch (const std::exception&) {
    // The slots keep the record, so the next line tries it again; nothing half-written stays.
    if (ctx.bidder.HasRecordset() && ctx.bidder.recordset().EditInProgress()) {
      try {
        ctx.bidder.recordset().CancelUpdate();
      } catch (const RuntimeError&) {
      }
    }
    ctx.Status(u"Can't add auction " + r.item);
    return;
  }
  for (Text& slot : f) slot.clear();
}

void get_ebay_bidder_auctions(ImportContext& ctx, FileDisplay& buffer) {
  ImportRun run(ctx);
  guard_line_loop(ctx, [&] {
    for (Text& slot : ctx.state.bidder_fields) slot.clear();
    int added = 0;
    int updated = 0;
    const ListWalk walk{u"Seller", 10, {u"*Announcements*"}, false};
    walk_list_lines(
        ctx, buffer, walk, [&ctx](int& a, int& u) { parse_ebay_bidder_import_data(ctx, a, u); }, added,
        updated);
    run.End();
    ctx.Status(import_summary(added, updated));
    if (ctx.auction_filter) ctx.auction_filter();
  });
  run.End();
}

}  // namespace lw
