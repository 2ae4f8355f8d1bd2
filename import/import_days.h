// The dialog of "Update Auctions" that asks what to import: how far back the seller's list goes, and
// on the bidder's side whether ended auctions and auctions lost to another bidder come too. Its import
// button writes the three choices into the job state; its Cancel button marks the import cancelled.
#pragma once

#include "screen/form.h"

namespace lw {

struct ImportJobs;

class ImportDaysForm : public Form {
 public:
  ImportDaysForm(Screen& screen, ImportJobs& jobs);

  ComboBox& days_completed_lst;
  ComboBox& days_completed_lst_1;
  ComboBox& high_bid_only_lst;
  Control& import_now_btn;
  Control& import_cancel_btn;

 private:
  void import_now_btn_Click();
  void import_cancel_btn_Click();
  ImportJobs* jobs_;
};

// The values the dialog's lists give; nothing for a text that leaves the old value.
const char16_t* import_days_value(const Text& choice);
const char16_t* import_completed_value(const Text& choice);
const char16_t* import_all_value(const Text& choice);

}  // namespace lw
