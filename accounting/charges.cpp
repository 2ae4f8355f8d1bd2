#include "accounting/charges.h"

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

constexpr int32_t kWhite = 0xFFFFFF;

// The sale columns of boxes 1 to 5, in the order Updatebutton writes them.
constexpr const char16_t* kSaleColumns[] = {u"ship_cost", u"insure_cost", u"price_tax", u"ship_tax",
                                            u"insure_tax"};

// The four costs and their taxes, as Updatebutton writes boxes 0 to 7, and the "apply tax" flags of the
// costs by the index of their check box.
constexpr const char16_t* kCostColumns[] = {u"cost",
                                            u"actual_ship_cost",
                                            u"actual_insure_cost",
                                            u"actual_other_cost",
                                            u"actual_price_tax",
                                            u"actual_ship_tax",
                                            u"actual_insure_tax",
                                            u"actual_other_tax"};
constexpr const char16_t* kCostFlags[] = {u"apply_costpricetax", u"apply_actualshiptax",
                                          u"apply_actualinsuretax", u"apply_actualothertax"};

constexpr const char16_t* kSaleFrames[] = {u"Item", u"Shipping", u"Insurance", u"Totals"};
constexpr ChargesDialog::BoxPlace kSaleBoxes[] = {
    {u"Item Price", 0},         {u"Shipping", 1},         {u"Insurance", 2},      {u"Tax on Price", 0},
    {u"Tax on Shipping", 1},    {u"Tax on Insurance", 2}, {u"Price with Tax", 0}, {u"Shipping with Tax", 1},
    {u"Insurance with Tax", 2}, {u"Total Tax", 3},        {u"Final Price", 3},
};

constexpr const char16_t* kCostFrames[] = {u"Cost", u"Shipping", u"Insurance", u"Other", u"Totals"};
constexpr ChargesDialog::BoxPlace kCostBoxes[] = {
    {u"Cost", 0},
    {u"Actual Shipping Cost", 1},
    {u"Actual Insurance Cost", 2},
    {u"Other Cost", 3},
    {u"Tax on Cost", 0},
    {u"Tax on Shipping", 1},
    {u"Tax on Insurance", 2},
    {u"Tax on Other Cost", 3},
    {u"Cost with Tax", 0},
    {u"Shipping with Tax", 1},
    {u"Insurance with Tax", 2},
    {u"Other Cost with Tax", 3},
    {u"Total Tax", 4},
    {u"Final Cost", 4},
};

Variant Money(const ChargeBox& box) {
  return Variant(SingleToCurrency(box.Single()));
}

}  // namespace

bool IsTrue(const Variant& value) {
  if (const bool* b = value.boolean()) return *b;
  if (const double* n = value.number()) return *n == kTrue;
  return false;
}

Variant TaxOn(const Variant& amount, const Variant& rate) {
  std::optional<double> a = NumberOf(amount);
  std::optional<double> r = NumberOf(rate);
  if (!a || !r) return Variant();
  return Variant(*a * *r * 0.01);
}

Variant BoxPlus(const ChargeBox& box, const Variant& amount) {
  const Currency* money = amount.currency();
  if (!money) return Variant();
  return Variant(SingleToCurrency(box.Single()) + *money);
}

ChargesDialog::ChargesDialog(Screen& screen, Program& program, Text name, Text caption,
                             std::span<const char16_t* const> frames, std::span<const BoxPlace> boxes)
    : Form(screen, std::move(name)),
      Updatebutton(Add(ControlKind::Button, u"Updatebutton")),
      OKButton(Add(ControlKind::Button, u"OKButton")),
      CancelButton(Add(ControlKind::Button, u"CancelButton")),
      program_(program) {
  this->caption = std::move(caption);
  width = 7400;
  height = 5200;
  for (size_t i = 0; i < frames.size(); ++i) {
    Control& f = Add(ControlKind::Frame, u"charges_fra", static_cast<int>(i));
    f.SetCaption(frames[i]);
    frames_.push_back(&f);
  }
  for (size_t i = 0; i < boxes.size(); ++i) {
    int index = static_cast<int>(i);
    Control& label = Add(ControlKind::Label, u"charges_lbl", index);
    label.SetCaption(boxes[i].label);
    label.SetContainer(frames_[static_cast<size_t>(boxes[i].frame)]);
    ChargeBox& b = ChargeBox::AddTo(*this, u"charges", index, program.regional);
    b.SetContainer(frames_[static_cast<size_t>(boxes[i].frame)]);
    b.OnChange = [this] {
      if (!Updatebutton.enabled()) Updatebutton.SetEnabled(true);
    };
    boxes_.push_back(&b);
  }
  Updatebutton.SetCaption(u"Update");
  OKButton.SetCaption(u"OK");
  CancelButton.SetCaption(u"Cancel");
  CancelButton.OnClick = [this] { Close(); };
}

Recordset& ChargesDialog::Record() const {
  if (!program_.main)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  return program_.main->seller.recordset();
}

Variant ChargesDialog::Setting(TextView column) const {
  if (!program_.main) return Variant();
  DataControl& setup = program_.main->setup_datacontrl;
  if (!setup.HasRecordset() || setup.recordset().Eof() || setup.recordset().Bof()) return Variant();
  return setup.recordset().Fields(column);
}

void ChargesDialog::Handled(const std::function<void()>& body) {
  try {
    body();
  } catch (const RuntimeError& e) {
    if (program_.main) {
      Recordset* rs = program_.main->seller.HasRecordset() ? &program_.main->seller.recordset() : nullptr;
      if (rs && rs->EditInProgress()) rs->CancelUpdate();
      program_.main->SetStatus(FromUtf8(e.description()));
    }
  }
}

float ChargesDialog::SumOf(int first, int count) const {
  float sum = 0;
  for (int i = first; i < first + count; ++i) sum += box(i).Single();
  return sum;
}

void ChargesDialog::WriteBoxes(std::span<const char16_t* const> columns, int first) {
  Recordset& rs = Record();
  rs.Edit();
  for (size_t i = 0; i < columns.size(); ++i)
    rs.SetField(columns[i], Money(box(first + static_cast<int>(i))));
  rs.Update();
}

void ChargesDialog::WriteRow(std::initializer_list<std::pair<const char16_t*, Variant>> fields) {
  Recordset& rs = Record();
  rs.Edit();
  for (const auto& [column, value] : fields) rs.SetField(column, value);
  rs.Update();
}

// --- Taxes and Charges ---------------------------------------------------------------------------

ChargesForm::ChargesForm(Screen& screen, Program& program)
    : ChargesDialog(screen, program, u"frmcharges", u"Taxes and Charges", kSaleFrames, kSaleBoxes) {
  OnLoad = [this] { Handled([this] { Opening(); }); };
  Updatebutton.OnClick = [this] { Handled([this] { Updatebutton_Click(); }); };
  OKButton.OnClick = [this] { Handled([this] { OKButton_Click(); }); };
}

void ChargesForm::Opening() {
  try {
    for (int i = 0; i < 11; ++i) box(i).SetSingle(0);
    calculate_sale_charges();
    Updatebutton.SetEnabled(false);
  } catch (...) {
    // Without a row to show there is no dialog to show.
    Unload();
    throw;
  }
}

void ChargesForm::calculate_sale_charges() {
  box(1).SetBackcolor(kWhite);
  box(2).SetBackcolor(kWhite);
  Recordset& rs = Record();
  const Variant price = rs.Fields(u"price");
  const Variant ship = rs.Fields(u"ship_cost");
  const Variant insure = rs.Fields(u"insure_cost");
  box(0).SetAmount(price);
  box(1).SetAmount(ship);
  box(2).SetAmount(insure);
  if (IsTrue(rs.Fields(u"taxable"))) {
    const Variant rate = Setting(u"taxrate");
    if (IsTrue(Setting(u"taxprice"))) box(3).SetAmount(TaxOn(price, rate));
    if (IsTrue(Setting(u"taxshipping"))) box(4).SetAmount(TaxOn(ship, rate));
    if (IsTrue(Setting(u"taxinsurance"))) box(5).SetAmount(TaxOn(insure, rate));
  }
  box(6).SetAmount(BoxPlus(box(3), price));
  box(7).SetAmount(BoxPlus(box(4), ship));
  box(8).SetAmount(BoxPlus(box(5), insure));
  box(9).SetSingle(SumOf(3, 3));
  box(10).SetSingle(SumOf(6, 3));
}

void ChargesForm::Updatebutton_Click() {
  WriteBoxes(kSaleColumns, 1);
  calculate_sale_charges();
}

void ChargesForm::OKButton_Click() {
  Updatebutton_Click();
  box(9).SetSingle(SumOf(3, 3));
  WriteRow({{u"total_tax", Money(box(9))}});
  Close();
  // The screen shows the row as it now stands; what was typed on it is written first, not dropped.
  MainForm& main = *program_.main;
  main.seller.UpdateRecord();
  main.seller.Reposition();
}

// --- Purchase and Sale Costs ---------------------------------------------------------------------

PurchaseChargesForm::PurchaseChargesForm(Screen& screen, Program& program)
    : ChargesDialog(screen, program, u"frmpurchasecharges", u"Purchase and Sale Costs", kCostFrames,
                    kCostBoxes),
      purchase_tax_rate(ChargeBox::AddTo(*this, u"purchase_tax_rate", -1, program.regional)) {
  Control& rate_label = Add(ControlKind::Label, u"purchase_tax_rate_lbl");
  rate_label.SetCaption(u"Sales Tax Percentage Rate");
  rate_label.SetContainer(&frame(4));
  purchase_tax_rate.SetContainer(&frame(4));
  purchase_tax_rate.SetBackcolor(kWhite);
  purchase_tax_rate.OnChange = [this] {
    if (!Updatebutton.enabled()) Updatebutton.SetEnabled(true);
  };
  for (int i = 0; i < 4; ++i) {
    Control& check = Add(ControlKind::CheckBox, u"applytax_chk", i);
    check.SetCaption(u"Apply Tax");
    check.SetContainer(&frame(i));
    check.OnClick = [this, i] {
      if (!filling_) Handled([this, i] { applytax_chk_Click(i); });
    };
  }
  OnLoad = [this] { Handled([this] { Opening(); }); };
  Updatebutton.OnClick = [this] { Handled([this] { Updatebutton_Click(); }); };
  OKButton.OnClick = [this] { Handled([this] { OKButton_Click(); }); };
}

void PurchaseChargesForm::Opening() {
  try {
    for (int i = 0; i < 14; ++i) box(i).SetSingle(0);
    // Each opening starts from the user id's rate; a rate typed here serves this opening alone.
    purchase_tax_rate.SetText(u"0");
    if (purchase_tax_rate.text() == u"0") purchase_tax_rate.SetAmount(Setting(u"taxrate"));
    calculate_purchase_charges();
  } catch (...) {
    Unload();
    throw;
  }
}

void PurchaseChargesForm::calculate_purchase_charges() {
  for (int i = 0; i < 4; ++i) box(i).SetBackcolor(kWhite);
  Recordset& rs = Record();
  Variant costs[4];
  for (int i = 0; i < 4; ++i) costs[i] = rs.Fields(kCostColumns[i]);
  box(0).SetAmount(costs[0]);
  for (int i = 1; i < 4; ++i) box(i).SetAmount(costs[i].IsNull() ? Variant(0) : costs[i]);
  bool flags[4];
  {
    FlagRaised showing(filling_);
    for (int i = 0; i < 4; ++i) {
      flags[i] = IsTrue(rs.Fields(kCostFlags[i]));
      Get(u"applytax_chk", i).SetValue(flags[i] ? 1 : 0);
    }
  }
  const double rate = purchase_tax_rate.Single() * 0.01;
  for (int i = 0; i < 4; ++i) {
    std::optional<double> amount = NumberOf(costs[i]);
    if (!flags[i])
      box(4 + i).SetSingle(0);
    else if (!amount)
      box(4 + i).SetAmount(Variant());  // the tax on a cost that is not there is none
    else
      box(4 + i).SetSingle(rate * *amount);
  }
  box(8).SetAmount(BoxPlus(box(4), costs[0]));
  for (int i = 1; i < 4; ++i) {
    if (costs[i].IsNull())
      box(8 + i).SetSingle(0);
    else
      box(8 + i).SetAmount(BoxPlus(box(4 + i), costs[i]));
  }
  box(12).SetSingle(SumOf(4, 4));
  box(13).SetSingle(SumOf(8, 4));
}

void PurchaseChargesForm::applytax_chk_Click(int index) {
  WriteRow({{kCostFlags[index], Variant(Get(u"applytax_chk", index).value() == 1)}});
  calculate_purchase_charges();
}

void PurchaseChargesForm::Updatebutton_Click() {
  WriteBoxes(kCostColumns, 0);
  calculate_purchase_charges();
}

void PurchaseChargesForm::OKButton_Click() {
  Updatebutton_Click();
  box(12).SetSingle(SumOf(4, 4));
  WriteRow({{u"actual_total_tax", Money(box(12))}});
  Close();
}

}  // namespace lw
