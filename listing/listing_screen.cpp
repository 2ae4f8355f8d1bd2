#include "listing/listing_screen.h"

#include <fstream>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "listing/api_calls.h"
#include "listing/sell_page_layout.h"
#include "platform/hosts.h"
#include "screen/edits.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

constexpr int kPathFileAccessError = 75;

Text ColumnText(Recordset& row, TextView column, const Regional& regional) {
  if (row.Eof() || row.Bof()) throw RuntimeError(err::kNoCurrentRecord, "No current record.");
  Variant v = row.Fields(column);
  return v.IsNull() ? Text() : CStr(v, regional);
}

}  // namespace

ListingScreen::ListingScreen(Program& program) : program_(&program) {}

MainForm& ListingScreen::main() const {
  if (!program_->main)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  return *program_->main;
}

ApiHttp& ListingScreen::http() {
  if (!http_) {
    // The same wait as the page downloads: a server that never answers must not hold the screen for
    // ever, and the user may shorten it.
    double seconds = Val(program_->settings.GetSetting(u"Lotwright", u"Network", u"timeout", u"60"));
    if (seconds <= 0) seconds = 60;
    http_ = std::make_unique<CurlApiHttp>(std::chrono::milliseconds(static_cast<long long>(seconds * 1000)));
  }
  return *http_;
}

std::string ListingScreen::Exchange(std::string_view call_name, const Text& site_id, int detail_level,
                                    const Text& request, const std::function<void()>& before_send) {
  ApiHttp& client = http();
  client.Open("POST", BaseUrlFor(program_->settings, "api") + kApiPath);
  for (const auto& [name, value] : ApiHeaders(call_name, site_id, detail_level))
    client.SetRequestHeader(name, value);
  if (before_send) before_send();
  client.Send(RequestBytes(request));
  return client.ResponseText();
}

std::filesystem::path ListingScreen::File(TextView name) const {
  return program_->DbFile(name);
}

void ListingScreen::WriteFile(TextView name, const std::string& bytes) const {
  std::filesystem::path path = File(name);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (out) out << bytes << "\r\n";
  if (!out) throw RuntimeError(kPathFileAccessError, "Path/File access error: " + path.string());
}

void ListingScreen::InstallStylesheets() const {
  namespace fs = std::filesystem;
  fs::path shipped = program_->files.shipped_store.parent_path();
  for (const char16_t* name : {u"\\validateitem.xsl", u"\\confirmitem.xsl"}) {
    fs::path target = File(name);
    std::error_code ec;
    if (fs::exists(target, ec)) continue;
    fs::copy_file(shipped / target.filename(), target, ec);  // without it the page shows the bare reply
  }
}

Recordset& ListingScreen::SetupRow() const {
  return main().setup_datacontrl.recordset();
}

Recordset& ListingScreen::SellerRow() const {
  return main().seller.recordset();
}

Text ListingScreen::SetupText(TextView column) const {
  return ColumnText(SetupRow(), column, program_->regional);
}

Text ListingScreen::SellerText(TextView column) const {
  return ColumnText(SellerRow(), column, program_->regional);
}

SellForm ListingScreen::ReadSellForm(const Text& uuid) const {
  MainForm& f = main();
  auto text = [&f](const char16_t* name, int index = -1) -> const Text& { return f.Get(name, index).text(); };
  SellForm s;
  s.userid = f.Userid_lst.text();
  s.password = SetupText(u"password");
  s.site_id = SetupText(u"countrylocation");
  s.description_footer = SetupText(u"description_footer");
  s.has_pic_name = !SellerText(u"pic_name").empty();

  s.clean_title = clean_title;
  s.clean_location = clean_location;
  s.category = text(u"category_no_txt", 0);
  s.category2 = text(u"category_no_txt", 1);
  s.description = text(u"Description1_txt", 2);
  s.quantity = text(u"Quantity_txt", 2);
  s.minimum_bid = text(u"Minbid_txt", 2);
  s.reserve = text(u"Reserve_txt", 2);
  s.buy_it_now = text(u"buy_it_now_txt");
  s.duration = text(u"duration_lst", 1);
  s.picture_url = text(u"image_loc_txt", 2);
  s.paypal_address = text(u"paypal_txt");

  s.country = text(u"country_loc_combo");
  s.region_code = RegionCode(text(u"list_region_combo"));
  s.gift_code = GiftCode(text(u"gift_icon_combo"));
  s.counter_code = CounterCode(text(u"counter_combo"));
  s.tax_state_code = TaxStateCode(text(u"Ipurhase_Sale_tax_loc_combo"));
  s.gallery = SelectedOption(f, u"gallery_opt", 3);
  s.sell_format = SelectedOption(f, u"Sell_format_opt", 3);
  s.escrow = SelectedOption(f, u"Escrow_opt", 3);
  s.ship_destination = SelectedOption(f, u"Ship_destination_opt", 3);
  s.schedule = SelectedOption(f, u"Schedule_opt", 2);
  s.shipping_cost = SelectedOption(f, u"shipping_cost_opt", 2);
  s.insurance_row = f.Get<ComboBox>(u"insurance_option_combo").list_index();
  for (int i = 0; i < kPaybyCount; ++i) s.payby[i] = Ticked(f, u"payby_chk", i);
  for (int i = 0; i < kDisplayCount; ++i) s.display[i] = Ticked(f, u"display_chk", i);
  for (int i = 0; i < kPayShippingCount; ++i) s.payshipping[i] = Ticked(f, u"payshipping_chk", i);
  for (int i = 0; i < kOtherLocationCount; ++i) s.other_location[i] = Ticked(f, u"other_location_chk", i);
  s.shipping_handling = text(u"Ipurhase_S_and_H_txt");
  s.additional_shipping = text(u"Ipurhase_Add_ship_txt");
  s.insurance_fee = text(u"ship_insure_txt");
  s.sales_tax_percent = text(u"Ipurhase_sales_tax_txt");
  s.checkout_instructions = text(u"Ipurhase_return_policy_txt");
  if (s.schedule != 0) {
    auto& date = f.Get<DateEditBox>(u"ctDate1");
    s.schedule_time = ScheduleTime(date.text(), date.day_first != 0, text(u"ctDEdit1", 5), us_);
  }
  s.uuid = uuid;
  return s;
}

void ListingScreen::Register(const char* name, void (*command)(ListingScreen&)) {
  program_->routines.Register(name, [this, command] { Guarded(*this, [this, command] { command(*this); }); });
}

void ListingScreen::Status(const Text& text) const {
  main().SetStatus(text);
}

Toolbar& ListingScreen::PostingBar() const {
  return main().Get<Toolbar>(u"ctToolBar3");
}

void ListingScreen::EnablePosting(int button, bool enabled) const {
  PostingBar().button(button).enabled = enabled;
}

void RegisterListing(Program& program) {
  auto screen = std::make_shared<ListingScreen>(program);
  program.subsystems.push_back(screen);
  RegisterSellPage(*screen);
  RegisterPosting(*screen);
  RegisterCategories(*screen);
}

}  // namespace lw
