// What a sale charges the buyer and what it cost the user: the dialogs "Taxes and Charges"
// (`frmcharges`) and "Purchase and Sale Costs" (`frmpurchasecharges`) over the current `seller` row.
// They compute in their boxes and write to the row only when the user updates or confirms.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "accounting/charges_box.h"
#include "screen/form.h"

namespace lw {

struct Program;
class Recordset;

// Yes/no as the store gives it: true only for a true value.
bool IsTrue(const Variant& value);
// `amount` times `rate` times 0.01 in double precision; Null when either is Null.
Variant TaxOn(const Variant& amount, const Variant& rate);
// A box read as a single-precision value plus a store amount, as money; Null when the amount is Null.
Variant BoxPlus(const ChargeBox& box, const Variant& amount);

// The parts both dialogs share: boxes in frames with their labels, the three buttons, and a handler
// that reports a failure in the status bar of the main screen and leaves the row unchanged.
class ChargesDialog : public Form {
 public:
  Control& Updatebutton;
  Control& OKButton;
  Control& CancelButton;

  // A box of the dialog: the caption of its label and the frame it sits in.
  struct BoxPlace {
    const char16_t* label;
    int frame;
  };

 protected:
  ChargesDialog(Screen& screen, Program& program, Text name, Text caption,
                std::span<const char16_t* const> frames, std::span<const BoxPlace> boxes);

  ChargeBox& box(int index) const { return *boxes_[static_cast<size_t>(index)]; }
  Control& frame(int index) const { return *frames_[static_cast<size_t>(index)]; }
  // The current row of the main screen's `seller` cursor and the current user id's setup row.
  Recordset& Record() const;
  Variant Setting(TextView column) const;
  // Runs a handler; a failure leaves any edit of the row undone and shows its description.
  void Handled(const std::function<void()>& body);
  // Writes fields of the current row in one edit.
  void WriteRow(std::initializer_list<std::pair<const char16_t*, Variant>> fields);
  // Writes boxes `first` onwards, each as money, to the columns in one edit of the current row.
  void WriteBoxes(std::span<const char16_t* const> columns, int first);
  // The sum of `count` boxes from `first`, in single precision.
  float SumOf(int first, int count) const;
  void Close() { Unload(); }

  Program& program_;

 private:
  std::vector<ChargeBox*> boxes_;
  std::vector<Control*> frames_;
};

class ChargesForm : public ChargesDialog {
 public:
  ChargesForm(Screen& screen, Program& program);
  // Fills the boxes from the current `seller` row and the tax settings of the user id.
  void calculate_sale_charges();

 private:
  void Opening();
  void Updatebutton_Click();
  void OKButton_Click();
};

class PurchaseChargesForm : public ChargesDialog {
 public:
  PurchaseChargesForm(Screen& screen, Program& program);
  ChargeBox& purchase_tax_rate;
  // Fills the boxes from the current `seller` row and the rate in `purchase_tax_rate`.
  void calculate_purchase_charges();

 private:
  void Opening();
  void applytax_chk_Click(int index);
  void Updatebutton_Click();
  void OKButton_Click();
  // Set while the check boxes are made to show the row, so that showing them writes nothing.
  bool filling_ = false;
};

}  // namespace lw
