#include "listing/sell_page_layout.h"

#include <string>

#include "core/primitives/convert.h"
#include "listing/lister_tables.h"
#include "screen/data_control.h"
#include "screen/edits.h"
#include "screen/form.h"
#include "screen/tree_view.h"

namespace lw {

namespace {

constexpr char16_t kCostTip[] = u"Using these features may increase the listing cost";

// The page's frames (lister_fra by index) besides the two the checkout uses (Frame1 6 and 8).
enum Frame {
  kAuctionFrame,
  kGalleryFrame,
  kFormatFrame,
  kScheduleFrame,
  kPaymentFrame,
  kEscrowFrame,
  kShipTermsFrame,
  kShipToFrame,
  kUpgradesFrame,
  kPrivateFrame,
  kGiftFrame,
  kCounterFrame,
  kRegionFrame,
  kFrameCount
};
constexpr const char16_t* kFrameCaptions[kFrameCount] = {
    u"Auction Details",        u"Gallery",         u"Selling Format", u"Listing Schedule",
    u"Payment Methods",        u"Escrow",          u"Shipping Terms", u"Ship To",
    u"Listing Upgrades",       u"Private Auction", u"Gift Services",  u"Counter",
    u"Listing Site and Region"};

struct Option {
  const char16_t* name;
  int frame;  // kFrameCount + 6 for Frame1 6
  std::initializer_list<const char16_t*> captions;
  const char16_t* tip;
};

constexpr int kCheckoutFrame = kFrameCount + 6;

const Option kOptions[] = {
    {u"gallery_opt",
     kGalleryFrame,
     {u"Don't include item in Gallery", u"Include item in Gallery", u"Feature item in Gallery"},
     kCostTip},
    {u"Sell_format_opt",
     kFormatFrame,
     {u"Sell Item at Online Auction", u"Sell at a Fixed Price ", u"Store Sale Fixed Price "},
     nullptr},
    {u"Schedule_opt",
     kScheduleFrame,
     {u"Start listing when submitted (Free)", u"Or Schedule Date and Time"},
     nullptr},
    {u"Escrow_opt",
     kEscrowFrame,
     {u"I will accept buyer pays", u"I will pay", u"I will not accept escrow"},
     nullptr},
    {u"Ship_destination_opt",
     kShipToFrame,
     {u"Will ship to Site only", u"Will ship Worldwide", u"Will ship to Site plus these other locations"},
     nullptr},
    {u"shipping_cost_opt",
     kCheckoutFrame,
     {u"I will provide shipping costs later", u"I know my shipping costs and will provide them now"},
     nullptr},
};

constexpr const char16_t* kPayby[kPaybyCount] = {u"PayPal - payment will go to email address:",
                                                 u"MO/Cashiers cheque",
                                                 u"Personal Check",
                                                 u"Visa/Mastercard",
                                                 u"Discover",
                                                 u"COD",
                                                 u"Include Shipping and handling in sales tax",
                                                 u"Allow buyer to edit total",
                                                 u"American Express",
                                                 u"Other",
                                                 u"See Item Description"};
constexpr const char16_t* kPayShipping[kPayShippingCount] = {
    u"Buyer Pays Actual Shipping", u"Buyer Pays Fixed Amount", u"Seller Pays", u"See Item Description"};
constexpr const char16_t* kOtherLocations[kOtherLocationCount] = {
    u"Canada", u"Europe",        u"Australia",
    u"Asia",   u"South America", u"Caribbean",
    u"Africa", u"Middle East",   u"Central America/Mexico"};
constexpr const char16_t* kDisplay[kDisplayCount] = {
    u"Boldface",  u"Featured Plus",       u"Private",          u"Home Page Featured",
    u"Highlight", u"Gift Wrap/Gift Card", u"Express Shipping", u"Ship to Gift Recipient"};
constexpr int kDisplayFrame[kDisplayCount] = {kUpgradesFrame, kUpgradesFrame, kPrivateFrame, kUpgradesFrame,
                                              kUpgradesFrame, kGiftFrame,     kGiftFrame,    kGiftFrame};

class Builder {
 public:
  Builder(Form& form, DataControl& seller, DataControl& setup) : f_(form), seller_(seller), setup_(setup) {}

  void Build() {
    page_ = &f_.Add(ControlKind::Frame, u"lister_page_fra");
    page_->SetCaption(u"Lister");
    for (int i = 0; i < kFrameCount; ++i) {
      Control& fr = f_.Add(ControlKind::Frame, u"lister_fra", i);
      fr.SetCaption(kFrameCaptions[i]);
      fr.SetContainer(i == kPrivateFrame ? frames_[kUpgradesFrame] : page_);
      frames_[i] = &fr;
    }
    checkout_ = &f_.Add(ControlKind::Frame, u"Frame1", 6);
    checkout_->SetCaption(u"Shipping Costs - checkout details");
    checkout_->SetContainer(page_);
    instant_ = &f_.Add(ControlKind::Frame, u"Frame1", 8);
    instant_->SetCaption(u"Instant Purchase");
    instant_->SetContainer(checkout_);

    BuildAuctionFields();
    BuildSettings();
    BuildCheckout();
    BuildButtons();
  }

 private:
  Control* Place(int frame) { return frame == kCheckoutFrame ? checkout_ : frames_[frame]; }

  // A label before a field, so the desktop shows what the field is.
  void Label(Control* container, const char16_t* caption) {
    Control& l = f_.Add(ControlKind::Label, u"lister_lbl", labels_++);
    l.SetCaption(caption);
    l.SetContainer(container);
  }

  // A control the main form may have made already for another page or part; made here otherwise.
  template <class T>
  T& Ensure(const char16_t* name, int index) {
    if (Control* c = f_.Find(name, index)) {
      if (T* t = dynamic_cast<T*>(c)) return *t;
    }
    return f_.Add<T>(name, index);
  }
  Control& EnsureText(const char16_t* name, int index) {
    if (Control* c = f_.Find(name, index)) return *c;
    return f_.Add(ControlKind::TextBox, name, index);
  }

  Control& Field(Control& c, Control* container, const char16_t* caption) {
    Label(container, caption);
    c.SetContainer(container);
    c.SetVisible(true);
    return c;
  }

  void BuildAuctionFields() {
    Control* a = frames_[kAuctionFrame];
    Field(EnsureText(u"Title_txt", 2), a, u"Title").Bind(seller_, u"Title");
    Field(EnsureText(u"Description1_txt", 2), a, u"Description (HTML ok)").Bind(seller_, u"Description1");
    Field(EnsureText(u"category_no_txt", 0), a, u"Category Number").Bind(seller_, u"category_no");
    Field(EnsureText(u"category_no_txt", 1), a, u"Second Category Number").Bind(seller_, u"category_no2");
    Field(EnsureText(u"Quantity_txt", 2), a, u"Quantity").Bind(seller_, u"Quantity");
    Field(Ensure<MoneyEdit>(u"Minbid_txt", 2), a, u"Minimum Bid").Bind(seller_, u"Minbid");
    Field(Ensure<MoneyEdit>(u"Reserve_txt", 2), a, u"Reserve Price").Bind(seller_, u"Reserve");
    Field(Ensure<MoneyEdit>(u"buy_it_now_txt", -1), a, u"Buy It Now Price").Bind(seller_, u"buyitnow");
    ComboBox& duration = Ensure<ComboBox>(u"duration_lst", 1);
    duration.style = 2;
    Field(duration, a, u"Duration (days)").Bind(seller_, u"Length");
    Field(EnsureText(u"image_loc_txt", 2), a, u"Picture Web Address").Bind(seller_, u"picurl");
    Field(EnsureText(u"location_txt", 1), a, u"Item Location").Bind(setup_, u"Location");
  }

  void BuildSettings() {
    for (const Option& o : kOptions) {
      int i = 0;
      for (const char16_t* caption : o.captions) {
        Control& opt = f_.Add(ControlKind::OptionButton, o.name, i++);
        opt.SetCaption(caption);
        opt.SetContainer(Place(o.frame));
        if (o.tip) opt.SetTooltip(o.tip);
      }
    }
    for (int i = 0; i < kPaybyCount; ++i) {
      Control& box = f_.Add(ControlKind::CheckBox, u"payby_chk", i);
      box.SetCaption(kPayby[i]);
      box.SetContainer(i == 6 || i == 7 ? instant_ : frames_[kPaymentFrame]);
    }
    f_.Add(ControlKind::TextBox, u"paypal_txt").SetContainer(frames_[kPaymentFrame]);
    for (int i = 0; i < kPayShippingCount; ++i) {
      Control& box = f_.Add(ControlKind::CheckBox, u"payshipping_chk", i);
      box.SetCaption(kPayShipping[i]);
      box.SetContainer(frames_[kShipTermsFrame]);
    }
    for (int i = 0; i < kOtherLocationCount; ++i) {
      Control& box = f_.Add(ControlKind::CheckBox, u"other_location_chk", i);
      box.SetCaption(kOtherLocations[i]);
      box.SetContainer(frames_[kShipToFrame]);
      box.SetEnabled(false);  // only with "Site plus these other locations"
    }
    for (int i = 0; i < kDisplayCount; ++i) {
      Control& box = f_.Add(ControlKind::CheckBox, u"display_chk", i);
      box.SetCaption(kDisplay[i]);
      box.SetContainer(frames_[kDisplayFrame[i]]);
      box.SetTooltip(i == 2 ? u"Hide Userid and Email of Bidders" : kCostTip);
    }

    Control* region = frames_[kRegionFrame];
    Label(region, u"Listing Site");
    f_.Add<ComboBox>(u"country_loc_combo").SetContainer(region);
    Label(region, u"List Regionally");
    f_.Add<ComboBox>(u"list_region_combo").SetContainer(region);
    f_.Add<ComboBox>(u"gift_icon_combo").SetContainer(frames_[kGiftFrame]);
    Control* counter = frames_[kCounterFrame];
    f_.Add<ComboBox>(u"counter_combo").SetContainer(counter);
    for (int i = 0; i < 3; ++i) {
      static const char16_t* kSamples[] = {u"Honesty Style", u"Green Led", u"Hidden"};
      Control& sample = f_.Add(ControlKind::Picture, u"honestyimage", i);
      sample.SetCaption(kSamples[i]);
      sample.SetContainer(counter);
      sample.SetVisible(false);
    }

    Control* schedule = frames_[kScheduleFrame];
    Field(f_.Add<DateEditBox>(u"ctDate1"), schedule, u"Date").SetEnabled(false);
    Field(Ensure<DateEditBox>(u"ctDEdit1", 5), schedule, u"Time").SetEnabled(false);
  }

  void BuildCheckout() {
    Control* in = instant_;
    Field(f_.Add(ControlKind::TextBox, u"Ipurhase_S_and_H_txt"), in, u"Shipping and Handling")
        .Bind(setup_, u"shipfee");
    Field(f_.Add(ControlKind::TextBox, u"Ipurhase_Add_ship_txt"), in,
          u"Additional Shipping (quantity 2 or more)")
        .Bind(setup_, u"exshipfee");
    Field(f_.Add<ComboBox>(u"insurance_option_combo"), in, u"Shipping Insurance");
    Field(f_.Add(ControlKind::TextBox, u"ship_insure_txt"), in, u"Insurance per Item")
        .Bind(setup_, u"insurancefee");
    Field(f_.Add<ComboBox>(u"Ipurhase_Sale_tax_loc_combo"), in, u"Sales Tax State");
    Field(f_.Add(ControlKind::TextBox, u"Ipurhase_sales_tax_txt"), in, u"Sales Tax %")
        .Bind(setup_, u"taxrate");
    Field(f_.Add(ControlKind::TextBox, u"Ipurhase_return_policy_txt"), in,
          u"Payment Instructions and Return Policy")
        .Bind(setup_, u"returnpolicy");
    in->SetEnabled(false);  // until "I know my shipping costs" is chosen
  }

  void BuildButtons() {
    static const char16_t* kCaptions[] = {u"Load Category Numbers", u"Preview Auction"};
    for (int i = 0; i < 2; ++i) {
      Control& b = f_.Add(ControlKind::Button, u"ctbutton", i);
      b.SetCaption(kCaptions[i]);
      b.SetContainer(frames_[kAuctionFrame]);
    }
    f_.Get(u"ctbutton", 0).SetTooltip(u"View Category Numbers");
    TreeView& tree = f_.Add<TreeView>(u"ctcategorytree");
    tree.SetCaption(u"Ebay Category List");
    tree.SetContainer(frames_[kAuctionFrame]);
    Control& test = f_.Add(ControlKind::Button, u"Command1");
    test.SetCaption(u"Test API Call");
    test.SetContainer(page_);
    // The posting toolbar stays outside the page: the Validation page on the browser tab is where an
    // auction is posted from.
    if (auto* bar = dynamic_cast<Toolbar*>(f_.Find(u"ctToolBar3")); bar && bar->ButtonCount() >= 2) {
      bar->button(1).tooltip = u"Preview and then post the current data ";
      bar->button(2).tooltip = u"Add this auction to the bulk listing collection";
    }
  }

  Form& f_;
  DataControl& seller_;
  DataControl& setup_;
  Control* page_ = nullptr;
  Control* frames_[kFrameCount] = {};
  Control* checkout_ = nullptr;
  Control* instant_ = nullptr;
  int labels_ = 0;
};

void WireRules(Form& f, const SellPageHooks& hooks) {
  Form* form = &f;
  for (Control* box : f.Array(u"payby_chk")) {
    box->OnClick = [form] {
      Control* address = form->Find(u"setup_txt", 2);
      form->Get(u"paypal_txt").SetText(Ticked(*form, u"payby_chk", 0) && address ? address->text() : Text());
    };
  }
  // The first three shipping terms exclude each other, the lowest ticked winning.
  for (Control* terms : f.Array(u"payshipping_chk")) {
    terms->OnClick = [form] {
      auto box = [form](int k) -> Control& { return form->Get(u"payshipping_chk", k); };
      for (int k = 0; k < 3; ++k) {
        if (!Ticked(*form, u"payshipping_chk", k)) continue;
        for (int other = 0; other < 3; ++other)
          if (other != k) box(other).SetValue(0);
      }
    };
  }
  for (Control* opt : f.Array(u"Ship_destination_opt")) {
    opt->OnClick = [form] {
      bool regions = form->Get(u"Ship_destination_opt", 2).value() != 0;
      for (Control* box : form->Array(u"other_location_chk")) {
        box->SetEnabled(regions);
        if (!regions) box->SetValue(0);
      }
    };
  }
  for (Control* opt : f.Array(u"shipping_cost_opt")) {
    opt->OnClick = [form] {
      form->Get(u"Frame1", 8).SetEnabled(form->Get(u"shipping_cost_opt", 1).value() != 0);
    };
  }
  f.Get(u"ship_insure_txt").OnLostFocus = [form] {
    Control& box = form->Get(u"ship_insure_txt");
    if (box.text().empty()) box.SetText(u"0");
  };
  for (Control* opt : f.Array(u"Schedule_opt")) {
    opt->OnClick = [form, hooks] {
      bool scheduled = form->Get(u"Schedule_opt", 1).value() != 0;
      Control& time = form->Get(u"ctDEdit1", 5);
      form->Get(u"ctDate1").SetEnabled(scheduled);
      time.SetEnabled(scheduled);
      if (scheduled && hooks.site_now && hooks.regional) {
        Variant now(hooks.site_now());
        time.SetText(Format(now, u"HH:MM", *hooks.regional));
        // A date box always holds a date: an empty one starts at the site's day.
        Control& date = form->Get(u"ctDate1");
        if (date.text().empty()) date.SetText(Format(now, u"mm/dd/yyyy", *hooks.regional));
      }
      if (hooks.schedule_changed) hooks.schedule_changed();
    };
  }
  Control& counter = f.Get(u"counter_combo");
  counter.OnClick = [form] { change_counter_image(*form); };
  counter.OnChange = [form] { change_counter_image(*form); };
}

void Fill(Form& f, const char16_t* combo, std::span<const CodedText> table) {
  auto& c = f.Get<ComboBox>(combo);
  c.Clear();
  for (const CodedText& row : table) c.AddItem(row.text);
}

}  // namespace

void BuildSellPage(Form& form, DataControl& seller, DataControl& setup, SellPageHooks hooks) {
  Builder(form, seller, setup).Build();
  WireRules(form, hooks);
}

void FillListerLists(Form& f) {
  Fill(f, u"list_region_combo", Regions());
  Fill(f, u"country_loc_combo", Countries());
  Fill(f, u"Ipurhase_Sale_tax_loc_combo", TaxStates());
  Fill(f, u"counter_combo", Counters());
  Fill(f, u"gift_icon_combo", GiftIcons());
  Fill(f, u"insurance_option_combo", InsuranceOptions());
  f.Get(u"list_region_combo").SetText(Regions().front().text);
  f.Get(u"country_loc_combo").SetText(kDefaultCountry);
  f.Get(u"Ipurhase_Sale_tax_loc_combo").SetText(TaxStates().front().text);
  f.Get(u"counter_combo").SetText(Counters().front().text);
  f.Get(u"insurance_option_combo").SetText(InsuranceOptions().front().text);
  f.Get(u"gift_icon_combo").SetText(kGiftStartText);
  f.Get(u"Schedule_opt", 0).SetValue(kTrue);
  f.Get(u"shipping_cost_opt", 0).SetValue(kTrue);
}

void change_counter_image(Form& f) {
  const Text& text = f.Get(u"counter_combo").text();
  int shown = -1;
  if (text == u"Honesty Style")
    shown = 0;
  else if (text == u"Green Led")
    shown = 1;
  else if (text == u"Hidden")
    shown = 2;
  else if (text != u"None" && text != u"Counter Style")
    return;  // a text of no sample changes nothing
  for (int i = 0; i < 3; ++i) f.Get(u"honestyimage", i).SetVisible(i == shown);
}

int SelectedOption(const Form& f, TextView name, int count) {
  for (int i = 0; i < count; ++i)
    if (const Control* c = f.Find(name, i); c && c->value() != 0) return i;
  return -1;
}

bool Ticked(const Form& f, TextView name, int index) {
  const Control* c = f.Find(name, index);
  return c && c->value() == 1;
}

}  // namespace lw
