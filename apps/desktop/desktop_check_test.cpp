// The walk over every form and control of the model: each control has its widget, and each widget
// shows the model's caption, text and visibility, before and after the program changes them.
#include <QAbstractItemView>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>

#include "apps/desktop/desktop_testing.h"
#include "apps/desktop/grid_view.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"
#include "screen/tree_view.h"

namespace lw::desktop {
namespace {

using testing::Home;
using testing::Joined;
using testing::User;

class DesktopCheck : public testing::DesktopTest {};

TEST_F(DesktopCheck, EveryControlOfEveryFormHasAWidgetShowingTheModel) {
  Home home("check_walk");
  Desktop d(home.Options());
  User user(d);
  user.Then("every form built", testing::MainWindowShown(d), [&] {
    Program& p = d.program();
    MainForm& main = *p.main;
    d.renderer().BuildAll();
    for (Form* f : p.screen.forms()) EXPECT_NE(d.renderer().WindowOf(*f), nullptr) << ToUtf8(f->name());
    EXPECT_EQ(Joined(d.renderer().Check()), "");

    // The program changes captions, texts, lists, visibility and pages; the widgets follow.
    d.Dispatch([&] {
      main.Get(u"seller_id_lbl").SetCaption(u"Seller's ID");
      main.Get(u"Title_txt", 0).SetText(u"Renamed lot");
      main.Get(u"bid_btn").SetVisible(true);
      main.Get<ComboBox>(u"compare_lst").AddItem(u"<>");
      main.Get<Toolbar>(u"ctToolBar1").button(7).visible = false;
      main.SSTab1.page(kAdvEditPage).visible = true;
      main.StatusBar1.SetPanel(2, u"Total: $1.00");
      main.Auction_type_lst.SetText(u"Bidder");
    });
    EXPECT_EQ(Joined(d.renderer().Check()), "");
    EXPECT_TRUE(d.renderer().WidgetOf(main.buyer_grid)->isVisibleTo(d.renderer().MainWindow()));
    EXPECT_TRUE(d.renderer().WidgetOf(main.seller_grid)->isHidden());

    // The check itself sees a widget that strays from the model.
    auto* title = qobject_cast<QLineEdit*>(d.renderer().WidgetOf(main.Get(u"Title_txt", 0)));
    ASSERT_NE(title, nullptr);
    title->setText("not the model's");
    d.renderer().WidgetOf(main.Get(u"bid_btn"))->hide();
    auto problems = d.renderer().Check();
    ASSERT_EQ(problems.size(), 2u) << Joined(problems);
    EXPECT_NE(problems[0].find("Title_txt(0)"), std::string::npos);
    EXPECT_NE(problems[1].find("bid_btn"), std::string::npos);
    d.Dispatch([&] {
      main.Get(u"Title_txt", 0).SetText(u"not the model's");
      main.Get(u"bid_btn").SetVisible(false);
    });
    EXPECT_EQ(Joined(d.renderer().Check()), "");
  });
  user.Then("quit", [&] { d.Quit(0); });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

// A control added to a form once it is on show gets its widget in its place, without code of its own.
TEST_F(DesktopCheck, AControlAddedLaterGetsItsWidgetInItsContainer) {
  Home home("check_added");
  Desktop d(home.Options());
  User user(d);
  user.Then("the main window", testing::MainWindowShown(d), [&] {
    MainForm& main = *d.program().main;
    Control* note = nullptr;
    d.Dispatch([&] {
      Control& frame = main.Add(ControlKind::Frame, u"later_fra");
      frame.SetCaption(u"Later");
      frame.SetContainer(&main.Page(6));
      note = &main.Add(ControlKind::Label, u"later_lbl");
      note->SetCaption(u"Added once the window was up");
      note->SetContainer(&frame);
    });
    QWidget* label = d.renderer().WidgetOf(*note);
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->window(), d.renderer().MainWindow());
    EXPECT_TRUE(d.renderer().WidgetOf(main.Page(6))->isAncestorOf(label));
    EXPECT_EQ(Joined(d.renderer().Check()), "");
  });
  user.Then("quit", [&] { d.Quit(0); });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

// A view of many rows is read a screenful at a time, and a jump to its last row reads little more.
TEST_F(DesktopCheck, TheGridReadsRowsOnDemand) {
  Home home("check_rows");
  testing::Sql(
      home.store,
      "DELETE FROM seller;"
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) "
      "INSERT INTO seller (Item, Title, username, site, Price, \"End\", Completed, pending) "
      "SELECT 100000000 + i, 'Lot ' || i, 'lotseller', 'eBay', i * 10000, 46000 + i / 100.0, 0, 0 FROM n;");
  Desktop d(home.Options());
  User user(d);
  user.Then("the main window", testing::MainWindowShown(d), [&] {
    MainForm& main = *d.program().main;
    auto* table = qobject_cast<QTableView*>(d.renderer().WidgetOf(main.seller_grid));
    ASSERT_NE(table, nullptr);
    auto* model = dynamic_cast<GridModel*>(table->model());
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->rowCount(), 3000);
    // A window of the size a seller's screen gives, where the grid is in sight whole.
    d.renderer().MainWindow()->resize(1000, 700);
    // What is painted is read, a screenful; the jump to the end reads the end's screenful.
    const size_t start = model->rows_read();
    model->RowsChanged();
    QTest::qWait(150);
    const size_t first = model->rows_read();
    EXPECT_GT(first - start, 5u);
    EXPECT_LT(first - start, 200u);
    d.Dispatch([&] { main.seller.MoveLast(); });
    QTest::qWait(150);
    EXPECT_EQ(table->currentIndex().row(), 2999);
    EXPECT_GT(model->rows_read() - first, 5u);
    EXPECT_LT(model->rows_read() - first, 200u);
    // The view is ordered by end, latest first: the last row is the first lot.
    EXPECT_EQ(table->model()->index(2999, 4).data().toString(), "Lot 1");
  });
  user.Then("quit", [&] { d.Quit(0); });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

// The Sell page, its category tree and the charges dialogs come from other parts of the program: they
// show and answer through the same widgets, with no code of their own in the desktop program.
TEST_F(DesktopCheck, TheSellPageAndItsCategoryTreeShowWithoutCodeOfTheirOwn) {
  Home home("check_others");
  testing::OneLot(home.store, 46000, true);
  Desktop d(home.Options());
  User user(d);
  MainForm* main = nullptr;
  TreeView* tree = nullptr;
  QTreeWidget* shown = nullptr;
  user.Then("the Sell page with its category tree", testing::MainWindowShown(d), [&] {
    main = d.program().main;
    auto* tabs = qobject_cast<QTabWidget*>(d.renderer().WidgetOf(main->SSTab1));
    ASSERT_NE(tabs, nullptr);
    tabs->setCurrentIndex(kListerPage);
    EXPECT_EQ(main->SSTab1.tab(), kListerPage);
    tree = &main->Get<TreeView>(u"ctcategorytree");
    shown = qobject_cast<QTreeWidget*>(d.renderer().WidgetOf(*tree));
    ASSERT_NE(shown, nullptr);
    EXPECT_TRUE(shown->isVisibleTo(d.renderer().MainWindow()));
    EXPECT_EQ(Joined(d.renderer().Check()), "");

    // Loaded as the category tree loads: painting held back, the last sibling put first.
    d.Dispatch([&] {
      tree->SetRedraw(false);
      const int antiques = tree->AddTop(u"Antiques");
      const int furniture = tree->AddNode(antiques, Text(), u"Furniture");
      tree->SetData(tree->AddNode(furniture, Text(), u"Tables"), 41);
      tree->SetData(tree->AddNode(furniture, Text(), u"Chairs", TreeView::End::kFirst), 42);
      tree->SetData(tree->AddTop(u"Books", TreeView::End::kFirst), 7);
    });
    EXPECT_EQ(shown->topLevelItemCount(), 0);  // nothing painted while held back
    d.Dispatch([&] { tree->SetRedraw(true); });
    ASSERT_EQ(shown->topLevelItemCount(), 2);
    EXPECT_EQ(shown->topLevelItem(0)->text(0), "Books");
    QTreeWidgetItem* antiques = shown->topLevelItem(1);
    ASSERT_EQ(antiques->childCount(), 1);
    ASSERT_EQ(antiques->child(0)->childCount(), 2);
    EXPECT_EQ(antiques->child(0)->child(0)->text(0), "Chairs");
    EXPECT_EQ(Joined(d.renderer().Check()), "");

    // The user opens the items on the way and clicks a leaf: its number fills the box.
    antiques->setExpanded(true);
    antiques->child(0)->setExpanded(true);
    EXPECT_EQ(tree->Property(u"expanded", {u"1"}), u"True");
    EXPECT_EQ(shown->topLevelItem(1), antiques);  // opening rebuilt nothing under the hand
    QTreeWidgetItem* chairs = antiques->child(0)->child(0);
    QTest::qWait(50);
    QTest::mouseClick(shown->viewport(), Qt::LeftButton, {}, shown->visualItemRect(chairs).center());
    EXPECT_EQ(tree->Property(u"path", {}), u"Antiques > Furniture > Chairs");
    EXPECT_EQ(main->Get(u"category_no_txt", 0).text(), u"42");
    auto* number = qobject_cast<QLineEdit*>(d.renderer().WidgetOf(main->Get(u"category_no_txt", 0)));
    ASSERT_NE(number, nullptr);
    EXPECT_EQ(number->text(), "42");
    EXPECT_EQ(shown->currentItem(), chairs);
    // A branch gives no number.
    QTest::mouseClick(shown->viewport(), Qt::LeftButton, {},
                      shown->visualItemRect(antiques->child(0)).center());
    EXPECT_EQ(number->text(), "0");

    // The program empties the tree; the widget follows.
    d.Dispatch([&] { tree->Clear(); });
    EXPECT_EQ(shown->topLevelItemCount(), 0);
    EXPECT_EQ(Joined(d.renderer().Check()), "");
  });
  user.Then("quit", [&] { d.Quit(0); });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

TEST_F(DesktopCheck, TheChargesDialogShowsWithoutCodeOfItsOwn) {
  Home home("check_charges");
  testing::OneLot(home.store, 50000, false);
  Desktop d(home.Options());
  User user(d);
  MainForm* main = nullptr;
  Form* costs = nullptr;
  user.ThenOpening("the costs dialog from the details page", testing::MainWindowShown(d),
                   [&] {
                     main = d.program().main;
                     testing::ClickRow(d, main->seller_grid, 0);
                     EXPECT_EQ(main->seller_grid.row(), 0);
                     auto* tabs = qobject_cast<QTabWidget*>(d.renderer().WidgetOf(main->SSTab1));
                     tabs->setCurrentIndex(1);
                     ASSERT_TRUE(main->Get(u"Cost_txt", 0).Reachable());
                     QWidget* cost = d.renderer().WidgetOf(main->Get(u"Cost_txt", 0));
                     ASSERT_NE(cost, nullptr);
                     // The money box is its symbol and its line: the user clicks the line.
                     auto* line = qobject_cast<QLineEdit*>(cost);
                     if (!line) line = cost->findChild<QLineEdit*>();
                     ASSERT_NE(line, nullptr);
                     QTest::mouseClick(line, Qt::LeftButton);
                   })
      .Then(
          "the dialog shows its form",
          [&] {
            costs = d.program().screen.FindForm(u"frmpurchasecharges");
            QWidget* w = costs ? d.renderer().WindowOf(*costs) : nullptr;
            return w && w->isVisible();
          },
          [&] {
            auto* dialog = qobject_cast<QDialog*>(d.renderer().WindowOf(*costs));
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->windowModality(), Qt::ApplicationModal);
            EXPECT_EQ(dialog->windowTitle(), "Purchase and Sale Costs");
            EXPECT_EQ(Joined(d.renderer().Check()), "");
            QWidget* rate = d.renderer().WidgetOf(costs->Get(u"purchase_tax_rate"));
            ASSERT_NE(rate, nullptr);
            EXPECT_TRUE(dialog->isAncestorOf(rate));
            QTest::mouseClick(d.renderer().WidgetOf(costs->Get(u"CancelButton")), Qt::LeftButton);
          })
      .Then(
          "the dialog closed", [&] { return !d.renderer().WindowOf(*costs)->isVisible(); },
          [&] { EXPECT_FALSE(costs->visible()); });
  user.Then("quit", [&] { d.Quit(0); });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

// Whatever page has been shown, the main window fits a small screen: a page taller than the window
// scrolls at its natural size, so each of its controls can be scrolled to, and the grids keep rows.
TEST_F(DesktopCheck, EveryPageFitsASmallScreenAndScrollsToEachOfItsControls) {
  Home home("check_small_screen");
  testing::OneLot(home.store, 46000, true);
  Desktop d(home.Options());
  User user(d);
  user.Then("every page shown in a window of a small screen", testing::MainWindowShown(d), [&] {
    MainForm& main = *d.program().main;
    QWidget* window = d.renderer().MainWindow();
    auto* tabs = qobject_cast<QTabWidget*>(d.renderer().WidgetOf(main.SSTab1));
    ASSERT_NE(tabs, nullptr);
    window->showNormal();
    window->resize(1000, 700);
    bool scrolled = false;
    bool lister_shown = false;
    for (int i = 0; i < tabs->count(); ++i) {
      if (!tabs->isTabVisible(i) || !tabs->isTabEnabled(i)) continue;
      SCOPED_TRACE(tabs->tabText(i).toStdString());
      lister_shown = lister_shown || i == kListerPage;
      tabs->setCurrentIndex(i);
      ASSERT_EQ(main.SSTab1.tab(), i);
      QTest::qWait(20);
      EXPECT_LT(window->minimumSizeHint().height(), 800);
      EXPECT_LE(window->minimumSizeHint().width(), 1000);
      auto* area = qobject_cast<QScrollArea*>(tabs->widget(i));
      ASSERT_NE(area, nullptr);
      QWidget* content = area->widget();
      ASSERT_NE(content, nullptr);
      // The content is never squeezed below what its controls need.
      EXPECT_GE(content->height(), content->minimumSizeHint().height());
      EXPECT_GE(content->width(), content->minimumSizeHint().width());
      scrolled = scrolled || content->height() > area->viewport()->height();
      int reached = 0;
      for (const auto& c : main.controls()) {
        QWidget* w = d.renderer().WidgetOf(*c);
        if (!w || !content->isAncestorOf(w) || !c->Reachable()) continue;
        area->ensureWidgetVisible(w, 0, 0);
        const QRect at(w->mapTo(area->viewport(), QPoint(0, 0)), w->size());
        EXPECT_TRUE(area->viewport()->rect().intersects(at)) << ToUtf8(c->name());
        // Grids and trees keep a few rows rather than giving their room to the fields.
        if (qobject_cast<QAbstractItemView*>(w)) {
          EXPECT_GE(w->height(), 5 * w->fontMetrics().height()) << ToUtf8(c->name());
        }
        ++reached;
      }
      EXPECT_GT(reached, 0);
    }
    // The tallest page, the Sell page, is taller than the window: scrolling keeps it whole.
    EXPECT_TRUE(lister_shown);
    EXPECT_TRUE(scrolled);
    window->resize(window->minimumSizeHint());
    QTest::qWait(20);
    EXPECT_LT(window->height(), 800);
  });
  user.Then("quit", [&] { d.Quit(0); });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

// With the screen's font sizing on, the fonts of the main window grow and shrink with it; off, they keep
// their size whatever the window's.
TEST_F(DesktopCheck, FontsFollowTheMainWindowWhileFontSizingIsOn) {
  for (bool sizing : {true, false}) {
    SCOPED_TRACE(sizing ? "font sizing on" : "font sizing off");
    Home home(sizing ? "check_fonts_on" : "check_fonts_off");
    testing::Sql(home.store, std::string("UPDATE misc SET fontsizing = ") + (sizing ? "1" : "0"));
    Desktop d(home.Options());
    User user(d);
    user.Then("the window made larger and smaller", testing::MainWindowShown(d), [&] {
      MainForm& main = *d.program().main;
      EXPECT_EQ(d.program().main_screen.fontsizing, sizing);
      QWidget* window = d.renderer().MainWindow();
      QWidget* label = d.renderer().WidgetOf(main.Get(u"seller_id_lbl"));
      QWidget* title = d.renderer().WidgetOf(main.Get(u"Title_txt", 0));
      ASSERT_TRUE(label && title);
      QTest::qWait(50);
      const double label_size = label->font().pointSizeF();
      const double title_size = title->font().pointSizeF();
      const QSize first = window->size();
      window->resize(first * 1.5);
      QTest::qWait(100);
      ASSERT_EQ(window->size(), first * 1.5);
      const double grown = sizing ? 1.5 : 1.0;
      EXPECT_NEAR(label->font().pointSizeF(), label_size * grown, 0.1);
      EXPECT_NEAR(title->font().pointSizeF(), title_size * grown, 0.1);
      window->resize(first);
      QTest::qWait(100);
      EXPECT_NEAR(label->font().pointSizeF(), label_size, 0.1);
      EXPECT_EQ(Joined(d.renderer().Check()), "");
    });
    user.Then("quit", [&] { d.Quit(0); });
    ASSERT_TRUE(user.Play()) << user.stuck();
  }
}

}  // namespace
}  // namespace lw::desktop
