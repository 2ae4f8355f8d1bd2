#include "accounting/charges_screen.h"

#include <functional>

#include "accounting/charges.h"
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

// Runs a handler of the main screen: a failure goes to the status bar.
void Handled(MainForm& form, const std::function<void()>& body) {
  try {
    body();
  } catch (const RuntimeError& e) {
    form.SetStatus(FromUtf8(e.description()));
  }
}

// Adds `more` behind whatever the event already does.
template <class Signature, class More>
void Chain(std::function<Signature>& event, More more) {
  event = [before = std::move(event), more = std::move(more)](auto... args) {
    if (before) before(args...);
    more(args...);
  };
}

void OpenModally(MainForm& form, Form& dialog) {
  Handled(form, [&dialog] { dialog.Show(true); });
}

void check1_3_Click(MainForm& form, Control& box) {
  DataControl& seller = form.seller;
  if (!seller.HasRecordset() || seller.recordset().Eof() || seller.recordset().Bof()) return;
  Recordset& rs = seller.recordset();
  const bool ticked = box.value() == 1;
  // Showing a row puts its value in the box and fires this too; only a change needs writing.
  if (IsTrue(rs.Fields(u"taxable")) == ticked) return;
  rs.Edit();
  try {
    rs.SetField(u"taxable", Variant(ticked));
    rs.Update();
  } catch (...) {
    if (rs.EditInProgress()) rs.CancelUpdate();
    throw;
  }
  box.SetDataChanged(false);
}

// The popup of the price and shipping boxes: both show the price plus the charges of the side.
void ShowQuickSum(MainForm& form, int side, const Text& caption) {
  const Regional& r = form.program().regional;
  double sum = CDbl(Variant(form.Get(u"ctRealInput1", side).text()), r) +
               CDbl(Variant(form.Get(u"shipping_price_txt", side).text()), r);
  form.Get<Menu>(u"calculate_costandshipping_mnu").SetCaption(caption + Format(Variant(sum), u"currency", r));
  form.PopupMenu(form.Get<Menu>(u"rightmouse_menu_2"));
}

void AddQuickSums(MainForm& form) {
  Menu& popup = form.AddMenu(u"rightmouse_menu_2", u"Sums", nullptr);
  popup.SetVisible(false);
  // The entry only shows its sum; choosing it does nothing.
  form.AddMenu(u"calculate_costandshipping_mnu", Text(), &popup).OnClick = [] {};
  struct Box {
    const char16_t* name;
    const char16_t* caption;
  };
  for (int side = 0; side < 2; ++side) {
    for (Box b : {Box{u"ctRealInput1", u"Sale Price + Shipping = "},
                  Box{u"shipping_price_txt", u"Sale Price + Total Charges inc. Tax = "}}) {
      Text caption = b.caption;
      MainForm* f = &form;
      Chain(form.Get(b.name, side).OnMouseDown, [f, side, caption](int button, int) {
        if (button == kRightButton) Handled(*f, [&] { ShowQuickSum(*f, side, caption); });
      });
    }
  }
}

// The price box writes a change at once and the total follows; showing a row is no change.
void SaveChangedPrice(MainForm& form) {
  for (int side = 0; side < 2; ++side) {
    Control& price = form.Get(u"ctRealInput1", side);
    MainForm* f = &form;
    Chain(price.OnChange, [f, &price] {
      if (!price.data_changed()) return;
      Handled(*f, [f] {
        f->CallRoutine("save_data_changed");
        f->CallRoutine("sum_grid");
      });
    });
  }
}

// The lister's number boxes that may not stay empty, and what they take back when left so. They are the
// listing page's; they are looked up once every part of the program has put its controls on the form.
struct ListerDefault {
  const char16_t* name;
  const char16_t* value;
};
constexpr ListerDefault kListerDefaults[] = {{u"Ipurhase_Add_ship_txt", u"0"},
                                             {u"Ipurhase_return_policy_txt", u" "},
                                             {u"Ipurhase_S_and_H_txt", u"0"},
                                             {u"Ipurhase_sales_tax_txt", u"0"}};
// The insurance box of the sell page puts its own "0" back.

void RestoreEmptyListerBoxes(MainForm& form) {
  for (const ListerDefault& d : kListerDefaults) {
    Control* box = form.Find(d.name);
    if (!box) box = &form.Add(ControlKind::TextBox, d.name);
    Text value = d.value;
    Chain(box->OnLostFocus, [box, value] {
      if (box->text().empty()) box->SetText(value);
    });
  }
}

}  // namespace

void RegisterCharges(Program& program) {
  MainForm& form = *program.main;
  ChargesForm& charges = program.screen.Create<ChargesForm>(program);
  PurchaseChargesForm& costs = program.screen.Create<PurchaseChargesForm>(program);

  // The charges box of the details page shows the sale's total charges, and the bidder's its shipping.
  form.Get(u"shipping_price_txt", 0).Bind(form.seller, u"total_charges");
  form.Get(u"shipping_price_txt", 1).Bind(form.Bidder, u"Ship_cost");
  MainForm* f = &form;
  Chain(form.Get(u"shipping_price_txt", 0).OnClick, [f, &charges] { OpenModally(*f, charges); });
  Chain(form.Get(u"Cost_txt", 0).OnClick, [f, &costs] { OpenModally(*f, costs); });

  Control* taxable = form.Find(u"check1", 3);
  if (!taxable) taxable = &form.Add(ControlKind::CheckBox, u"check1", 3);
  taxable->SetCaption(u"Item is Taxable");
  taxable->Bind(form.seller, u"taxable");
  Chain(taxable->OnClick, [f, taxable] { Handled(*f, [&] { check1_3_Click(*f, *taxable); }); });

  AddQuickSums(form);
  SaveChangedPrice(form);
  Chain(form.OnLoad, [f] { RestoreEmptyListerBoxes(*f); });
}

}  // namespace lw
