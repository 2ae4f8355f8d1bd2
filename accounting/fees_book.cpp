#include "accounting/fees_book.h"

#include "accounting/charges.h"

#include "core/primitives/convert.h"
#include "core/primitives/text.h"

namespace lw {

namespace {

// The store's "=" on text ignores the case of A to Z and nothing else.
Text StoreKey(TextView text) {
  Text key(text);
  for (char16_t& c : key)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
  return key;
}

}  // namespace

const std::unordered_map<Text, int64_t>& FeeBook::Positions() {
  if (indexed_) return positions_;
  // One pass over the view instead of a search of it for every line: the rows and their item numbers
  // do not change while fees are booked.
  const int64_t count = cursor_.Eof() && cursor_.Bof() ? 0 : cursor_.RecordCount();
  for (int64_t at = 0; at < count; ++at) {
    cursor_.SetAbsolutePosition(at);
    Variant item = cursor_.Fields(u"Item");
    if (const Text* text = item.text()) positions_.emplace(StoreKey(*text), at);
  }
  indexed_ = true;
  return positions_;
}

bool FeeBook::Book(const FeeCharge& charge) {
  const Text item_literal = Quoted(charge.item);  // an apostrophe makes a bad statement: the line fails
  // The look at the row and the booking are one transaction: the reference and the amount go in
  // together or not at all, since a fee booked without its amount would never be booked again. (One
  // transaction rather than a read and then a write also spares the store half its locking.)
  StoreTransaction line(db_);
  const bool booked = BookOnRow(charge, item_literal);
  line.Commit();
  return booked;
}

bool FeeBook::BookOnRow(const FeeCharge& charge, const Text& item_literal) {
  const auto& positions = Positions();
  auto found = positions.find(StoreKey(charge.item));
  if (found == positions.end()) return false;
  cursor_.SetAbsolutePosition(found->second);
  // The search ignores case; the auction must carry the very number.
  Variant item = cursor_.Fields(u"Item");
  if (!item.text() || *item.text() != charge.item) return false;
  const Variant booked = cursor_.Fields(u"fee_ref_no");
  const Text* refs = booked.text();
  if (refs && Like(*refs, u"*" + charge.ref + u"*")) return false;
  // A Store Sale's stock row collects no fees; its sold copies do.
  const Variant id = cursor_.Fields(u"Id");
  if (id.text() && *id.text() == u"Store Sale" && !IsTrue(cursor_.Fields(u"Completed"))) return false;

  const Text column = charge.column;
  cursor_.Edit();
  try {
    cursor_.SetField(u"fee_ref_no", Variant(charge.ref + u" " + (refs ? *refs : Text())));
    if (cursor_.Fields(column).IsNull()) cursor_.SetField(column, Variant(Currency()));
    cursor_.Update();
  } catch (...) {
    if (cursor_.EditInProgress()) cursor_.CancelUpdate();
    throw;
  }
  db_.Execute(u"Update Seller set " + column + u" = " + column + u" + " +
              Quoted(CStr(Variant(charge.amount), db_.regional())) + u" where item = " + item_literal +
              u" and fee_ref_no LIKE " + Quoted(u"*" + charge.ref + u"*"));
  return true;
}

}  // namespace lw
