// Statements that share one translation and differ only in their text literals: cutting the literals
// out, a lifted translation against a whole one, and the store running such statements one after the
// other with the right values and the right errors.
#include <sqlite3.h>

#include <fstream>

#include "core/store/test_store.h"
#include "core/store/translate.h"

namespace lw::testing {
namespace {

using store::SqlValue;

// The store's layout, read from the shipped empty store as the store reads it.
store::Schema ShippedSchema() {
  store::Schema schema;
  sqlite3* db = nullptr;
  EXPECT_EQ(sqlite3_open_v2(LW_BINARY_DIR "/share/lw.mdb", &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  std::vector<std::string> names;
  sqlite3_stmt* st = nullptr;
  sqlite3_prepare_v2(db, "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%'",
                     -1, &st, nullptr);
  while (sqlite3_step(st) == SQLITE_ROW)
    names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)));
  sqlite3_finalize(st);
  for (const auto& name : names) {
    store::TableInfo table;
    table.name = FromUtf8(name);
    sqlite3_prepare_v2(db, "SELECT name, type FROM pragma_table_info(?)", -1, &st, nullptr);
    sqlite3_bind_text(st, 1, name.c_str(), -1, SQLITE_TRANSIENT);
    while (sqlite3_step(st) == SQLITE_ROW) {
      const unsigned char* type = sqlite3_column_text(st, 1);
      table.columns.push_back({FromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0))),
                               store::KindFromDeclaredType(type ? reinterpret_cast<const char*>(type) : "")});
    }
    sqlite3_finalize(st);
    schema.tables.push_back(std::move(table));
  }
  sqlite3_close(db);
  return schema;
}

// Parameters with every lifted literal replaced by its value.
std::vector<SqlValue> Resolved(const std::vector<SqlValue>& params, const std::vector<SqlValue>& values) {
  std::vector<SqlValue> out;
  for (const auto& p : params) {
    if (auto* ref = std::get_if<store::LiteralRef>(&p)) {
      EXPECT_LT(ref->conversion, values.size());
      out.push_back(ref->conversion < values.size() ? values[ref->conversion] : SqlValue());
    } else {
      out.push_back(p);
    }
  }
  return out;
}

std::string Outcome(const std::function<void()>& f) {
  try {
    f();
  } catch (const RuntimeError& e) {
    return std::to_string(e.number()) + " " + e.description();
  }
  return "ok";
}

class LiftedTranslation : public ::testing::Test {
 protected:
  store::Schema schema_ = ShippedSchema();
  Regional regional_ = Regional::FromLocale("en_US");
  store::TranslateContext ctx_{schema_, regional_};

  // The lifted translation with this statement's literals bound must be the whole translation: same SQL
  // in every part, same values, and the same error when there is one.
  void ExpectSameAsWhole(const std::string& statement) {
    SCOPED_TRACE(statement);
    const Text sql = T(statement);
    store::Translation whole;
    const std::string whole_outcome = Outcome([&] { whole = store::Translate(sql, ctx_); });
    store::LiftedStatement cut;
    ASSERT_TRUE(store::LiftLiterals(sql, &cut));
    store::Translation lifted;
    std::vector<SqlValue> values;
    const std::string lifted_outcome = Outcome([&] {
      lifted = store::TranslateLifted(sql, ctx_);
      values = store::ConvertLiterals(lifted, cut.literals, ctx_);
    });
    ASSERT_EQ(lifted_outcome, whole_outcome);
    if (whole_outcome != "ok") return;
    EXPECT_EQ(lifted.literal_count, cut.literals.size());
    for (auto part : {&store::Translation::change, &store::Translation::full, &store::Translation::keys,
                      &store::Translation::where}) {
      EXPECT_EQ((lifted.*part).sql, (whole.*part).sql);
      EXPECT_EQ(Resolved((lifted.*part).params, values), (whole.*part).params);
    }
    EXPECT_EQ(lifted.select_sql, whole.select_sql);
    EXPECT_EQ(lifted.row_sql, whole.row_sql);
    EXPECT_EQ(Resolved(lifted.select_params, values), whole.select_params);
  }
};

TEST_F(LiftedTranslation, CuttingOutLiterals) {
  store::LiftedStatement a, b;
  ASSERT_TRUE(store::LiftLiterals(u"Select * From seller where item = '1001' and title = \"O'Brien\"", &a));
  ASSERT_TRUE(store::LiftLiterals(u"Select * From seller where item = 'x''y' and title = ''", &b));
  EXPECT_EQ(a.skeleton, b.skeleton);
  EXPECT_EQ(a.literals, (std::vector<Text>{u"1001", u"O'Brien"}));
  EXPECT_EQ(b.literals, (std::vector<Text>{u"x'y", u""}));
  // Quotes inside a bracketed name or a date are no literal, and stay part of the shape.
  ASSERT_TRUE(store::LiftLiterals(u"Select [it's] From seller where end = #1/2/2026# and item = 'a'", &a));
  EXPECT_EQ(a.literals, std::vector<Text>{u"a"});
  ASSERT_TRUE(store::LiftLiterals(u"Select [it\"s] From seller where end = #1/2/2026# and item = 'a'", &b));
  EXPECT_NE(a.skeleton, b.skeleton);
  ASSERT_TRUE(store::LiftLiterals(u"Select * From seller where end = #1/3/2026# and item = 'a'", &b));
  EXPECT_NE(a.skeleton, b.skeleton);
  // Whatever cannot be cut safely is left to the translator whole.
  EXPECT_FALSE(store::LiftLiterals(u"Select * From seller where item = 'open", &a));
  EXPECT_FALSE(store::LiftLiterals(u"Select * From seller where end = #1/2/2026", &a));
  EXPECT_FALSE(store::LiftLiterals(u"Select [item From seller", &a));
  EXPECT_FALSE(store::LiftLiterals(u"Select [] From seller", &a));
  EXPECT_FALSE(store::LiftLiterals(u"Select * From seller where item = \x01", &a));
}

TEST_F(LiftedTranslation, EveryStatementOfTheProgramMatchesItsWholeTranslation) {
  std::ifstream in(LW_SOURCE_DIR "/core/store/testdata/statements.txt");
  int checked = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    ExpectSameAsWhole(line);
    ++checked;
  }
  EXPECT_GT(checked, 100);
}

TEST_F(LiftedTranslation, TypingAndErrorsOfLiteralsStayAsTheyWere) {
  const char* statements[] = {
      // One literal met twice, by values of different kinds.
      "Select * From seller where '12/01/2026' between end and title",
      "Select * From seller where '5' in (price, title, quantity, completed)",
      // Literals meeting yes/no, money, dates, numbers, text and each other.
      "Select * From seller where completed = 'yes' and price > '29.50' and end < '12/01/2026'",
      "Select * From seller where 'a' = 'A' and quantity = '3' and title like '*vase*'",
      "Select * From seller where price + '1.25' > 10 and -'3' < quantity",
      "Select title & ' (' & item & ')' AS caption, '7' AS seven From seller where item = '1001'",
      "Update Seller set price = '12.50', completed = 'true', comments = 'a''b' where item = '1001'",
      "INSERT INTO seller (Item, Price, End, Completed, Quantity) VALUES ('9', '1.5', '1/2/2026', 'no', '2')",
      "Delete * From seller where status_date < '11/01/2026' and item <> ''",
      // The first literal that does not fit is the one reported, wherever it stands.
      "Select * From seller where 'nonsense' = (price + 'worse')",
      "Update Seller set price = 'a lot', end = 'someday' where item = '1001'",
      "Select * From seller where -'x' = title",
      "Select * From seller where completed = 'maybe'",
      // A structural fault behind a bad literal still loses to the literal, as before.
      "Select * From seller where price = 'much' and nosuch = 1",
      "Select * From seller where nosuch = 'much'",
  };
  for (const char* s : statements) ExpectSameAsWhole(s);
}

TEST_F(StoreTest, StatementsOfOneShapeRunWithTheirOwnLiterals) {
  Populate();
  // One shape, many values: each statement sees its own literals, not the first one's.
  auto first = Open("Select * From seller where item = '1002' and username = 'seller1'");
  auto second = Open("Select * From seller where item = '1003' and username = 'seller1'");
  EXPECT_EQ(Str(*first, "Title"), u"Red Lamp");
  EXPECT_EQ(Str(*second, "Title"), u"Green Jug");
  EXPECT_EQ(Count("Select * From seller where price > '29' and username = 'seller1'"), 3);
  EXPECT_EQ(Count("Select * From seller where price > '40.5' and username = 'seller1'"), 1);
  EXPECT_EQ(Count("Select * From seller where price > '41' and username = 'seller1'"), 0);
  // A cursor keeps its values for later row fetches and searches, after others of its shape ran.
  auto lamps = Open("Select * From seller where title like '*lamp*'");
  auto vases = Open("Select * From seller where title like '*vase*'");
  lamps->MoveLast();
  vases->MoveLast();
  EXPECT_EQ(lamps->RecordCount(), 1);
  EXPECT_EQ(vases->RecordCount(), 6);
  vases->FindFirst(u"item = '1005'");
  ASSERT_FALSE(vases->NoMatch());
  EXPECT_EQ(vases->Fields(u"Price"), Variant(Currency::FromDouble(12)));
  lamps->Requery();
  EXPECT_EQ(Str(*lamps, "Item"), u"1002");
  // Changes of one shape write their own values; doubled apostrophes arrive as one.
  Exec("Update Seller set comments = 'first', price = '1.25' where item = '1002'");
  Exec("Update Seller set comments = 'O''Brien''s', price = '2.50' where item = '1003'");
  auto lamp = Open("Select * From seller where item = '1002'");
  auto jug = Open("Select * From seller where item = '1003'");
  EXPECT_EQ(Str(*lamp, "comments"), u"first");
  EXPECT_EQ(lamp->Fields(u"price"), Variant(Currency::FromScaled(12500)));
  EXPECT_EQ(Str(*jug, "comments"), u"O'Brien's");
  EXPECT_EQ(jug->Fields(u"price"), Variant(Currency::FromScaled(25000)));
}

TEST_F(StoreTest, ALiteralThatDoesNotFitFailsAlikeBeforeAndAfterItsShapeIsKnown) {
  Populate();
  // Before: the shape has not been translated yet.
  const std::string bad = "Update Seller set price = 'a lot' where item = '1001'";
  const std::string early = Outcome([&] { Exec(bad); });
  EXPECT_EQ(early.substr(0, 4), "3464");
  // After: the shape is known from a good statement; the same error, and nothing changed.
  Exec("Update Seller set price = '26.00' where item = '1004'");
  EXPECT_EQ(Outcome([&] { Exec(bad); }), early);
  EXPECT_EQ(Outcome([&] { Exec("Update Seller set price = '9.99' where item = '#'"); }), "ok");
  EXPECT_EQ(Count("Select * From seller where price = '26'"), 1);
  EXPECT_EQ(Count("Select * From seller where item = '1001' and price = '25'"), 1);
  // A bad date in a query of a known shape, and a yes/no that is neither.
  Count("Select * From seller where end < '12/01/2026'");
  EXPECT_EQ(Outcome([&] { Open("Select * From seller where end < 'soon'"); }).substr(0, 4), "3464");
  Count("Select * From seller where completed = 'yes'");
  EXPECT_EQ(Outcome([&] { Open("Select * From seller where completed = 'maybe'"); }).substr(0, 4), "3464");
  // An apostrophe that breaks the statement is still a malformed statement, not another shape.
  EXPECT_EQ(Outcome([&] { Exec("Update Seller set title = 'O'Brien' where item = '1001'"); }).substr(0, 4),
            "3075");
}

}  // namespace
}  // namespace lw::testing
