// What the model tells a front end that draws it: every change a front end must show, once, and nothing
// for a change that changes nothing; and the one-row read a grid view lives on.
#include "screen/screen_observer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <utility>
#include <vector>

#include "core/primitives/encoding.h"
#include "screen/data_control.h"
#include "screen/grid.h"
#include "screen/picture_box.h"
#include "screen/report_viewer.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class Recorder : public ScreenObserver {
 public:
  void ControlChanged(Control& c, unsigned changes) override { changed[&c] |= changes; }
  void ControlAdded(Control& c) override { added.push_back(&c); }
  void ControlRemoved(Control& c) override { removed.push_back(&c); }
  void FormChanged(Form& f) override { forms.push_back(&f); }
  unsigned Take(Control& c) {
    unsigned bits = changed[&c];
    changed.erase(&c);
    return bits;
  }
  std::map<Control*, unsigned> changed;
  std::vector<Control*> added, removed;
  std::vector<Form*> forms;
};

struct Observed : ::testing::Test {
  testing::TestScreen t;
  Recorder seen;
  void SetUp() override { t.screen.SetObserver(&seen); }
  // The recorder goes before the screen: the forms going at the end must not tell it.
  void TearDown() override { t.screen.SetObserver(nullptr); }
};

TEST_F(Observed, PlainControlsTellWhatChangedAndOnlyWhenItDid) {
  Control& box = t.form.Add(ControlKind::TextBox, u"box");
  ASSERT_EQ(seen.added, std::vector<Control*>{&box});
  box.SetText(u"a");
  box.SetVisible(false);
  EXPECT_EQ(seen.Take(box), change::kText | change::kState);
  box.SetText(u"a");
  box.SetVisible(false);
  box.SetForecolor(box.forecolor());
  EXPECT_EQ(seen.Take(box), 0u);
  box.SetLocked(true);
  box.SetTooltip(u"tip");
  box.SetFont({u"Arial", 10, true});
  EXPECT_EQ(seen.Take(box), change::kState | change::kLook);
  Control& frame = t.form.Add(ControlKind::Frame, u"frame");
  box.SetContainer(&frame);
  EXPECT_EQ(seen.Take(box), change::kPlace);

  // Selecting one option clears the others of its container, and each of them is told.
  Control& a = t.form.Add(ControlKind::OptionButton, u"opt", 0);
  Control& b = t.form.Add(ControlKind::OptionButton, u"opt", 1);
  a.SetValue(kTrue);
  seen.changed.clear();
  b.SetValue(kTrue);
  EXPECT_EQ(seen.Take(a), change::kValue);
  EXPECT_EQ(seen.Take(b), change::kValue);

  // A list: items, the selection, and the text the selection shows.
  ListControl& list = t.form.Add<ComboBox>(u"list");
  list.style = 2;
  list.AddItem(u"x");
  list.AddItem(u"y");
  EXPECT_EQ(seen.Take(list), change::kItems);
  list.SetListIndex(1);
  EXPECT_EQ(seen.Take(list), change::kSelection | change::kText);
  list.Clear();
  EXPECT_EQ(seen.Take(list), change::kItems | change::kText);
}

TEST_F(Observed, PartsHandedOutByReferenceAreToldAsChanged) {
  Toolbar& bar = t.form.Add<Toolbar>(u"bar");
  bar.AddButton(u"One");
  seen.Take(bar);
  static_cast<const Toolbar&>(bar).button(1);  // reading gives no change
  EXPECT_EQ(seen.Take(bar), 0u);
  bar.button(1).enabled = false;
  EXPECT_EQ(seen.Take(bar), change::kItems);

  TabStrip& tabs = t.form.Add<TabStrip>(u"tabs");
  tabs.SetTabs(3);
  tabs.page(2).visible = false;
  EXPECT_EQ(seen.Take(tabs), change::kItems);
  tabs.SetTab(1);
  EXPECT_TRUE(seen.Take(tabs) & change::kSelection);

  StatusBar& status = t.form.Add<StatusBar>(u"status");
  status.SetPanels(2);
  seen.Take(status);
  status.SetPanel(2, u"Total");
  status.SetPanel(2, u"Total");
  EXPECT_EQ(seen.Take(status), change::kText);

  ListBar& lb = t.form.Add<ListBar>(u"lb");
  int g = lb.AddGroup(u"Import");
  lb.AddItem(g, u"Quit", u"", u"exit");
  EXPECT_EQ(seen.Take(lb), change::kItems);
}

// A report viewer tells of a new report and of each page turned, by code or by the user; a picture
// display of each file it loads or unloads and of a new display mode, and nothing for the same mode.
TEST_F(Observed, ReportViewersAndPictureDisplaysTellWhatTheyShow) {
  auto& viewer = t.form.Add<ReportViewer>(u"viewer");
  auto report = std::make_shared<ReportDocument>();
  report->pages.resize(3);
  viewer.SetDocument(report);
  EXPECT_EQ(seen.Take(viewer), change::kItems | change::kSelection);
  viewer.SetCurrentPage(2);
  EXPECT_EQ(seen.Take(viewer), change::kSelection);
  const Text three = u"3";
  viewer.UserClick(&three);
  EXPECT_EQ(seen.Take(viewer), change::kSelection);
  EXPECT_THROW(viewer.SetCurrentPage(4), RuntimeError);
  EXPECT_EQ(seen.Take(viewer), 0u);

  auto& picture = t.form.Add<PictureBox>(u"picture");
  picture.reader = [](const fs::path& file) {
    if (file.filename() == "gone.jpg") throw RuntimeError(53, "File not found");
    return PictureDetails{4, 3, 24, 100, "/pictures" / file.filename()};
  };
  picture.SetFileName(u"shop/chair.jpg");
  EXPECT_EQ(seen.Take(picture), change::kText);
  // What the reader found is what is drawn; a reader that says nothing leaves the name as written.
  EXPECT_EQ(picture.details().path, fs::path("/pictures/chair.jpg"));
  picture.SetDisplayMode(PictureBox::kActualSize);
  EXPECT_EQ(seen.Take(picture), change::kValue);
  picture.SetDisplayMode(PictureBox::kActualSize);
  EXPECT_EQ(seen.Take(picture), 0u);
  EXPECT_THROW(picture.SetFileName(u"gone.jpg"), RuntimeError);
  EXPECT_EQ(seen.Take(picture), change::kText);  // the box is empty now
  EXPECT_FALSE(picture.loaded());
  picture.SetFileName(Text());
  EXPECT_EQ(seen.Take(picture), 0u);
  picture.reader = [](const fs::path&) {
    PictureDetails found;
    found.width = found.height = 1;
    return found;
  };
  picture.SetFileName(u"shop/table.jpg");
  EXPECT_EQ(picture.details().path, fs::path("shop/table.jpg"));
  picture.SetFileName(Text());
  EXPECT_EQ(seen.Take(picture), change::kText);
}

TEST_F(Observed, FormsTellShowingHidingUnloadingAndControlsGoing) {
  Form& f = t.Add(u"dialog");
  f.Show();
  f.Hide();
  f.Hide();  // already hidden: nothing to tell
  f.Show();
  f.Unload();
  EXPECT_EQ(seen.forms, (std::vector<Form*>{&f, &f, &f, &f}));
  EXPECT_TRUE(f.SetProperty(u"Caption", u"New"));
  EXPECT_EQ(seen.forms.size(), 5u);

  // Controls go with their form, at the end of the run; each is told by its address.
  Recorder local;
  Control* address = nullptr;
  {
    testing::TestScreen dying;
    dying.screen.SetObserver(&local);
    address = &dying.form.Add(ControlKind::Label, u"lbl");
  }
  EXPECT_EQ(local.removed, std::vector<Control*>{address});
}

// A grid bound to a cursor of many rows: each cursor change is told to it, and one row can be read
// without moving the cursor the screen shows.
class BoundGrid : public Observed {
 protected:
  void SetUp() override {
    Observed::SetUp();
    dir_ = fs::temp_directory_path() / ("lw_screen_observer_" + std::to_string(::getpid()));
    fs::create_directories(dir_);
    fs::copy_file(LW_SHIPPED_STORE, dir_ / "lw.mdb", fs::copy_options::overwrite_existing);
    db_ = Database::OpenDatabase(dir_ / "lw.mdb", regional_);
    db_->Execute(u"DELETE * FROM seller");
    for (int i = 1; i <= 50; ++i)
      db_->Execute(u"INSERT INTO seller (Item, Title, Price) VALUES ('" + T(std::to_string(i)) + u"', 'Lot " +
                   T(std::to_string(i)) + u"', " + T(std::to_string(i)) + u")");
    source_ = &t.form.Add<DataControl>(u"seller");
    source_->SetDatabase(db_.get());
    source_->RecordSource = u"Select * From seller order by Price";
    grid_ = &t.form.Add<Grid>(u"grid");
    grid_->AddColumn(u"Item", u"Item");
    grid_->AddColumn(u"Title", u"Title");
    grid_->AddColumn(u"Blank");
    grid_->SetDataSource(source_);
    seen.changed.clear();
  }
  void TearDown() override {
    Observed::TearDown();
    db_.reset();
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  fs::path dir_;
  Regional regional_ = Regional::FromLocale("en_US");
  std::unique_ptr<Database> db_;
  DataControl* source_ = nullptr;
  Grid* grid_ = nullptr;
};

TEST_F(BoundGrid, CursorChangesReachTheGridAndOneRowReadsInPlace) {
  source_->Refresh();
  EXPECT_EQ(seen.Take(*grid_), change::kRows | change::kSelection);
  source_->MoveTo(10);
  EXPECT_EQ(seen.Take(*grid_), change::kSelection);

  EXPECT_EQ(grid_->RowCells(49), (std::vector<Text>{u"50", u"Lot 50", u""}));
  EXPECT_EQ(grid_->RowCells(0), (std::vector<Text>{u"1", u"Lot 1", u""}));
  EXPECT_TRUE(grid_->RowCells(50).empty());
  EXPECT_TRUE(grid_->RowCells(-1).empty());
  EXPECT_EQ(grid_->Cell(3, 1), u"Lot 4");
  // Reading rows leaves the screen's cursor on its row and tells nobody of a move.
  EXPECT_EQ(grid_->row(), 10);
  EXPECT_EQ(seen.Take(*grid_), 0u);

  // An edit in hand on the cursor is not dropped by a read.
  Recordset& rs = source_->recordset();
  rs.Edit();
  rs.SetField(u"Title", Variant(Text(u"Edited")));
  EXPECT_EQ(grid_->RowCells(20)[1], u"Lot 21");
  EXPECT_TRUE(rs.EditInProgress());
  rs.Update();

  // A bound control's edit written back changes the rows on show.
  Control& title = t.form.Add(ControlKind::TextBox, u"title");
  title.Bind(*source_, u"Title");
  source_->Reposition();
  seen.changed.clear();
  title.SetText(u"Renamed");
  source_->UpdateRecord();
  EXPECT_TRUE(seen.Take(*grid_) & change::kRows);
  EXPECT_EQ(grid_->RowCells(10)[1], u"Renamed");
}

}  // namespace
}  // namespace lw
