#include "accounting/report_screen.h"

#include <cmath>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

#include "accounting/export.h"
#include "accounting/report_catalogue.h"
#include "accounting/reports.h"
#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/edits.h"
#include "screen/main/main_form.h"
#include "screen/main/views.h"
#include "screen/tree_view.h"

namespace lw {

namespace {

constexpr int kReportsPage = 7;
constexpr char16_t kSaveFilter[] =
    u"HTML Files (*.html;*.htm)|*.html;*.htm|Excel Files (*.xls)|*.xls|Text Files (*.txt)|*.txt|Acrobat "
    u"Files "
    u"(*.pdf)|*.pdf";
// Where the page's controls sit, in twips: the tree on the left, the viewer in what it leaves.
constexpr int kPageLeft = 120;
constexpr int kPageRight = 15120;
constexpr int kTreeWidth = 3495;
constexpr int kTreeGap = 80;

class ReportScreen {
 public:
  ReportScreen(Program& program, ReportState& state);

  void load_report_list();
  void select_report();
  void runreport(layout::Report& report);

 private:
  MainForm& main() const { return *p_.main; }
  void Build();
  void ShowHide();
  void Save();
  void ShowInView();
  void PrintMailingLabel();
  void PrintEnvelope();
  void PrintInvoice();
  void PrintView();
  void Print();
  // Runs a command through its own error branch: a failure goes to the status bar and ends it.
  void Handled(const std::function<void()>& body);

  // The current record of `seller`, for the entries composed from it.
  Text SellerField(TextView field) const;
  ReportInputs Inputs(int index) const;
  std::unique_ptr<layout::Report> Layout(TextView name) const;
  // Page margins from the four boxes, in inches.
  void ApplyMargins(layout::Report& r) const;
  Date ReportDate(int which) const;
  void Export(layout::Report& report);

  Program& p_;
  ReportState& state_;
  TreeView* tree_ = nullptr;
  ReportViewer* arv_ = nullptr;
  Control* date_frame_ = nullptr;
};

ReportScreen::ReportScreen(Program& program, ReportState& state) : p_(program), state_(state) {
  Build();
}

void ReportScreen::Build() {
  MainForm& f = main();
  // The page's controls live in one frame, shown while the Reports page is.
  Control& page = f.Add(ControlKind::Frame, u"report_page_fra");
  page.SetContainer(&f.Page(kReportsPage));  // on its page of SSTab1, where the user sees it
  page.SetVisible(f.SSTab1.tab() == kReportsPage);
  auto entered = std::move(f.SSTab1.OnTabClick);
  Control* page_ptr = &page;
  f.SSTab1.OnTabClick = [entered, page_ptr, &f](int previous) {
    page_ptr->SetVisible(f.SSTab1.tab() == kReportsPage);
    if (entered) entered(previous);
  };

  tree_ = &f.Add<TreeView>(u"ctTree");
  tree_->SetCaption(u"Available Reports");
  tree_->SetContainer(&page);
  tree_->left = kPageLeft;
  tree_->top = 600;
  tree_->width = kTreeWidth;
  tree_->height = 6600;
  tree_->OnNodeClick = [this](int) { select_report(); };

  date_frame_ = &f.Add(ControlKind::Frame, u"SSFrame1", 40);
  date_frame_->SetContainer(&page);
  date_frame_->SetVisible(false);
  for (const char16_t* name : {u"report_start_date", u"report_end_date"})
    if (Control* c = f.Find(name)) c->SetContainer(date_frame_);

  Control& margins = f.Add(ControlKind::Frame, u"SSFrame1", 41);
  margins.SetCaption(u"Page Margins (Inches)");
  margins.SetContainer(&page);
  for (int i = 0; i < 4; ++i) {
    Control* box = f.Find(u"ctNEdit1", i);
    if (!box) box = &f.Add<MoneyEdit>(u"ctNEdit1", i);
    box->SetContainer(&margins);
  }

  arv_ = &f.Add<ReportViewer>(u"arv");
  arv_->SetContainer(&page);
  arv_->left = kPageLeft + kTreeWidth + kTreeGap;
  arv_->top = 600;
  arv_->width = kPageRight - arv_->left;
  arv_->height = 6600;
  arv_->OnPrint = [this] { Handled([this] { Print(); }); };
  if (Control* bar = f.Find(u"ctToolBar6")) bar->SetContainer(&page);

  Routines& r = p_.routines;
  r.Register("load_report_list", [this] { load_report_list(); });
  r.Register("select_report", [this] { select_report(); });
  r.Register("ctToolBar6(1)", [this] { ShowHide(); });
  r.Register("ctToolBar6(2)", [this] { Save(); });
  r.Register("ctToolBar6(3)", [this] { Handled([this] { ShowInView(); }); });
  r.Register("ctToolBar2(3)", [this] { Handled([this] { PrintMailingLabel(); }); });
  r.Register("ctToolBar2(4)", [this] { Handled([this] { PrintEnvelope(); }); });
  r.Register("ctToolBar2(5)", [this] { PrintInvoice(); });
  r.Register(kPrintViewRoutine, [this] { Handled([this] { PrintView(); }); });
}

void ReportScreen::Handled(const std::function<void()>& body) {
  try {
    body();
  } catch (const RuntimeError& e) {
    main().SetStatus(FromUtf8(e.description()));
  }
}

void ReportScreen::load_report_list() {
  tree_->SetRedraw(false);
  tree_->Clear();
  for (const ReportEntry& e : ReportEntries()) tree_->AddNode(e.parent, Text(), e.caption);
  tree_->SetRedraw(true);
}

Text ReportScreen::SellerField(TextView field) const {
  Variant v = main().seller.recordset().Fields(field);
  return v.IsNull() ? Text() : CStr(v, p_.regional);
}

Date ReportScreen::ReportDate(int which) const {
  Control* box = main().Find(which == 0 ? u"report_start_date" : u"report_end_date");
  return CDate(Variant(box ? box->text() : Text()), p_.regional, p_.clock);
}

ReportInputs ReportScreen::Inputs(int index) const {
  ReportInputs in;
  in.userid = main().Userid_lst.text();
  in.today = Format(Variant(p_.clock.Today()), u"mm/dd/yyyy", p_.regional);
  if (index == 2 || index == 3 || index == kMailingLabelEntry) in.email = SellerField(u"email");
  if (index == 10) in.title = SellerField(u"Title");
  if (index == 12) in.item = SellerField(u"item");
  if (UsesReportDates(index)) {
    in.d1 = Format(Variant(ReportDate(0)), u"mm/dd/yyyy", p_.regional);
    in.d2 = Format(Variant(ReportDate(1)), u"mm/dd/yyyy", p_.regional);
  }
  return in;
}

std::unique_ptr<layout::Report> ReportScreen::Layout(TextView name) const {
  auto report = MakeReportLayout(name, LayoutContext{p_.clock.Today()});
  if (!report) throw RuntimeError(err::kItemNotFound, "No report layout " + ToUtf8(name));
  ApplyMargins(*report);
  return report;
}

void ReportScreen::ApplyMargins(layout::Report& r) const {
  int* margins[] = {&r.page.left_margin, &r.page.top_margin, &r.page.right_margin, &r.page.bottom_margin};
  for (int i = 0; i < 4; ++i) {
    Control* box = main().Find(u"ctNEdit1", i);
    double inches = CDbl(Variant(box ? box->text() : Text()), p_.regional);
    *margins[i] = static_cast<int>(std::lround(inches * 1440));
  }
}

void ReportScreen::runreport(layout::Report& report) {
  lw::runreport(p_, report);
}

void ReportScreen::select_report() {
  MainForm& f = main();
  WaitCursor wait(f.ui());
  Handled([&] {
    const int index = tree_->current();
    date_frame_->SetVisible(UsesReportDates(index));
    if (index < 0 || index >= kReportEntryCount) return;
    if (auto status = GroupStatus(index)) {
      f.SetStatus(*status);
      return;
    }
    ReportInputs in = Inputs(index);
    std::optional<ReportChoice> choice = ComposeReport(index, in);
    if (!choice) return;
    f.SetStatus(choice->status);
    if ((index == 2 || index == 3) && SellerField(u"id") == u"No Bids") {
      f.SetStatus(u"Can't print invoice with no bids");
      return;
    }
    if (index == kMailingLabelEntry && SellerField(u"id") == u"No Bids") {
      f.SetStatus(u"Can't print mailing label with no bids");
      return;
    }

    auto report = Layout(choice->layout);
    if (!choice->title.empty()) report->Get(u"lblReportTitle").caption = choice->title;
    if (layout::Item* heading = report->Find(u"lblHeading")) {
      heading->caption = choice->heading;
      heading->visible = !choice->heading.empty();
    }
    if (choice->dated) {
      report->Get(u"date1").caption = Format(Variant(ReportDate(0)), u"medium date", p_.regional);
      report->Get(u"date2").caption = Format(Variant(ReportDate(1)), u"medium date", p_.regional);
    } else {
      // A list of items has no period to name.
      for (const char16_t* name : {u"lblBetween", u"date1", u"lblAnd", u"date2"})
        if (layout::Item* it = report->Find(name)) it->visible = false;
    }
    if (choice->summary) report->detail.visible = false;
    report->data_source = choice->report_query;

    if (!state_.report_save_mode) runreport(*report);
    state_.report_view_query = choice->view_query;
    if (state_.report_save_mode) Export(*report);
  });
}

void ReportScreen::Export(layout::Report& report) {
  Database* db = p_.startup.db.get();
  if (!db) throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  ReportDocument doc = report.Run(*db, p_.regional);
  std::filesystem::path file(ToUtf8(state_.report_save_file));
  switch (state_.report_save_filter) {
    case 1: {
      // The HTML writer takes a folder and a name and puts its own ending on the name.
      Text title = FromUtf8(file.filename().string());
      Text name = Replace(title, u".html", u"");
      Text folder = Left(state_.report_save_file, state_.report_save_file.size() - title.size());
      report_export::WriteHtml(doc, std::filesystem::path(ToUtf8(folder)), name);
      break;
    }
    case 2:
      report_export::WriteSpreadsheet(doc, file);
      break;
    case 3:
      report_export::WriteText(doc, file, u";", u",");
      break;
    case 4:
      report_export::WritePdf(doc, file);
      break;
    default:
      break;
  }
}

void ReportScreen::ShowHide() {
  int right = arv_->left + arv_->width;
  if (tree_->visible()) {
    tree_->SetVisible(false);
    arv_->left = tree_->left;
  } else {
    tree_->SetVisible(true);
    arv_->left = tree_->left + tree_->width + kTreeGap;
  }
  arv_->width = right - arv_->left;
}

void ReportScreen::Save() {
  FileDialogRequest request;
  request.title = u"Report Save";
  request.filter = kSaveFilter;
  request.filter_index = state_.report_save_filter;
  request.file_name = u"LWExport";
  request.initial_dir = state_.report_save_folder;
  std::optional<FileDialogAnswer> answer = main().ui().ShowSave(request);
  // Cancelling the dialog saves nothing.
  if (!answer) return;
  state_.report_save_file = FromUtf8(answer->path.string());
  state_.report_save_filter = answer->filter_index;
  state_.report_save_mode = kTrue;
  select_report();
  state_.report_save_mode = kFalse;
  state_.report_save_folder = FromUtf8(answer->path.parent_path().string());
}

void ReportScreen::ShowInView() {
  if (state_.report_view_query.empty()) return;
  MainForm& f = main();
  f.seller.RecordSource = state_.report_view_query;
  f.seller.Refresh();
  f.SSTab1.SetTab(0);
}

void ReportScreen::PrintMailingLabel() {
  MainForm& f = main();
  tree_->SetCurrent(kMailingLabelEntry);
  f.SSTab1.SetTab(kReportsPage);
  ReportInputs in;
  in.email = SellerField(u"email");
  auto report = Layout(u"maillabelreport");
  report->data_source = ComposeReport(kMailingLabelEntry, in)->report_query;
  runreport(*report);
}

void ReportScreen::PrintEnvelope() {
  MainForm& f = main();
  f.SSTab1.SetTab(kReportsPage);
  auto report = Layout(u"envelopereport");
  report->data_source = u"SELECT DISTINCT Bidder.Name, Bidder.Address from bidder where bidder.item = " +
                        Quoted(SellerField(u"item")) + u" and bidder.Trans_comp = false;";
  runreport(*report);
}

void ReportScreen::PrintInvoice() {
  tree_->SetCurrent(kInvoiceEntry);
  main().SSTab1.SetTab(kReportsPage);
  select_report();
}

void ReportScreen::PrintView() {
  MainForm& f = main();
  f.SSTab1.SetTab(kReportsPage);
  auto report = Layout(u"sale2datesfull");
  report->Get(u"lblReportTitle").caption = u"Items Listed";
  layout::Item& heading = report->Get(u"lblHeading");
  heading.caption = u"Current Auction List";
  heading.visible = true;
  for (const char16_t* name : {u"lblBetween", u"date1", u"lblAnd", u"date2"})
    report->Get(name).visible = false;
  report->data_source = f.IsSeller() ? f.seller.RecordSource : f.Bidder.RecordSource;
  runreport(*report);
  f.SetStatus(u"Print Current Auction List/Filter");
}

// Printing goes through a PDF of what the viewer shows: to the printer by `lp` where the system has
// it, else to the desktop's viewer of PDF files, which prints it.
void ReportScreen::Print() {
  const auto& doc = arv_->document();
  if (!doc) return;
  std::filesystem::path pdf = p_.DbFile(u"\\report_print.pdf");
  report_export::WritePdf(*doc, pdf);
  std::filesystem::path lp;
  if (const char* path = std::getenv("PATH")) {
    std::string dirs = path;
    for (size_t from = 0; from <= dirs.size();) {
      size_t colon = dirs.find(':', from);
      std::filesystem::path candidate = std::filesystem::path(dirs.substr(from, colon - from)) / "lp";
      std::error_code ec;
      if (std::filesystem::is_regular_file(candidate, ec) && ::access(candidate.c_str(), X_OK) == 0) {
        lp = candidate;
        break;
      }
      if (colon == std::string::npos) break;
      from = colon + 1;
    }
  }
  if (!lp.empty())
    main().ui().StartProgram(lp, {FromUtf8(pdf.string())});
  else
    main().ui().OpenAddress(FromUtf8(pdf.string()));
}

}  // namespace

void RegisterReports(Program& program) {
  auto state = std::make_shared<ReportState>();
  auto screen = std::make_shared<ReportScreen>(program, *state);
  program.subsystems.push_back(state);
  program.subsystems.push_back(screen);
}

void runreport(Program& program, layout::Report& report) {
  Database* db = program.startup.db.get();
  auto* arv = program.main ? dynamic_cast<ReportViewer*>(program.main->Find(u"arv")) : nullptr;
  if (!db || !arv)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  arv->SetDocument(std::make_shared<ReportDocument>(report.Run(*db, program.regional)));
}

}  // namespace lw
