// The controls that show documents: the report viewer draws the pages of the report the user picked and
// turns them with the model, and the picture display draws the picture file as its display mode says.
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTreeWidget>

#include "apps/desktop/desktop_testing.h"
#include "apps/desktop/document_views.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"
#include "screen/picture_box.h"
#include "screen/report_viewer.h"
#include "screen/tree_view.h"

namespace lw::desktop {
namespace {

using testing::Home;
using testing::Joined;
using testing::User;

class DesktopDocuments : public testing::DesktopTest {};

// The user clicks the tab of the page with this caption.
void OpenPage(Desktop& d, const Text& caption) {
  MainForm& main = *d.program().main;
  auto* tabs = qobject_cast<QTabWidget*>(d.renderer().WidgetOf(main.SSTab1));
  ASSERT_NE(tabs, nullptr);
  for (int i = 0; i < tabs->count(); ++i)
    if (tabs->tabText(i) == Q(caption).replace("&", "")) {
      tabs->setCurrentIndex(i);
      ASSERT_EQ(main.SSTab1.tab(), i);
      return;
    }
  FAIL() << "no page " << ToUtf8(caption);
}

// The user picks the first lot of the grid and opens the page with this caption.
void ShowFirstLotOn(Desktop& d, const Text& caption) {
  MainForm& main = *d.program().main;
  testing::ClickRow(d, main.seller_grid, 0);
  ASSERT_EQ(main.seller_grid.row(), 0);
  OpenPage(d, caption);
}

// Pixels darker than mid grey inside a box of the image.
int DarkPixels(const QImage& image, const QRect& box) {
  int dark = 0;
  const QRect in = box.intersected(image.rect());
  for (int y = in.top(); y <= in.bottom(); ++y)
    for (int x = in.left(); x <= in.right(); ++x) dark += qGray(image.pixel(x, y)) < 128;
  return dark;
}

QPushButton* ButtonCalled(QWidget& in, const QString& text) {
  for (QPushButton* b : in.findChildren<QPushButton*>())
    if (b->text() == text) return b;
  return nullptr;
}

TEST_F(DesktopDocuments, TheReportsPageDrawsTheChosenReportAndTurnsItsPages) {
  Home home("documents_report");
  testing::Sql(home.store,
               "DELETE FROM seller;"
               "INSERT INTO seller (Item, Title, username, site, Id, Email, Name, Address, Completed, "
               "Reserve_met, Payment, Quantity, Price, \"End\", pending) VALUES (100000001, 'Oak chair', "
               "'lotseller', 'eBay', 'bob1', 'bob@example.com', 'Bob Buyer', '2 Oak Ave', 0, 1, 1, 1, "
               "250000, 50000, 0);");
  Desktop d(home.Options());
  User user(d);
  user.Then("the report of the auction on show", testing::MainWindowShown(d), [&] {
    MainForm& main = *d.program().main;
    ShowFirstLotOn(d, u"Reports (F9)");
    auto& viewer = main.Get<ReportViewer>(u"arv");
    QWidget* shown = d.renderer().WidgetOf(viewer);
    ASSERT_NE(shown, nullptr);
    EXPECT_TRUE(shown->isVisibleTo(d.renderer().MainWindow()));
    auto* canvas = shown->findChild<ReportCanvas*>("page");
    auto* where = shown->findChild<QLabel*>("page_of");
    ASSERT_NE(canvas, nullptr);
    ASSERT_NE(where, nullptr);
    EXPECT_EQ(canvas->number(), 0);  // nothing chosen yet
    EXPECT_EQ(where->text(), "");

    // The user opens the tree down to the report and clicks it.
    auto* tree = qobject_cast<QTreeWidget*>(d.renderer().WidgetOf(main.Get<TreeView>(u"ctTree")));
    ASSERT_NE(tree, nullptr);
    QTreeWidgetItem* item = nullptr;
    for (const char* step : {"Seller", "Auction", "Print Auction Details"}) {
      QTreeWidgetItem* next = nullptr;
      const int count = item ? item->childCount() : tree->topLevelItemCount();
      for (int i = 0; i < count && !next; ++i) {
        QTreeWidgetItem* candidate = item ? item->child(i) : tree->topLevelItem(i);
        if (candidate->text(0) == step) next = candidate;
      }
      ASSERT_NE(next, nullptr) << step;
      item = next;
      item->setExpanded(true);
    }
    QTest::qWait(50);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(item).center());
    ASSERT_GE(viewer.PageCount(), 1) << ToUtf8(main.StatusBar1.Property(u"panel", {u"1"}).value_or(u""));
    EXPECT_EQ(canvas->document(), viewer.document().get());
    EXPECT_EQ(canvas->number(), 1);
    EXPECT_EQ(where->text(), QString("Page 1 of %1").arg(viewer.PageCount()));
    EXPECT_EQ(Joined(d.renderer().Check()), "");

    // The page is drawn: the lot's title is ink where its run stands, and paper where nothing does.
    const ReportPage& first = viewer.page(1);
    const ReportRun* title = nullptr;
    for (const ReportRun& r : first.runs)
      if (r.text == u"Oak chair") title = &r;
    ASSERT_NE(title, nullptr);
    const QImage drawn = canvas->grab().toImage();
    ASSERT_GE(drawn.width(), ReportCanvas::Place(0, 0, first.width, 0).right());
    EXPECT_GT(
        DarkPixels(drawn,
                   ReportCanvas::Place(title->left, title->top, title->width, title->height).toAlignedRect()),
        20);
    int lowest = 0;
    for (const ReportRun& r : first.runs) lowest = std::max(lowest, r.top + r.height);
    for (const ReportRule& r : first.rules) lowest = std::max({lowest, r.y1, r.y2});
    ASSERT_LT(lowest + 1440, first.height);
    const QRect blank = ReportCanvas::Place(720, lowest + 300, first.width - 1440, 900).toAlignedRect();
    EXPECT_EQ(DarkPixels(drawn, blank), 0);
    EXPECT_EQ(drawn.pixelColor(blank.center()), QColor(Qt::white));

    // A report of three pages: the buttons turn them through the model, and the model's turn shows.
    auto three = std::make_shared<ReportDocument>();
    for (int i = 1; i <= 3; ++i) {
      ReportPage page;
      ReportRun run;
      run.left = 1440;
      run.top = 1440 * i;
      run.width = 4000;
      run.height = 300;
      run.text = u"Page text";
      page.runs.push_back(run);
      three->pages.push_back(page);
    }
    d.Dispatch([&] { viewer.SetDocument(three); });
    EXPECT_EQ(canvas->document(), three.get());
    EXPECT_EQ(where->text(), "Page 1 of 3");
    QPushButton* next = ButtonCalled(*shown, "Next");
    QPushButton* last = ButtonCalled(*shown, "Last");
    QPushButton* previous = ButtonCalled(*shown, "Previous");
    ASSERT_TRUE(next && last && previous);
    EXPECT_FALSE(previous->isEnabled());
    QTest::mouseClick(next, Qt::LeftButton);
    EXPECT_EQ(viewer.current_page(), 2);
    EXPECT_EQ(canvas->number(), 2);
    EXPECT_EQ(where->text(), "Page 2 of 3");
    // Each page's run stands lower: ink at page 2's place, none at page 1's.
    QImage second = canvas->grab().toImage();
    EXPECT_GT(DarkPixels(second, ReportCanvas::Place(1440, 2880, 4000, 300).toAlignedRect()), 10);
    EXPECT_EQ(DarkPixels(second, ReportCanvas::Place(1440, 1440, 4000, 300).toAlignedRect()), 0);
    QTest::mouseClick(last, Qt::LeftButton);
    EXPECT_EQ(viewer.current_page(), 3);
    EXPECT_FALSE(next->isEnabled());
    d.Dispatch([&] { viewer.SetCurrentPage(1); });
    EXPECT_EQ(canvas->number(), 1);
    EXPECT_EQ(where->text(), "Page 1 of 3");
    EXPECT_EQ(Joined(d.renderer().Check()), "");
    d.Dispatch([&] { viewer.SetDocument(nullptr); });
    EXPECT_EQ(canvas->number(), 0);
    EXPECT_EQ(where->text(), "");
    EXPECT_FALSE(ButtonCalled(*shown, "Print")->isEnabled());
  });
  user.Then("quit", [&] { d.Quit(0); });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

TEST_F(DesktopDocuments, TheImagePageDrawsThePictureInTheChosenDisplayMode) {
  Home home("documents_picture");
  testing::OneLot(home.store, 46000, false);
  // Wider than high, and larger than the box on the page, so that every mode draws it at another size.
  const std::filesystem::path file = home.dir / "Chair.png";
  QImage picture(1500, 1000, QImage::Format_RGB32);
  picture.fill(QColor(200, 30, 30));
  ASSERT_TRUE(picture.save(QString::fromStdString(file.string())));
  Desktop d(home.Options());
  User user(d);
  user.Then("the picture of the auction", testing::MainWindowShown(d), [&] {
    MainForm& main = *d.program().main;
    ShowFirstLotOn(d, u"Image (F5)");
    auto& box = main.Get<PictureBox>(u"PicBuf1");
    auto* area = qobject_cast<QScrollArea*>(d.renderer().WidgetOf(box));
    ASSERT_NE(area, nullptr);
    auto* shown = area->findChild<QLabel*>("picture");
    ASSERT_NE(shown, nullptr);
    EXPECT_TRUE(shown->pixmap().isNull());

    // The user types where the picture is, in lower case as the page keeps it.
    auto* location = qobject_cast<QLineEdit*>(d.renderer().WidgetOf(main.Get(u"image_loc_txt", 0)));
    ASSERT_NE(location, nullptr);
    location->setFocus();
    QTest::keyClicks(location, Q(FromUtf8((home.dir / "chair.png").string())));
    ASSERT_TRUE(box.loaded()) << ToUtf8(main.StatusBar1.Property(u"panel", {u"1"}).value_or(u""));
    EXPECT_EQ(box.details().width, 1500);
    EXPECT_TRUE(area->isVisibleTo(d.renderer().MainWindow()));
    QTest::qWait(50);
    const QSize room = area->maximumViewportSize();
    ASSERT_LT(room.width(), 1500);
    ASSERT_LT(room.height(), 1000);

    // Best fit: the whole picture in the box, as wide or as high as the box, in proportion.
    ASSERT_EQ(box.display_mode(), PictureBox::kBestFit);
    QSize size = shown->pixmap().size();
    EXPECT_LE(size.width(), room.width());
    EXPECT_LE(size.height(), room.height());
    EXPECT_TRUE(size.width() == room.width() || size.height() == room.height()) << size.width();
    EXPECT_NEAR(size.width() * 2.0 / 3.0, size.height(), 2.0);
    EXPECT_EQ(shown->pixmap().toImage().pixelColor(size.width() / 2, size.height() / 2), QColor(200, 30, 30));
    EXPECT_EQ(Joined(d.renderer().Check()), "");

    // Actual size: pixel for pixel, the box scrolls.
    QTest::mouseClick(d.renderer().WidgetOf(main.Get(u"image_btn3")), Qt::LeftButton);
    EXPECT_EQ(box.display_mode(), PictureBox::kActualSize);
    EXPECT_EQ(shown->pixmap().size(), QSize(1500, 1000));
    EXPECT_EQ(Joined(d.renderer().Check()), "");
    // A click on the picture is one click of the box.
    int clicks = 0;
    box.OnClick = [&clicks] { ++clicks; };
    QTest::mouseClick(shown, Qt::LeftButton, {}, QPoint(20, 20));
    EXPECT_EQ(clicks, 1);
    box.OnClick = nullptr;

    // Fit to width: as wide as the box less its scroll bar, as the picture is then taller than it.
    QTest::mouseClick(d.renderer().WidgetOf(main.Get(u"image_btn2")), Qt::LeftButton);
    EXPECT_EQ(box.display_mode(), PictureBox::kFitToWidth);
    size = shown->pixmap().size();
    EXPECT_LE(size.width(), room.width());
    EXPECT_GT(size.width(), room.width() - 40);
    EXPECT_NEAR(size.width() * 2.0 / 3.0, size.height(), 2.0);

    // The program unloads the picture: the box is empty again.
    d.Dispatch([&] { box.SetFileName(Text()); });
    EXPECT_TRUE(shown->pixmap().isNull());
    EXPECT_EQ(Joined(d.renderer().Check()), "");
  });
  user.Then("quit", [&] { d.Quit(0); });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

}  // namespace
}  // namespace lw::desktop
