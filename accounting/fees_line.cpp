#include "accounting/fees_line.h"

#include "core/primitives/convert.h"
#include "core/primitives/text.h"

namespace lw {

namespace {

// What ends the item number: credits have no "--" of an empty credit column behind the item, so their
// item runs up to the money.
enum class ItemEnd { kDashes, kMoney };

struct FeeKind {
  const char16_t* pattern;
  const char16_t* literal;  // nullptr: a line of this kind books nothing
  ItemEnd end;
  const char16_t* column;
  const char16_t* unless = nullptr;  // a line that also matches this books nothing
};

// In order: the first that matches decides. The credits come before the fees whose names they contain,
// and the rate lines ("... fee of") before the fees they describe.
constexpr FeeKind kKinds[] = {
    {u"*Reserve price auction fee credit*", u"Reserve price auction fee credit", ItemEnd::kMoney,
     u"fee_reserve_credit"},
    {u"*Insertion fee fixed price credit*", u"Insertion fee fixed price credit", ItemEnd::kMoney,
     u"fee_credit_insertion"},
    // A free listing day is credited no insertion fee.
    {u"*Insertion fee credit*", u"Insertion fee credit", ItemEnd::kMoney, u"fee_credit_insertion",
     u"*Free Listing Day*"},
    {u"*Insertion fee of*", nullptr, ItemEnd::kDashes, nullptr},
    {u"*Insertion fee*", u"Insertion fee", ItemEnd::kDashes, u"fee_insertion"},
    {u"*Final Value fee*", u"Final Value fee", ItemEnd::kDashes, u"fee_final_value"},
    // A prefix test: the line starts with its reference number, so this one never matches.
    {u"Final value fee of*", nullptr, ItemEnd::kDashes, nullptr},
    {u"*Final value fee fixed price*", u"Final value fee fixed price", ItemEnd::kDashes,
     u"fee_final_value_fixed"},
    {u"*Gallery fee*", u"Gallery fee", ItemEnd::kDashes, u"fee_gallery"},
    {u"*Featured Plus listing fee*", u"Featured Plus listing fee", ItemEnd::kDashes, u"fee_featured_plus"},
    {u"*Category Featured listing fee*", u"Category Featured listing fee", ItemEnd::kDashes,
     u"fee_featured_plus"},
    {u"*10-day auction fee*", u"10-day auction fee", ItemEnd::kDashes, u"fee_10day"},
    {u"*Picture fee*", u"Picture fee", ItemEnd::kDashes, u"fee_picture"},
    {u"*No-Sale Credit*", u"No-Sale Credit", ItemEnd::kMoney, u"fee_nosale_credit"},
    {u"*PicturePack fee*", u"PicturePack fee", ItemEnd::kDashes, u"fee_picturepack"},
    {u"*Reserve price auction fee*", u"Reserve price auction fee", ItemEnd::kDashes, u"fee_reserve"},
    {u"*Bold listing fee*", u"Bold listing fee", ItemEnd::kDashes, u"fee_bold"},
    {u"*Highlight fee*", u"Highlight fee", ItemEnd::kDashes, u"fee_highlight"},
    {u"*Home Page Featured listing fee*", u"Home Page Featured listing fee", ItemEnd::kDashes, u"fee_home"},
    {u"*Buy-It-Now Listing Fee*", u"Buy-It-Now Listing Fee", ItemEnd::kDashes, u"fee_bin"},
    {u"*Scheduling fee*", u"Scheduling fee", ItemEnd::kDashes, u"fee_scheduled"},
};

const FeeKind* KindOf(TextView line) {
  for (const FeeKind& kind : kKinds) {
    if (!Like(line, kind.pattern)) continue;
    if (!kind.literal || (kind.unless && Like(line, kind.unless))) return nullptr;
    return &kind;
  }
  return nullptr;
}

// Mid with a count that may come out negative, which the runtime refuses.
Text MidCounted(TextView text, size_t start, long long count) {
  if (start == 0 || count < 0)
    throw RuntimeError(err::kInvalidProcedureCall, "Invalid procedure call or argument");
  return Mid(text, start, static_cast<size_t>(count));
}

}  // namespace

Text rewrite_fee_line(TextView line, const Regional& regional) {
  const Text& symbol = regional.currency_symbol;
  const Text minus_symbol = u"-" + symbol;
  const struct {
    const char16_t* find;
    const Text& with;
  } kRewrites[] = {
      {u"-C", u"-"},
      {u"US ", Text()},
      {u"-EUR ", minus_symbol},
      {u"EUR ", symbol},
      {u".", regional.decimal_mark},
      {u"-GBP ", minus_symbol},
      {u"GBP ", symbol},
      {u"-GBP;", minus_symbol},
      {u"GBP;", symbol},
      {u"-GBP", minus_symbol},
      {u"-AU ", u"-"},
      {u"AU ", Text()},
      {u"$", symbol},
  };
  Text out(line);
  for (const auto& r : kRewrites) out = Replace(out, r.find, r.with);
  return out;
}

const char16_t* fee_column_of(TextView rewritten) {
  const FeeKind* kind = KindOf(rewritten);
  return kind ? kind->column : nullptr;
}

std::optional<FeeCharge> read_fee_line(TextView raw, const Regional& regional) {
  const Text line = rewrite_fee_line(raw, regional);
  const FeeKind* kind = KindOf(line);
  if (!kind) return std::nullopt;
  const Text& symbol = regional.currency_symbol;

  FeeCharge charge;
  charge.column = kind->column;
  const size_t start = InStr(line, kind->literal) + Text(kind->literal).size();
  const size_t end = InStr(line, kind->end == ItemEnd::kDashes ? TextView(u"--") : TextView(symbol));
  charge.item = MidCounted(line, start, static_cast<long long>(end) - static_cast<long long>(start));
  charge.ref = CStr(Variant(Val(line)), regional);

  // The first money on the line; the second, the running balance, is cut off with what lies between.
  const size_t first = InStr(line, symbol);
  const size_t next = first == 0 ? 0 : InStr(first + 1, line, symbol);
  const long long second = static_cast<long long>(next) - 1;
  charge.amount = CCur(Variant(MidCounted(line, first, second - static_cast<long long>(first))), regional);
  return charge;
}

}  // namespace lw
