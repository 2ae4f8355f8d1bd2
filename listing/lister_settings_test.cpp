// The listing settings between the Sell page and a real setup row: what each choice stores, what each
// stored value shows, the choices that store nothing, and the page's own rules.
#include "listing/lister_settings.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/store/store.h"
#include "listing/lister_tables.h"
#include "listing/sell_page_layout.h"
#include "screen/data_control.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class ListerSettings : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ =
        testing::FreshTestHome("lw_lister_", ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::copy_file(LW_BINARY_DIR "/share/lw.mdb", dir_ / "lw.mdb");
    db_ = Database::OpenDatabase(dir_ / "lw.mdb", regional_);
    db_->Execute(u"Update setup set Userid = 'alice'");
    seller_ = &f().Add<DataControl>(u"seller");
    setup_ = &f().Add<DataControl>(u"setup_datacontrl");
    for (DataControl* d : {seller_, setup_}) d->SetDatabase(db_.get());
    seller_->RecordSource = u"Select * From seller";
    setup_->RecordSource = u"Select * From setup";
    seller_->Refresh();
    setup_->Refresh();
    f().Add(ControlKind::TextBox, u"setup_txt", 2).SetText(u"alice@example.com");
    SellPageHooks hooks;
    hooks.regional = &regional_;
    hooks.site_now = [] { return MakeDate(2003, 11, 30, 17, 45); };
    hooks.schedule_changed = [this] { ++schedule_changes_; };
    BuildSellPage(f(), *seller_, *setup_, hooks);
    FillListerLists(f());
  }
  void TearDown() override {
    setup_ = seller_ = nullptr;
    db_.reset();
    fs::remove_all(dir_);
  }

  Form& f() { return t_.form; }
  Control& c(const char16_t* name, int index = -1) { return f().Get(name, index); }
  void Save() { save_bulk_listing_values(f(), setup_->recordset()); }
  void Load() { load_lister_settings(f(), setup_->recordset()); }
  Variant Column(const char16_t* column) {
    auto rs = db_->OpenRecordset(u"Select * From setup");
    return rs->Fields(column);
  }
  Text Stored(const char16_t* column) {
    Variant v = Column(column);
    return v.text() ? *v.text() : u"<not text>";
  }
  void Store(const Text& assignments) {
    db_->Execute(u"Update setup set " + assignments);
    setup_->Refresh();
  }

  testing::TestScreen t_;
  Regional regional_ = Regional::FromLocale("en_US");
  fs::path dir_;
  std::unique_ptr<Database> db_;
  DataControl* seller_ = nullptr;
  DataControl* setup_ = nullptr;
  int schedule_changes_ = 0;
};

TEST_F(ListerSettings, EveryChoiceStoresItsCode) {
  c(u"gallery_opt", 2).SetValue(kTrue);
  c(u"Sell_format_opt", 2).SetValue(kTrue);
  c(u"list_region_combo").SetText(u"WI-Milwaukee");
  c(u"country_loc_combo").SetText(u"Belgium (Dutch)");
  for (int i : {0, 3, 5, 9}) c(u"payby_chk", i).SetValue(1);
  c(u"Escrow_opt", 1).SetValue(kTrue);
  c(u"Ipurhase_Sale_tax_loc_combo").SetText(u"Dist Columbia");
  c(u"payshipping_chk", 2).SetValue(1);
  c(u"payshipping_chk", 3).SetValue(1);
  c(u"Ship_destination_opt", 2).SetValue(kTrue);
  c(u"other_location_chk", 4).SetValue(1);
  c(u"other_location_chk", 8).SetValue(1);
  for (int i : {1, 2, 7}) c(u"display_chk", i).SetValue(1);
  c(u"gift_icon_combo").SetText(u"No Gift Service");
  c(u"counter_combo").SetText(u"Hidden");
  c(u"insurance_option_combo").SetText(u"Included in S/H");
  c(u"payby_chk", 7).SetValue(1);
  Save();
  EXPECT_EQ(Column(u"galleryitem"), Variant(true));
  EXPECT_EQ(Stored(u"galleryfeatured"), u"y");
  EXPECT_EQ(Stored(u"sell_format"), u"7");
  EXPECT_EQ(Stored(u"listregionally"), u"30");
  EXPECT_EQ(Stored(u"countrylocation"), u"123");
  EXPECT_EQ(Stored(u"payoption"), u"paypal,visa_mc,cod,escrow_seller,other");
  EXPECT_EQ(Stored(u"taxstate"), u"DC");
  EXPECT_EQ(Stored(u"shippay"), u"seller,descrip");
  EXPECT_EQ(Stored(u"shipto"), u"Homeplusregions");
  EXPECT_EQ(Stored(u"shipregion"), u"southam,centralam");
  EXPECT_EQ(Stored(u"featured"), u"y");
  EXPECT_EQ(Stored(u"private"), u"y");
  EXPECT_EQ(Stored(u"catfeatured"), u"n");
  EXPECT_EQ(Stored(u"shiptorecipient"), u"y");
  EXPECT_EQ(Stored(u"boldtitle"), u"n");
  EXPECT_EQ(Stored(u"gifticon"), u"0");
  EXPECT_EQ(Stored(u"counter_type"), u"3");
  EXPECT_EQ(Stored(u"usecheckout"), u"n");
  EXPECT_EQ(Stored(u"insurance_option"), u"3");
  EXPECT_EQ(Stored(u"ship_cost_in_stax"), u"n");
  EXPECT_EQ(Stored(u"buyer_edit_total"), u"y");

  // Nothing ticked gives empty lists, and "None" stores the United States' site.
  for (Control* box : f().Array(u"payby_chk")) box->SetValue(0);
  c(u"Escrow_opt", 2).SetValue(kTrue);
  c(u"Ship_destination_opt", 1).SetValue(kTrue);
  c(u"country_loc_combo").SetText(u"None");
  c(u"gallery_opt", 0).SetValue(kTrue);
  Save();
  EXPECT_EQ(Stored(u"payoption"), u"");
  EXPECT_EQ(Stored(u"shipto"), u"intl");
  EXPECT_EQ(Stored(u"shipregion"), u"");
  EXPECT_EQ(Stored(u"countrylocation"), u"0");
  EXPECT_EQ(Column(u"galleryitem"), Variant(false));
  EXPECT_EQ(Stored(u"galleryfeatured"), u"n");
}

TEST_F(ListerSettings, TextsOutsideTheTablesStoreNothing) {
  Store(
      u"listregionally = '45', countrylocation = '16', taxstate = 'OH', gifticon = '1', counter_type = '2', "
      u"insurance_option = '1', sell_format = '9', taxrate = 5, insurancefee = '2.00', shipfee = Null");
  c(u"list_region_combo").SetText(u"Atlantis");
  c(u"country_loc_combo").SetText(u"germany");  // the comparison is exact
  c(u"Ipurhase_Sale_tax_loc_combo").SetText(u"Ohio State");
  c(u"gift_icon_combo").SetText(kGiftStartText);
  c(u"counter_combo").SetText(u"Odometer");
  c(u"insurance_option_combo").SetText(u"Sometimes");
  for (Control* opt : f().Array(u"Sell_format_opt")) opt->SetValue(kFalse);
  // Without a shipping amount the checkout amounts stay as they are, whatever their boxes say.
  c(u"Ipurhase_sales_tax_txt").SetText(u"9");
  c(u"ship_insure_txt").SetText(u"7");
  Save();
  EXPECT_EQ(Stored(u"listregionally"), u"45");
  EXPECT_EQ(Stored(u"countrylocation"), u"16");
  EXPECT_EQ(Stored(u"taxstate"), u"OH");
  EXPECT_EQ(Stored(u"gifticon"), u"1");
  EXPECT_EQ(Stored(u"counter_type"), u"2");
  EXPECT_EQ(Stored(u"insurance_option"), u"1");
  EXPECT_EQ(Stored(u"sell_format"), u"9");
  EXPECT_EQ(Column(u"taxrate"), Variant(5.0));
  EXPECT_EQ(Stored(u"insurancefee"), u"2.00");
  EXPECT_EQ(Column(u"shipfee"), Variant());

  c(u"Ipurhase_S_and_H_txt").SetText(u"4.50");
  c(u"Ipurhase_sales_tax_txt").SetText(u"");
  Save();
  EXPECT_EQ(Stored(u"shipfee"), u"4.50");
  EXPECT_EQ(Column(u"taxrate"), Variant());
  EXPECT_EQ(Stored(u"insurancefee"), u"7");
  EXPECT_EQ(Stored(u"returnpolicy"), u" ");
}

TEST_F(ListerSettings, StoredValuesComeBack) {
  Store(
      u"galleryitem = true, galleryfeatured = 'n', sell_format = ' 9', listregionally = '039', "
      u"countrylocation = '1', payoption = 'escrow_seller,amex,descrip', shippay = 'buy_fixed,descrip', "
      u"shipto = 'Homeplusregions', shipregion = 'europe,mideast', counter_type = '1', private = 'y', "
      u"catfeatured = 'n', boldtitle = 'y', highlight = 'Y', gifticon = '1', taxstate = 'TX', "
      u"insurance_option = 'Required', usecheckout = 'y', ship_cost_in_stax = 'y', buyer_edit_total = 'n'");
  c(u"payby_chk", 0).SetValue(1);
  c(u"other_location_chk", 0).SetValue(1);
  Load();
  EXPECT_NE(c(u"gallery_opt", 1).value(), 0);
  EXPECT_NE(c(u"Sell_format_opt", 1).value(), 0);
  EXPECT_EQ(c(u"list_region_combo").text(), u"AZ-Phonenix");
  EXPECT_EQ(c(u"country_loc_combo").text(), u"None");
  EXPECT_EQ(c(u"payby_chk", 0).value(), 0);
  EXPECT_EQ(c(u"paypal_txt").text(), u"");
  EXPECT_EQ(c(u"payby_chk", 8).value(), 1);
  EXPECT_EQ(c(u"payby_chk", 10).value(), 1);
  EXPECT_NE(c(u"Escrow_opt", 1).value(), 0);  // "escrow_seller" holds no "Escrow"
  EXPECT_EQ(c(u"payshipping_chk", 1).value(), 1);
  EXPECT_EQ(c(u"payshipping_chk", 3).value(), 1);
  EXPECT_NE(c(u"Ship_destination_opt", 2).value(), 0);  // "Homeplusregions" holds no "home"
  EXPECT_EQ(c(u"Ship_destination_opt", 0).value(), 0);
  // Regions found are ticked; the others stay as they stood.
  EXPECT_EQ(c(u"other_location_chk", 0).value(), 1);
  EXPECT_EQ(c(u"other_location_chk", 1).value(), 1);
  EXPECT_EQ(c(u"other_location_chk", 7).value(), 1);
  EXPECT_EQ(c(u"counter_combo").text(), u"Honesty Style");
  EXPECT_TRUE(c(u"honestyimage", 0).visible());
  // private comes back as Home Page Featured and catfeatured as Private.
  EXPECT_EQ(c(u"display_chk", 3).value(), 1);
  EXPECT_EQ(c(u"display_chk", 2).value(), 0);
  EXPECT_EQ(c(u"display_chk", 0).value(), 1);
  EXPECT_EQ(c(u"display_chk", 4).value(), 0);
  EXPECT_EQ(c(u"gift_icon_combo").text(), u"Gift Service");
  EXPECT_EQ(c(u"Ipurhase_Sale_tax_loc_combo").text(), u"Texas");
  EXPECT_EQ(c(u"insurance_option_combo").text(), u"Required");
  EXPECT_NE(c(u"shipping_cost_opt", 1).value(), 0);
  EXPECT_TRUE(c(u"Frame1", 8).enabled());
  EXPECT_EQ(c(u"payby_chk", 6).value(), 1);
  EXPECT_EQ(c(u"payby_chk", 7).value(), 0);

  // Values the tables don't know leave the page as it stood; digits never match the insurance texts.
  Store(
      u"listregionally = '99', countrylocation = 'x', taxstate = 'ZZ', gifticon = '2', counter_type = '7', "
      u"insurance_option = '2', galleryfeatured = 'y', sell_format = Null, usecheckout = Null");
  Load();
  EXPECT_EQ(c(u"list_region_combo").text(), u"AZ-Phonenix");
  EXPECT_EQ(c(u"country_loc_combo").text(), u"None");
  EXPECT_EQ(c(u"Ipurhase_Sale_tax_loc_combo").text(), u"Texas");
  EXPECT_EQ(c(u"gift_icon_combo").text(), u"Gift Service");
  EXPECT_EQ(c(u"counter_combo").text(), u"Counter Style");
  EXPECT_EQ(c(u"insurance_option_combo").text(), u"Required");
  EXPECT_NE(c(u"gallery_opt", 2).value(), 0);
  EXPECT_NE(c(u"Sell_format_opt", 1).value(), 0);
  EXPECT_EQ(c(u"shipping_cost_opt", 1).value(), 0);
}

TEST_F(ListerSettings, ThePagesOwnRules) {
  // PayPal's address follows its box.
  c(u"payby_chk", 0).SetValue(1);
  EXPECT_EQ(c(u"paypal_txt").text(), u"alice@example.com");
  c(u"payby_chk", 3).SetValue(1);
  c(u"payby_chk", 0).SetValue(0);
  EXPECT_EQ(c(u"paypal_txt").text(), u"");
  // Of the first three shipping terms the lowest ticked stays; the fourth is free.
  c(u"payshipping_chk", 2).SetValue(1);
  c(u"payshipping_chk", 3).SetValue(1);
  c(u"payshipping_chk", 1).SetValue(1);
  EXPECT_EQ(c(u"payshipping_chk", 1).value(), 1);
  EXPECT_EQ(c(u"payshipping_chk", 2).value(), 0);
  c(u"payshipping_chk", 0).SetValue(1);
  c(u"payshipping_chk", 2).SetValue(1);
  EXPECT_EQ(c(u"payshipping_chk", 0).value(), 1);
  EXPECT_EQ(c(u"payshipping_chk", 1).value(), 0);
  EXPECT_EQ(c(u"payshipping_chk", 2).value(), 0);
  EXPECT_EQ(c(u"payshipping_chk", 3).value(), 1);
  // Regions need "Site plus"; leaving it clears them.
  c(u"Ship_destination_opt", 2).SetValue(kTrue);
  c(u"other_location_chk", 5).SetValue(1);
  c(u"Ship_destination_opt", 1).SetValue(kTrue);
  EXPECT_FALSE(c(u"other_location_chk", 5).enabled());
  EXPECT_EQ(c(u"other_location_chk", 5).value(), 0);
  // The schedule's boxes open with the site's time, and the time left is worked out again.
  schedule_changes_ = 0;
  c(u"Schedule_opt", 1).SetValue(kTrue);
  EXPECT_TRUE(c(u"ctDate1").enabled());
  EXPECT_EQ(c(u"ctDEdit1", 5).text(), u"17:45");
  EXPECT_EQ(c(u"ctDate1").text(), u"11/30/2003");
  c(u"Schedule_opt", 0).SetValue(kTrue);
  EXPECT_FALSE(c(u"ctDEdit1", 5).enabled());
  EXPECT_EQ(schedule_changes_, 2);
  // An emptied insurance box reads 0; the counter shows one sample or none.
  c(u"ship_insure_txt").SetText(u"");
  f().SetFocus(&c(u"ship_insure_txt"));
  f().SetFocus(&c(u"paypal_txt"));
  EXPECT_EQ(c(u"ship_insure_txt").text(), u"0");
  c(u"counter_combo").SetText(u"Green Led");
  EXPECT_FALSE(c(u"honestyimage", 0).visible());
  EXPECT_TRUE(c(u"honestyimage", 1).visible());
  c(u"counter_combo").SetText(u"Odometer");
  EXPECT_TRUE(c(u"honestyimage", 1).visible());
  c(u"counter_combo").SetText(u"None");
  EXPECT_FALSE(c(u"honestyimage", 1).visible());
}

}  // namespace
}  // namespace lw
