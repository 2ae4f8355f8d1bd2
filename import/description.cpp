#include "import/description.h"

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "import/normalise.h"

namespace lw {

namespace {

constexpr int kInvalidValue = 380;

Text Removed(Text text, std::initializer_list<TextView> what) {
  for (TextView w : what) text = Replace(text, w, u"");
  return text;
}

// Line ends go in every clean-up: the slices span several lines of the page.
Text WithoutLineEnds(const Text& text) {
  return Removed(text, {u"\n", u"\r"});
}

Text WithoutCarriageReturns(const Text& text) {
  return Replace(text, u"\r", u"");
}

Recordset* CurrentRow(ImportContext& ctx, const DescriptionScreen& screen) {
  CursorSource& source = screen.auction_type == u"Bidder" ? ctx.bidder : ctx.seller;
  if (!source.HasRecordset()) return nullptr;
  Recordset& rs = source.recordset();
  if (rs.Eof() || rs.Bof()) return nullptr;
  return &rs;
}

// The ordinary item page's steps, each on its own so that the "with HTML" parser can run them in its
// own order. `page` is 0 for the seller page's fields, 1 for the bidder page's.
void CategoryStep(const Text& text, DescriptionFields& f, int page) {
  Text category = cut_slice(
      text, {u"Item #",
             17,
             {u"This auction has ended but the item has been relisted.", u"Bidding is closed for this item",
              u"Current bid", u"This item is closed.", u"Price"}});
  category = Removed(category, {u"\n", u"\r", u"&amp"});
  // The relisting notes that share the category's line begin with "This ".
  if (size_t cut = InStr(category, u"This "); cut > 0) category = Left(category, cut - 1);
  f.category_lbl[page] = Left(category, 100);
}

void DescriptionStep(const Text& text, DescriptionFields& f, int page) {
  f.Description1_txt[page] = WithoutLineEnds(cut_slice(
      text,
      {u"Description", 15, {u"Payment Details", u"Checkout", u"Buy It Now", u"If you're the", u"Bidding"}}));
}

void StartingBidStep(const Text& text, DescriptionFields& f, int page) {
  f.Minbid_txt[page] =
      Removed(cut_slice(text, {u"Starting bid", 0, {u"Quantity"}}), {u"\n", u"\r", u"Starting bid"});
}

void QuantityStep(const Text& text, DescriptionFields& f, int page) {
  f.Quantity_txt[page] =
      Removed(cut_slice(text, {u"Quantity", 0, {u"# of bids"}}), {u"\n", u"\r", u"Quantity"});
}

void BidsStep(const Text& text, DescriptionFields& f, int page, TextView end) {
  f.bids_lbl[page] =
      Val(Removed(cut_slice(text, {u"# of bids", 0, {Text(end)}}), {u"\n", u"\r", u"# of bids"}));
}

void LocationStep(const Text& text, DescriptionFields& f, int page) {
  f.location_txt[page] =
      Removed(cut_slice(text, {u"Location", 0, {u"Country"}}), {u"\n", u"\r", u"Location"});
}

// The motors page's steps: its own markers for category, description, starting bid and bids.
void MotorsCategoryStep(const Text& text, DescriptionFields& f, int page) {
  Text category =
      cut_slice(text, {u"Item located in:",
                       17,
                       {u"This auction has ended but the item or one similar to it has been relisted.",
                        u"Bidding is closed for this item", u"Currently", u"Starts at", u"Lowest"}});
  f.category_lbl[page] = Left(Removed(category, {u"\n", u"\r", u"&amp"}), 100);
}

void MotorsDescriptionStep(const Text& text, DescriptionFields& f, int page) {
  // The length subtracts 15 while the slice starts 23 on: the description runs 8 characters into the
  // end marker, which the motors pages need to keep the last sentence whole.
  f.Description1_txt[page] =
      Removed(cut_slice(text, {u"unless otherwise noted.", 23, {u"Bidding", u"Checkout"}, 15}),
              {u"\n", u"\r", u"Auction has ended.", u"showupdate(1,2);"});
}

void MotorsStartingBidStep(const Text& text, DescriptionFields& f, int page) {
  f.Minbid_txt[page] =
      Removed(cut_slice(text, {u"First bid", 0, {u"Quantity"}}), {u"\n", u"\r", u"First bid", u"$"});
}

void MotorsDetailSteps(const Text& text, DescriptionFields& f, int page) {
  MotorsStartingBidStep(text, f, page);
  QuantityStep(text, f, page);
  BidsStep(text, f, page, u"bid history");
  LocationStep(text, f, page);
}

// Every parser ends at its first failure in the same way; what was filled so far stays.
template <typename Body>
void Guarded(ImportContext& ctx, Body&& body) {
  try {
    body();
  } catch (const std::exception&) {
    ctx.Status(u"Can't find all auction details");
  }
}

void MotorsParser(ImportContext& ctx, DescriptionScreen& screen, FileDisplay& buffer, int page) {
  Guarded(ctx, [&] {
    Text text = WithoutCarriageReturns(buffer.text());
    buffer.set_text(text);
    DescriptionFields& f = screen.fields;
    MotorsCategoryStep(text, f, page);
    MotorsDescriptionStep(text, f, page);
    screen.flags.description_pending = false;
    MotorsDetailSteps(text, f, page);
  });
}

}  // namespace

Text cut_slice(const Text& text, const Slice& slice) {
  size_t start = text.find(slice.start);
  if (start == Text::npos) throw RuntimeError(kInvalidValue, "Invalid property value");
  long end = -1;
  for (const Text& marker : slice.ends) {
    size_t found = text.find(marker, start);
    end = found == Text::npos ? -1 : static_cast<long>(found);
    if (end >= 0) break;
  }
  long length = end - static_cast<long>(start) - (slice.length_skip < 0 ? slice.skip : slice.length_skip);
  if (length < 0) throw RuntimeError(kInvalidValue, "Invalid property value");
  size_t from = std::min(text.size(), start + static_cast<size_t>(slice.skip));
  return text.substr(from, static_cast<size_t>(length));
}

bool description_import(ImportContext& ctx, DescriptionScreen& screen) {
  Recordset* rs = CurrentRow(ctx, screen);
  if (rs == nullptr) {
    ctx.Status(u"Can't import without auction displayed.");
    ctx.ui.MsgBox(u"Can't Import Description",
                  u"Ensure a current auction is displayed before trying to import.", MsgButtons::OK,
                  MsgIcon::None);
    return false;
  }
  if (screen.select_tab) screen.select_tab(1);
  Text item = CStr(rs->Fields(u"Item"), ctx.regional);
  ctx.Status(u"Importing Description for auction ...." + item +
             u". Warning auction HTML code maybe imported too.");
  screen.txtURL = u"/ws/eBayISAPI.dll?ViewItem&item=" + item;
  return true;
}

DescriptionFetch run_description_command(ImportContext& ctx, DescriptionScreen& screen,
                                         DescriptionCommand command, const Text& servername_desc,
                                         const Text& servername_ebaymotors) {
  screen.flags.import_cancelled = false;
  if (screen.clear_job_flags) screen.clear_job_flags();
  DescriptionFlags& fl = screen.flags;
  fl.description_pending = fl.description_html_pending = false;
  fl.motors_description_pending = fl.motors_description_html_pending = false;
  DescriptionFetch fetch = DescriptionFetch::download_auctions_2;
  switch (command) {
    case DescriptionCommand::plain:
      fl.description_pending = true;
      screen.txtIP = servername_desc;
      break;
    case DescriptionCommand::with_html:
      fl.description_html_pending = true;
      screen.txtIP = servername_desc;
      break;
    case DescriptionCommand::motors:
      fl.motors_description_pending = true;
      screen.txtIP = servername_ebaymotors;
      break;
    case DescriptionCommand::motors_with_html:
      fl.motors_description_html_pending = true;
      screen.txtIP = servername_ebaymotors;
      fetch = DescriptionFetch::download_auctions_3;
      break;
  }
  description_import(ctx, screen);
  return fetch;
}

void get_ebay_seller_auction_description(ImportContext& ctx, DescriptionScreen& screen, FileDisplay& buffer) {
  Guarded(ctx, [&] {
    Text text = WithoutCarriageReturns(buffer.text());
    buffer.set_text(text);
    DescriptionFields& f = screen.fields;
    CategoryStep(text, f, 0);
    DescriptionStep(text, f, 0);
    screen.flags.description_pending = false;
    StartingBidStep(text, f, 0);
    QuantityStep(text, f, 0);
    BidsStep(text, f, 0, u"Bid history");
    LocationStep(text, f, 0);
  });
}

void get_ebay_bidder_auction_description(ImportContext& ctx, DescriptionScreen& screen, FileDisplay& buffer) {
  Guarded(ctx, [&] {
    Text text = WithoutCarriageReturns(buffer.text());
    buffer.set_text(text);
    DescriptionFields& f = screen.fields;
    CategoryStep(text, f, 1);
    DescriptionStep(text, f, 1);
    screen.flags.description_pending = false;
    Text price = Removed(cut_slice(text, {u"Current bid", 0, {u"Starting bid"}}),
                         {u"\n", u"\r", u"Current bid", u"\u00a0", u"GBP", u"AU $", u"US $", u"C $"});
    f.ctRealInput1_1 = static_cast<float>(Val(Replace(price, u"(", u" ")));
    StartingBidStep(text, f, 1);
    QuantityStep(text, f, 1);
    BidsStep(text, f, 1, u"Bid history");
  });
}

void get_ebay_seller_auction_description_with_HTML(ImportContext& ctx, DescriptionScreen& screen,
                                                   FileDisplay& buffer) {
  Guarded(ctx, [&] {
    DescriptionFields& f = screen.fields;
    Text text = WithoutCarriageReturns(buffer.text());
    f.Description1_txt[0].assign(1, u' ');
    // The description is cut from the page as it came, before any tag is removed, and kept without
    // clean-up: that is the whole point of this command.
    f.Description1_txt[0] = cut_slice(
        text, {u"Description", 62, {u"Payment Details", u"Checkout", u"Buy It Now", u"If you're the"}});
    text = pre_parse_HTML(text);
    parse_HTML_text(text);
    buffer.set_text(text);
    CategoryStep(text, f, 0);
    StartingBidStep(text, f, 0);
    QuantityStep(text, f, 0);
    BidsStep(text, f, 0, u"Bid history");
    LocationStep(text, f, 0);
    screen.flags.description_html_pending = false;
  });
}

void get_ebay_seller_auction_description_ebaymotors(ImportContext& ctx, DescriptionScreen& screen,
                                                    FileDisplay& buffer) {
  MotorsParser(ctx, screen, buffer, 0);
}

void get_ebay_bidder_auction_description_ebaymotors(ImportContext& ctx, DescriptionScreen& screen,
                                                    FileDisplay& buffer) {
  MotorsParser(ctx, screen, buffer, 1);
}

void get_ebay_seller_auction_description_ebaymotors_with_HTML(ImportContext& ctx, DescriptionScreen& screen,
                                                              FileDisplay& buffer) {
  // The motors parser on the page as it came takes the description with its HTML; the rest is read
  // again once the tags are gone.
  get_ebay_seller_auction_description_ebaymotors(ctx, screen, buffer);
  Guarded(ctx, [&] {
    Text text = buffer.text();
    parse_HTML_text(text);
    text = WithoutCarriageReturns(text);
    buffer.set_text(text);
    MotorsCategoryStep(text, screen.fields, 0);
    MotorsDetailSteps(text, screen.fields, 0);
    screen.flags.motors_description_html_pending = false;
  });
}

}  // namespace lw
