// The statement translator: turns one statement of the desktop dialect into SQLite SQL with bound
// parameters, typed against the store's layout. Internal to the store; the fuzz target drives it too.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "core/primitives/regional.h"
#include "core/primitives/types.h"

namespace lw::store {

// What a column or an expression holds. Bool is a yes/no value (-1/0); a condition is a Bool whose
// SQLite form is 1/0, which Typed::cond tells apart.
enum class Kind { Null, Bool, Number, Money, Date, Text };

// The column kind from a declared type of the schema ("YESNO INTEGER", "MONEY INTEGER", "DATETIME REAL",
// "NUMBER REAL", "TEXT", "MEMO TEXT"); an unknown declaration falls back on SQLite's affinity rules.
Kind KindFromDeclaredType(std::string_view declared);

struct ColumnInfo {
  Text name;  // as the catalogue spells it
  Kind kind = Kind::Text;
};

struct TableInfo {
  Text name;
  std::vector<ColumnInfo> columns;
  // Index of a column by name, ignoring case; -1 when missing.
  int Find(TextView column) const;
};

struct Schema {
  std::vector<TableInfo> tables;
  const TableInfo* Find(TextView table) const;
};

// A text literal of the statement, lifted out so that one translation serves every statement that
// differs from it only in its text literals. It stands for conversion number `conversion` of the
// translation, whose value the store works out for each statement before it binds the parameters.
struct LiteralRef {
  uint32_t conversion = 0;
  friend bool operator==(LiteralRef, LiteralRef) = default;
};

// A value bound to a parameter.
using SqlValue = std::variant<std::monostate, int64_t, double, std::string, LiteralRef>;

// How a lifted text literal becomes a parameter: literal number `literal` (from 0, in the order of the
// statement) read as a value of the kind it meets.
struct LiteralConversion {
  uint32_t literal = 0;
  Kind hint = Kind::Null;
};

struct Fragment {
  std::string sql;
  std::vector<SqlValue> params;
};

struct OutputColumn {
  Text name;
  Kind kind = Kind::Text;
  int table = -1;   // index into Translation::tables when the output is a plain column of a table
  int column = -1;  // index into that table's columns
};

struct Translation {
  enum class Type { Select, Update, Insert, Delete } type = Type::Select;

  // Changes: the whole statement.
  Fragment change;

  // Queries.
  std::vector<const TableInfo*> tables;  // in FROM order
  std::vector<OutputColumn> outputs;
  // Output positions by name with the letters A-Z folded; the first of equal names.
  std::unordered_map<Text, int> output_by_name;
  bool aggregate = false;  // GROUP BY, aggregates or DISTINCT: rows are computed, not kept by key
  Fragment full;           // the whole query, used for computed rows
  Fragment keys;           // the row keys (one rowid per table) in the query's order
  std::string from_sql;    // FROM list, for row fetches and searches
  Fragment where;          // the query's own condition, empty when none
  std::string select_sql;  // select list (parameters in select_params)
  std::vector<SqlValue> select_params;
  std::string rowid_sql;  // "t0".rowid, "t1".rowid ...
  std::string row_sql;    // one row by its keys: select list, then one rowid parameter per table

  // Made by TranslateLifted: the text literals the statement holds and, in the order the translator
  // met them, how each LiteralRef among the parameters is worked out from them.
  size_t literal_count = 0;
  std::vector<LiteralConversion> conversions;

  bool updatable() const { return type == Type::Select && !aggregate && tables.size() == 1; }
};

struct TranslateContext {
  const Schema& schema;
  const Regional& regional;
};

// Translates a whole statement. Raises RuntimeError (3075 malformed, 3061 unknown name, 3079 ambiguous
// name, 3085 unknown function, 3464 a literal that does not fit its column, 3346 value count mismatch).
Translation Translate(TextView statement, const TranslateContext& context);

// The same translation with every text literal left as a LiteralRef; it raises exactly what Translate
// raises for the statement.
Translation TranslateLifted(TextView statement, const TranslateContext& context);

// A statement cut at its text literals: `skeleton` is the statement with each literal replaced by one
// marker character, `literals` holds their contents (quotes undoubled) in order. Two statements with the
// same skeleton tokenise alike except for the literals' contents. False when the statement cannot be cut
// reliably (an unterminated literal, date or bracketed name, or the marker itself outside them); such a
// statement is translated whole.
struct LiftedStatement {
  Text skeleton;
  std::vector<Text> literals;
};
bool LiftLiterals(TextView statement, LiftedStatement* out);

// The parameter values of a lifted translation for the given literals, in conversion order. Raises the
// error the translator raises for a literal that does not fit the kind it meets (3464).
std::vector<SqlValue> ConvertLiterals(const Translation& translation, const std::vector<Text>& literals,
                                      const TranslateContext& context);

// Translates a condition (FindFirst criteria) over the tables of a query; the result is a condition in
// SQLite form with its parameters.
Fragment TranslateCriteria(TextView criteria, const std::vector<const TableInfo*>& tables,
                           const TranslateContext& context);

// Quoted SQLite identifier.
std::string QuoteIdent(TextView name);

// A name with the letters A-Z lower-cased, as names are compared.
Text FoldAsciiName(TextView name);

// Date literal text ("mm/dd/yyyy [hh:mm[:ss] [AM|PM]]", also "yyyy-mm-dd"), blanks allowed around the
// parts; false when it is not one.
bool ParseDateLiteral(TextView text, Date* out);

}  // namespace lw::store
