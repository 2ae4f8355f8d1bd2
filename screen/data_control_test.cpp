#include "screen/data_control.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/primitives/convert.h"
#include "screen/grid.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

// A copy of the shipped empty store with three auctions of our own, bound to a form.
class Bound : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("lw_screen_dc_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(dir_);
    fs::copy_file(LW_SHIPPED_STORE, dir_ / "lw.mdb", fs::copy_options::overwrite_existing);
    regional_ = Regional::FromLocale("en_US");
    db_ = Database::OpenDatabase(dir_ / "lw.mdb", regional_);
    db_->Execute(u"DELETE * FROM seller");
    db_->Execute(
        u"INSERT INTO seller (Item, Title, username, Price, Quantity) VALUES ('1', 'Lamp', 'u', 12.5, 1)");
    db_->Execute(
        u"INSERT INTO seller (Item, Title, username, Price, Quantity) VALUES ('2', 'Vase', 'u', 3, 2)");
    db_->Execute(
        u"INSERT INTO seller (Item, Title, username, Price, Quantity) VALUES ('3', 'Clock', 'u', 7, 1)");
    source_ = &t_.form.Add<DataControl>(u"seller");
    source_->SetDatabase(db_.get());
    source_->RecordSource = u"Select * From seller order by Item";
    title_ = &t_.form.Add(ControlKind::TextBox, u"Title_txt");
    price_ = &t_.form.Add(ControlKind::TextBox, u"Price_txt");
    title_->Bind(*source_, u"Title");
    price_->Bind(*source_, u"Price");
  }
  void TearDown() override {
    db_.reset();
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  Text Stored(TextView item) {
    auto rs = db_->OpenRecordset(Text(u"Select Title From seller where Item = '") + Text(item) + u"'");
    return *rs->Fields(u"Title").text();
  }

  testing::TestScreen t_;
  fs::path dir_;
  Regional regional_;
  std::unique_ptr<Database> db_;
  DataControl* source_ = nullptr;
  Control* title_ = nullptr;
  Control* price_ = nullptr;
};

TEST_F(Bound, ControlsFollowTheRowAndEditsAreSavedWhenTheRowIsLeft) {
  int repositions = 0, changes = 0;
  source_->OnReposition = [&] { ++repositions; };
  title_->OnChange = [&] { ++changes; };
  source_->Refresh();
  EXPECT_EQ(title_->text(), u"Lamp");
  EXPECT_EQ(price_->text(), CStr(Variant(Currency::FromDouble(12.5)), regional_));
  EXPECT_FALSE(source_->dirty());
  EXPECT_EQ(changes, 1);  // loading a row shows as a change, not as an edit

  title_->UserSet(u"Brass Lamp");
  EXPECT_TRUE(source_->dirty());
  EXPECT_EQ(Stored(u"1"), u"Lamp");
  source_->MoveNext();
  EXPECT_EQ(Stored(u"1"), u"Brass Lamp");
  EXPECT_EQ(title_->text(), u"Vase");
  EXPECT_FALSE(source_->dirty());

  // Code that sets a bound box edits the row as well; a refresh saves it first.
  title_->SetText(u"Blue Vase");
  source_->Refresh();
  EXPECT_EQ(Stored(u"2"), u"Blue Vase");
  EXPECT_EQ(title_->text(), u"Brass Lamp");
  EXPECT_EQ(repositions, 3);
}

TEST_F(Bound, ValidateCanDropEditsAndAFailedSaveKeepsThem) {
  source_->Refresh();
  source_->OnValidate = [](int action, bool& save) {
    if (action == 1) save = false;
  };
  title_->UserSet(u"Dropped");
  source_->MoveNext();
  EXPECT_EQ(Stored(u"1"), u"Lamp");
  EXPECT_EQ(title_->text(), u"Vase");

  // A price the column cannot take: the row stays as it was and so does the typed text.
  price_->UserSet(u"twelve");
  title_->UserSet(u"Kept");
  EXPECT_THROW(source_->UpdateRecord(), RuntimeError);
  EXPECT_EQ(Stored(u"2"), u"Vase");
  EXPECT_EQ(price_->text(), u"twelve");
  EXPECT_TRUE(source_->dirty());
  EXPECT_FALSE(source_->recordset().EditInProgress());
  price_->UserSet(u"4");
  source_->UpdateRecord();
  EXPECT_EQ(Stored(u"2"), u"Kept");
  // An emptied number box clears the field.
  price_->UserSet(u"");
  source_->UpdateRecord();
  EXPECT_TRUE(db_->OpenRecordset(u"Select Price From seller where Item = '2'")->Fields(u"Price").IsNull());
}

TEST_F(Bound, ABadRecordSourceKeepsTheOldCursor) {
  source_->Refresh();
  source_->MoveLast();
  source_->RecordSource = u"Select * From nosuchtable";
  EXPECT_THROW(source_->Refresh(), RuntimeError);
  EXPECT_EQ(title_->text(), u"Clock");
  EXPECT_EQ(source_->recordset().AbsolutePosition(), 2);
  EXPECT_FALSE(source_->FindFirst(u"Item = '9'"));
  EXPECT_TRUE(source_->FindFirst(u"Title = 'vase'"));
  EXPECT_EQ(price_->text(), u"3");
}

TEST_F(Bound, GridShowsTheCursorRowsAndARowClickMovesTheRecord) {
  auto& grid = t_.form.Add<Grid>(u"seller_grid");
  grid.AddColumn(u"Item", u"Item");
  grid.AddColumn(u"Title", u"Title");
  grid.AddColumn(u"Blank");
  grid.SetDataSource(source_);
  source_->Refresh();
  source_->MoveNext();
  auto rows = grid.Rows();
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[2], (std::vector<Text>{u"3", u"Clock", u""}));
  // Reading the rows leaves the cursor where it stood.
  EXPECT_EQ(grid.row(), 1);
  EXPECT_EQ(title_->text(), u"Vase");

  std::vector<int> changed;
  grid.OnRowColChange = [&](int last_row, int) { changed.push_back(last_row); };
  title_->UserSet(u"Tall Vase");
  grid.UserRow(2);
  EXPECT_EQ(Stored(u"2"), u"Tall Vase");
  EXPECT_EQ(title_->text(), u"Clock");
  EXPECT_EQ(changed, std::vector<int>{1});
  EXPECT_THROW(grid.UserRow(3), UserError);

  // With an edit in hand the grid reads a cursor of its own, and the edit survives.
  source_->recordset().Edit();
  source_->recordset().SetField(u"Title", Variant(Text(u"Wall Clock")));
  EXPECT_EQ(grid.RowCount(), 3);
  EXPECT_EQ(grid.Cell(2, 1), u"Clock");
  EXPECT_TRUE(source_->recordset().EditInProgress());
  source_->recordset().Update();
  EXPECT_EQ(grid.Cell(2, 1), u"Wall Clock");

  int heading = -1;
  grid.OnHeadClick = [&](int col) { heading = col; };
  Text one = u"1", nine = u"9";
  grid.UserClick(&one);
  EXPECT_EQ(heading, 1);
  EXPECT_THROW(grid.UserClick(&nine), UserError);

  // A dragged heading border gives the column its width and tells the form which column it was.
  int resized = -1;
  grid.OnColResize = [&](int col) { resized = col; };
  grid.UserResizeColumn(2, 1800);
  EXPECT_EQ(resized, 2);
  EXPECT_EQ(grid.column(2).width, 1800);
  EXPECT_THROW(grid.UserResizeColumn(3, 100), UserError);
  EXPECT_THROW(grid.UserResizeColumn(0, -5), UserError);
  EXPECT_EQ(grid.column(0).width, -1);
}

TEST_F(Bound, ACellTypedIntoAnOpenGridGoesToItsRow) {
  auto& grid = t_.form.Add<Grid>(u"seller_grid");
  grid.AddColumn(u"Bulk List", u"Bulk_list");
  grid.AddColumn(u"Title", u"Title");
  grid.AddColumn(u"Price", u"Price");
  grid.SetDataSource(source_);
  source_->Refresh();
  EXPECT_THROW(grid.UserEditCell(1, 1, u"Tall Vase"), UserRefused);  // not open for updating
  grid.allow_updates = true;
  grid.column(2).locked = true;
  EXPECT_THROW(grid.UserEditCell(1, 2, u"9"), UserRefused);
  grid.column(0).visible = false;
  EXPECT_THROW(grid.UserEditCell(1, 0, u"True"), UserRefused);
  grid.column(0).visible = true;
  EXPECT_THROW(grid.UserEditCell(3, 1, u"x"), UserError);

  grid.UserEditCell(1, 1, u"Tall Vase");
  grid.UserEditCell(2, 0, u"True");
  EXPECT_EQ(Stored(u"2"), u"Tall Vase");
  EXPECT_EQ(grid.Cell(2, 0), u"True");
  EXPECT_EQ(grid.row(), 2);
  EXPECT_EQ(title_->text(), u"Clock");  // the bound controls show the row edited
  // A value the column can't hold changes nothing.
  grid.column(2).locked = false;
  EXPECT_THROW(grid.UserEditCell(0, 2, u"cheap"), RuntimeError);
  EXPECT_EQ(grid.Cell(0, 2), u"12.5");
  EXPECT_FALSE(source_->recordset().EditInProgress());
}

TEST_F(Bound, ANewRowIsTypedIntoTheBoundControlsAndSavedOrDropped) {
  source_->Refresh();
  source_->MoveLast();
  source_->AddNew();
  EXPECT_EQ(title_->text(), u"");
  title_->UserSet(u"Mirror");
  source_->UpdateRecord();
  EXPECT_EQ(db_->OpenRecordset(u"Select * From seller where Title = 'Mirror'")->Eof(), false);
  EXPECT_FALSE(source_->recordset().EditInProgress());

  source_->AddNew();
  title_->UserSet(u"Never");
  source_->UpdateControls();
  EXPECT_FALSE(source_->recordset().EditInProgress());
  EXPECT_TRUE(db_->OpenRecordset(u"Select * From seller where Title = 'Never'")->Eof());
  EXPECT_EQ(title_->text(), u"Clock");
}

TEST_F(Bound, DataControlGoingAwayUnbindsItsControls) {
  source_->Refresh();
  auto form = std::make_unique<Form>(t_.screen, u"other");
  auto& dc = form->Add<DataControl>(u"Bidder");
  Control& box = t_.form.Add(ControlKind::TextBox, u"outside_txt");
  box.Bind(dc, u"Title");
  form.reset();
  EXPECT_EQ(box.data_source(), nullptr);
  box.SetText(u"free");  // no data control left to tell
  EXPECT_FALSE(box.data_changed());
}

}  // namespace
}  // namespace lw
