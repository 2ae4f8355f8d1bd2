// The Reports page on the real main form over a store installed from the shipped empty one: the page
// margins as the user's locale writes them, the save dialog's one export, and printing.
#include "accounting/report_screen.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <fstream>

#include "accounting/export_reading.h"
#include "core/primitives/encoding.h"
#include "import/import_screen.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"
#include "screen/report_viewer.h"
#include "screen/testing.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class PrintingUi : public testing::RecordingUi {
 public:
  std::optional<FileDialogAnswer> save;
  std::vector<Text> saves;  // the folders the dialog opened in
  std::vector<std::string> opened, printed;
  std::optional<FileDialogAnswer> ShowSave(const FileDialogRequest& r) override {
    saves.push_back(r.initial_dir);
    return save;
  }
  void OpenAddress(const Text& address) override { opened.push_back(ToUtf8(address)); }
  void StartProgram(const fs::path& program, const std::vector<Text>& args) override {
    printed.push_back(program.string() + " " + (args.empty() ? "" : ToUtf8(args[0])));
  }
};

class ReportScreenTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = testing::FreshTestHome("lw_reports_",
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
    if (const char* path = getenv("PATH")) path_ = path;
  }
  void TearDown() override {
    setenv("PATH", path_.c_str(), 1);
    program_.reset();
    settings_.reset();
    fs::remove_all(dir_);
  }

  void Start(const char* locale = "en_US") {
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    program_ = std::make_unique<Program>(
        ui_, queue_, *settings_, ProgramFiles{LW_SHIPPED_STORE, dir_ / "lotwright-convert", dir_ / "help"});
    program_->regional = Regional::FromLocale(locale);
    program_->clock.Fix(MakeDate(2026, 3, 18, 10, 0, 0));
    CreateForms(*program_);
    RegisterImport(*program_);
    RegisterReports(*program_);
    Main(*program_);
    program_->startup.db->Execute(
        u"INSERT INTO seller (Item, Title, username, Reserve_met, Price, Cost, actual_ship_cost, "
        u"actual_insure_cost, "
        u"actual_other_cost, actual_total_tax, Ship_cost, insure_cost, total_tax) VALUES ('1', 'Vase', 'No "
        u"Userid "
        u"Set', yes, 25, 10, 2, 0, 0, 0, 3, 0, 0)");
    main().SSTab1.UserTab(7);
  }
  MainForm& main() { return *program_->main; }
  ReportViewer& arv() { return main().Get<ReportViewer>(u"arv"); }
  void Pick(const char16_t* path) {
    Text p = path;
    main().Get(u"ctTree").UserClick(&p);
  }

  PrintingUi ui_;
  EventQueue queue_;
  fs::path dir_;
  std::string path_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

TEST_F(ReportScreenTest, MarginsAreInchesAsTheLocaleWritesThemAndABadOneStopsTheReport) {
  Start("nl_NL");
  EXPECT_EQ(main().Get(u"ctNEdit1", 0).text(), u"0,25");
  Pick(u"Seller > Accounting > Top 100 Sales - Individual Items");
  ASSERT_EQ(arv().PageCount(), 1);
  int left = INT32_MAX, top = INT32_MAX;
  for (const ReportRun& r : arv().page(1).runs) {
    left = std::min(left, r.left);
    top = std::min(top, r.top);
  }
  EXPECT_EQ(left, 360);  // 0,25 inch
  EXPECT_EQ(top, 360);
  EXPECT_NE(PageText(arv().page(1)).find(u"\u20ac 16,00"), Text::npos) << ToUtf8(PageText(arv().page(1)));

  main().Get(u"ctNEdit1", 1).SetText(u"twee");
  arv().SetDocument(nullptr);
  Pick(u"Seller > Accounting > Top 100 Sales - Individual Items");
  EXPECT_EQ(arv().PageCount(), 0);
  EXPECT_NE(main().status(), u"Top 100 Sales");
}

TEST_F(ReportScreenTest, SavingExportsOnceAndThePickAfterItShowsAgain) {
  Start();
  Text save = u"2";
  Pick(u"Seller > Accounting > Top 100 Sales - Individual Items");
  fs::create_directories(dir_ / "out");
  ui_.save = FileDialogAnswer{dir_ / "out" / "report.txt", 3};
  main().Get<Toolbar>(u"ctToolBar6").UserClick(&save);
  std::ifstream in(dir_ / "out" / "report.txt");
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_NE(text.find("$16.00"), std::string::npos) << text;
  fs::remove(dir_ / "out" / "report.txt");
  // The next pick shows: nothing is written behind the user's back.
  arv().SetDocument(nullptr);
  Pick(u"Seller > Accounting > Top 100 Sales - Combined Items");
  EXPECT_EQ(arv().PageCount(), 1);
  EXPECT_FALSE(fs::exists(dir_ / "out" / "report.txt"));
  // The dialog opens where the last save went; a cancel writes nothing.
  ui_.save.reset();
  main().Get<Toolbar>(u"ctToolBar6").UserClick(&save);
  ASSERT_EQ(ui_.saves.size(), 2u);
  EXPECT_EQ(ui_.saves[0], u"");
  EXPECT_EQ(ui_.saves[1], FromUtf8((dir_ / "out").string()));
  EXPECT_TRUE(fs::is_empty(dir_ / "out"));
}

TEST_F(ReportScreenTest, PrintingSendsThePdfToLpWhereThereIsOneAndToTheDesktopElse) {
  Start();
  Pick(u"Seller > Accounting > Top 100 Sales - Individual Items");
  fs::create_directories(dir_ / "bin");
  setenv("PATH", (dir_ / "bin").c_str(), 1);
  Text print = u"print";
  arv().UserClick(&print);
  fs::path pdf = program_->DbFile(u"\\report_print.pdf");
  ASSERT_EQ(ui_.opened.size(), 1u);
  EXPECT_EQ(ui_.opened[0], pdf.string());
  setenv("PATH", path_.c_str(), 1);  // for pdftotext
  EXPECT_NE(report_export::PdfText(pdf).find("$16.00"), std::string::npos);

  setenv("PATH", (dir_ / "bin").c_str(), 1);
  std::ofstream(dir_ / "bin" / "lp") << "#!/bin/sh\n";
  fs::permissions(dir_ / "bin" / "lp", fs::perms::owner_all);
  arv().UserClick(&print);
  ASSERT_EQ(ui_.printed.size(), 1u);
  EXPECT_EQ(ui_.printed[0], (dir_ / "bin" / "lp").string() + " " + pdf.string());
  EXPECT_EQ(ui_.opened.size(), 1u);
}

}  // namespace
}  // namespace lw
