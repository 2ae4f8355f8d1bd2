#include "screen/main/main_places.h"

#include <string>

#include "screen/main/main_form.h"

namespace lw {
namespace {

constexpr int kEvery = -2;   // every member of an array, or the control that is none
constexpr int kLeft = -2;    // docked down the left side
constexpr int kBottom = -3;  // docked at the foot of the window

enum Flag : unsigned {
  kStretch = 1,
  kMultiline = 2,
  // The members after the first of an array share the first one's place: one side's half of a field
  // is visible at a time.
  kOneSideShown = 4,
};

// A group box made here to gather the fields of a page.
struct Group {
  const char16_t* name;
  const char16_t* caption;
  int page;
  int columns;
};
constexpr Group kGroups[] = {
    {u"filter_fra", u"Filter", 0, 4},
    {u"auction_fra", u"Auction", 1, 2},
    {u"time_fra", u"Time", 1, 2},
    {u"status_fra", u"Sale Status", 1, 2},
    {u"contact_fra", u"Contact", 2, 2},
    {u"schedule_fra", u"Schedule", 5, 4},
    {u"report_dates_fra", u"Report Dates", 7, 2},
    {u"margins_fra", u"Page Margins", 7, 4},
};

struct Place {
  const char16_t* control;
  int index;                // kEvery, or the one member placed
  int page;                 // a page of SSTab1, kLeft or kBottom; ignored when `group` is set
  const char16_t* group;    // a group of kGroups, or another frame of the form
  const char16_t* caption;  // a caption label put in front of the field, nullptr for none
  unsigned flags = 0;
  const char16_t* same_as = nullptr;      // shares the place of member 0 of this control
  const char16_t* own_caption = nullptr;  // the control's own caption while it has none
};

constexpr Place kPlaces[] = {
    // The selectors and the list bar down the left side, the meter at the foot.
    {u"Auction_type_lst", kEvery, kLeft, nullptr, u"Auction Type"},
    {u"Auction_status_lst", kEvery, kLeft, nullptr, u"Auction Status"},
    {u"Userid_lst", kEvery, kLeft, nullptr, u"Userid"},
    {u"site_lst", kEvery, kLeft, nullptr, u"Site"},
    {u"ctListBar1", kEvery, kLeft, nullptr, nullptr, kStretch},
    {u"ctMeter1", kEvery, kBottom, nullptr, nullptr},
    // 0: the view.
    {u"Apply_flt_chk", kEvery, 0, u"filter_fra", nullptr, 0, nullptr, u"Apply Filter"},
    {u"field_lst", kEvery, 0, u"filter_fra", u"Field"},
    {u"compare_lst", kEvery, 0, u"filter_fra", u"Comparison"},
    {u"Filter_value_txt", kEvery, 0, u"filter_fra", u"Value"},
    {u"print_filter_btn", kEvery, 0, u"filter_fra", nullptr},
    {u"seller_grid", kEvery, 0, nullptr, nullptr, kStretch},
    {u"buyer_grid", kEvery, 0, nullptr, nullptr, kStretch, u"seller_grid"},
    // 1: the auction's details.
    {u"itemno_txt", kEvery, 1, u"auction_fra", u"Item Number", kOneSideShown},
    {u"Title_txt", kEvery, 1, u"auction_fra", u"Title", kOneSideShown},
    {u"ctRealInput1", kEvery, 1, u"auction_fra", u"Price", kOneSideShown},
    {u"Quantity_txt", kEvery, 1, u"auction_fra", u"Quantity", kOneSideShown},
    {u"bids_lbl", kEvery, 1, u"auction_fra", u"Bids", kOneSideShown},
    {u"id_pnl", kEvery, 1, u"auction_fra", u"High Bidder", kOneSideShown},
    {u"category_lbl", kEvery, 1, u"auction_fra", u"Category", kOneSideShown},
    {u"Cost_txt", kEvery, 1, u"auction_fra", u"Cost", kOneSideShown},
    {u"Minbid_txt", kEvery, 1, u"auction_fra", u"Minimum Bid", kOneSideShown},
    {u"Reserve_txt", kEvery, 1, u"auction_fra", u"Reserve", kOneSideShown},
    {u"shipping_price_txt", kEvery, 1, u"auction_fra", u"Shipping", kOneSideShown},
    {u"location_txt", 0, 1, u"auction_fra", u"Location"},
    {u"seller_id_txt", kEvery, 1, u"auction_fra", nullptr},
    {u"seller_email_txt", kEvery, 1, u"auction_fra", nullptr},
    {u"seller_id_lbl", kEvery, 1, u"auction_fra", nullptr},
    {u"seller_email_lbl", kEvery, 1, u"auction_fra", nullptr},
    {u"reserve_met_chk", kEvery, 1, u"auction_fra", nullptr, kOneSideShown, nullptr, u"Reserve Met"},
    {u"start_pnl", kEvery, 1, u"time_fra", u"Start", kOneSideShown},
    {u"end_pnl", kEvery, 1, u"time_fra", u"End", kOneSideShown},
    {u"ctDEdit1", 2, 1, u"time_fra", nullptr, 0, u"start_pnl"},
    {u"ctDEdit1", 1, 1, u"time_fra", nullptr, 0, u"end_pnl"},
    {u"ctDEdit1", 0, 1, u"time_fra", nullptr, 0, u"end_pnl"},
    {u"Label1", kEvery, 1, u"time_fra", nullptr},
    {u"calculate_time_left_lbl", kEvery, 1, u"time_fra", nullptr},
    {u"MhClock_ebay_time", kEvery, 1, u"time_fra", u"eBay Time"},
    {u"todays_date_lbl", kEvery, 1, u"time_fra", u"Today"},
    {u"ebays_date_lbl", kEvery, 1, u"time_fra", u"eBay Date"},
    {u"SSPanel10", kEvery, 1, u"time_fra", nullptr},
    {u"SSPanel13", kEvery, 1, u"time_fra", nullptr},
    {u"SSPanel15", kEvery, 1, u"time_fra", nullptr},
    {u"SSPanel16", kEvery, 1, u"time_fra", nullptr},
    {u"MhRealInput2", kEvery, 1, u"time_fra", nullptr},
    {u"MhRealInput3", kEvery, 1, u"time_fra", nullptr},
    {u"Contact_chk", kEvery, 1, u"status_fra", nullptr, kOneSideShown, nullptr, u"Auction End Contact Made"},
    {u"Response_chk", kEvery, 1, u"status_fra", nullptr, kOneSideShown, nullptr, u"Response Received"},
    {u"Payment_chk", kEvery, 1, u"status_fra", nullptr, kOneSideShown, nullptr, u"Payment Received/Sent"},
    {u"Trans_comp_chk", kEvery, 1, u"status_fra", nullptr, kOneSideShown, nullptr, u"Item Shipped/Received"},
    {u"Description1_txt", kEvery, 1, nullptr, u"Description", kOneSideShown | kMultiline | kStretch},
    {u"db_seller_action_control", kEvery, 1, nullptr, nullptr},
    {u"db_bidder_action_control", kEvery, 1, nullptr, nullptr, 0, u"db_seller_action_control"},
    // 2: the partner.
    {u"ctToolBar2", kEvery, 2, nullptr, nullptr},
    {u"Name_txt", kEvery, 2, u"contact_fra", u"Name", kOneSideShown},
    {u"Email_txt", kEvery, 2, u"contact_fra", u"Email", kOneSideShown},
    {u"total_price_lbl", kEvery, 2, nullptr, u"Total"},
    {u"Address_txt", kEvery, 2, nullptr, u"Address", kOneSideShown | kMultiline | kStretch},
    {u"Comments_txt", kEvery, 2, nullptr, u"Comments", kOneSideShown | kMultiline | kStretch},
    {u"status_log_txt", kEvery, 2, nullptr, u"Status Log", kOneSideShown | kMultiline | kStretch},
    // 3: the picture.
    {u"ctToolBar8", kEvery, 3, nullptr, nullptr},
    // 4: the web view.
    {u"ctToolBar1", kEvery, 4, nullptr, nullptr},
    {u"ctCombo1", kEvery, 4, nullptr, u"Address"},
    {u"bid_auction_no_lbl", kEvery, 4, nullptr, nullptr},
    {u"bid_btn", kEvery, 4, nullptr, nullptr},
    {u"txtIP", kEvery, 4, nullptr, nullptr},
    {u"txtURL", kEvery, 4, nullptr, nullptr},
    {u"WebBrowser1", kEvery, 4, nullptr, nullptr, kStretch},
    // 5: the lister.
    {u"ctToolBar3", kEvery, 5, nullptr, nullptr},
    {u"duration_lst", kEvery, 5, u"schedule_fra", u"Duration"},
    {u"schedule_time_txt", kEvery, 5, u"schedule_fra", u"Time"},
    {u"schedule_day_txt", kEvery, 5, u"schedule_fra", u"Day"},
    {u"schedule_month_txt", kEvery, 5, u"schedule_fra", u"Month"},
    {u"ctDEdit1", 3, 5, nullptr, nullptr},
    {u"ctDEdit1", 4, 5, nullptr, nullptr},
    {u"ctDEdit1", 5, 5, nullptr, nullptr},
    // 6: letters.
    {u"ctToolBar4", kEvery, 6, nullptr, nullptr},
    {u"ctToolBar7", kEvery, 6, nullptr, nullptr},
    // 7: reports.
    {u"ctToolBar6", kEvery, 7, nullptr, nullptr},
    {u"report_start_date", kEvery, 7, u"report_dates_fra", u"Start Date"},
    {u"report_end_date", kEvery, 7, u"report_dates_fra", u"End Date"},
    {u"ctNEdit1", 0, 7, u"margins_fra", u"Left"},
    {u"ctNEdit1", 1, 7, u"margins_fra", u"Top"},
    {u"ctNEdit1", 2, 7, u"margins_fra", u"Right"},
    {u"ctNEdit1", 3, 7, u"margins_fra", u"Bottom"},
    // 8: the Setup page is one frame of its own.
    {u"setup_page_fra", kEvery, 8, nullptr, nullptr, kStretch},
    // 9: the import's text.
    {u"FileDisplay", kEvery, 9, nullptr, nullptr, kMultiline | kStretch},
    {u"ctbutton1", kEvery, 9, nullptr, nullptr},
};

// A control that is placed already: in a container, docked, or showing in another's place.
bool Placed(const Control& c) {
  return c.container() || c.layout.dock != LayoutHint::Dock::None || c.layout.same_place_as;
}

}  // namespace

void PlaceMainControls(MainForm& form) {
  for (const Group& g : kGroups) {
    if (form.Find(g.name)) continue;
    Control& frame = form.Add(ControlKind::Frame, g.name);
    frame.SetCaption(g.caption);
    frame.SetContainer(&form.Page(g.page));
    frame.layout.columns = g.columns;
  }
  int captions = static_cast<int>(form.Array(u"place_lbl").size());
  for (const Place& p : kPlaces) {
    std::vector<Control*> members;
    if (p.index == kEvery) {
      if (Control* single = form.Find(p.control)) members.push_back(single);
      for (Control* m : form.Array(p.control)) members.push_back(m);
    } else if (Control* one = form.Find(p.control, p.index)) {
      members.push_back(one);
    }
    if (members.empty() || Placed(*members.front())) continue;
    Control* first = members.front();
    Control* container = nullptr;
    if (p.group) {
      container = form.Find(p.group);
    } else if (p.page >= 0) {
      container = &form.Page(p.page);
    }
    for (Control* c : members) {
      if (Placed(*c)) continue;
      if (p.page == kLeft) c->layout.dock = LayoutHint::Dock::Left;
      if (p.page == kBottom) c->layout.dock = LayoutHint::Dock::Bottom;
      c->SetContainer(container);
      c->layout.stretch = (p.flags & kStretch) != 0;
      c->layout.multiline = (p.flags & kMultiline) != 0;
      if (p.same_as) {
        Control* target = form.Find(p.same_as);
        if (!target) target = form.Find(p.same_as, 0);
        c->layout.same_place_as = target;
      } else if (c != first && (p.flags & kOneSideShown)) {
        c->layout.same_place_as = first;
      }
      if (p.own_caption && c->caption().empty()) c->SetCaption(p.own_caption);
    }
    if (p.caption) {
      Control& label = form.Add(ControlKind::Label, u"place_lbl", captions++);
      label.SetCaption(p.caption);
      label.SetContainer(container);
      label.layout.dock = first->layout.dock;
      label.layout.field = first;
    }
  }
  // The labels the screen has for a field name it.
  if (Control* label = form.Find(u"seller_id_lbl")) label->layout.field = form.Find(u"seller_id_txt");
  if (Control* label = form.Find(u"seller_email_lbl")) label->layout.field = form.Find(u"seller_email_txt");
  if (Control* label = form.Find(u"Label1")) label->layout.field = form.Find(u"calculate_time_left_lbl");

  form.Page(1).layout.frame_columns = 2;
}

}  // namespace lw
