// The statements the program sends, run whole against a populated store, and the results that the
// views, purges, status chain, fee import and reports depend on.
#include <fstream>

#include "core/store/test_store.h"

namespace lw::testing {
namespace {

std::vector<std::string> LoadStatements() {
  std::ifstream in(LW_SOURCE_DIR "/core/store/testdata/statements.txt");
  std::vector<std::string> out;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    out.push_back(line);
  }
  return out;
}

using StatementsTest = StoreTest;

TEST_F(StatementsTest, EveryStatementRuns) {
  Populate();
  auto statements = LoadStatements();
  ASSERT_GT(statements.size(), 100u);
  for (const auto& sql : statements) {
    SCOPED_TRACE(sql);
    try {
      if (sql.rfind("Select", 0) == 0 || sql.rfind("SELECT", 0) == 0 || sql.rfind("select", 0) == 0) {
        auto rs = Open(sql);
        // Read every field of every row, so that each column comes back through its type.
        auto names = rs->FieldNames();
        while (!rs->Eof()) {
          for (auto& n : names) rs->Fields(n);
          rs->MoveNext();
        }
      } else {
        db_->Execute(T(sql));
      }
    } catch (const RuntimeError& e) {
      ADD_FAILURE() << "error " << e.number() << ": " << e.description();
    }
  }
  // The last purges leave nothing of seller2 or seller9.
  EXPECT_EQ(Count("Select * From seller where username = 'seller2' or username = 'seller9'"), 0);
}

TEST_F(StatementsTest, ViewConditions) {
  Populate();
  const std::string tail = " and username = 'seller1' and site = 'eBay'";
  EXPECT_EQ(Count("Select * From seller where Completed = no and pending = no" + tail), 1);  // 1002
  EXPECT_EQ(Count("Select * From seller where Completed = yes and trans_comp = no and pending = no" + tail),
            4);
  EXPECT_EQ(Count("Select * From seller where Completed = yes and trans_comp = yes and pending = no" + tail),
            3);
  EXPECT_EQ(Count("Select * From seller where username = 'seller1' and site = 'eBay'"), 8);
  // The shipped sample row is the only unsubmitted one, and only for its own user id.
  EXPECT_EQ(
      Count("Select * From seller where pending = yes and username = 'No Userid Set' and site = 'eBay'"), 1);
  EXPECT_EQ(Count("Select * From bidder where watching = no and Completed = yes and trans_comp = no" + tail),
            1);
  // A row inserted without watching still meets "watching = no".
  Exec(
      "INSERT INTO Bidder (item, watching, site, username, title, end) VALUES('3001', true ,'eBay', "
      "'seller1', "
      "'Old Clock', '12/05/2026')");
  EXPECT_EQ(Count("Select * From bidder where watching = yes" + tail), 1);
  EXPECT_EQ(Count("Select * From bidder where watching = no" + tail), 2);
  auto w = Open("Select * From bidder where watching = yes" + tail);
  EXPECT_EQ(w->Fields(u"End"), Variant(MakeDate(2026, 12, 5)));
  EXPECT_EQ(w->Fields(u"Completed"), Variant(false));
  // Case of names and of text values does not matter.
  EXPECT_EQ(Count("SELECT * FROM SELLER WHERE USERNAME = 'SELLER1' AND Site = 'EBAY'"), 8);
  // A filter on money and on a pattern.
  EXPECT_EQ(Count("Select * From seller where price > '29' and username = 'seller1' and site = 'eBay'"), 3);
  EXPECT_EQ(Count("Select * From seller where title like '*VASE*'" + tail), 6);
  auto total = Open("Select Sum(price) AS sql_total_price From seller where username = 'seller1'");
  EXPECT_EQ(total->Fields(u"sql_total_price"), Variant(Currency::FromDouble(148)));
}

TEST_F(StatementsTest, PurgesAndBulk) {
  Populate();
  Exec("Delete FROM Seller WHERE username = 'seller1' AND id = 'No Bids' AND trans_comp = yes");
  EXPECT_EQ(db_->RecordsAffected(), 1);
  Exec("Delete FROM Bidder WHERE id <> username AND trans_comp = yes");
  EXPECT_EQ(db_->RecordsAffected(), 1);  // 2004; 2005 was won by its own user
  Exec("Delete FROM Seller WHERE trans_comp = yes");
  EXPECT_EQ(db_->RecordsAffected(), 3);  // 1006, 1007 and seller2's 2002
  // The mail row goes, the feedback comment with its null user stays.
  Exec("DELETE FROM bulk where username <> ''");
  EXPECT_EQ(db_->RecordsAffected(), 1);
  auto rest = Open("Select * From bulk");
  ASSERT_FALSE(rest->Eof());
  EXPECT_EQ(Str(*rest, "feedback_comment"), u"Smooth trade");
  EXPECT_TRUE(rest->Fields(u"username").IsNull());
  Exec("DELETE * FROM Bulkstatuslog");
  EXPECT_EQ(db_->RecordsAffected(), 1);
}

TEST_F(StatementsTest, StatusChainMovesOneStepAtATime) {
  Populate();
  const std::string who = " where email = 'buyer@example.com' and Trans_comp = no and completed = yes";
  Exec("Update Seller set contact = true, status_date = '11/22/2026'" + who +
       " and contact = no and payment = no");
  EXPECT_EQ(db_->RecordsAffected(), 3);  // 1001, 1004, 1005
  // The payment step needs the response first, so nothing moves yet.
  Exec("Update Seller set payment = true, status_date = '11/23/2026'" + who +
       " and payment = no and contact = yes and response = yes");
  EXPECT_EQ(db_->RecordsAffected(), 0);
  Exec("Update Seller set response = true, status_date = '11/22/2026'" + who +
       " and payment = no and contact = yes");
  EXPECT_EQ(db_->RecordsAffected(), 3);
  auto rs = Open(
      "Select * From seller where email = 'buyer@example.com' and Trans_comp = no and Status_date = "
      "#11/22/2026# and response = true");
  EXPECT_EQ(rs->Fields(u"Status_date"), Variant(MakeDate(2026, 11, 22)));
  EXPECT_EQ(rs->Fields(u"contact"), Variant(true));
  rs->MoveLast();
  EXPECT_EQ(rs->RecordCount(), 3);
  Exec("Update Seller set payment = true, status_date = '11/23/2026'" + who +
       " and payment = no and contact = yes and response = yes");
  Exec("Update Seller set trans_comp = true, status_date = '11/24/2026'" + who +
       " and contact = yes and payment = yes");
  EXPECT_EQ(db_->RecordsAffected(), 3);
  EXPECT_EQ(
      Count("Select * From seller where email = 'buyer@example.com' and Trans_comp = yes and Status_date = "
            "#11/24/2026#"),
      3);
}

TEST_F(StatementsTest, FeeUpdateMatchesReferenceAnywhereInTheText) {
  Populate();
  Exec(
      "Update Seller set fee_final_value = fee_final_value + '1.50' where item = '1001' and fee_ref_no LIKE "
      "'*inv123*'");
  EXPECT_EQ(db_->RecordsAffected(), 1);  // the copy of 1001 has no reference
  // A null column stays null under "+", so the fee import sets it to 0 first.
  auto rs = Open("Select * From seller where item = '1001' and fee_ref_no LIKE '*INV123*'");
  EXPECT_TRUE(rs->Fields(u"fee_final_value").IsNull());
  Exec("Update Seller set fee_final_value = 0 where item = '1001'");
  Exec(
      "Update Seller set fee_final_value = fee_final_value + '1.50' where item = '1001' and fee_ref_no LIKE "
      "'*INV123*'");
  Exec(
      "Update Seller set fee_final_value = fee_final_value + '0.25' where item = '1001' and fee_ref_no LIKE "
      "'*55*'");
  rs->Requery();
  EXPECT_EQ(rs->Fields(u"fee_final_value"), Variant(Currency::FromScaled(17500)));
  Exec(
      "Update Seller set fee_final_value = fee_final_value + '9' where item = '1001' and fee_ref_no LIKE "
      "'*999*'");
  EXPECT_EQ(db_->RecordsAffected(), 0);
}

TEST_F(StatementsTest, ReportsAndGroups) {
  Populate();
  // The range ends at the last second of its day: 1006 at 23:59 is in, 1007 at midnight is out.
  auto rs = Open(
      "Select * From seller, setup where setup.userid = seller.username and seller.end >= # 11/01/2026# "
      "and seller.end <= # 12/31/2026 23:59:59# and seller.username = 'seller1' and seller.price > 0 "
      "and Reserve_met = true order by seller.end");
  std::vector<Text> items;
  for (; !rs->Eof(); rs->MoveNext()) items.push_back(Str(*rs, "Item"));
  EXPECT_EQ(items, (std::vector<Text>{u"1001", u"1001", u"1006"}));
  rs->MoveFirst();
  EXPECT_EQ(Str(*rs, "seller.Name"), u"Bea");
  EXPECT_EQ(Str(*rs, "setup.Name"), u"Sam Seller");
  EXPECT_EQ(Str(*rs, "UserEmail"), u"sam@example.com");
  EXPECT_FALSE(rs->HasField(u"Name"));
  EXPECT_FALSE(rs->Updatable());

  // "reserve_met and price > 0 = true": reserve met and a price.
  auto sold = Open(
      "SELECT * From seller Where (((seller.UserName) = 'seller1')) and (((seller.title) = 'Blue "
      "Vase')) and completed = true and reserve_met and price > 0 = true ORDER BY Seller.end DESC");
  items.clear();
  for (; !sold->Eof(); sold->MoveNext()) items.push_back(Str(*sold, "Item"));
  EXPECT_EQ(items, (std::vector<Text>{u"1007", u"1006", u"1001", u"1001"}));

  auto top = Open(
      "SELECT seller.Title, seller.username, Sum(Price) AS Sum_Of_Price, Count(*) AS Count_Of_Seller, "
      "Sum(fee_insertion) AS SumOffee_insertion From seller WHERE Reserve_met = true GROUP BY "
      "Seller.Title, Seller.username Having (((seller.UserName) = 'seller1')) ORDER BY Sum(Seller.Price) "
      "DESC");
  ASSERT_FALSE(top->Eof());
  EXPECT_EQ(Str(*top, "Title"), u"Blue Vase");
  EXPECT_EQ(top->Fields(u"Sum_Of_Price"), Variant(Currency::FromDouble(136)));
  EXPECT_EQ(top->Fields(u"Count_Of_Seller"), Variant(5.0));
  EXPECT_TRUE(top->Fields(u"SumOffee_insertion").IsNull());
  top->MoveNext();
  EXPECT_TRUE(top->Eof());

  auto levels =
      Open("Select * From Categories Where AppSiteId = 0and CategoryLevel = 1 Order by CategoryName desc");
  EXPECT_EQ(Str(*levels, "CategoryName"), u"Books");
  EXPECT_EQ(levels->Fields(u"LeafCategory"), Variant(false));
  auto distinct = Open(
      "SELECT DISTINCT Bidder.Name, Bidder.Address from bidder where bidder.item = '2001' and "
      "bidder.Trans_comp = false;");
  EXPECT_EQ(Str(*distinct, "Name"), u"Shop Keeper");
}

}  // namespace
}  // namespace lw::testing
