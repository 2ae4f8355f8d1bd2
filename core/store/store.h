// The auction store: one SQLite file behind the operations of a desktop database engine. Every statement
// the program writes is in the desktop dialect (yes/no literals, #mm/dd/yyyy# dates, * wild cards,
// DELETE * FROM, comma joins, text literals converted to the type of the column they meet); the store
// translates each statement whole into SQLite SQL with bound parameters and caches the translation.
//
// Storage forms: yes/no INTEGER -1/0 (never Null), money INTEGER scaled by 10 000, dates REAL days since
// 1899-12-30, text compared without regard to case (=, <, ORDER BY fold the letters A-Z; LIKE folds
// every letter). Fields come back typed by their column: yes/no as Bool, money as Currency, date as
// Date, number as Number, text and memo as Text, Null as Null.
//
// Errors are RuntimeError with these numbers:
//   3024  the store file is missing (OpenDatabase); 3343 the file is not a store or is damaged
//   3075  malformed statement: garbage, an unterminated literal, an apostrophe the quoting helper refused
//   3061  a statement names a column the store lacks ("Too few parameters"); 3078 an unknown table
//   3079  an unqualified name two joined tables share; 3085 an unknown function
//   3096  an aggregate where none may stand (WHERE, SET, VALUES); 3346 INSERT value count mismatch
//   3065  Execute given a query; 3219 OpenRecordset given a change
//   3464  a literal cannot be read as the type of the column it meets
//   3421  a value set on a field cannot be converted to the column's type
//   3265  a field name the cursor lacks
//   3021  no current record (reading or editing at EOF/BOF, moving on an empty cursor or past its end)
//   3167  the current row was deleted; 3001 a position out of range; 3159 a bookmark of no row
//   3251  FindFirst on a computed cursor (groups, aggregates, DISTINCT)
//   3020  Update or CancelUpdate without AddNew or Edit
//   3027  a change through a read-only cursor (joins, groups, aggregates)
//   3034  CommitTrans or Rollback with no transaction begun
//   3043  any other failure of the engine (disk full, file locked, read-only file)
// A statement that fails changes nothing; inside a transaction the earlier statements of the
// transaction stay.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw {

namespace err {
inline constexpr int kTooFewParameters = 3061;
inline constexpr int kCriteriaTypeMismatch = 3464;
inline constexpr int kUpdateWithoutEdit = 3020;
inline constexpr int kReadOnly = 3027;
inline constexpr int kEngineFailure = 3043;
inline constexpr int kNoTransaction = 3034;
}  // namespace err

class Recordset;
struct StoreState;

// A row of a cursor, opaque; valid for the cursor (or a clone of its query) that gave it.
struct RecordBookmark {
  int64_t value = 0;
  friend constexpr bool operator==(RecordBookmark, RecordBookmark) = default;
};

class Database {
 public:
  // Opens an existing store file (never creates one); 3024 when the file is missing, 3043 when it is
  // not a store. The file is switched to WAL journaling. `regional` converts short-date and money texts.
  static std::unique_ptr<Database> OpenDatabase(const std::filesystem::path& path, const Regional& regional);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // Runs a query; the cursor stands on the first row (or is at EOF and BOF when there is none).
  // Single-table queries give updatable cursors; joins, groups, aggregates and DISTINCT read-only ones.
  std::unique_ptr<Recordset> OpenRecordset(TextView sql);
  // Runs a change (UPDATE, INSERT INTO, DELETE [*] FROM): in a transaction of its own, or as part of
  // the open transaction.
  void Execute(TextView sql);
  // Rows touched by the last Execute.
  int64_t RecordsAffected() const;

  // Layout of the store as read at open: a table's columns in order (empty when there is no such
  // table), and whether a column exists. Names are matched without regard to case.
  std::vector<Text> TableColumns(TextView table) const;
  bool HasColumn(TextView table, TextView column) const;

  // Transactions. While one is open, Execute and the cursors' Update and Delete take part in it
  // instead of committing on their own, and every cursor of this store sees its changes.
  //
  // Begins nest by depth and only the outermost level talks to SQLite: an inner CommitTrans just
  // closes its level, the outermost one commits everything. A Rollback at any depth rolls the whole
  // transaction back at once; the levels still open then have nothing left to commit, so their
  // CommitTrans and Rollback only close them, and statements run before the outermost level closes
  // commit on their own. The same holds when the engine itself abandons the transaction (a full disk,
  // an I/O error): the failing statement raises, the rest of the transaction is gone.
  //
  // A rollback does not move cursors: rows a cursor added in the transaction read as deleted (3167)
  // and other rows read as the store now holds them; Requery to see the store's rows afresh.
  // CommitTrans and Rollback with no level open raise 3034. A commit the engine refuses rolls back,
  // closes every level and raises 3043. Closing the store rolls back a transaction left open.
  void BeginTrans();
  void CommitTrans();
  void Rollback();
  // True while a transaction is open and has not been rolled back.
  bool InTransaction() const;

  const std::filesystem::path& path() const;
  const Regional& regional() const;

 private:
  Database();
  std::shared_ptr<StoreState> state_;
};

// One level of a store transaction for the length of a scope: begins on construction; Commit() closes
// the level keeping its work; leaving the scope without Commit() (a return on an error path, an
// exception) rolls the whole transaction back. The Database must outlive it.
class StoreTransaction {
 public:
  explicit StoreTransaction(Database& db);
  ~StoreTransaction();
  StoreTransaction(const StoreTransaction&) = delete;
  StoreTransaction& operator=(const StoreTransaction&) = delete;

  void Commit();

 private:
  Database& db_;
  bool open_ = true;
};

// A cursor on the result of a query. Rows are fetched on demand: the cursor keeps only the keys of its
// rows in order and a small cache of row values.
class Recordset {
 public:
  ~Recordset();
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  // Value of a field of the current row (or of the row being edited/added). Names ignore case; over a
  // join a clashing column is "table.column". 3265 for a name the cursor lacks, 3021 at EOF/BOF.
  Variant Fields(TextView name) const;
  // Sets a field of the row being edited or added; converts to the column's type (3421 when it cannot).
  void SetField(TextView name, const Variant& value);
  // Field names in order, as the query gives them.
  std::vector<Text> FieldNames() const;
  bool HasField(TextView name) const;

  // MoveFirst/MoveLast on an empty cursor and MoveNext at EOF / MovePrevious at BOF raise 3021.
  // Moving away from a row being edited or added drops the edit.
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  // End and start of file (EOF is a macro of the C library, hence the spelling).
  bool Eof() const;
  bool Bof() const;
  // Number of rows. Callers move to the last row before they trust it, as with a desktop engine; this
  // cursor knows its keys from the start, so the count is whole at any time.
  int64_t RecordCount() const;
  // Position of the current row from 0, -1 when there is none. Setting it moves there.
  int64_t AbsolutePosition() const;
  void SetAbsolutePosition(int64_t position);

  // Finds the first row (from the start) that meets the criteria, a condition in the dialect; the
  // found row becomes current, otherwise the cursor stays where it was and NoMatch() is true.
  void FindFirst(TextView criteria);
  void FindNext(TextView criteria);
  bool NoMatch() const;

  RecordBookmark Bookmark() const;
  void SetBookmark(RecordBookmark bookmark);
  // The row last added or edited through this cursor.
  RecordBookmark LastModified() const;

  bool Updatable() const;
  // Starts a new row (yes/no fields no, everything else Null) or an edit of the current row; Update
  // writes it in a transaction of its own, CancelUpdate drops it. After AddNew+Update the current row
  // stays where it was; LastModified gives the new row.
  void AddNew();
  void Edit();
  void Update();
  void CancelUpdate();
  bool EditInProgress() const;
  // Deletes the current row; the cursor then stands on no row until it is moved.
  void Delete();

  // Runs the query again and stands on the first row.
  void Requery();

 private:
  friend class Database;
  struct Impl;
  explicit Recordset(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

// A screen's data source: a settable record source and Refresh, which re-runs it.
// What code that moves a screen's cursor needs of it: the settable query, a refresh and the cursor
// itself. The store's own data source and the screen's data controls both offer it, so the import can
// work on the very cursor the screen shows.
class CursorSource {
 public:
  virtual ~CursorSource() = default;
  // The query shown; takes effect at the next Refresh.
  Text RecordSource;
  // Runs RecordSource and replaces the cursor; the old cursor stays when the statement fails.
  virtual void Refresh() = 0;
  virtual bool HasRecordset() const = 0;
  // The current cursor; 91 when it has not been refreshed yet.
  virtual Recordset& recordset() = 0;
};

class DataSource : public CursorSource {
 public:
  DataSource(Database& db, Text name) : db_(&db), name_(std::move(name)) {}
  const Text& name() const { return name_; }

  void Refresh() override;
  bool HasRecordset() const override { return recordset_ != nullptr; }
  Recordset& recordset() override;

 private:
  Database* db_;
  Text name_;
  std::unique_ptr<Recordset> recordset_;
};

// Puts a value between single quotes for a statement. An apostrophe in it would break the statement, so
// it raises the malformed-statement error (3075) instead.
Text Quoted(TextView value);
// Puts a value between single quotes, doubling every apostrophe in it.
Text QuotedDoubling(TextView value);

// Where the empty store that ships with the program lies: the build's copy when it exists, else
// share/lotwright/lw.mdb beside the installed program (relative to the directory of `program`).
std::filesystem::path ShippedStorePath(const std::filesystem::path& program_dir);

}  // namespace lw
