#include "apps/common/store_convert.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <system_error>

namespace lw {
namespace {

namespace fs = std::filesystem;

std::string Quote(const std::string& name) {
  std::string out = "\"";
  for (char c : name) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

std::string Lower(std::string s) {
  for (char& c : s)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return s;
}

// One connection, closed on every path out.
class Db {
 public:
  Db(const fs::path& file, int flags) {
    int rc = sqlite3_open_v2(file.c_str(), &db_, flags, nullptr);
    if (rc != SQLITE_OK) {
      std::string why = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(rc);
      sqlite3_close(db_);
      db_ = nullptr;
      throw ConvertError("cannot open " + file.string() + ": " + why);
    }
    // The program may still be closing the store when we are started; give it time to let go.
    sqlite3_busy_timeout(db_, 15000);
  }
  Db(const Db&) = delete;
  Db& operator=(const Db&) = delete;
  ~Db() {
    if (db_) sqlite3_close_v2(db_);
  }
  sqlite3* get() const { return db_; }

  void Exec(const std::string& sql, const std::string& what) {
    char* msg = nullptr;
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &msg) != SQLITE_OK) {
      std::string why = msg ? msg : sqlite3_errmsg(db_);
      sqlite3_free(msg);
      throw ConvertError(what + ": " + why);
    }
  }
  // Rows of a query as text columns (Null as an empty optional marker is not needed here).
  std::vector<std::vector<std::string>> Rows(const std::string& sql, const std::string& what) {
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &st, nullptr) != SQLITE_OK)
      throw ConvertError(what + ": " + sqlite3_errmsg(db_));
    std::vector<std::vector<std::string>> rows;
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
      std::vector<std::string> row;
      for (int i = 0; i < sqlite3_column_count(st); ++i) {
        const unsigned char* t = sqlite3_column_text(st, i);
        row.emplace_back(t ? reinterpret_cast<const char*>(t) : "");
      }
      rows.push_back(std::move(row));
    }
    std::string err = sqlite3_errmsg(db_);
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE) throw ConvertError(what + ": " + err);
    return rows;
  }

 private:
  sqlite3* db_ = nullptr;
};

// Opens the store and proves it is a database: a file that is not one fails here and not halfway.
std::unique_ptr<Db> OpenStore(const fs::path& store, bool writable) {
  std::error_code ec;
  if (!fs::is_regular_file(store, ec)) throw ConvertError("store not found: " + store.string());
  auto db = std::make_unique<Db>(store, writable ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY);
  db->Rows("SELECT count(*) FROM sqlite_master", "cannot read " + store.string());
  return db;
}

std::unique_ptr<Db> OpenSchema(const fs::path& schema_sql) {
  std::ifstream in(schema_sql, std::ios::binary);
  if (!in) throw ConvertError("layout script not found: " + schema_sql.string());
  std::stringstream text;
  text << in.rdbuf();
  auto db = std::make_unique<Db>(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  db->Exec(text.str(), "layout script " + schema_sql.string() + " is not valid");
  return db;
}

struct Object {
  std::string type, name, table, sql;
};

std::vector<Object> Objects(Db& db) {
  std::vector<Object> out;
  for (auto& r : db.Rows("SELECT type, name, tbl_name, sql FROM sqlite_master WHERE sql IS NOT NULL AND name "
                         "NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY rowid",
                         "cannot read the layout"))
    out.push_back({r[0], r[1], r[2], r[3]});
  return out;
}

struct Column {
  std::string name, type, default_sql;
  bool not_null = false, has_default = false, primary = false;
};

std::vector<Column> Columns(Db& db, const std::string& table) {
  sqlite3_stmt* st = nullptr;
  std::string sql = "PRAGMA table_info(" + Quote(table) + ")";
  if (sqlite3_prepare_v2(db.get(), sql.c_str(), -1, &st, nullptr) != SQLITE_OK)
    throw ConvertError("cannot read the columns of " + table + ": " + sqlite3_errmsg(db.get()));
  std::vector<Column> cols;
  while (sqlite3_step(st) == SQLITE_ROW) {
    Column c;
    auto text = [&](int i) {
      const unsigned char* t = sqlite3_column_text(st, i);
      return std::string(t ? reinterpret_cast<const char*>(t) : "");
    };
    c.name = text(1);
    c.type = text(2);
    c.not_null = sqlite3_column_int(st, 3) != 0;
    c.has_default = sqlite3_column_type(st, 4) != SQLITE_NULL;
    c.default_sql = text(4);
    c.primary = sqlite3_column_int(st, 5) != 0;
    cols.push_back(c);
  }
  sqlite3_finalize(st);
  return cols;
}

// The column definitions of a CREATE TABLE statement as written, by lower-case name, so that a column
// added later keeps its collation and default exactly as the layout declares them.
std::vector<std::pair<std::string, std::string>> ColumnDefinitions(const std::string& create) {
  std::vector<std::pair<std::string, std::string>> defs;
  size_t open = create.find('(');
  if (open == std::string::npos) return defs;
  std::vector<std::string> parts;
  std::string cur;
  int depth = 1;
  char quote = 0;
  for (size_t i = open + 1; i < create.size() && depth > 0; ++i) {
    char c = create[i];
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '\'' || c == '"' || c == '`') {
      quote = c;
    } else if (c == '[') {
      quote = ']';
    } else if (c == '(') {
      ++depth;
    } else if (c == ')') {
      if (--depth == 0) break;
    } else if (c == ',' && depth == 1) {
      parts.push_back(cur);
      cur.clear();
      continue;
    }
    cur += c;
  }
  parts.push_back(cur);
  for (std::string part : parts) {
    size_t b = part.find_first_not_of(" \t\r\n");
    if (b == std::string::npos) continue;
    part = part.substr(b, part.find_last_not_of(" \t\r\n") - b + 1);
    std::string name;
    if (part[0] == '"' || part[0] == '`' || part[0] == '[') {
      char close = part[0] == '[' ? ']' : part[0];
      size_t e = part.find(close, 1);
      name = part.substr(1, e == std::string::npos ? std::string::npos : e - 1);
    } else {
      name = part.substr(0, part.find_first_of(" \t\r\n"));
    }
    std::string lower = Lower(name);
    if (lower == "constraint" || lower == "primary" || lower == "unique" || lower == "check" ||
        lower == "foreign")
      continue;
    defs.emplace_back(lower, part);
  }
  return defs;
}

bool HasColumn(const std::vector<Column>& cols, const std::string& name) {
  for (auto& c : cols)
    if (Lower(c.name) == Lower(name)) return true;
  return false;
}

bool HasObject(const std::vector<Object>& objs, const std::string& type, const std::string& name) {
  for (auto& o : objs)
    if (o.type == type && Lower(o.name) == Lower(name)) return true;
  return false;
}

struct Change {
  enum Kind { kTable, kColumn, kOther } kind;
  Object object;  // the table (or index, trigger, view) in the layout
  Column column;  // for kColumn
  std::string Label() const {
    if (kind == kColumn) return object.name + "." + column.name;
    if (kind == kTable) return object.name;
    return object.type + " " + object.name;
  }
};

std::vector<Change> Diff(Db& store, Db& schema) {
  std::vector<Object> have = Objects(store);
  std::vector<Change> changes;
  for (const Object& o : Objects(schema)) {
    if (o.type == "table") {
      if (!HasObject(have, "table", o.name)) {
        changes.push_back({Change::kTable, o, {}});
        continue;
      }
      std::vector<Column> current = Columns(store, o.name);
      for (const Column& c : Columns(schema, o.name))
        if (!HasColumn(current, c.name)) changes.push_back({Change::kColumn, o, c});
    } else if (!HasObject(have, o.type, o.name)) {
      changes.push_back({Change::kOther, o, {}});
    }
  }
  return changes;
}

// The layout script that ships with the program fills new tables with their seed rows.
void CopyRows(Db& from, Db& to, const std::string& table) {
  sqlite3_stmt* rd = nullptr;
  sqlite3_stmt* wr = nullptr;
  std::string sel = "SELECT * FROM " + Quote(table);
  if (sqlite3_prepare_v2(from.get(), sel.c_str(), -1, &rd, nullptr) != SQLITE_OK)
    throw ConvertError("cannot read the seed rows of " + table);
  int n = sqlite3_column_count(rd);
  std::string ins = "INSERT INTO " + Quote(table) + " VALUES (";
  for (int i = 0; i < n; ++i) ins += i ? ",?" : "?";
  ins += ")";
  if (sqlite3_prepare_v2(to.get(), ins.c_str(), -1, &wr, nullptr) != SQLITE_OK) {
    sqlite3_finalize(rd);
    throw ConvertError("cannot fill " + table + ": " + sqlite3_errmsg(to.get()));
  }
  std::string failure;
  while (failure.empty() && sqlite3_step(rd) == SQLITE_ROW) {
    for (int i = 0; i < n; ++i) sqlite3_bind_value(wr, i + 1, sqlite3_column_value(rd, i));
    if (sqlite3_step(wr) != SQLITE_DONE) failure = sqlite3_errmsg(to.get());
    sqlite3_reset(wr);
  }
  sqlite3_finalize(rd);
  sqlite3_finalize(wr);
  if (!failure.empty()) throw ConvertError("cannot fill " + table + ": " + failure);
}

void SyncFile(const fs::path& p) {
  int fd = ::open(p.c_str(), O_RDONLY);
  if (fd >= 0) {
    ::fsync(fd);
    ::close(fd);
  }
}

// A work file in the store's folder, removed again unless it was kept by Keep(). It is made empty and
// for its owner alone before anything is copied into it: a copy of the store holds its passwords, and
// SQLite gives the copy's journals the permissions of the file.
class WorkFile {
 public:
  explicit WorkFile(fs::path p) : path_(std::move(p)) {
    Remove();
    int fd = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (fd < 0) throw ConvertError("cannot write " + path_.string() + ": " + std::strerror(errno));
    ::close(fd);
  }
  ~WorkFile() {
    if (!kept_) Remove();
  }
  const fs::path& path() const { return path_; }
  void Keep() { kept_ = true; }

 private:
  void Remove() {
    std::error_code ec;
    for (const char* suffix : {"", "-journal", "-wal", "-shm"}) fs::remove(path_.string() + suffix, ec);
  }
  fs::path path_;
  bool kept_ = false;
};

// Runs a backup to its end. A store kept locked by another program for a minute is given up on rather
// than waited for without end.
int StepBackup(sqlite3_backup* b) {
  int rc;
  int waits = 0;
  do {
    rc = sqlite3_backup_step(b, -1);
    if (rc == SQLITE_BUSY || rc == SQLITE_LOCKED) {
      if (++waits > 600) break;
      sqlite3_sleep(100);
    }
  } while (rc == SQLITE_OK || rc == SQLITE_BUSY || rc == SQLITE_LOCKED);
  return rc;
}

// A complete copy of the store through SQLite's online backup, so the copy is consistent even if the
// file is in use.
void CopyStore(const fs::path& store, const fs::path& to) {
  auto src = OpenStore(store, false);
  Db dst(to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  sqlite3_backup* b = sqlite3_backup_init(dst.get(), "main", src->get(), "main");
  if (!b) throw ConvertError("cannot copy " + store.string() + ": " + sqlite3_errmsg(dst.get()));
  int rc = StepBackup(b);
  sqlite3_backup_finish(b);
  if (rc != SQLITE_DONE)
    throw ConvertError("cannot copy " + store.string() + ": " + sqlite3_errmsg(dst.get()));
}

void CheckIntegrity(Db& db, const fs::path& what) {
  auto rows = db.Rows("PRAGMA integrity_check", "cannot check " + what.string());
  if (rows.empty() || rows[0].empty() || rows[0][0] != "ok")
    throw ConvertError("the converted copy of " + what.string() + " failed its check: " +
                       (rows.empty() || rows[0].empty() ? std::string("no answer") : rows[0][0]));
}

// Puts the finished copy in place through SQLite's online backup into the store: one write transaction,
// so the store is either wholly old or wholly new even if we are stopped halfway, and a program that
// still has the store open (the one that started us is on its way out) keeps a consistent view. Renaming
// a new file over the store instead would leave the old file's write-ahead log beside the new one.
void Swap(WorkFile& work, const fs::path& store) {
  Db src(work.path(), SQLITE_OPEN_READONLY);
  Db dst(store, SQLITE_OPEN_READWRITE);
  sqlite3_backup* b = sqlite3_backup_init(dst.get(), "main", src.get(), "main");
  if (!b) throw ConvertError("cannot replace " + store.string() + ": " + sqlite3_errmsg(dst.get()));
  int rc = StepBackup(b);
  sqlite3_backup_finish(b);
  if (rc != SQLITE_DONE)
    throw ConvertError("cannot replace " + store.string() + ": " + sqlite3_errmsg(dst.get()));
}

fs::path WorkPath(const fs::path& store) {
  return fs::path(store.string() + ".converting");
}

std::string IsoDate(Date d) {
  CivilTime c = SplitDate(d);
  char buf[16];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", c.year, c.month, c.day);
  return buf;
}

}  // namespace

fs::path BackupStore(const fs::path& store, Date today) {
  OpenStore(store, false);
  std::string stem = store.stem().string() + "-" + IsoDate(today);
  fs::path target = store.parent_path() / (stem + store.extension().string());
  std::error_code ec;
  for (int n = 2; fs::exists(target, ec); ++n)
    target = store.parent_path() / (stem + "-" + std::to_string(n) + store.extension().string());
  WorkFile work(fs::path(target.string() + ".partial"));
  CopyStore(store, work.path());
  {
    Db check(work.path(), SQLITE_OPEN_READWRITE);
    CheckIntegrity(check, target);
  }
  SyncFile(work.path());
  fs::rename(work.path(), target, ec);
  if (ec) throw ConvertError("cannot write " + target.string() + ": " + ec.message());
  work.Keep();
  return target;
}

std::vector<std::string> MissingLayout(const fs::path& store, const fs::path& schema_sql) {
  auto schema = OpenSchema(schema_sql);
  auto db = OpenStore(store, false);
  std::vector<std::string> out;
  for (const Change& c : Diff(*db, *schema)) out.push_back(c.Label());
  return out;
}

std::vector<std::string> ConvertStore(const fs::path& store, const fs::path& schema_sql, bool compact) {
  auto schema = OpenSchema(schema_sql);
  std::vector<Change> changes;
  {
    auto db = OpenStore(store, false);
    changes = Diff(*db, *schema);
  }
  std::vector<std::string> report;
  if (changes.empty() && !compact) return report;

  WorkFile work(WorkPath(store));
  CopyStore(store, work.path());
  {
    Db db(work.path(), SQLITE_OPEN_READWRITE);
    db.Exec("BEGIN", "cannot start the conversion");
    for (const Change& c : changes) {
      if (c.kind == Change::kTable) {
        db.Exec(c.object.sql, "cannot add table " + c.object.name);
        CopyRows(*schema, db, c.object.name);
        report.push_back("added table " + c.Label());
      } else if (c.kind == Change::kColumn) {
        const Column& col = c.column;
        if (col.primary) throw ConvertError("cannot add key column " + c.Label() + " to an existing table");
        if (col.not_null && !col.has_default)
          throw ConvertError("cannot add column " + c.Label() + ": it may not be empty and has no default");
        std::string definition;
        for (auto& [name, text] : ColumnDefinitions(c.object.sql))
          if (name == Lower(col.name)) definition = text;
        if (definition.empty()) {
          definition = Quote(col.name);
          if (!col.type.empty()) definition += " " + col.type;
          if (col.not_null) definition += " NOT NULL";
          if (col.has_default) definition += " DEFAULT " + col.default_sql;
        }
        std::string sql = "ALTER TABLE " + Quote(c.object.name) + " ADD COLUMN " + definition;
        db.Exec(sql, "cannot add column " + c.Label());
        report.push_back("added column " + c.Label());
      } else {
        db.Exec(c.object.sql, "cannot add " + c.Label());
        report.push_back("added " + c.Label());
      }
    }
    db.Exec("COMMIT", "cannot finish the conversion");
    if (compact) {
      db.Exec("VACUUM", "cannot compact " + store.string());
      report.push_back("compacted " + store.string());
    }
    CheckIntegrity(db, store);
  }
  Swap(work, store);
  return report;
}

void CompactStore(const fs::path& store) {
  WorkFile work(WorkPath(store));
  CopyStore(store, work.path());
  {
    Db db(work.path(), SQLITE_OPEN_READWRITE);
    db.Exec("VACUUM", "cannot compact " + store.string());
    CheckIntegrity(db, store);
  }
  Swap(work, store);
}

}  // namespace lw
