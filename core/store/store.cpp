// The store on SQLite: the connection, its caches of translations and prepared statements, the functions
// the translated statements call, cursors that keep row keys and fetch columns on demand, and data sources.
#include "core/store/store.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "core/store/translate.h"

namespace lw {

using store::Kind;
using store::SqlValue;
using store::Translation;

namespace {

constexpr int kNotADatabase = 3343;
constexpr int kCannotExecuteSelect = 3065;
constexpr int kInvalidOperation = 3219;
constexpr int kNotSupported = 3251;
constexpr int kRecordDeleted = 3167;
constexpr int kInvalidArgument = 3001;
constexpr int kInvalidBookmark = 3159;
constexpr size_t kTranslationCacheLimit = 2000;
constexpr size_t kStatementCacheLimit = 256;

[[noreturn]] void Fail(int number, const std::string& description) {
  throw RuntimeError(number, description);
}

// Errors raised inside the functions below travel through SQLite as "lw:NUMBER:description".
void ResultError(sqlite3_context* ctx, int number, const std::string& description) {
  std::string msg = "lw:" + std::to_string(number) + ":" + description;
  sqlite3_result_error(ctx, msg.c_str(), -1);
}

Text ValueText(sqlite3_value* v) {
  const void* p = sqlite3_value_text16(v);
  int bytes = sqlite3_value_bytes16(v);
  if (!p) return Text();
  return Text(static_cast<const char16_t*>(p), static_cast<size_t>(bytes) / 2);
}

void ResultText(sqlite3_context* ctx, const Text& t) {
  sqlite3_result_text16(ctx, t.data(), static_cast<int>(t.size() * 2), SQLITE_TRANSIENT);
}

// A stored value as a Variant of the kind of its column.
Variant ToVariant(sqlite3_value* v, Kind kind) {
  int type = sqlite3_value_type(v);
  if (type == SQLITE_NULL) return Variant();
  switch (kind) {
    case Kind::Bool:
      return Variant(sqlite3_value_double(v) != 0);
    case Kind::Money:
      if (type == SQLITE_INTEGER) return Variant(Currency::FromScaled(sqlite3_value_int64(v)));
      return Variant(Currency::FromScaled(std::llround(sqlite3_value_double(v))));
    case Kind::Date:
      return Variant(Date(sqlite3_value_double(v)));
    case Kind::Number:
      return Variant(sqlite3_value_double(v));
    case Kind::Text:
      return Variant(ValueText(v));
    case Kind::Null:
      break;
  }
  if (type == SQLITE_INTEGER || type == SQLITE_FLOAT) return Variant(sqlite3_value_double(v));
  return Variant(ValueText(v));
}

Variant ColumnVariant(sqlite3_stmt* st, int i, Kind kind) {
  return ToVariant(sqlite3_column_value(st, i), kind);
}

void LikeFunction(sqlite3_context* ctx, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
    sqlite3_result_null(ctx);
    return;
  }
  // Case is ignored by matching the lower-cased text against the lower-cased pattern.
  sqlite3_result_int(ctx, Like(LCase(ValueText(argv[0])), LCase(ValueText(argv[1]))) ? 1 : 0);
}

void StrFunction(sqlite3_context* ctx, int, sqlite3_value** argv) {
  const Regional* r = static_cast<const Regional*>(sqlite3_user_data(ctx));
  Variant v = ToVariant(argv[0], static_cast<Kind>(sqlite3_value_int(argv[1])));
  if (v.IsNull()) {
    sqlite3_result_null(ctx);
    return;
  }
  try {
    ResultText(ctx, CStr(v, *r));
  } catch (const RuntimeError& e) {
    ResultError(ctx, err::kCriteriaTypeMismatch, e.description());
  }
}

void ConvFunction(sqlite3_context* ctx, int, sqlite3_value** argv) {
  const Regional* r = static_cast<const Regional*>(sqlite3_user_data(ctx));
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    sqlite3_result_null(ctx);
    return;
  }
  Variant v(ValueText(argv[0]));
  try {
    switch (static_cast<Kind>(sqlite3_value_int(argv[1]))) {
      case Kind::Money:
        sqlite3_result_int64(ctx, CCur(v, *r).scaled());
        return;
      case Kind::Date:
        sqlite3_result_double(ctx, CDate(v, *r).serial);
        return;
      case Kind::Bool:
        sqlite3_result_int(ctx, CDbl(v, *r) != 0 ? -1 : 0);
        return;
      default:
        sqlite3_result_double(ctx, CDbl(v, *r));
        return;
    }
  } catch (const RuntimeError&) {
    ResultError(
        ctx, err::kCriteriaTypeMismatch,
        "Data type mismatch in criteria expression ('" + ToUtf8(*v.text()) + "' cannot be converted)");
  }
}

// A Variant set on a field, in the storage form of the field's column.
SqlValue ToStorage(const Variant& v, Kind kind, const Regional& r) {
  if (v.IsNull()) return kind == Kind::Bool ? SqlValue(int64_t{0}) : SqlValue();
  try {
    switch (kind) {
      case Kind::Bool: {
        if (auto* b = v.boolean()) return int64_t{*b ? -1 : 0};
        if (auto* t = v.text()) {
          Text l = LCase(*t);
          if (l == u"true" || l == u"yes" || l == u"on") return int64_t{-1};
          if (l == u"false" || l == u"no" || l == u"off") return int64_t{0};
        }
        return int64_t{CDbl(v, r) != 0 ? -1 : 0};
      }
      case Kind::Money:
        return CCur(v, r).scaled();
      case Kind::Date:
        if (auto* d = v.date()) return d->serial;
        if (auto* n = v.number()) return *n;
        return CDate(v, r).serial;
      case Kind::Number:
        return CDbl(v, r);
      case Kind::Text:
      case Kind::Null:
        if (auto* t = v.text()) return ToUtf8(*t);
        return ToUtf8(CStr(v, r));
    }
  } catch (const RuntimeError& e) {
    Fail(err::kDataTypeConversion, "Data type conversion error (" + e.description() + ")");
  }
  return SqlValue();
}

bool SameName(TextView a, TextView b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char16_t x = a[i], y = b[i];
    if (x >= u'A' && x <= u'Z') x += 32;
    if (y >= u'A' && y <= u'Z') y += 32;
    if (x != y) return false;
  }
  return true;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------

// A statement ready to run: its translation, shared by every statement of the same shape, and the values
// of this statement's own text literals.
struct Prepared {
  std::shared_ptr<const Translation> tr;
  std::vector<SqlValue> literals;
};

struct StoreState {
  sqlite3* db = nullptr;
  std::filesystem::path path;
  Regional regional;
  store::Schema schema;
  std::unordered_map<Text, std::shared_ptr<const Translation>> translations;
  std::unordered_map<Text, std::shared_ptr<const store::Fragment>> criteria;
  std::unordered_map<std::string, sqlite3_stmt*> statements;
  int64_t affected = 0;
  // Open transaction levels; `abandoned` once a rollback (ours or the engine's) ended the transaction
  // while levels were still open. `generation` counts rollbacks, so cursors stop trusting the row
  // values they cached before one.
  int depth = 0;
  bool abandoned = false;
  uint64_t generation = 0;

  ~StoreState() {
    for (auto& [sql, st] : statements) sqlite3_finalize(st);
    if (db) sqlite3_close_v2(db);
  }

  [[noreturn]] void FailFromEngine(int rc) const {
    std::string msg = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
    if (msg.rfind("lw:", 0) == 0) {
      size_t colon = msg.find(':', 3);
      if (colon != std::string::npos) Fail(std::atoi(msg.c_str() + 3), msg.substr(colon + 1));
    }
    if ((rc & 0xff) == SQLITE_NOTADB || (rc & 0xff) == SQLITE_CORRUPT)
      Fail(kNotADatabase, "Unrecognized database format '" + path.string() + "' (" + msg + ")");
    Fail(err::kEngineFailure, "Disk or network error: " + msg);
  }

  store::TranslateContext Context() const { return store::TranslateContext{schema, regional}; }

  // Statements that differ only in their text literals (the import's lookups, one per auction) share a
  // translation: it is cached under the statement with its literals cut out, and only the literals'
  // conversions are made again for each statement.
  Prepared Translate(TextView sql) {
    store::LiftedStatement lifted;
    if (!store::LiftLiterals(sql, &lifted)) return Prepared{Whole(sql), {}};
    auto it = translations.find(lifted.skeleton);
    std::shared_ptr<const Translation> tr;
    if (it != translations.end()) {
      tr = it->second;
    } else {
      tr = std::make_shared<const Translation>(store::TranslateLifted(sql, Context()));
      // The translator and the cutter agree on the literals; should they ever not, the statement is
      // translated whole rather than bound with the wrong values.
      if (tr->literal_count != lifted.literals.size()) return Prepared{Whole(sql), {}};
      if (translations.size() >= kTranslationCacheLimit) translations.clear();
      translations.emplace(std::move(lifted.skeleton), tr);
    }
    return Prepared{tr, store::ConvertLiterals(*tr, lifted.literals, Context())};
  }

  // A translation with every value in place, uncached.
  std::shared_ptr<const Translation> Whole(TextView sql) {
    return std::make_shared<const Translation>(store::Translate(sql, Context()));
  }

  std::shared_ptr<const store::Fragment> Criteria(const Text& query, TextView crit, const Translation& tr) {
    Text key = query + u'\x01' + Text(crit);
    auto it = criteria.find(key);
    if (it != criteria.end()) return it->second;
    auto f = std::make_shared<const store::Fragment>(store::TranslateCriteria(crit, tr.tables, Context()));
    if (criteria.size() >= kTranslationCacheLimit) criteria.clear();
    criteria.emplace(std::move(key), f);
    return f;
  }

  sqlite3_stmt* Prepare(const std::string& sql) {
    auto it = statements.find(sql);
    if (it != statements.end()) return it->second;
    sqlite3_stmt* st = nullptr;
    int rc = sqlite3_prepare_v3(db, sql.c_str(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT, &st,
                                nullptr);
    if (rc != SQLITE_OK) FailFromEngine(rc);
    if (statements.size() >= kStatementCacheLimit) {
      for (auto& [s, old] : statements) sqlite3_finalize(old);
      statements.clear();
    }
    statements.emplace(sql, st);
    return st;
  }

  void Run(const char* sql) {
    char* msg = nullptr;
    int rc = sqlite3_exec(db, sql, nullptr, nullptr, &msg);
    sqlite3_free(msg);
    if (rc != SQLITE_OK) FailFromEngine(rc);
  }

  // After a failed statement: some failures (a full disk, an I/O error) make SQLite roll the whole
  // transaction back, not just the statement.
  void NoteFailure() {
    if (depth > 0 && !abandoned && sqlite3_get_autocommit(db)) {
      abandoned = true;
      ++generation;
    }
  }

  void CloseLevel() {
    if (--depth == 0) abandoned = false;
  }
};

namespace {

// One use of a cached prepared statement: binds, and resets it whatever happens.
class StatementUse {
 public:
  StatementUse(StoreState& s, const std::string& sql) : s_(s), st_(s.Prepare(sql)) {}
  ~StatementUse() {
    sqlite3_reset(st_);
    sqlite3_clear_bindings(st_);
  }
  sqlite3_stmt* get() const { return st_; }

  // Binds parameters in order; a lifted literal takes its value from `literals`.
  void Bind(const std::vector<SqlValue>& values, const std::vector<SqlValue>& literals) {
    for (const auto& v : values) {
      if (auto* ref = std::get_if<store::LiteralRef>(&v))
        BindOne(literals.at(ref->conversion));
      else
        BindOne(v);
    }
  }
  void BindOne(const SqlValue& v) {
    int i = ++next_;
    int rc = SQLITE_OK;
    if (std::holds_alternative<store::LiteralRef>(v))
      Fail(err::kEngineFailure, "Internal error: a statement parameter has no value");
    if (auto* n = std::get_if<int64_t>(&v))
      rc = sqlite3_bind_int64(st_, i, *n);
    else if (auto* d = std::get_if<double>(&v))
      rc = sqlite3_bind_double(st_, i, *d);
    // SQLite takes its own copy: callers may hand in a temporary built from a plain string.
    else if (auto* t = std::get_if<std::string>(&v))
      rc = sqlite3_bind_text(st_, i, t->data(), static_cast<int>(t->size()), SQLITE_TRANSIENT);
    else
      rc = sqlite3_bind_null(st_, i);
    if (rc != SQLITE_OK) s_.FailFromEngine(rc);
  }
  // True while there is a row.
  bool Step() {
    int rc = sqlite3_step(st_);
    if (rc == SQLITE_ROW) return true;
    if (rc == SQLITE_DONE) return false;
    s_.NoteFailure();
    s_.FailFromEngine(rc);
  }

 private:
  StoreState& s_;
  sqlite3_stmt* st_;
  int next_ = 0;
};

}  // namespace

// ---------------------------------------------------------------------------------------------------
// Database

Database::Database() = default;
Database::~Database() = default;

std::unique_ptr<Database> Database::OpenDatabase(const std::filesystem::path& path,
                                                 const Regional& regional) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec))
    Fail(err::kStoreFileNotFound, "Could not find file '" + path.string() + "'.");
  auto state = std::make_shared<StoreState>();
  state->path = path;
  state->regional = regional;
  int rc = sqlite3_open_v2(path.string().c_str(), &state->db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX,
                           nullptr);
  if (rc != SQLITE_OK) state->FailFromEngine(rc);
  sqlite3_extended_result_codes(state->db, 1);
  sqlite3_busy_timeout(state->db, 5000);
  // WAL keeps the file consistent through a crash at any point; NORMAL syncs at checkpoints, so a power
  // cut can lose only the last commits, never the file. An import commits every row on its own and
  // dirties several index pages each time; checkpointing every 4000 pages (16 MB of log, removed when the
  // store closes) rather than every 1000 spares it three of every four disk syncs.
  state->Run("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA wal_autocheckpoint = 4000;");
  const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
  Regional* r = &state->regional;
  sqlite3_create_function_v2(state->db, "lw_like", 2, flags, nullptr, LikeFunction, nullptr, nullptr,
                             nullptr);
  sqlite3_create_function_v2(state->db, "lw_str", 2, flags, r, StrFunction, nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(state->db, "lw_conv", 2, flags, r, ConvFunction, nullptr, nullptr, nullptr);

  // The layout is read from the file itself, so an older store lacks exactly what it lacks.
  std::vector<std::string> names;
  {
    StatementUse q(*state,
                   "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%'");
    while (q.Step()) names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(q.get(), 0)));
  }
  for (const auto& name : names) {
    store::TableInfo table;
    table.name = FromUtf8(name);
    StatementUse q(*state, "SELECT name, type FROM pragma_table_info(?)");
    q.BindOne(name);
    while (q.Step()) {
      store::ColumnInfo col;
      col.name = FromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(q.get(), 0)));
      const unsigned char* type = sqlite3_column_text(q.get(), 1);
      col.kind = store::KindFromDeclaredType(type ? reinterpret_cast<const char*>(type) : "");
      table.columns.push_back(std::move(col));
    }
    state->schema.tables.push_back(std::move(table));
  }
  std::unique_ptr<Database> db(new Database());
  db->state_ = std::move(state);
  return db;
}

void Database::Execute(TextView sql) {
  Prepared p = state_->Translate(sql);
  const Translation* tr = p.tr.get();
  if (tr->type == Translation::Type::Select)
    Fail(kCannotExecuteSelect, "Cannot execute a select query: '" + ToUtf8(sql) + "'");
  StatementUse q(*state_, tr->change.sql);
  q.Bind(tr->change.params, p.literals);
  q.Step();
  state_->affected = sqlite3_changes64(state_->db);
}

void Database::BeginTrans() {
  StoreState& s = *state_;
  if (s.depth == 0) s.Run("BEGIN");
  ++s.depth;
}

void Database::CommitTrans() {
  StoreState& s = *state_;
  if (s.depth == 0) Fail(err::kNoTransaction, "Commit without a transaction begun.");
  if (s.depth > 1 || s.abandoned) {
    s.CloseLevel();
    return;
  }
  int rc = sqlite3_exec(s.db, "COMMIT", nullptr, nullptr, nullptr);
  if (rc == SQLITE_OK) {
    s.CloseLevel();
    return;
  }
  // A commit that cannot finish leaves nothing half done: roll back what is left, close every level.
  std::string msg = sqlite3_errmsg(s.db);
  if (!sqlite3_get_autocommit(s.db)) sqlite3_exec(s.db, "ROLLBACK", nullptr, nullptr, nullptr);
  s.depth = 0;
  s.abandoned = false;
  ++s.generation;
  Fail(err::kEngineFailure, "Disk or network error: the transaction could not be committed (" + msg + ")");
}

void Database::Rollback() {
  StoreState& s = *state_;
  if (s.depth == 0) Fail(err::kNoTransaction, "Rollback without a transaction begun.");
  int rc = SQLITE_OK;
  if (!s.abandoned) {
    if (!sqlite3_get_autocommit(s.db)) rc = sqlite3_exec(s.db, "ROLLBACK", nullptr, nullptr, nullptr);
    s.abandoned = true;
    ++s.generation;
  }
  s.CloseLevel();
  if (rc != SQLITE_OK) s.FailFromEngine(rc);
}

bool Database::InTransaction() const {
  return state_->depth > 0 && !state_->abandoned;
}

StoreTransaction::StoreTransaction(Database& db) : db_(db) {
  db_.BeginTrans();
}

StoreTransaction::~StoreTransaction() {
  if (!open_) return;
  try {
    db_.Rollback();
  } catch (const RuntimeError&) {
    // Nothing to tell from a destructor; SQLite rolls an unfinished transaction back when the store
    // closes anyway.
  }
}

void StoreTransaction::Commit() {
  if (!open_) Fail(err::kNoTransaction, "Commit of a transaction already ended.");
  open_ = false;
  db_.CommitTrans();
}

int64_t Database::RecordsAffected() const {
  return state_->affected;
}

std::vector<Text> Database::TableColumns(TextView table) const {
  std::vector<Text> out;
  if (auto* t = state_->schema.Find(table))
    for (auto& c : t->columns) out.push_back(c.name);
  return out;
}

bool Database::HasColumn(TextView table, TextView column) const {
  auto* t = state_->schema.Find(table);
  return t && t->Find(column) >= 0;
}

const std::filesystem::path& Database::path() const {
  return state_->path;
}
const Regional& Database::regional() const {
  return state_->regional;
}

// ---------------------------------------------------------------------------------------------------
// Recordset

struct Recordset::Impl {
  std::shared_ptr<StoreState> st;
  std::shared_ptr<const Translation> tr;
  std::vector<SqlValue> literals;  // values of the statement's own text literals
  Text statement;
  size_t stride = 1;                       // keys per row: one rowid per table
  std::vector<int64_t> keys;               // keyed cursors
  std::vector<std::vector<Variant>> rows;  // computed cursors (groups, aggregates, DISTINCT)
  int64_t count = 0;
  int64_t pos = 0;          // -1 BOF, count EOF
  bool on_deleted = false;  // the current row was deleted; pos is the row after it
  bool no_match = false;
  std::optional<RecordBookmark> last_modified;

  mutable int64_t cached_pos = -1;
  mutable uint64_t cached_generation = 0;  // the store's rollback count when `cached` was read
  mutable std::vector<Variant> cached;

  enum class Mode { None, Add, Edit } mode = Mode::None;
  std::vector<Variant> buffer;
  std::vector<bool> dirty;

  bool keyed() const { return !tr->aggregate; }

  void Load() {
    keys.clear();
    rows.clear();
    cached_pos = -1;
    on_deleted = false;
    mode = Mode::None;
    if (keyed()) {
      stride = tr->tables.size();
      StatementUse q(*st, tr->keys.sql);
      q.Bind(tr->keys.params, literals);
      while (q.Step())
        for (size_t i = 0; i < stride; ++i)
          keys.push_back(sqlite3_column_int64(q.get(), static_cast<int>(i)));
      count = static_cast<int64_t>(keys.size() / stride);
    } else {
      StatementUse q(*st, tr->full.sql);
      q.Bind(tr->full.params, literals);
      while (q.Step()) {
        std::vector<Variant> row;
        for (size_t i = 0; i < tr->outputs.size(); ++i)
          row.push_back(ColumnVariant(q.get(), static_cast<int>(i), tr->outputs[i].kind));
        rows.push_back(std::move(row));
      }
      count = static_cast<int64_t>(rows.size());
    }
    pos = count > 0 ? 0 : -1;
    if (count == 0) pos = 0;  // EOF and BOF at once
  }

  bool Eof() const { return count == 0 || pos >= count; }
  bool Bof() const { return count == 0 || pos < 0; }

  const std::vector<Variant>& Current() const {
    if (on_deleted) Fail(kRecordDeleted, "Record is deleted.");
    if (Eof() || Bof()) Fail(err::kNoCurrentRecord, "No current record.");
    if (!keyed()) return rows[static_cast<size_t>(pos)];
    if (cached_pos == pos && cached_generation == st->generation) return cached;
    StatementUse q(*st, tr->row_sql);
    q.Bind(tr->select_params, literals);
    for (size_t t = 0; t < stride; ++t) q.BindOne(keys[static_cast<size_t>(pos) * stride + t]);
    if (!q.Step()) Fail(kRecordDeleted, "Record is deleted.");
    cached.clear();
    for (size_t i = 0; i < tr->outputs.size(); ++i)
      cached.push_back(ColumnVariant(q.get(), static_cast<int>(i), tr->outputs[i].kind));
    cached_pos = pos;
    cached_generation = st->generation;
    return cached;
  }

  int FieldIndex(TextView name) const {
    for (size_t i = 0; i < tr->outputs.size(); ++i)
      if (SameName(tr->outputs[i].name, name)) return static_cast<int>(i);
    // "table.column" reaches a column of a joined table even where its name does not clash.
    size_t dot = name.find(u'.');
    if (dot != TextView::npos) {
      TextView table = name.substr(0, dot), column = name.substr(dot + 1);
      for (size_t i = 0; i < tr->outputs.size(); ++i) {
        const auto& o = tr->outputs[i];
        if (o.table < 0) continue;
        if (SameName(tr->tables[o.table]->name, table) &&
            SameName(tr->tables[o.table]->columns[o.column].name, column))
          return static_cast<int>(i);
      }
    }
    return -1;
  }

  int RequireField(TextView name) const {
    int i = FieldIndex(name);
    if (i < 0) Fail(err::kItemNotFound, "Item not found in this collection ('" + ToUtf8(name) + "').");
    return i;
  }

  void Moved() {
    on_deleted = false;
    if (mode != Mode::None) mode = Mode::None;  // moving away drops an unsaved edit, as the engine does
  }

  RecordBookmark BookmarkAt(int64_t p) const {
    if (keyed() && stride == 1) return RecordBookmark{keys[static_cast<size_t>(p)]};
    return RecordBookmark{p};
  }

  // Makes the first row at or after `from` that meets the criteria current; sets no_match otherwise.
  void Find(TextView criteria, int64_t from);

  // The outputs are the columns of the one table, each once and in order, as "Select *" gives them.
  bool WholeRows() const {
    const auto& columns = tr->tables[0]->columns;
    if (tr->outputs.size() != columns.size()) return false;
    for (size_t i = 0; i < columns.size(); ++i)
      if (tr->outputs[i].table != 0 || tr->outputs[i].column != static_cast<int>(i)) return false;
    return true;
  }

  void RequireUpdatable() const {
    if (!tr->updatable()) Fail(err::kReadOnly, "Cannot update. Database or object is read-only.");
  }
};

Recordset::Recordset(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Recordset::~Recordset() = default;

std::unique_ptr<Recordset> Database::OpenRecordset(TextView sql) {
  auto impl = std::make_unique<Recordset::Impl>();
  impl->st = state_;
  Prepared p = state_->Translate(sql);
  impl->tr = std::move(p.tr);
  impl->literals = std::move(p.literals);
  if (impl->tr->type != Translation::Type::Select)
    Fail(kInvalidOperation, "Invalid operation: a cursor needs a query, not '" + ToUtf8(sql) + "'");
  impl->statement = Text(sql);
  impl->Load();
  return std::unique_ptr<Recordset>(new Recordset(std::move(impl)));
}

Variant Recordset::Fields(TextView name) const {
  int i = impl_->RequireField(name);
  if (impl_->mode != Impl::Mode::None) return impl_->buffer[i];
  return impl_->Current()[i];
}

void Recordset::SetField(TextView name, const Variant& value) {
  int i = impl_->RequireField(name);
  impl_->RequireUpdatable();
  if (impl_->mode == Impl::Mode::None)
    Fail(err::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  const auto& out = impl_->tr->outputs[i];
  if (out.table < 0) Fail(err::kReadOnly, "Field '" + ToUtf8(name) + "' cannot be updated.");
  SqlValue stored = ToStorage(value, out.kind, impl_->st->regional);
  // Keep what the field will read back: the stored form, converted again.
  Variant back;
  if (auto* n = std::get_if<int64_t>(&stored)) {
    back = out.kind == Kind::Bool    ? Variant(*n != 0)
           : out.kind == Kind::Money ? Variant(Currency::FromScaled(*n))
                                     : Variant(static_cast<double>(*n));
  } else if (auto* d = std::get_if<double>(&stored)) {
    back = out.kind == Kind::Date ? Variant(Date(*d)) : Variant(*d);
  } else if (auto* t = std::get_if<std::string>(&stored)) {
    back = Variant(FromUtf8(*t));
  }
  impl_->buffer[i] = std::move(back);
  impl_->dirty[i] = true;
}

std::vector<Text> Recordset::FieldNames() const {
  std::vector<Text> out;
  for (auto& o : impl_->tr->outputs) out.push_back(o.name);
  return out;
}

bool Recordset::HasField(TextView name) const {
  return impl_->FieldIndex(name) >= 0;
}

void Recordset::MoveFirst() {
  if (impl_->count == 0) Fail(err::kNoCurrentRecord, "No current record.");
  impl_->Moved();
  impl_->pos = 0;
}

void Recordset::MoveLast() {
  if (impl_->count == 0) Fail(err::kNoCurrentRecord, "No current record.");
  impl_->Moved();
  impl_->pos = impl_->count - 1;
}

void Recordset::MoveNext() {
  if (impl_->Eof() && !impl_->on_deleted) Fail(err::kNoCurrentRecord, "No current record.");
  if (!impl_->on_deleted) ++impl_->pos;
  impl_->Moved();
}

void Recordset::MovePrevious() {
  if (impl_->Bof()) Fail(err::kNoCurrentRecord, "No current record.");
  --impl_->pos;
  impl_->Moved();
}

bool Recordset::Eof() const {
  return impl_->Eof() && !impl_->on_deleted;
}
bool Recordset::Bof() const {
  return impl_->Bof();
}
int64_t Recordset::RecordCount() const {
  return impl_->count;
}

int64_t Recordset::AbsolutePosition() const {
  if (impl_->Eof() || impl_->Bof() || impl_->on_deleted) return -1;
  return impl_->pos;
}

void Recordset::SetAbsolutePosition(int64_t position) {
  if (position < 0 || position >= impl_->count) Fail(kInvalidArgument, "Invalid argument.");
  impl_->Moved();
  impl_->pos = position;
}

void Recordset::Impl::Find(TextView criteria, int64_t from) {
  Impl& m = *this;
  if (!m.keyed()) Fail(kNotSupported, "Operation is not supported for this type of object.");
  auto crit = m.st->Criteria(m.statement, criteria, *m.tr);
  std::string sql = "SELECT " + m.tr->rowid_sql + " FROM " + m.tr->from_sql + " WHERE ";
  std::vector<SqlValue> params;
  if (!m.tr->where.sql.empty()) {
    sql += "(" + m.tr->where.sql + ") AND ";
    params = m.tr->where.params;
  }
  sql += crit->sql;
  params.insert(params.end(), crit->params.begin(), crit->params.end());
  std::set<std::vector<int64_t>> found;
  {
    StatementUse q(*m.st, sql);
    q.Bind(params, m.literals);
    while (q.Step()) {
      std::vector<int64_t> key(m.stride);
      for (size_t t = 0; t < m.stride; ++t) key[t] = sqlite3_column_int64(q.get(), static_cast<int>(t));
      found.insert(std::move(key));
    }
  }
  m.no_match = true;
  std::vector<int64_t> key(m.stride);
  for (int64_t p = std::max<int64_t>(from, 0); p < m.count && !found.empty(); ++p) {
    std::copy_n(m.keys.begin() + p * static_cast<int64_t>(m.stride), m.stride, key.begin());
    if (found.count(key)) {
      m.Moved();
      m.pos = p;
      m.no_match = false;
      return;
    }
  }
}

void Recordset::FindFirst(TextView criteria) {
  impl_->Find(criteria, 0);
}

void Recordset::FindNext(TextView criteria) {
  // From the row after the current one; from the start when there is none yet.
  int64_t from = (impl_->Bof() || impl_->Eof()) ? (impl_->Bof() ? 0 : impl_->count) : impl_->pos + 1;
  if (impl_->on_deleted) from = impl_->pos;
  impl_->Find(criteria, from);
}

bool Recordset::NoMatch() const {
  return impl_->no_match;
}

RecordBookmark Recordset::Bookmark() const {
  if (impl_->Eof() || impl_->Bof() || impl_->on_deleted) Fail(err::kNoCurrentRecord, "No current record.");
  return impl_->BookmarkAt(impl_->pos);
}

void Recordset::SetBookmark(RecordBookmark bookmark) {
  Impl& m = *impl_;
  if (m.keyed() && m.stride == 1) {
    auto it = std::find(m.keys.begin(), m.keys.end(), bookmark.value);
    if (it == m.keys.end()) Fail(kInvalidBookmark, "Not a valid bookmark.");
    m.Moved();
    m.pos = it - m.keys.begin();
    return;
  }
  if (bookmark.value < 0 || bookmark.value >= m.count) Fail(kInvalidBookmark, "Not a valid bookmark.");
  m.Moved();
  m.pos = bookmark.value;
}

RecordBookmark Recordset::LastModified() const {
  if (!impl_->last_modified) Fail(err::kNoCurrentRecord, "No current record.");
  return *impl_->last_modified;
}

bool Recordset::Updatable() const {
  return impl_->tr->updatable();
}

void Recordset::AddNew() {
  Impl& m = *impl_;
  m.RequireUpdatable();
  m.buffer.assign(m.tr->outputs.size(), Variant());
  for (size_t i = 0; i < m.buffer.size(); ++i)
    if (m.tr->outputs[i].kind == Kind::Bool && m.tr->outputs[i].table >= 0) m.buffer[i] = Variant(false);
  m.dirty.assign(m.buffer.size(), false);
  m.mode = Impl::Mode::Add;
}

void Recordset::Edit() {
  Impl& m = *impl_;
  m.RequireUpdatable();
  m.buffer = m.Current();
  m.dirty.assign(m.buffer.size(), false);
  m.mode = Impl::Mode::Edit;
}

void Recordset::Update() {
  Impl& m = *impl_;
  if (m.mode == Impl::Mode::None)
    Fail(err::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  const auto& table = *m.tr->tables[0];
  std::vector<SqlValue> values;
  std::vector<std::string> columns;
  for (size_t i = 0; i < m.buffer.size(); ++i) {
    if (!m.dirty[i]) continue;
    const auto& out = m.tr->outputs[i];
    columns.push_back(store::QuoteIdent(table.columns[out.column].name));
    values.push_back(ToStorage(m.buffer[i], out.kind, m.st->regional));
  }
  if (m.mode == Impl::Mode::Add) {
    std::string sql = "INSERT INTO " + store::QuoteIdent(table.name);
    if (columns.empty()) {
      sql += " DEFAULT VALUES";
    } else {
      std::string names, marks;
      for (size_t i = 0; i < columns.size(); ++i) {
        names += (i ? ", " : "") + columns[i];
        marks += i ? ", ?" : "?";
      }
      sql += " (" + names + ") VALUES (" + marks + ")";
    }
    StatementUse q(*m.st, sql);
    for (const auto& v : values) q.BindOne(v);
    q.Step();
    int64_t rowid = sqlite3_last_insert_rowid(m.st->db);
    // The new row joins the end of the cursor, where MoveLast finds it; the current row stays.
    bool was_eof = m.Eof();
    m.keys.push_back(rowid);
    ++m.count;
    if (m.count == 1)
      m.pos = 0;
    else if (was_eof && m.pos >= m.count - 1)
      m.pos = m.count;  // stay at EOF
    m.last_modified = RecordBookmark{rowid};
  } else {
    if (!columns.empty()) {
      std::string sql = "UPDATE " + store::QuoteIdent(table.name) + " SET ";
      for (size_t i = 0; i < columns.size(); ++i) sql += (i ? ", " : "") + columns[i] + " = ?";
      sql += " WHERE rowid = ?";
      StatementUse q(*m.st, sql);
      for (const auto& v : values) q.BindOne(v);
      q.BindOne(m.keys[static_cast<size_t>(m.pos)]);
      q.Step();
      if (sqlite3_changes64(m.st->db) == 0) {
        m.mode = Impl::Mode::None;
        Fail(kRecordDeleted, "Record is deleted.");
      }
    }
    m.last_modified = m.BookmarkAt(m.pos);
    // When the cursor shows its table's columns as they are, the edit buffer holds exactly what a
    // fetch of the written row would give (SetField keeps the stored form read back), so the import's
    // reads and edits that follow need no fetch. Computed or repeated columns are fetched again.
    if (m.WholeRows()) {
      m.mode = Impl::Mode::None;
      m.cached = std::move(m.buffer);
      m.cached_pos = m.pos;
      m.cached_generation = m.st->generation;
      return;
    }
  }
  m.mode = Impl::Mode::None;
  m.cached_pos = -1;
}

void Recordset::CancelUpdate() {
  if (impl_->mode == Impl::Mode::None)
    Fail(err::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  impl_->mode = Impl::Mode::None;
}

bool Recordset::EditInProgress() const {
  return impl_->mode != Impl::Mode::None;
}

void Recordset::Delete() {
  Impl& m = *impl_;
  m.RequireUpdatable();
  if (m.on_deleted) Fail(kRecordDeleted, "Record is deleted.");
  if (m.Eof() || m.Bof()) Fail(err::kNoCurrentRecord, "No current record.");
  StatementUse q(*m.st, "DELETE FROM " + store::QuoteIdent(m.tr->tables[0]->name) + " WHERE rowid = ?");
  q.BindOne(m.keys[static_cast<size_t>(m.pos)]);
  q.Step();
  m.keys.erase(m.keys.begin() + m.pos);
  --m.count;
  m.cached_pos = -1;
  m.mode = Impl::Mode::None;
  m.on_deleted = true;
}

void Recordset::Requery() {
  impl_->Load();
}

// ---------------------------------------------------------------------------------------------------

void DataSource::Refresh() {
  auto fresh = db_->OpenRecordset(RecordSource);
  recordset_ = std::move(fresh);
}

Recordset& DataSource::recordset() {
  if (!recordset_)
    Fail(err::kObjectVariableNotSet, "Object variable or With block variable not set (data source '" +
                                         ToUtf8(name_) + "' has no record source yet).");
  return *recordset_;
}

Text Quoted(TextView value) {
  if (value.find(u'\'') != TextView::npos)
    Fail(err::kSyntaxError, "Syntax error (missing operator) in query expression: the value '" +
                                ToUtf8(value) + "' holds an apostrophe");
  return u"'" + Text(value) + u"'";
}

Text QuotedDoubling(TextView value) {
  return u"'" + Replace(value, u"'", u"''") + u"'";
}

std::filesystem::path ShippedStorePath(const std::filesystem::path& program_dir) {
  std::error_code ec;
#ifdef LW_SHIPPED_STORE
  std::filesystem::path built(LW_SHIPPED_STORE);
  if (std::filesystem::is_regular_file(built, ec)) return built;
#endif
  return program_dir.parent_path() / "share" / "lotwright" / "lw.mdb";
}

}  // namespace lw
