// The walk over every form and control of the model: each control has its widget, and each widget
// shows the model's caption, text and visibility, before and after the program changes them.
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

#include <algorithm>

#include "apps/desktop/desktop_testing.h"
#include "apps/desktop/grid_view.h"
#include "core/primitives/encoding.h"
#include "screen/main/main_form.h"

namespace lw::desktop {
namespace {

using testing::Home;
using testing::User;

class DesktopCheck : public ::testing::Test {
 protected:
  void SetUp() override { testing::EnsureApplication(); }
};

std::string Joined(const std::vector<std::string>& lines) {
  std::string out;
  for (const auto& l : lines) out += l + "\n";
  return out;
}

TEST_F(DesktopCheck, EveryControlOfEveryFormHasAWidgetShowingTheModel) {
  Home home("check_walk");
  Desktop d(home.Options());
  User user(d);
  user.Then(
      "every form built", [&] { return d.renderer().MainWindow() && d.renderer().MainWindow()->isVisible(); },
      [&] {
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
  user.Then(
      "the main window", [&] { return d.renderer().MainWindow() && d.renderer().MainWindow()->isVisible(); },
      [&] {
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
  user.Then(
      "the main window", [&] { return d.renderer().MainWindow() && d.renderer().MainWindow()->isVisible(); },
      [&] {
        MainForm& main = *d.program().main;
        auto* table = qobject_cast<QTableView*>(d.renderer().WidgetOf(main.seller_grid));
        ASSERT_NE(table, nullptr);
        auto* model = dynamic_cast<GridModel*>(table->model());
        ASSERT_NE(model, nullptr);
        EXPECT_EQ(model->rowCount(), 3000);
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

}  // namespace
}  // namespace lw::desktop
