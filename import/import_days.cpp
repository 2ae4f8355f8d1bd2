#include "import/import_days.h"

#include "import/import_screen.h"

namespace lw {

const char16_t* import_days_value(const Text& choice) {
  if (choice == u"No") return u"0";
  if (choice == u"All" || choice == u"Last 30 Days") return u"30";
  if (choice == u"Last Day") return u"1";
  if (choice == u"Last 2 Days") return u"2";
  if (choice == u"Last 7 Days") return u"7";
  if (choice == u"Last 14 Days") return u"14";
  return nullptr;
}

const char16_t* import_completed_value(const Text& choice) {
  if (choice == u"No") return u"0";
  if (choice == u"All") return u"1";
  return nullptr;
}

const char16_t* import_all_value(const Text& choice) {
  if (choice == u"Yes, even if not the high bidder") return u"1";
  if (choice == u"No, only if high bidder") return u"0";
  return nullptr;
}

ImportDaysForm::ImportDaysForm(Screen& screen, ImportJobs& jobs)
    : Form(screen, u"import_days_frm"),
      days_completed_lst(Add<ComboBox>(u"days_completed_lst")),
      days_completed_lst_1(Add<ComboBox>(u"days_completed_lst_1")),
      high_bid_only_lst(Add<ComboBox>(u"high_bid_only_lst")),
      import_now_btn(Add(ControlKind::Button, u"import_now_btn")),
      import_cancel_btn(Add(ControlKind::Button, u"import_cancel_btn")),
      jobs_(&jobs) {
  caption = u"Import Auctions";
  width = 6200;
  height = 4200;
  Control& seller_frame = Add(ControlKind::Frame, u"Frame1");
  seller_frame.SetCaption(u"When Importing SELLER Auctions Do the Following");
  Control& bidder_frame = Add(ControlKind::Frame, u"Frame2");
  bidder_frame.SetCaption(u"When Importing BIDDER Auctions Do the Following");
  days_completed_lst.SetContainer(&seller_frame);
  Control& completed_lbl = Add(ControlKind::Label, u"Label1");
  completed_lbl.SetCaption(u"Import Completed Auctions too");
  completed_lbl.SetContainer(&bidder_frame);
  Control& high_bid_lbl = Add(ControlKind::Label, u"Label2");
  high_bid_lbl.SetCaption(u"Import Even If I'm Not the High Bidder");
  high_bid_lbl.SetContainer(&bidder_frame);
  days_completed_lst_1.SetContainer(&bidder_frame);
  high_bid_only_lst.SetContainer(&bidder_frame);
  completed_lbl.layout.field = &days_completed_lst_1;
  high_bid_lbl.layout.field = &high_bid_only_lst;
  Add(ControlKind::Label, u"note_lbl")
      .SetCaption(u"Once you've signed in you must then choose update auctions again.");
  for (ComboBox* list : {&days_completed_lst, &days_completed_lst_1, &high_bid_only_lst}) list->style = 2;
  import_cancel_btn.SetCaption(u"Cancel");
  import_now_btn.SetCaption(u"Import Auctions Now");
  import_now_btn.OnClick = [this] { import_now_btn_Click(); };
  import_cancel_btn.OnClick = [this] { import_cancel_btn_Click(); };

  // The lists are filled once; the choices made stay for the next import of the run.
  OnLoad = [this] {
    for (const char16_t* item :
         {u"No", u"All", u"Last Day", u"Last 2 Days", u"Last 7 Days", u"Last 14 Days", u"Last 30 Days"})
      days_completed_lst.AddItem(item);
    days_completed_lst_1.AddItem(u"No");
    days_completed_lst_1.AddItem(u"All");
    high_bid_only_lst.AddItem(u"Yes, even if not the high bidder");
    high_bid_only_lst.AddItem(u"No, only if high bidder");
    days_completed_lst.SetListIndex(0);
    days_completed_lst_1.SetListIndex(0);
    high_bid_only_lst.SetListIndex(1);
  };
}

void ImportDaysForm::import_now_btn_Click() {
  // Whatever else happens, a list import from here on is the browser's.
  jobs_->web_view_mode = 1;
  if (const char16_t* v = import_days_value(days_completed_lst.text())) jobs_->import_days = v;
  if (const char16_t* v = import_completed_value(days_completed_lst_1.text())) jobs_->import_completed = v;
  if (const char16_t* v = import_all_value(high_bid_only_lst.text())) jobs_->import_all = v;
  jobs_->import_cancelled = false;
  Hide();
}

void ImportDaysForm::import_cancel_btn_Click() {
  jobs_->import_cancelled = true;
  Hide();
}

}  // namespace lw
