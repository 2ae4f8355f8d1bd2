// Feeds arbitrary statements and criteria to the translator. A run-time error is the expected answer to
// rubbish; a crash, a hang, or emitted SQL that SQLite itself cannot prepare is a fault.
#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/primitives/encoding.h"
#include "core/store/translate.h"

namespace {

using namespace lw::store;

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

const char kLayout[] =
    "CREATE TABLE seller (Item TEXT COLLATE NOCASE, username TEXT COLLATE NOCASE, Title TEXT COLLATE NOCASE,"
    " Price MONEY INTEGER, \"End\" DATETIME REAL, Quantity NUMBER REAL, Completed YESNO INTEGER NOT NULL "
    "DEFAULT 0,"
    " Name TEXT COLLATE NOCASE, status_log MEMO TEXT COLLATE NOCASE);"
    "CREATE TABLE setup (Userid TEXT COLLATE NOCASE, Name TEXT COLLATE NOCASE, taxrate NUMBER REAL,"
    " taxprice YESNO INTEGER NOT NULL DEFAULT 0);"
    "CREATE TABLE bulk (username TEXT COLLATE NOCASE, feedback_comment TEXT COLLATE NOCASE,"
    " bulkmail YESNO INTEGER NOT NULL DEFAULT 0);";

struct Fixture {
  sqlite3* db = nullptr;
  Schema schema;
  lw::Regional regional = lw::Regional::FromLocale("en_US");

  static void Stub(sqlite3_context* ctx, int, sqlite3_value**) { sqlite3_result_null(ctx); }

  Fixture() {
    sqlite3_open(":memory:", &db);
    sqlite3_exec(db, kLayout, nullptr, nullptr, nullptr);
    for (const char* f : {"lw_like", "lw_str", "lw_conv"})
      sqlite3_create_function_v2(db, f, 2, SQLITE_UTF8, nullptr, Stub, nullptr, nullptr, nullptr);
    for (const char* name : {"seller", "setup", "bulk"}) {
      TableInfo t;
      t.name = lw::FromUtf8(name);
      sqlite3_stmt* st = nullptr;
      sqlite3_prepare_v2(db, "SELECT name, type FROM pragma_table_info(?)", -1, &st, nullptr);
      sqlite3_bind_text(st, 1, name, -1, SQLITE_STATIC);
      while (sqlite3_step(st) == SQLITE_ROW) {
        ColumnInfo c;
        c.name = lw::FromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)));
        c.kind = KindFromDeclaredType(reinterpret_cast<const char*>(sqlite3_column_text(st, 1)));
        t.columns.push_back(c);
      }
      sqlite3_finalize(st);
      schema.tables.push_back(t);
    }
  }

  // Emitted SQL must prepare, and its parameters must match its markers.
  void MustPrepare(const Fragment& f) {
    if (f.sql.empty()) return;
    sqlite3_stmt* st = nullptr;
    int rc = sqlite3_prepare_v2(db, f.sql.c_str(), -1, &st, nullptr);
    Check(rc == SQLITE_OK);
    Check(sqlite3_bind_parameter_count(st) == static_cast<int>(f.params.size()));
    sqlite3_finalize(st);
  }
};

}  // namespace

// Parameters of a lifted translation with its literals' values put in.
std::vector<SqlValue> Resolved(const std::vector<SqlValue>& params, const std::vector<SqlValue>& values) {
  std::vector<SqlValue> out;
  for (const auto& p : params) {
    const auto* ref = std::get_if<LiteralRef>(&p);
    Check(!ref || ref->conversion < values.size());
    out.push_back(ref ? values[ref->conversion] : p);
  }
  return out;
}

bool SameFragment(const Fragment& lifted, const std::vector<SqlValue>& values, const Fragment& whole) {
  return lifted.sql == whole.sql && Resolved(lifted.params, values) == whole.params;
}

// A statement whose text literals are lifted out must translate exactly as it does whole, and fail with
// the same error.
void CheckLifted(const lw::Text& text, const TranslateContext& ctx, const Translation* whole,
                 const std::string& error) {
  LiftedStatement cut;
  if (!LiftLiterals(text, &cut)) {
    Check(whole == nullptr);
    return;
  }
  try {
    Translation lifted = TranslateLifted(text, ctx);
    std::vector<SqlValue> values = ConvertLiterals(lifted, cut.literals, ctx);
    Check(whole != nullptr && lifted.literal_count == cut.literals.size());
    Check(SameFragment(lifted.change, values, whole->change) &&
          SameFragment(lifted.full, values, whole->full) && SameFragment(lifted.keys, values, whole->keys) &&
          SameFragment(lifted.where, values, whole->where));
    Check(lifted.select_sql == whole->select_sql &&
          Resolved(lifted.select_params, values) == whole->select_params);
  } catch (const lw::RuntimeError& e) {
    Check(whole == nullptr && std::to_string(e.number()) + e.description() == error);
  }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Fixture fx;
  if (size > 4096) return 0;
  lw::Text text = lw::FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
  TranslateContext ctx{fx.schema, fx.regional};
  try {
    Translation tr = Translate(text, ctx);
    if (tr.type == Translation::Type::Select) {
      fx.MustPrepare(tr.full);
      if (!tr.aggregate) fx.MustPrepare(tr.keys);
      Check(!tr.outputs.empty());
    } else {
      fx.MustPrepare(tr.change);
    }
    CheckLifted(text, ctx, &tr, "");
  } catch (const lw::RuntimeError& e) {
    Check(e.number() > 0);
    CheckLifted(text, ctx, nullptr, std::to_string(e.number()) + e.description());
  }
  try {
    std::vector<const TableInfo*> tables{&fx.schema.tables[0], &fx.schema.tables[1]};
    Fragment f = TranslateCriteria(text, tables, ctx);
    Fragment wrapped{"SELECT 1 FROM seller AS \"t0\", setup AS \"t1\" WHERE " + f.sql, f.params};
    fx.MustPrepare(wrapped);
  } catch (const lw::RuntimeError& e) {
    Check(e.number() > 0);
  }
  return 0;
}
