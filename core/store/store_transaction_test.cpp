// Transactions: what a commit keeps and a rollback drops, nesting by depth, cursors living across them,
// and a failing statement in the middle of one.
#include "core/store/test_store.h"

namespace lw::testing {
namespace {

class StoreTransactionTest : public StoreTest {
 protected:
  int64_t Items(const std::string& like) {
    return Count("Select * From seller where item like '" + like + "'");
  }
  void Add(const std::string& item) {
    Exec("INSERT INTO seller (Item, username) VALUES ('" + item + "', 'u')");
  }
  // What another program reading the file sees: only committed rows.
  int64_t CommittedItems(const std::string& like) {
    auto other = Database::OpenDatabase(path_, regional_);
    auto rs = other->OpenRecordset(T("Select * From seller where item like '" + like + "'"));
    return rs->RecordCount();
  }
  int ErrorOf(const std::function<void()>& f) {
    try {
      f();
    } catch (const RuntimeError& e) {
      return e.number();
    }
    return 0;
  }
};

TEST_F(StoreTransactionTest, CommitKeepsRollbackDropsAndOnlyCommitsReachTheFile) {
  db_->BeginTrans();
  EXPECT_TRUE(db_->InTransaction());
  Add("T1");
  Add("T2");
  EXPECT_EQ(Items("T*"), 2);           // this store sees its own work at once
  EXPECT_EQ(CommittedItems("T*"), 0);  // the file does not, yet
  db_->CommitTrans();
  EXPECT_FALSE(db_->InTransaction());
  EXPECT_EQ(CommittedItems("T*"), 2);

  db_->BeginTrans();
  Add("R1");
  Exec("Delete From seller where item = 'T1'");
  Exec("Update seller set title = 'changed' where item = 'T2'");
  db_->Rollback();
  EXPECT_FALSE(db_->InTransaction());
  EXPECT_EQ(Items("R*"), 0);
  EXPECT_EQ(Items("T*"), 2);
  EXPECT_EQ(Count("Select * From seller where title = 'changed'"), 0);

  // After the transaction statements commit on their own again.
  Add("A1");
  EXPECT_EQ(CommittedItems("A1"), 1);
  EXPECT_EQ(ErrorOf([&] { db_->CommitTrans(); }), 3034);
  EXPECT_EQ(ErrorOf([&] { db_->Rollback(); }), 3034);
}

TEST_F(StoreTransactionTest, NestedLevelsCommitAtTheOutermostAndARollbackAnywhereDropsAll) {
  db_->BeginTrans();
  Add("N1");
  db_->BeginTrans();
  Add("N2");
  db_->CommitTrans();  // closes the inner level only
  EXPECT_TRUE(db_->InTransaction());
  EXPECT_EQ(CommittedItems("N*"), 0);
  db_->CommitTrans();
  EXPECT_EQ(CommittedItems("N*"), 2);

  db_->BeginTrans();
  Add("M1");
  db_->BeginTrans();
  Add("M2");
  db_->Rollback();  // the whole transaction goes, the outer level's work with it
  EXPECT_FALSE(db_->InTransaction());
  EXPECT_EQ(Items("M*"), 0);
  Add("M3");  // the outer level is still open but has nothing to hold: this commits on its own
  db_->BeginTrans();
  db_->CommitTrans();
  db_->CommitTrans();  // the outer level's commit only closes it
  EXPECT_EQ(ErrorOf([&] { db_->CommitTrans(); }), 3034);
  EXPECT_EQ(CommittedItems("M*"), 1);

  // The scope guard: leaving without Commit rolls back, Commit keeps, twice is an error.
  {
    StoreTransaction t(*db_);
    Add("G1");
  }
  EXPECT_EQ(Items("G*"), 0);
  {
    StoreTransaction outer(*db_);
    Add("G2");
    try {
      StoreTransaction inner(*db_);
      Add("G3");
      throw RuntimeError(5, "an error path");
    } catch (const RuntimeError&) {
    }
    EXPECT_FALSE(db_->InTransaction());
    outer.Commit();
    EXPECT_EQ(ErrorOf([&] { outer.Commit(); }), 3034);
  }
  EXPECT_EQ(Items("G*"), 0);
  {
    StoreTransaction t(*db_);
    Add("G4");
    t.Commit();
  }
  EXPECT_EQ(CommittedItems("G*"), 1);
}

TEST_F(StoreTransactionTest, CursorsOpenedBeforeAndDuringSeeTheWorkAndItsRollback) {
  Populate();
  auto before = Open("Select * From seller where username = 'seller1' order by item");
  before->FindFirst(u"item = '1002'");
  EXPECT_EQ(Str(*before, "Title"), u"Red Lamp");  // cached now

  db_->BeginTrans();
  before->AddNew();
  before->SetField(u"Item", Variant(u"1099"));
  before->SetField(u"username", Variant(u"seller1"));
  before->Update();
  before->Edit();
  before->SetField(u"Title", Variant(u"Red Lamp, boxed"));
  before->Update();
  auto during = Open("Select * From seller where username = 'seller1' order by item");
  during->MoveLast();
  EXPECT_EQ(during->RecordCount(), 9);
  EXPECT_EQ(Str(*during, "Item"), u"1099");
  during->FindFirst(u"item = '1003'");
  during->Delete();
  EXPECT_EQ(CommittedItems("1099"), 0);
  db_->Rollback();

  // The edited row reads as the store holds it again, not as the cursor last wrote it.
  EXPECT_EQ(Str(*before, "Title"), u"Red Lamp");
  before->MoveLast();
  EXPECT_EQ(ErrorOf([&] { before->Fields(u"Item"); }), 3167);  // the row it added
  during->Requery();
  during->MoveLast();
  EXPECT_EQ(during->RecordCount(), 8);
  EXPECT_EQ(Count("Select * From seller where item = '1003'"), 1);

  // A cursor edit inside a committed transaction is kept.
  db_->BeginTrans();
  before->MoveFirst();
  before->Edit();
  before->SetField(u"Title", Variant(u"kept"));
  before->Update();
  db_->CommitTrans();
  EXPECT_EQ(Count("Select * From seller where title = 'kept'"), 1);
}

TEST_F(StoreTransactionTest, AFailedStatementInsideChangesNothingAndTheRestStays) {
  db_->BeginTrans();
  Add("F1");
  EXPECT_EQ(ErrorOf([&] { Exec("Update seller set price = 'a lot' where item = 'F1'"); }), 3464);
  EXPECT_EQ(ErrorOf([&] { Exec("Update seller set nosuch = 1"); }), 3061);
  auto rs = Open("Select * From seller where item = 'F1'");
  rs->Edit();
  EXPECT_EQ(ErrorOf([&] { rs->SetField(u"End", Variant(u"not a date")); }), 3421);
  rs->CancelUpdate();
  // Half of a multi-row change cannot stay: the conversion fails on the second row.
  Add("F2");
  Exec("Update seller set title = '12' where item = 'F1'");
  Exec("Update seller set title = 'x' where item = 'F2'");
  EXPECT_EQ(ErrorOf([&] { Exec("Update seller set price = title where item like 'F*'"); }), 3464);
  EXPECT_EQ(Count("Select * From seller where item like 'F*' and price is null"), 2);
  EXPECT_TRUE(db_->InTransaction());
  Add("F3");
  db_->CommitTrans();
  EXPECT_EQ(CommittedItems("F*"), 3);
}

TEST_F(StoreTransactionTest, ClosingTheStoreRollsBackWhatIsOpen) {
  db_->BeginTrans();
  Add("C1");
  db_.reset();
  db_ = Database::OpenDatabase(path_, regional_);
  EXPECT_EQ(Items("C*"), 0);
}

}  // namespace
}  // namespace lw::testing
