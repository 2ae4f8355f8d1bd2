// The desktop program as a user drives it, without a display: typed text and clicks on the widgets
// reach the model, and what the model does shows in the widgets.
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <QToolBox>

#include <fstream>
#include <iostream>
#include <map>
#include <thread>

#include "apps/desktop/desktop_testing.h"
#include "core/primitives/encoding.h"
#include "screen/grid.h"
#include "screen/main/main_form.h"
#include "screen/main/small_forms.h"

namespace lw::desktop {
namespace {

using testing::Home;
using testing::OpenBox;
using testing::Press;
using testing::User;

class DesktopApp : public testing::DesktopTest {
 protected:
  template <class W = QWidget>
  W* Widget(Desktop& d, const Control& c) {
    return qobject_cast<W*>(d.renderer().WidgetOf(c));
  }
  static int Column(const Grid& grid, TextView field) {
    for (int c = 0; c < grid.ColumnCount(); ++c)
      if (grid.columns[c].data_field == field) return c;
    return -1;
  }
  // The number of rows a statement gives on the store.
  int64_t Count(Desktop& d, const Text& sql) {
    auto rs = d.program().startup.db->OpenRecordset(sql);
    int64_t n = 0;
    for (; !rs->Eof(); rs->MoveNext()) ++n;
    return n;
  }
  // Shuts the main window as the user does; the exit routine asks about the backup.
  static void CloseAndAnswerBackup(User& user, Desktop& d,
                                   QMessageBox::StandardButton answer = QMessageBox::No) {
    user.ThenOpening(
            "close the main window", [] { return true; }, [&d] { d.renderer().MainWindow()->close(); })
        .OnBox("the backup question", [answer](QMessageBox& box) {
          EXPECT_EQ(box.windowTitle(), "Backup Database");
          EXPECT_EQ(box.text(), "Do you want to backup the database now?");
          EXPECT_EQ(box.icon(), QMessageBox::Question);
          EXPECT_NE(box.button(QMessageBox::Yes), nullptr);
          Press(box, answer);
        });
  }
};

TEST_F(DesktopApp, FirstStartRunsTheWizardAsADialogAndShowsTheSampleRowUnderTheNewUserid) {
  Home home("first_start", true);
  Desktop d(home.Options());
  User user(d);
  Program& p = d.program();
  WizardForm* wizard = nullptr;
  user.ThenOpening(
          "the wizard as a modal dialog",
          [&] {
            wizard = p.wizard;
            QWidget* w = wizard ? d.renderer().WindowOf(*wizard) : nullptr;
            return w && w->isVisible();
          },
          [&] {
            auto* dialog = qobject_cast<QDialog*>(d.renderer().WindowOf(*wizard));
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->windowModality(), Qt::ApplicationModal);
            EXPECT_EQ(dialog->windowTitle(), "Simple Setup Wizard");
            EXPECT_TRUE(d.renderer().MainWindow()->isVisible());
            // Typing into the boxes: each key reaches the model's field.
            const char* typed[] = {"  Alice ", "Secret", "alice@example.com", "Alice Smith", "1 High St",
                                   "Alice",    "Leeds"};
            for (int i = 0; i < 7; ++i) {
              auto* box = Widget<QLineEdit>(d, wizard->Get(u"wizard_txt", i));
              ASSERT_NE(box, nullptr);
              QTest::keyClicks(box, typed[i]);
              EXPECT_EQ(wizard->Get(u"wizard_txt", i).text(), FromUtf8(i == 0 ? "  Alice " : typed[i]))
                  << "field " << i;
            }
            // Leaving the user id and password trimmed and lower-cased them, in the model and the box.
            EXPECT_EQ(wizard->Get(u"wizard_txt", 0).text(), u"alice");
            EXPECT_EQ(Widget<QLineEdit>(d, wizard->Get(u"wizard_txt", 0))->text(), "alice");
            EXPECT_EQ(Widget<QLineEdit>(d, wizard->Get(u"wizard_txt", 1))->text(), "secret");
            QTest::mouseClick(Widget<QPushButton>(d, wizard->savebtn), Qt::LeftButton);
          })
      .OnBox("the wizard's closing note",
             [](QMessageBox& box) {
               EXPECT_EQ(box.windowTitle(), "Simple Setup Wizard Complete");
               EXPECT_EQ(box.text(), "More advanced setup options can be changed on the Setup Screen");
               EXPECT_EQ(box.icon(), QMessageBox::Information);
               Press(box, QMessageBox::Ok);
             })
      .Then(
          "the main window under the new user id",
          [&] { return !d.renderer().WindowOf(*wizard)->isVisible() && !OpenBox(); },
          [&] {
            MainForm& main = *p.main;
            EXPECT_EQ(main.Userid_lst.text(), u"alice");
            EXPECT_EQ(Widget<QComboBox>(d, main.Userid_lst)->currentText(), "alice");
            EXPECT_EQ(Count(d, u"Select * From setup where Userid = 'alice' and Password = 'secret'"), 1);
            auto* table = Widget<QTableView>(d, main.seller_grid);
            ASSERT_NE(table, nullptr);
            EXPECT_TRUE(table->isVisibleTo(d.renderer().MainWindow()));
            ASSERT_EQ(table->model()->rowCount(), 1);
            const int title = Column(main.seller_grid, u"Title");
            ASSERT_GE(title, 0);
            EXPECT_EQ(table->model()->index(0, title).data().toString(), "Sample Auction");
            EXPECT_EQ(Q(main.seller_grid.Cell(0, title)), "Sample Auction");
            EXPECT_TRUE(d.renderer().Check().empty());
          });
  CloseAndAnswerBackup(user, d);
  ASSERT_TRUE(user.Play()) << user.stuck();
  EXPECT_EQ(d.exit_code(), 0);
}

TEST_F(DesktopApp, EachListBarEntryShowsThePageTheModelSays) {
  Home home("list_bar");
  Desktop d(home.Options());
  User user(d);
  MainForm* main = nullptr;
  int clicks = 0;
  std::map<std::string, int> pages_seen;
  // Every box the commands raise is answered with its last button (No, Cancel), every dialog closed
  // by its Cancel: the entries run against a closed port and nothing may be deleted.
  QTimer dismiss;
  QObject::connect(&dismiss, &QTimer::timeout, [&] {
    if (QMessageBox* box = OpenBox()) {
      auto buttons = box->buttons();
      if (!buttons.isEmpty()) buttons.back()->click();
    }
    if (main)
      if (Form* days = d.program().screen.FindForm(u"import_days_frm"); days && days->visible())
        if (auto* cancel = Widget<QPushButton>(d, days->Get(u"import_cancel_btn"))) cancel->click();
  });
  dismiss.start(20);
  user.Then("the main window", testing::MainWindowShown(d), [&] {
    main = d.program().main;
    auto* box = Widget<QToolBox>(d, main->ctListBar1);
    ASSERT_NE(box, nullptr);
    auto* tabs = Widget<QTabWidget>(d, main->SSTab1);
    ASSERT_NE(tabs, nullptr);
    for (int g = 0; g < box->count(); ++g) {
      box->setCurrentIndex(g);
      auto* list = qobject_cast<QListWidget*>(box->widget(g));
      ASSERT_NE(list, nullptr);
      for (int i = 0; i < list->count(); ++i) {
        const QString caption = list->item(i)->text();
        if (caption == "Quit") continue;
        QRect at = list->visualItemRect(list->item(i));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at.center());
        ++clicks;
        // The page the model is on is the page on show, and the screen shows the model.
        QTest::qWait(30);
        EXPECT_EQ(tabs->currentIndex(), main->SSTab1.tab()) << caption.toStdString();
        pages_seen[caption.toStdString()] = main->SSTab1.tab();
        for (const std::string& problem : d.renderer().Check())
          ADD_FAILURE() << caption.toStdString() << ": " << problem;
      }
    }
    // The browser commands take the screen to the web view's page, the record commands to
    // the auction's details.
    EXPECT_EQ(pages_seen["Search"], kBrowserPage);
    EXPECT_EQ(pages_seen["View My Ebay"], kBrowserPage);
  });
  user.Then("no more answering for the user", [&] { dismiss.stop(); });
  CloseAndAnswerBackup(user, d);
  ASSERT_TRUE(user.Play(120000)) << user.stuck();
  EXPECT_GE(clicks, 20);
}

TEST_F(DesktopApp, AStatusChosenInTheListChangesTheRowsOfTheGrid) {
  Home home("status_rows");
  testing::Sql(
      home.store,
      "DELETE FROM seller;"
      "INSERT INTO seller (Item, Title, username, site, Completed, pending, template, Quantity) VALUES"
      " ('1', 'Running lamp', 'lotseller', 'eBay', 0, 0, 0, 1),"
      " ('2', 'Running vase', 'lotseller', 'eBay', 0, 0, 0, 1),"
      " ('3', 'Sold clock', 'lotseller', 'eBay', -1, 0, 0, 1);");
  Desktop d(home.Options());
  User user(d);
  MainForm* main = nullptr;
  QTableView* table = nullptr;
  QComboBox* status = nullptr;
  user.Then("the main window", testing::MainWindowShown(d), [&] {
    main = d.program().main;
    table = Widget<QTableView>(d, main->seller_grid);
    status = Widget<QComboBox>(d, main->Auction_status_lst);
    ASSERT_TRUE(table && status);
    EXPECT_EQ(status->currentText(), "All Auctions");
    EXPECT_EQ(table->model()->rowCount(), 2);  // the default view: the auctions not completed
    const int title = Column(main->seller_grid, u"Title");
    // The user picks other statuses with the keys of the list: each is the model's, and the
    // grid shows the model's rows.
    status->setFocus();
    for (Qt::Key key : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Up}) {
      QTest::keyClick(status, key);
      EXPECT_EQ(FromQ(status->currentText()), main->Auction_status_lst.text());
      ASSERT_EQ(table->model()->rowCount(), main->seller_grid.RowCount());
      for (int r = 0; r < table->model()->rowCount(); ++r)
        EXPECT_EQ(FromQ(table->model()->index(r, title).data().toString()), main->seller_grid.Cell(r, title));
    }
    EXPECT_EQ(main->Auction_status_lst.text(), u"Auctions in Progress");
    EXPECT_EQ(table->model()->rowCount(), 2);
    // A change the program makes shows in the list and the grid.
    d.Dispatch([&] { main->Auction_status_lst.SetText(u"Auctions Ended - Transaction in Progress"); });
    EXPECT_EQ(status->currentText(), "Auctions Ended - Transaction in Progress");
    EXPECT_EQ(table->model()->rowCount(), 1);
    EXPECT_EQ(table->model()->index(0, title).data().toString(), "Sold clock");
    // A row clicked is the current record.
    d.Dispatch([&] { main->Auction_status_lst.SetText(u"Auctions in Progress"); });
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                      table->visualRect(table->model()->index(1, 0)).center());
    EXPECT_EQ(main->seller_grid.row(), 1);
    EXPECT_EQ(table->currentIndex().row(), 1);
    d.Dispatch([&] { main->seller.MoveFirst(); });
    EXPECT_EQ(table->currentIndex().row(), 0);
  });
  CloseAndAnswerBackup(user, d);
  ASSERT_TRUE(user.Play()) << user.stuck();
}

TEST_F(DesktopApp, DeletingTheLastUseridSaysItCannotOnTheSetupPage) {
  Home home("last_userid");
  Desktop d(home.Options());
  User user(d);
  MainForm* main = nullptr;
  user.ThenOpening("the Setup page by its key", testing::MainWindowShown(d),
                   [&] {
                     main = d.program().main;
                     auto* tabs = Widget<QTabWidget>(d, main->SSTab1);
                     QTest::keyClick(Widget<QComboBox>(d, main->Auction_type_lst), Qt::Key_F11);
                     EXPECT_EQ(main->SSTab1.tab(), kSetupPage);
                     EXPECT_EQ(tabs->currentIndex(), kSetupPage);
                     // The screen is locked on the page: the other pages and the list bar are disabled.
                     EXPECT_FALSE(tabs->isTabEnabled(0));
                     EXPECT_FALSE(Widget(d, main->ctListBar1)->isEnabled());
                     auto* bar = Widget<QToolBar>(d, main->Get(u"ctToolBar5"));
                     ASSERT_NE(bar, nullptr);
                     QAction* remove = bar->actions().value(2);
                     ASSERT_NE(remove, nullptr);
                     EXPECT_EQ(remove->text(), "Delete Userid");
                     QTest::mouseClick(bar->widgetForAction(remove), Qt::LeftButton);
                   })
      .OnBox("the refusal",
             [](QMessageBox& box) {
               EXPECT_EQ(box.windowTitle(), "Can't Delete");
               EXPECT_EQ(box.text(), "You can't delete the last UserId in the Database");
               EXPECT_EQ(box.icon(), QMessageBox::Critical);
               EXPECT_EQ(box.buttons().size(), 1);
               Press(box, QMessageBox::Ok);
             })
      .Then(
          "Cancel leaves the page", [&] { return !OpenBox(); },
          [&] {
            EXPECT_EQ(Count(d, u"Select * From setup"), 1);
            QTest::mouseClick(Widget<QPushButton>(d, main->Get(u"setup_btn", 2)), Qt::LeftButton);
            EXPECT_EQ(main->SSTab1.tab(), 0);
            EXPECT_EQ(Widget<QTabWidget>(d, main->SSTab1)->currentIndex(), 0);
            EXPECT_TRUE(Widget(d, main->ctListBar1)->isEnabled());
          });
  CloseAndAnswerBackup(user, d);
  ASSERT_TRUE(user.Play()) << user.stuck();
}

}  // namespace
}  // namespace lw::desktop

namespace lw::desktop {
namespace {

namespace fs = std::filesystem;
using testing::Home;
using testing::User;

TEST_F(DesktopApp, ADatabaseNamedForTheRunOpensAndTheSettingsKeepTheirOwn) {
  Home home("other_store");
  const fs::path other = home.dir / "elsewhere" / "shop.mdb";
  fs::create_directories(other.parent_path());
  fs::copy_file(LW_SHIPPED_STORE, other);
  testing::Sql(other, "UPDATE setup SET Userid = 'othershop', Password = 'x', Name = 'Other'");
  DesktopOptions options = home.Options();
  options.database = other;
  Desktop d(options);
  User user(d);
  user.Then("the main window on the other store", testing::MainWindowShown(d), [&] {
    EXPECT_EQ(d.program().main->Userid_lst.text(), u"othershop");
    EXPECT_NE(d.renderer().MainWindow()->windowTitle().indexOf("shop.mdb"), -1);
  });
  CloseAndAnswerBackup(user, d);
  ASSERT_TRUE(user.Play()) << user.stuck();
  std::ifstream settings(home.dir / "config" / "lotwright" / "settings.ini");
  std::string all((std::istreambuf_iterator<char>(settings)), std::istreambuf_iterator<char>());
  EXPECT_EQ(all.find("shop.mdb"), std::string::npos) << all;
  EXPECT_NE(all.find("Width="), std::string::npos) << all;
}

// The model's timers tick in the Qt loop, and its queue's events are delivered there, on this thread.
TEST_F(DesktopApp, TimersAndQueuedEventsRunInTheLoop) {
  Home home("timers");
  Desktop d(home.Options());
  User user(d);
  int ticks = 0;
  bool delivered_here = false;
  const auto gui = std::this_thread::get_id();
  user.Then("a timer started and an event posted from another thread", testing::MainWindowShown(d),
            [&] {
              Timer& t = d.program().main->Get<Timer>(u"Timer1");
              d.Dispatch([&] {
                t.OnTimer = [&] { ++ticks; };
                t.SetInterval(40);
                t.SetEnabled(true);
              });
              EventQueue& q = d.program().screen.queue();
              std::thread([&q, &delivered_here, gui] {
                q.Post([&delivered_here, gui] { delivered_here = std::this_thread::get_id() == gui; });
              }).join();
            })
      .Then(
          "both came", [&] { return ticks >= 3 && delivered_here; },
          [&] {
            Timer& t = d.program().main->Get<Timer>(u"Timer1");
            d.Dispatch([&] { t.SetEnabled(false); });
            const int stopped_at = ticks;
            QTest::qWait(200);
            EXPECT_EQ(ticks, stopped_at);
            d.Quit(0);
          });
  ASSERT_TRUE(user.Play()) << user.stuck();
}

}  // namespace
}  // namespace lw::desktop
