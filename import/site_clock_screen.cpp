#include "import/site_clock_screen.h"

#include <cmath>
#include <initializer_list>

#include "core/primitives/convert.h"
#include "core/primitives/datetime.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "import/auction_imports.h"
#include "import/import_screen.h"
#include "import/site_time.h"
#include "screen/main/main_form.h"

namespace lw {

namespace {

constexpr int kDateEdits = 6;  // ctDEdit1(0) the end time, (1) end date, (2) start date ... (5) schedule time

template <typename T>
void Ensure(MainForm& f, const char16_t* name, int index = -1) {
  if (!f.Find(name, index)) f.Add<T>(name, index);
}

void EnsurePlain(MainForm& f, ControlKind kind, const char16_t* name, int index = -1) {
  if (!f.Find(name, index)) f.Add(kind, name, index);
}

bool IsBidder(const MainForm& f) {
  return f.Auction_type_lst.text() == u"Bidder";
}

DataControl& Side(MainForm& f) {
  return IsBidder(f) ? f.Bidder : f.seller;
}

bool HasRow(DataControl& dc) {
  if (!dc.HasRecordset()) return false;
  Recordset& rs = dc.recordset();
  return !rs.Eof() && !rs.Bof();
}

// Whether the date edit shows the day first: its own property, else what the locale says.
bool DayFirst(MainForm& f, int index) {
  if (auto* d = dynamic_cast<DateEditBox*>(f.Find(u"ctDEdit1", index))) return d->day_first != 0;
  return locale_formatting(f.program().regional).day_first;
}

// Sets the text of a control where it exists; controls of pages not built yet are skipped.
void Show(MainForm& f, TextView name, int index, const Text& text) {
  if (Control* c = f.Find(name, index)) c->SetText(text);
}

Text TextOf(MainForm& f, TextView name, int index) {
  Control* c = f.Find(name, index);
  return c ? c->text() : Text();
}

// The time field and the fields around it on the details page take the colour of the time left.
void Colour(MainForm& f, long colour) {
  for (const char16_t* name :
       {u"calculate_time_left_lbl", u"start_pnl", u"end_pnl", u"ctRealInput1", u"ctDEdit1", u"SSPanel15",
        u"SSPanel16", u"MhRealInput3", u"MhRealInput2", u"SSPanel10", u"SSPanel13"}) {
    for (int index = -1; index < kDateEdits; ++index)
      if (Control* c = f.Find(name, index)) c->SetForecolor(static_cast<int32_t>(colour));
  }
}

struct SiteClockState {
  // While auction_end_time fills the date edits, their change events are not the user's.
  bool loading_dates = false;
  // The end of the row on show, as auction_end_time last read it.
  Date auction_end{};
};

void ShowRowDates(MainForm& f, Recordset& rs, SiteClockState& state) {
  const Regional& r = f.program().regional;
  Variant end = rs.Fields(u"End");
  Variant start = rs.Fields(u"Start");
  Text time = Format(end, u"hh:mm:ss", r);
  Text end_date = Format(end, DayFirst(f, 1) ? u"dd/mm/yyyy" : u"mm/dd/yyyy", r);
  Text start_date =
      start.IsNull() ? Text() : Format(start, DayFirst(f, 2) ? u"dd/mm/yyyy" : u"mm/dd/yyyy", r);
  state.loading_dates = true;
  Show(f, u"ctDEdit1", 0, time);
  Show(f, u"ctDEdit1", 1, end_date);
  Show(f, u"ctDEdit1", 2, start_date);
  state.loading_dates = false;
}

// A change of the end or start date edit copies date and time back to the panels of the row on show,
// which are bound to End and Start, and saves the row.
void DateEditChanged(MainForm& f, const SiteClockState& state, int index) {
  // The dates a row change puts in are the row's own, not a change.
  if (state.loading_dates || !f.Find(u"ctDEdit1", index)) return;
  int side = IsBidder(f) ? 1 : 0;
  Show(f, u"end_pnl", side, TextOf(f, u"ctDEdit1", 1) + u" " + TextOf(f, u"ctDEdit1", 0));
  Show(f, u"start_pnl", side, TextOf(f, u"ctDEdit1", 2));
  for (const char16_t* n : {u"end_pnl", u"start_pnl"})
    if (Control* c = f.Find(n, side)) c->SetDataChanged(true);
  f.CallRoutine("save_data_changed");
  f.CallRoutine("edit_finished");
}

// The spin buttons of the schedule time step it by a minute, round the clock.
void SpinScheduleTime(MainForm& f, int direction) {
  Control* c = f.Find(u"ctDEdit1", 5);
  if (!c) return;
  const Text& t = c->text();
  size_t colon = t.find(u':');
  int minutes = 0;
  if (colon != Text::npos) {
    minutes = static_cast<int>(Val(t.substr(0, colon))) * 60 + static_cast<int>(Val(t.substr(colon + 1)));
  } else if (!t.empty()) {
    return;  // a text that is no time stays as typed
  }
  minutes = ((minutes + (direction != 0 ? -1 : 1)) % 1440 + 1440) % 1440;
  auto two = [](int n) { return T((n < 10 ? "0" : "") + std::to_string(n)); };
  c->SetText(two(minutes / 60) + u":" + two(minutes % 60));
}

void CalculateTime(ImportScreen& s) {
  MainForm& f = s.main();
  Program& p = s.program();
  SiteClockOffsets o = s.Offsets();
  Date now = p.clock.Now();
  auto& clock = f.Get<ClockControl>(u"MhClock_ebay_time");
  // The clock shows the computer's time moved by its offsets; its minute is read once they are set.
  int hour_offset = static_cast<int>(-o.hour_difference);
  int minute_offset = static_cast<int>(-o.minute_difference);
  Date shown = DateAdd(u"n", minute_offset, DateAdd(u"h", hour_offset, now));
  int current_minute = SplitDate(shown).minute;
  SiteClockSetting set = calculate_time(now, o, current_minute, p.regional);
  p.locale.site_now = set.site_now;
  clock.hour_offset = set.hour_offset;
  clock.minute_offset = set.minute_offset;
  Show(f, u"todays_date_lbl", -1, set.todays_date);
  Show(f, u"ebays_date_lbl", -1, set.ebays_date);
}

void FormatForLocale(ImportScreen& s) {
  MainForm& f = s.main();
  Program& p = s.program();
  const Regional& r = p.regional;
  p.locale.currency_symbol = r.currency_symbol;
  p.locale.language_name = r.language_name;
  p.locale.short_date_format = r.short_date_format;
  p.locale.money_decimal_mark = r.money_decimal_mark;
  lw::LocaleFormatting lf = locale_formatting(r);
  struct Field {
    const char16_t* name;
    int first, last;
  };
  if (lf.currency_symbol) {
    for (Field fd :
         {Field{u"ctRealInput1", 0, 1}, Field{u"Cost_txt", 0, 1}, Field{u"Minbid_txt", 0, 2},
          Field{u"Reserve_txt", 0, 2}, Field{u"shipping_price_txt", 0, 1}, Field{u"fee_txt", 0, 4}})
      for (int i = fd.first; i <= fd.last; ++i)
        if (auto* m = dynamic_cast<MoneyEdit*>(f.Find(fd.name, i))) m->symbol = *lf.currency_symbol;
  }
  if (lf.decimal_mark) {
    for (Field fd : {Field{u"ctRealInput1", 0, 0}, Field{u"fee_txt", 0, 4}, Field{u"ctNEdit1", 0, 3}})
      for (int i = fd.first; i <= fd.last; ++i)
        if (auto* m = dynamic_cast<MoneyEdit*>(f.Find(fd.name, i))) m->decimal_mark = *lf.decimal_mark;
  }
  for (int i = 0; i < 4; ++i) Show(f, u"ctNEdit1", i, lf.nedit_values[i]);
  if (lf.day_first)
    for (int i = 1; i <= 4; ++i)
      if (auto* d = dynamic_cast<DateEditBox*>(f.Find(u"ctDEdit1", i))) d->day_first = 1;
}

void AuctionEndTime(ImportScreen& s, SiteClockState& state) {
  MainForm& f = s.main();
  Program& p = s.program();
  try {
    SiteClockOffsets o = s.Offsets();
    Date now = p.clock.Now();
    p.locale.site_now = site_now(now, o);
    DataControl& dc = Side(f);
    if (!HasRow(dc)) return;
    Recordset& rs = dc.recordset();
    // A row without an end raises here, and the time fields keep their last text.
    state.auction_end = CDate(rs.Fields(u"End"), p.regional);
    if (!IsBidder(f)) ShowRowDates(f, rs, state);
    AuctionEndDisplay shown = auction_end_time(state.auction_end, now, o);
    Colour(f, shown.colour);
    Show(f, u"Label1", -1, shown.heading);
    Show(f, u"calculate_time_left_lbl", -1, shown.time_left);
  } catch (const RuntimeError&) {
    state.loading_dates = false;
  }
}

void AuctionEndTime2(ImportScreen& s) {
  MainForm& f = s.main();
  Program& p = s.program();
  try {
    DataControl& dc = Side(f);
    if (!HasRow(dc)) return;
    Date end = CDate(dc.recordset().Fields(u"End"), p.regional);
    Show(f, u"calculate_time_left_lbl", -1, auction_end_time_2(end, p.clock.Now(), s.Offsets()));
  } catch (const RuntimeError&) {
    // No end on the row: the label keeps its text until the next row.
  }
}

}  // namespace

void AddSiteClockControls(MainForm& f) {
  // The seller page's location has no column: it is filled by the description import for the user to
  // copy. Index 1 belongs to the listing's settings and is made there.
  EnsurePlain(f, ControlKind::TextBox, u"location_txt", 0);
  for (int i = 0; i < kDateEdits; ++i) Ensure<DateEditBox>(f, u"ctDEdit1", i);
  for (int i = 0; i < 4; ++i) Ensure<MoneyEdit>(f, u"ctNEdit1", i);
  for (const char16_t* n : {u"MhRealInput2", u"MhRealInput3"}) Ensure<MoneyEdit>(f, n);
  for (const char16_t* n : {u"Label1", u"calculate_time_left_lbl", u"todays_date_lbl", u"ebays_date_lbl",
                            u"SSPanel10", u"SSPanel13", u"SSPanel15", u"SSPanel16"})
    EnsurePlain(f, ControlKind::Label, n);
  Ensure<ClockControl>(f, u"MhClock_ebay_time");
}

void RegisterSiteClock(ImportScreen& screen) {
  MainForm& f = screen.main();
  AddSiteClockControls(f);
  auto state = std::make_shared<SiteClockState>();
  screen.program().subsystems.push_back(state);
  ImportScreen* s = &screen;
  SiteClockState* st = state.get();
  Routines& r = screen.program().routines;
  r.Register("calculate_time", [s] { CalculateTime(*s); });
  r.Register("locale_formatting", [s] { FormatForLocale(*s); });
  r.Register("auction_end_time", [s, st] { AuctionEndTime(*s, *st); });
  r.Register("auction_end_time_2", [s] { AuctionEndTime2(*s); });

  MainForm* form = &f;
  for (int i : {1, 2}) f.Get(u"ctDEdit1", i).OnChange = [form, st, i] { DateEditChanged(*form, *st, i); };
  if (auto* spin = dynamic_cast<DateEditBox*>(f.Find(u"ctDEdit1", 5)))
    spin->OnSpin = [form](int direction) { SpinScheduleTime(*form, direction); };
  // The time left counts down for as long as the screen lives.
  Timer& t1 = f.Get<Timer>(u"Timer1");
  t1.SetInterval(1000);
  t1.SetEnabled(true);
}

}  // namespace lw
