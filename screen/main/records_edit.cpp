#include "screen/main/records_edit.h"

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"

namespace lw {
namespace {

constexpr char16_t kDateEditors[] = u"ctDEdit1";
constexpr int kEndTime = 0;
constexpr int kEndDate = 1;
constexpr int kStartDate = 2;
constexpr const char16_t* kNavigators[] = {u"db_seller_action_control", u"db_bidder_action_control"};

int SideIndex(const MainForm& f) {
  return f.IsSeller() ? 0 : 1;
}

DataControl& SideInUse(MainForm& f) {
  return f.IsSeller() ? f.seller : f.Bidder;
}

Control& DateEditor(MainForm& f, int index) {
  return f.Get(kDateEditors, index);
}

// A locale whose short date starts with the day shows the editors' dates day first.
bool DayFirst(const MainForm& f) {
  const Text& pattern = f.program().regional.short_date_format;
  return !pattern.empty() && (pattern[0] == u'd' || pattern[0] == u'D');
}

Text DatePart(const Variant& v, TextView format, const Regional& regional) {
  if (!v.date()) return Text();
  return Format(v, format, regional);
}

// Puts a text in an editor as the program does, not as the user: its change handler stays quiet.
void Fill(Control& editor, const Text& text) {
  auto handler = std::move(editor.OnChange);
  editor.OnChange = nullptr;
  editor.SetText(text);
  editor.OnChange = std::move(handler);
}

// The editors take the date and time parts of the current row's Start and End: End's in an editor
// each, Start's both in the start editor, joined by one blank, so that its time of day survives.
void FillDateEditors(MainForm& f) {
  Variant start, end;
  DataControl& d = SideInUse(f);
  if (d.HasRecordset() && !d.recordset().Eof() && !d.recordset().Bof()) {
    start = d.recordset().Fields(u"Start");
    end = d.recordset().Fields(u"End");
  }
  const Regional& regional = f.program().regional;
  const Text date_format = DayFirst(f) ? u"dd/mm/yyyy" : u"mm/dd/yyyy";
  Fill(DateEditor(f, kEndTime), DatePart(end, u"hh:mm:ss", regional));
  Fill(DateEditor(f, kEndDate), DatePart(end, date_format, regional));
  Text start_text = DatePart(start, date_format, regional);
  if (!start_text.empty()) start_text += u" " + DatePart(start, u"hh:mm:ss", regional);
  Fill(DateEditor(f, kStartDate), start_text);
}

void edit_finished(MainForm& f) {
  for (int side = 0; side < 2; ++side) {
    f.Get(u"itemno_txt", side).SetLocked(true);
    f.Get(u"ctRealInput1", side).SetLocked(true);
  }
  // The other side's panels stay as the type change left them.
  const int i = SideIndex(f);
  f.Get(u"start_pnl", i).SetVisible(true);
  f.Get(u"end_pnl", i).SetVisible(true);
  for (int k = kEndTime; k <= kStartDate; ++k) DateEditor(f, k).SetVisible(false);
  f.SetStatus(u"To Allow editing press Advanced Edit Button Again");
}

void edit_advanced(MainForm& f) {
  f.SSTab1.SetTab(1);
  const int i = SideIndex(f);
  f.Get(u"itemno_txt", i).SetLocked(false);
  f.Get(u"ctRealInput1", i).SetLocked(false);
  f.Get(u"start_pnl", i).SetVisible(false);
  f.Get(u"end_pnl", i).SetVisible(false);
  f.Get(kNavigators[i]).SetEnabled(false);
  FillDateEditors(f);
  for (int k = kEndTime; k <= kStartDate; ++k) DateEditor(f, k).SetVisible(true);
  f.SetStatus(u"Allow editing of Aution Number, Price, Start and End Dates");
}

// Leaving any editor ends the edit: the dates go back to the row's panels and are saved.
void date_editor_left(MainForm& f) {
  // Only an edit in progress has editors on show; a leave at any other time is not the user's.
  if (!DateEditor(f, kEndTime).visible()) return;
  const int i = SideIndex(f);
  const Text& time = DateEditor(f, kEndTime).text();
  Text end = DateEditor(f, kEndDate).text();
  // An emptied date clears the field instead of leaving a lone blank that is no date.
  if (!end.empty() && !time.empty()) end += u" ";
  end += time;
  f.Get(u"end_pnl", i).SetText(end);
  f.Get(u"start_pnl", i).SetText(DateEditor(f, kStartDate).text());
  for (const char16_t* navigator : kNavigators) f.Get(navigator).SetEnabled(true);
  if (!f.program().routines.Call("save_data_changed")) SideInUse(f).UpdateRecord();
  edit_finished(f);
}

}  // namespace

void RegisterAdvancedEdit(MainForm& form) {
  MainForm* f = &form;
  for (int k = kEndTime; k <= kStartDate; ++k) {
    Control* editor = form.Find(kDateEditors, k);
    if (!editor) editor = &form.Add(ControlKind::DateEdit, kDateEditors, k);
    editor->SetVisible(false);
    editor->OnLostFocus = [f] { RunHandled(*f, [f] { date_editor_left(*f); }); };
  }
  for (int side = 0; side < 2; ++side) {
    form.Get(u"itemno_txt", side).SetLocked(true);
    form.Get(u"ctRealInput1", side).SetLocked(true);
  }
  Routines& r = form.program().routines;
  r.Register("edit_advanced", [f] { RunHandled(*f, [f] { edit_advanced(*f); }); });
  r.Register("edit_finished", [f] { RunHandled(*f, [f] { edit_finished(*f); }); });
}

}  // namespace lw
