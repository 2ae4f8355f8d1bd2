#include "listing/lister_settings.h"

#include <cctype>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "core/store/store.h"
#include "listing/lister_tables.h"
#include "listing/sell_page_layout.h"
#include "screen/form.h"

namespace lw {

namespace {

// The keywords of a list column, with the control that adds each.
struct Keyword {
  const char16_t* word;
  const char16_t* control;
  int index;
};

// "Escrow" and "escrow_seller" stand for two options of one group; they are looked for by exact case so
// that the one never matches inside the other.
constexpr Keyword kPayOptions[] = {
    {u"paypal", u"payby_chk", 0},   {u"mo", u"payby_chk", 1},
    {u"check", u"payby_chk", 2},    {u"visa_mc", u"payby_chk", 3},
    {u"disc", u"payby_chk", 4},     {u"cod", u"payby_chk", 5},
    {u"Escrow", u"Escrow_opt", 0},  {u"escrow_seller", u"Escrow_opt", 1},
    {u"amex", u"payby_chk", 8},     {u"other", u"payby_chk", 9},
    {u"descrip", u"payby_chk", 10},
};
constexpr Keyword kShipPay[] = {
    {u"buy_actual", u"payshipping_chk", 0},
    {u"buy_fixed", u"payshipping_chk", 1},
    {u"seller", u"payshipping_chk", 2},
    {u"descrip", u"payshipping_chk", 3},
};
constexpr Keyword kShipTo[] = {
    {u"home", u"Ship_destination_opt", 0},
    {u"intl", u"Ship_destination_opt", 1},
    {u"Homeplusregions", u"Ship_destination_opt", 2},
};
constexpr Keyword kShipRegions[] = {
    {u"canada", u"other_location_chk", 0},    {u"europe", u"other_location_chk", 1},
    {u"australia", u"other_location_chk", 2}, {u"asia", u"other_location_chk", 3},
    {u"southam", u"other_location_chk", 4},   {u"caribbean", u"other_location_chk", 5},
    {u"africa", u"other_location_chk", 6},    {u"mideast", u"other_location_chk", 7},
    {u"centralam", u"other_location_chk", 8},
};

// The upgrade columns with the box each is saved from and the box each is loaded into. Two of them
// differ: catfeatured comes back into the Private box and private into Home Page Featured, so the two
// swap at every load. Stored lists and the site's bills have always followed that, and it stays.
struct Upgrade {
  const char16_t* column;
  int saved_from;
  int loaded_into;
};
constexpr Upgrade kUpgrades[] = {
    {u"boldtitle", 0, 0}, {u"featured", 1, 1}, {u"catfeatured", 3, 2}, {u"private", 2, 3},
    {u"highlight", 4, 4}, {u"giftwrap", 5, 5}, {u"expresship", 6, 6},  {u"shiptorecipient", 7, 7},
};

constexpr const char16_t* kSellFormats[] = {u"1", u"9", u"7"};

Text FieldText(Recordset& rs, TextView column) {
  Variant v = rs.Fields(column);
  if (const Text* t = v.text()) return *t;
  if (v.IsNull()) return Text();
  if (const double* n = v.number()) {
    std::string s = std::to_string(*n);
    s.erase(s.find_last_not_of('0') + 1);
    if (!s.empty() && s.back() == '.') s.pop_back();
    return FromUtf8(s);
  }
  if (const bool* b = v.boolean()) return *b ? u"True" : u"False";
  return Text();
}

// A stored number as the tables compare it: digits alone, blanks around allowed.
bool StoredNumber(const Text& text, long& out) {
  Text t = Trim(text);
  if (t.empty() || t.size() > 9) return false;
  long v = 0;
  for (char16_t c : t) {
    if (c < u'0' || c > u'9') return false;
    v = v * 10 + (c - u'0');
  }
  out = v;
  return true;
}

// The row of a table whose code is the same number as the stored value; the first such row wins.
std::optional<Text> TextOfNumber(std::span<const CodedText> table, const Text& stored) {
  long n = 0;
  if (!StoredNumber(stored, n)) return std::nullopt;
  for (const CodedText& row : table) {
    long code = 0;
    if (StoredNumber(row.code, code) && code == n) return Text(row.text);
  }
  return std::nullopt;
}

Text YOrN(bool on) {
  return on ? u"y" : u"n";
}

// The keywords whose boxes are ticked, each with its comma, the last comma cut off.
template <size_t N>
Text Joined(const Form& f, const Keyword (&list)[N]) {
  Text out;
  for (const Keyword& k : list) {
    const Control* c = f.Find(k.control, k.index);
    if (!c) continue;
    bool on = c->kind() == ControlKind::OptionButton ? c->value() != 0 : c->value() == 1;
    if (on) out += Text(k.word) + u",";
  }
  if (!out.empty()) out.pop_back();
  return out;
}

bool Has(const Text& stored, const char16_t* word) {
  return stored.find(word) != Text::npos;
}

void Select(Form& f, const char16_t* name, int index) {
  f.Get(name, index).SetValue(kTrue);
}

void Tick(Form& f, const char16_t* name, int index, bool on) {
  f.Get(name, index).SetValue(on ? 1 : 0);
}

}  // namespace

void save_bulk_listing_values(Form& f, Recordset& rs) {
  auto text = [&f](const char16_t* name) -> const Text& { return f.Get(name).text(); };
  auto set = [&rs](const char16_t* column, const Text& value) { rs.SetField(column, Variant(value)); };
  rs.Edit();

  int gallery = SelectedOption(f, u"gallery_opt", 3);
  rs.SetField(u"galleryitem", Variant(gallery != 0));
  set(u"galleryfeatured", YOrN(gallery == 2));
  if (int format = SelectedOption(f, u"Sell_format_opt", 3); format >= 0)
    set(u"sell_format", kSellFormats[format]);

  if (auto region = CodeOf(Regions(), text(u"list_region_combo"))) set(u"listregionally", *region);
  const Text& country = text(u"country_loc_combo");
  if (country == kNoCountry)
    set(u"countrylocation", u"0");
  else if (auto site = CodeOf(Countries(), country))
    set(u"countrylocation", *site);

  set(u"payoption", Joined(f, kPayOptions));
  if (auto state = CodeOf(TaxStates(), text(u"Ipurhase_Sale_tax_loc_combo"))) set(u"taxstate", *state);

  // The checkout amounts are written only with a shipping amount; the boxes stay bound to their
  // columns all the same.
  if (!text(u"Ipurhase_S_and_H_txt").empty()) {
    for (auto [box, column] :
         {std::pair{u"Ipurhase_S_and_H_txt", u"shipfee"}, std::pair{u"Ipurhase_Add_ship_txt", u"exshipfee"},
          std::pair{u"Ipurhase_sales_tax_txt", u"taxrate"}, std::pair{u"ship_insure_txt", u"insurancefee"}}) {
      Control& c = f.Get(box);
      rs.SetField(column, c.BoundValue(rs.Fields(column)));
      c.SetDataChanged(false);
    }
    if (text(u"Ipurhase_return_policy_txt").empty()) set(u"returnpolicy", u" ");
  }

  set(u"shippay", Joined(f, kShipPay));
  set(u"shipto", Joined(f, kShipTo));
  Text regions;
  for (const Keyword& k : kShipRegions) {
    const Control& box = f.Get(k.control, k.index);
    if (box.enabled() && box.value() == 1) regions += Text(k.word) + u",";
  }
  if (!regions.empty()) regions.pop_back();
  set(u"shipregion", regions);

  for (const Upgrade& u : kUpgrades) set(u.column, YOrN(Ticked(f, u"display_chk", u.saved_from)));

  if (auto gift = CodeOf(GiftIcons(), text(u"gift_icon_combo"))) set(u"gifticon", *gift);
  if (auto counter = CodeOf(Counters(), text(u"counter_combo"))) set(u"counter_type", *counter);
  set(u"usecheckout", YOrN(f.Get(u"shipping_cost_opt", 1).value() != 0));
  if (auto insurance = CodeOf(InsuranceOptions(), text(u"insurance_option_combo")))
    set(u"insurance_option", *insurance);
  set(u"ship_cost_in_stax", YOrN(Ticked(f, u"payby_chk", 6)));
  set(u"buyer_edit_total", YOrN(Ticked(f, u"payby_chk", 7)));
  rs.Update();
}

void load_lister_settings(Form& f, Recordset& rs) {
  auto combo = [&f](const char16_t* name) -> Control& { return f.Get(name); };

  Variant gallery = rs.Fields(u"galleryitem");
  const bool* in_gallery = gallery.boolean();
  Select(f, u"gallery_opt", in_gallery && *in_gallery ? 1 : 0);
  if (FieldText(rs, u"galleryfeatured") == u"y") Select(f, u"gallery_opt", 2);

  long format = 0;
  if (StoredNumber(FieldText(rs, u"sell_format"), format)) {
    if (format == 1) Select(f, u"Sell_format_opt", 0);
    if (format == 9) Select(f, u"Sell_format_opt", 1);
    if (format == 7) Select(f, u"Sell_format_opt", 2);
  }

  if (auto region = TextOfNumber(Regions(), FieldText(rs, u"listregionally")))
    combo(u"list_region_combo").SetText(*region);
  Text site = FieldText(rs, u"countrylocation");
  long site_id = 0;
  if (StoredNumber(site, site_id) && site_id == 1)
    combo(u"country_loc_combo").SetText(kNoCountry);
  else if (auto country = TextOfNumber(Countries(), site))
    combo(u"country_loc_combo").SetText(*country);

  Text pay = FieldText(rs, u"payoption");
  for (const Keyword& k : kPayOptions)
    if (Text(k.control) == u"payby_chk") Tick(f, k.control, k.index, Has(pay, k.word));
  Select(f, u"Escrow_opt", Has(pay, u"Escrow") ? 0 : Has(pay, u"escrow_seller") ? 1 : 2);

  Text shippay = FieldText(rs, u"shippay");
  for (int i = 0; i < kPayShippingCount; ++i) Tick(f, u"payshipping_chk", i, false);
  for (int order : {2, 1, 0, 3})
    if (Has(shippay, kShipPay[order].word)) Tick(f, u"payshipping_chk", order, true);

  Text shipto = FieldText(rs, u"shipto");
  for (Control* opt : f.Array(u"Ship_destination_opt")) opt->SetValue(kFalse);
  for (const Keyword& k : kShipTo)
    if (Has(shipto, k.word)) Select(f, k.control, k.index);

  Text shipregion = FieldText(rs, u"shipregion");
  for (const Keyword& k : kShipRegions)
    if (Has(shipregion, k.word)) Tick(f, k.control, k.index, true);

  long counter = 0;
  bool known_counter = StoredNumber(FieldText(rs, u"counter_type"), counter) && counter >= 1 && counter <= 3;
  combo(u"counter_combo").SetText(known_counter ? Counters()[counter + 1].text : Counters().front().text);

  for (int i = 0; i < kDisplayCount; ++i) Tick(f, u"display_chk", i, false);
  for (const Upgrade& u : kUpgrades)
    if (FieldText(rs, u.column) == u"y") Tick(f, u"display_chk", u.loaded_into, true);

  if (auto gift = TextOf(GiftIcons(), FieldText(rs, u"gifticon"))) combo(u"gift_icon_combo").SetText(*gift);
  if (auto state = TextOf(TaxStates(), FieldText(rs, u"taxstate")))
    combo(u"Ipurhase_Sale_tax_loc_combo").SetText(*state);

  // The stored insurance option is a digit, and it is compared with the list's texts: it matches none,
  // so the combo keeps what it shows. Settings saved that way have always come back so.
  Text insurance = FieldText(rs, u"insurance_option");
  for (const CodedText& row : InsuranceOptions())
    if (insurance == row.text) combo(u"insurance_option_combo").SetText(row.text);

  if (FieldText(rs, u"usecheckout") == u"y")
    Select(f, u"shipping_cost_opt", 1);
  else
    f.Get(u"shipping_cost_opt", 1).SetValue(kFalse);
  Tick(f, u"payby_chk", 6, FieldText(rs, u"ship_cost_in_stax") == u"y");
  Tick(f, u"payby_chk", 7, FieldText(rs, u"buyer_edit_total") == u"y");
}

}  // namespace lw
