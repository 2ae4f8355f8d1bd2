// Tokeniser, parser and emitter of the statement dialect. A statement is parsed whole into a tree, every
// name is resolved against the store's layout, every expression is typed, and the SQLite text is emitted
// with each value as a bound parameter. Nothing reaches SQLite before the whole statement has passed, so
// a bad statement changes nothing.
#include "core/store/translate.h"

#include <cmath>
#include <memory>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/store/store.h"

namespace lw::store {
namespace {

// Reads a quoted literal whose opening quote `quote` stands just before `j`: a doubled quote inside
// stands for one quote, any other ends it. Leaves `j` on the closing quote (or at the end when there is
// none) and says whether it was closed.
bool ReadQuoted(TextView s, char16_t quote, size_t& j, Text& value) {
  while (j < s.size()) {
    if (s[j] == quote) {
      if (j + 1 < s.size() && s[j + 1] == quote) {
        value.push_back(quote);
        j += 2;
        continue;
      }
      return true;
    }
    value.push_back(s[j++]);
  }
  return false;
}

constexpr int kMaxDepth = 200;  // nesting of the parser's own calls
constexpr size_t kMaxSqlBytes = 1 << 20;
constexpr size_t kMaxParams = 30000;
constexpr int kMaxTreeDepth = 24;  // height of an expression tree: SQLite nests at most ~100 parentheses
constexpr int kUnknownTable = 3078;
constexpr int kAmbiguousField = 3079;
constexpr int kUndefinedFunction = 3085;
constexpr int kAggregateMisplaced = 3096;
constexpr int kValueCountMismatch = 3346;

[[noreturn]] void Fail(int number, const std::string& description) {
  throw RuntimeError(number, description);
}

char16_t Lower(char16_t c) {
  return (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c + 32) : c;
}

bool SameName(TextView a, TextView b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (Lower(a[i]) != Lower(b[i])) return false;
  return true;
}

bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}
bool IsIdentStart(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c > 127;
}
bool IsIdentChar(char16_t c) {
  return IsIdentStart(c) || IsDigit(c);
}
bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

// ---------------------------------------------------------------------------------------------------
// Tokens

enum class Tok { End, Ident, Number, String, DateLit, Op };

struct Token {
  Tok type = Tok::End;
  Text text;  // identifier, literal contents, operator
  size_t pos = 0;
  bool bracketed = false;  // [identifier]: never a keyword
  int literal = -1;        // text literals: their number in the statement, from 0
};

std::vector<Token> Tokenise(TextView s, int* literal_count) {
  std::vector<Token> out;
  size_t i = 0;
  *literal_count = 0;
  while (true) {
    while (i < s.size() && IsBlank(s[i])) ++i;
    Token t;
    t.pos = i;
    if (i >= s.size()) {
      out.push_back(t);
      return out;
    }
    char16_t c = s[i];
    if (IsIdentStart(c)) {
      size_t j = i;
      while (j < s.size() && IsIdentChar(s[j])) ++j;
      t.type = Tok::Ident;
      t.text = Text(s.substr(i, j - i));
      i = j;
    } else if (c == u'[') {
      size_t j = s.find(u']', i + 1);
      if (j == TextView::npos || j == i + 1)
        Fail(err::kSyntaxError,
             "Syntax error: unterminated or empty name in brackets at character " + std::to_string(i + 1));
      t.type = Tok::Ident;
      t.bracketed = true;
      t.text = Text(s.substr(i + 1, j - i - 1));
      i = j + 1;
    } else if (IsDigit(c) || (c == u'.' && i + 1 < s.size() && IsDigit(s[i + 1]))) {
      // A number ends at the first character that cannot continue it, letters included, so that
      // "0and" reads as the number 0 followed by "and".
      size_t j = i;
      while (j < s.size() && IsDigit(s[j])) ++j;
      if (j < s.size() && s[j] == u'.') {
        ++j;
        while (j < s.size() && IsDigit(s[j])) ++j;
      }
      if (j < s.size() && (s[j] == u'e' || s[j] == u'E')) {
        size_t k = j + 1;
        if (k < s.size() && (s[k] == u'+' || s[k] == u'-')) ++k;
        if (k < s.size() && IsDigit(s[k])) {
          j = k;
          while (j < s.size() && IsDigit(s[j])) ++j;
        }
      }
      t.type = Tok::Number;
      t.text = Text(s.substr(i, j - i));
      i = j;
    } else if (c == u'\'' || c == u'"') {
      // A doubled quote inside stands for one quote; any other quote ends the literal.
      Text value;
      size_t j = i + 1;
      const bool closed = ReadQuoted(s, c, j, value);
      if (!closed)
        Fail(err::kSyntaxError,
             "Syntax error in string in query expression: unterminated text at character " +
                 std::to_string(i + 1));
      t.type = Tok::String;
      t.text = std::move(value);
      t.literal = (*literal_count)++;
      i = j + 1;
    } else if (c == u'#') {
      size_t j = s.find(u'#', i + 1);
      if (j == TextView::npos)
        Fail(err::kSyntaxError, "Syntax error in date in query expression: unterminated date at character " +
                                    std::to_string(i + 1));
      t.type = Tok::DateLit;
      t.text = Text(s.substr(i + 1, j - i - 1));
      i = j + 1;
    } else {
      static constexpr std::u16string_view kTwo[] = {u"<>", u"<=", u">=", u"!="};
      t.type = Tok::Op;
      bool two = false;
      for (auto op : kTwo) {
        if (s.substr(i, 2) == op) {
          t.text = Text(op == u"!=" ? u"<>" : op);
          i += 2;
          two = true;
          break;
        }
      }
      if (!two) {
        static constexpr std::u16string_view kOne = u"=<>+-*/&(),.;";
        if (kOne.find(c) == TextView::npos)
          Fail(err::kSyntaxError, "Syntax error: unexpected character '" + ToUtf8(TextView(&c, 1)) +
                                      "' at character " + std::to_string(i + 1));
        t.text = Text(1, c);
        ++i;
      }
    }
    out.push_back(std::move(t));
  }
}

// ---------------------------------------------------------------------------------------------------
// Tree

struct Node;
using NodePtr = std::unique_ptr<Node>;

struct Node {
  enum Type {
    NumLit,
    StrLit,
    DateLit,
    BoolLit,
    NullLit,
    Column,
    CountStar,
    Call,
    Neg,
    Not,
    Arith,
    Concat,
    Compare,
    And,
    Or,
    Like,
    IsNull,
    Between,
    In
  };
  Type type;
  Text text;   // literal, operator, function or column name
  Text table;  // qualifier of a column
  double num = 0;
  bool flag = false;  // bool literal value; negated IS/LIKE/BETWEEN/IN
  int literal = -1;   // text literal: its number in the statement
  std::vector<NodePtr> kids;
  size_t pos = 0;
  int depth = 1;  // height of the tree below, bounded so that emitting it cannot exhaust the stack
};

NodePtr MakeNode(Node::Type type, size_t pos) {
  auto n = std::make_unique<Node>();
  n->type = type;
  n->pos = pos;
  return n;
}

struct SelectItem {
  enum { All, TableAll, Expr } kind = Expr;
  Text table;
  NodePtr expr;
  Text alias;
};

struct OrderItem {
  NodePtr expr;
  bool desc = false;
};

struct TableRef {
  Text name;
  size_t pos = 0;
};

struct Assignment {
  Text table, column;
  NodePtr value;
  size_t pos = 0;
};

struct Statement {
  Translation::Type type = Translation::Type::Select;
  bool distinct = false;
  std::vector<SelectItem> items;
  std::vector<TableRef> from;
  NodePtr where;
  std::vector<NodePtr> group;
  NodePtr having;
  std::vector<OrderItem> order;
  std::vector<Assignment> sets;          // UPDATE
  std::vector<Text> insert_columns;      // INSERT
  std::vector<size_t> insert_positions;  // of the names, for messages
  std::vector<NodePtr> values;           // INSERT
};

class Parser {
 public:
  explicit Parser(TextView text) : text_(text), toks_(Tokenise(text, &literal_count_)) {}

  int literal_count() const { return literal_count_; }

  Statement ParseStatement() {
    Statement st;
    if (AcceptKeyword("select")) {
      ParseSelect(&st);
    } else if (AcceptKeyword("update")) {
      st.type = Translation::Type::Update;
      st.from.push_back(ParseTable());
      ExpectKeyword("set");
      do {
        Assignment a;
        a.pos = Peek().pos;
        ParseColumnName(&a.table, &a.column);
        ExpectOp(u"=");
        a.value = ParseExpr();
        st.sets.push_back(std::move(a));
      } while (AcceptOp(u","));
      if (AcceptKeyword("where")) st.where = ParseExpr();
    } else if (AcceptKeyword("delete")) {
      st.type = Translation::Type::Delete;
      // "DELETE * FROM t" and "DELETE t.* FROM t" both mean every matching row of t.
      if (!AcceptOp(u"*") && Peek().type == Tok::Ident && !IsKeyword(Peek(), "from")) {
        Next();
        ExpectOp(u".");
        ExpectOp(u"*");
      }
      ExpectKeyword("from");
      st.from.push_back(ParseTable());
      if (AcceptKeyword("where")) st.where = ParseExpr();
    } else if (AcceptKeyword("insert")) {
      st.type = Translation::Type::Insert;
      ExpectKeyword("into");
      st.from.push_back(ParseTable());
      if (AcceptOp(u"(")) {
        do {
          st.insert_positions.push_back(Peek().pos);
          Text table, column;
          ParseColumnName(&table, &column);
          st.insert_columns.push_back(column);
        } while (AcceptOp(u","));
        ExpectOp(u")");
      }
      ExpectKeyword("values");
      ExpectOp(u"(");
      do {
        st.values.push_back(ParseExpr());
      } while (AcceptOp(u","));
      ExpectOp(u")");
    } else {
      Error("a statement starts with SELECT, UPDATE, DELETE or INSERT");
    }
    AcceptOp(u";");
    if (Peek().type != Tok::End) Error("characters found after the end of the statement");
    return st;
  }

  NodePtr ParseCondition() {
    NodePtr e = ParseExpr();
    if (Peek().type != Tok::End) Error("characters found after the end of the condition");
    return e;
  }

 private:
  const Token& Peek(size_t ahead = 0) const { return toks_[std::min(i_ + ahead, toks_.size() - 1)]; }
  const Token& Next() {
    const Token& t = toks_[i_];
    if (i_ + 1 < toks_.size()) ++i_;
    return t;
  }

  [[noreturn]] void Error(const std::string& why) const {
    const Token& t = Peek();
    std::string near = t.type == Tok::End ? "the end" : "'" + ToUtf8(t.text) + "'";
    Fail(err::kSyntaxError, "Syntax error in query expression near " + near + " at character " +
                                std::to_string(t.pos + 1) + ": " + why);
  }

  static bool IsKeyword(const Token& t, std::string_view word) {
    if (t.type != Tok::Ident || t.bracketed || t.text.size() != word.size()) return false;
    for (size_t i = 0; i < word.size(); ++i)
      if (Lower(t.text[i]) != static_cast<char16_t>(word[i])) return false;
    return true;
  }
  static bool IsReserved(const Token& t) {
    static constexpr std::string_view kWords[] = {
        "select", "from",   "where", "and",      "or",   "not",   "like", "is", "null",
        "order",  "group",  "by",    "having",   "as",   "asc",   "desc", "in", "between",
        "set",    "values", "into",  "distinct", "true", "false", "yes",  "no"};
    for (auto w : kWords)
      if (IsKeyword(t, w)) return true;
    return false;
  }
  bool AcceptKeyword(std::string_view word) {
    if (!IsKeyword(Peek(), word)) return false;
    Next();
    return true;
  }
  void ExpectKeyword(std::string_view word) {
    if (!AcceptKeyword(word)) Error("expected " + std::string(word));
  }
  bool AcceptOp(std::u16string_view op) {
    if (Peek().type != Tok::Op || Peek().text != op) return false;
    Next();
    return true;
  }
  void ExpectOp(std::u16string_view op) {
    if (!AcceptOp(op)) Error("expected '" + ToUtf8(op) + "'");
  }
  Text ExpectName() {
    const Token& t = Peek();
    if (t.type != Tok::Ident || IsReserved(t)) Error("expected a name");
    return Next().text;
  }

  TableRef ParseTable() {
    TableRef r;
    r.pos = Peek().pos;
    r.name = ExpectName();
    return r;
  }

  void ParseColumnName(Text* table, Text* column) {
    Text first = ExpectName();
    if (AcceptOp(u".")) {
      *table = std::move(first);
      *column = ExpectName();
    } else {
      *column = std::move(first);
    }
  }

  void ParseSelect(Statement* st) {
    if (AcceptKeyword("distinct"))
      st->distinct = true;
    else
      AcceptKeyword("all");
    do {
      SelectItem item;
      if (AcceptOp(u"*")) {
        item.kind = SelectItem::All;
      } else if (Peek().type == Tok::Ident && Peek(1).type == Tok::Op && Peek(1).text == u"." &&
                 Peek(2).type == Tok::Op && Peek(2).text == u"*") {
        item.kind = SelectItem::TableAll;
        item.table = Next().text;
        Next();
        Next();
      } else {
        item.expr = ParseExpr();
        if (AcceptKeyword("as")) item.alias = ExpectName();
      }
      st->items.push_back(std::move(item));
    } while (AcceptOp(u","));
    ExpectKeyword("from");
    do {
      st->from.push_back(ParseTable());
    } while (AcceptOp(u","));
    if (AcceptKeyword("where")) st->where = ParseExpr();
    if (AcceptKeyword("group")) {
      ExpectKeyword("by");
      do {
        st->group.push_back(ParseExpr());
      } while (AcceptOp(u","));
    }
    if (AcceptKeyword("having")) st->having = ParseExpr();
    if (AcceptKeyword("order")) {
      ExpectKeyword("by");
      do {
        OrderItem o;
        o.expr = ParseExpr();
        if (AcceptKeyword("desc"))
          o.desc = true;
        else
          AcceptKeyword("asc");
        st->order.push_back(std::move(o));
      } while (AcceptOp(u","));
    }
  }

  struct DepthGuard {
    explicit DepthGuard(Parser* p) : p_(p) {
      if (++p_->depth_ > kMaxDepth) p_->Error("the expression is nested too deeply");
    }
    ~DepthGuard() { --p_->depth_; }
    Parser* p_;
  };

  NodePtr Binary(Node::Type type, Text op, NodePtr a, NodePtr b, size_t pos) {
    auto n = MakeNode(type, pos);
    n->text = std::move(op);
    n->kids.push_back(std::move(a));
    n->kids.push_back(std::move(b));
    return Grown(std::move(n));
  }

  // Long chains such as "a + a + a ..." are built without recursion but emitted with it.
  NodePtr Grown(NodePtr n) {
    for (auto& k : n->kids) n->depth = std::max(n->depth, k->depth + 1);
    if (n->depth > kMaxTreeDepth) Error("the expression is too complex");
    return n;
  }

  NodePtr ParseExpr() {
    DepthGuard guard(this);
    NodePtr e = ParseAnd();
    if (!IsKeyword(Peek(), "or")) return e;
    // Chains of OR (and of AND) are one node with many operands, so a long list of conditions stays flat.
    auto n = MakeNode(Node::Or, Peek().pos);
    n->kids.push_back(std::move(e));
    while (AcceptKeyword("or")) n->kids.push_back(ParseAnd());
    return Grown(std::move(n));
  }

  NodePtr ParseAnd() {
    NodePtr e = ParseNot();
    if (!IsKeyword(Peek(), "and")) return e;
    auto n = MakeNode(Node::And, Peek().pos);
    n->kids.push_back(std::move(e));
    while (AcceptKeyword("and")) n->kids.push_back(ParseNot());
    return Grown(std::move(n));
  }

  NodePtr ParseNot() {
    DepthGuard guard(this);
    if (IsKeyword(Peek(), "not")) {
      auto n = MakeNode(Node::Not, Next().pos);
      n->kids.push_back(ParseNot());
      return Grown(std::move(n));
    }
    return ParseCompare();
  }

  // Comparisons chain from the left, so "price > 0 = true" is "(price > 0) = true".
  NodePtr ParseCompare() {
    NodePtr e = ParseConcat();
    while (true) {
      const Token& t = Peek();
      size_t pos = t.pos;
      if (t.type == Tok::Op && (t.text == u"=" || t.text == u"<>" || t.text == u"<" || t.text == u">" ||
                                t.text == u"<=" || t.text == u">=")) {
        Text op = Next().text;
        e = Binary(Node::Compare, op, std::move(e), ParseConcat(), pos);
        continue;
      }
      bool negated = false;
      if (IsKeyword(t, "not") &&
          (IsKeyword(Peek(1), "like") || IsKeyword(Peek(1), "between") || IsKeyword(Peek(1), "in"))) {
        Next();
        negated = true;
      }
      if (AcceptKeyword("like")) {
        e = Binary(Node::Like, u"like", std::move(e), ParseConcat(), pos);
        e->flag = negated;
      } else if (AcceptKeyword("between")) {
        NodePtr lo = ParseConcat();
        ExpectKeyword("and");
        NodePtr hi = ParseConcat();
        auto n = MakeNode(Node::Between, pos);
        n->flag = negated;
        n->kids.push_back(std::move(e));
        n->kids.push_back(std::move(lo));
        n->kids.push_back(std::move(hi));
        e = Grown(std::move(n));
      } else if (AcceptKeyword("in")) {
        auto n = MakeNode(Node::In, pos);
        n->flag = negated;
        n->kids.push_back(std::move(e));
        ExpectOp(u"(");
        do {
          n->kids.push_back(ParseConcat());
        } while (AcceptOp(u","));
        ExpectOp(u")");
        e = Grown(std::move(n));
      } else if (IsKeyword(t, "is")) {
        Next();
        auto n = MakeNode(Node::IsNull, pos);
        n->flag = AcceptKeyword("not");
        ExpectKeyword("null");
        n->kids.push_back(std::move(e));
        e = Grown(std::move(n));
      } else {
        return e;
      }
    }
  }

  NodePtr ParseConcat() {
    NodePtr e = ParseAdd();
    while (Peek().type == Tok::Op && Peek().text == u"&") {
      size_t pos = Next().pos;
      e = Binary(Node::Concat, u"&", std::move(e), ParseAdd(), pos);
    }
    return e;
  }

  NodePtr ParseAdd() {
    NodePtr e = ParseMul();
    while (Peek().type == Tok::Op && (Peek().text == u"+" || Peek().text == u"-")) {
      size_t pos = Peek().pos;
      Text op = Next().text;
      e = Binary(Node::Arith, op, std::move(e), ParseMul(), pos);
    }
    return e;
  }

  NodePtr ParseMul() {
    NodePtr e = ParseUnary();
    while (Peek().type == Tok::Op && (Peek().text == u"*" || Peek().text == u"/")) {
      size_t pos = Peek().pos;
      Text op = Next().text;
      e = Binary(Node::Arith, op, std::move(e), ParseUnary(), pos);
    }
    return e;
  }

  NodePtr ParseUnary() {
    DepthGuard guard(this);
    if (Peek().type == Tok::Op && (Peek().text == u"-" || Peek().text == u"+")) {
      bool minus = Peek().text == u"-";
      size_t pos = Next().pos;
      NodePtr operand = ParseUnary();
      if (!minus) return operand;
      auto n = MakeNode(Node::Neg, pos);
      n->kids.push_back(std::move(operand));
      return Grown(std::move(n));
    }
    return ParsePrimary();
  }

  NodePtr ParsePrimary() {
    const Token& t = Peek();
    size_t pos = t.pos;
    switch (t.type) {
      case Tok::Number: {
        auto n = MakeNode(Node::NumLit, pos);
        n->text = Next().text;
        n->num = std::strtod(ToUtf8(n->text).c_str(), nullptr);
        return n;
      }
      case Tok::String: {
        auto n = MakeNode(Node::StrLit, pos);
        n->literal = t.literal;
        n->text = Next().text;
        return n;
      }
      case Tok::DateLit: {
        auto n = MakeNode(Node::DateLit, pos);
        Date d;
        if (!ParseDateLiteral(t.text, &d))
          Fail(err::kSyntaxError, "Syntax error in date in query expression '#" + ToUtf8(t.text) + "#'");
        n->num = d.serial;
        n->text = Next().text;
        return n;
      }
      case Tok::Op:
        if (AcceptOp(u"(")) {
          NodePtr e = ParseExpr();
          ExpectOp(u")");
          return e;
        }
        Error("expected a value");
      case Tok::End:
        Error("the statement ends too early");
      case Tok::Ident:
        break;
    }
    if (IsKeyword(t, "true") || IsKeyword(t, "yes") || IsKeyword(t, "false") || IsKeyword(t, "no")) {
      auto n = MakeNode(Node::BoolLit, pos);
      n->flag = IsKeyword(t, "true") || IsKeyword(t, "yes");
      n->text = Next().text;
      return n;
    }
    if (IsKeyword(t, "null")) {
      Next();
      return MakeNode(Node::NullLit, pos);
    }
    if (IsReserved(t)) Error("expected a value");
    Text name = Next().text;
    if (AcceptOp(u"(")) {
      if (Peek().type == Tok::Op && Peek().text == u"*") {
        if (!SameName(name, u"count")) Error("only Count takes *");
        Next();
        ExpectOp(u")");
        return MakeNode(Node::CountStar, pos);
      }
      auto n = MakeNode(Node::Call, pos);
      n->text = std::move(name);
      if (!AcceptOp(u")")) {
        do {
          n->kids.push_back(ParseExpr());
        } while (AcceptOp(u","));
        ExpectOp(u")");
      }
      return Grown(std::move(n));
    }
    auto n = MakeNode(Node::Column, pos);
    if (AcceptOp(u".")) {
      n->table = std::move(name);
      n->text = ExpectName();
    } else {
      n->text = std::move(name);
    }
    return n;
  }

  TextView text_;
  int literal_count_ = 0;
  std::vector<Token> toks_;
  size_t i_ = 0;
  int depth_ = 0;
};

// ---------------------------------------------------------------------------------------------------
// Emitter

struct Typed {
  std::string sql;
  std::vector<SqlValue> params;
  Kind kind = Kind::Null;
  bool cond = false;  // SQLite truth value 1/0 rather than a yes/no value -1/0
  bool aggregate = false;
  int table = -1, column = -1;
};

int KindCode(Kind k) {
  return static_cast<int>(k);
}

void Append(Typed* into, const Typed& part) {
  into->sql += part.sql;
  into->params.insert(into->params.end(), part.params.begin(), part.params.end());
  into->aggregate = into->aggregate || part.aggregate;
}

bool IsLiteral(const Node& n) {
  switch (n.type) {
    case Node::NumLit:
    case Node::StrLit:
    case Node::DateLit:
    case Node::BoolLit:
    case Node::NullLit:
      return true;
    case Node::Neg:
      return IsLiteral(*n.kids[0]);
    default:
      return false;
  }
}

// What a text literal becomes where it meets a value of the kind `hint`: dates and money under the
// locale, yes/no from its words or its number, anything else stays text.
SqlValue ConvertTextLiteral(const Text& text, Kind hint, const Regional& regional) {
  try {
    switch (hint) {
      case Kind::Date:
        return CDate(Variant(text), regional).serial;
      case Kind::Money:
        return CCur(Variant(text), regional).scaled();
      case Kind::Number:
        return CDbl(Variant(text), regional);
      case Kind::Bool:
        if (SameName(text, u"true") || SameName(text, u"yes") || SameName(text, u"on")) return int64_t{-1};
        if (SameName(text, u"false") || SameName(text, u"no") || SameName(text, u"off")) return int64_t{0};
        return int64_t{CDbl(Variant(text), regional) != 0 ? -1 : 0};
      case Kind::Null:
      case Kind::Text:
        break;
    }
  } catch (const RuntimeError&) {
    Fail(err::kCriteriaTypeMismatch,
         "Data type mismatch in criteria expression ('" + ToUtf8(text) + "' is not a valid value here)");
  }
  return ToUtf8(text);
}

Kind TextLiteralKind(Kind hint) {
  switch (hint) {
    case Kind::Date:
    case Kind::Money:
    case Kind::Number:
    case Kind::Bool:
      return hint;
    case Kind::Null:
    case Kind::Text:
      break;
  }
  return Kind::Text;
}

class Emitter {
 public:
  Emitter(const TranslateContext& ctx, std::vector<const TableInfo*> tables)
      : ctx_(ctx), tables_(std::move(tables)) {}

  const std::vector<const TableInfo*>& tables() const { return tables_; }
  bool allow_aggregates = false;
  // Where text literals are lifted out: their conversions, in the order they are met.
  std::vector<LiteralConversion>* lifted = nullptr;

  static std::string Alias(size_t i) { return "\"t" + std::to_string(i) + "\""; }

  // Resolves a column name, qualified or not, among the statement's tables.
  std::pair<int, int> Resolve(TextView table, TextView column) const {
    int found_table = -1, found_col = -1;
    for (size_t t = 0; t < tables_.size(); ++t) {
      if (!table.empty() && !SameName(table, tables_[t]->name)) continue;
      int c = tables_[t]->Find(column);
      if (c < 0) continue;
      if (found_table >= 0)
        Fail(kAmbiguousField, "The specified field '" + ToUtf8(column) +
                                  "' could refer to more than one table listed in the FROM clause");
      found_table = static_cast<int>(t);
      found_col = c;
    }
    if (found_table < 0) {
      bool table_known = table.empty();
      for (auto* t : tables_)
        if (!table.empty() && SameName(table, t->name)) table_known = true;
      std::string name = table.empty() ? ToUtf8(column) : ToUtf8(table) + "." + ToUtf8(column);
      if (!table_known)
        Fail(err::kTooFewParameters,
             "Too few parameters. Expected 1. ('" + ToUtf8(table) + "' is not a table of this statement)");
      Fail(err::kTooFewParameters, "Too few parameters. Expected 1. (no column '" + name + "')");
    }
    return {found_table, found_col};
  }

  std::string ColumnSql(int t, int c) const {
    return Alias(t) + "." + QuoteIdent(tables_[t]->columns[c].name);
  }

  // A literal typed by the kind of what it meets.
  Typed Literal(const Node& n, Kind hint) {
    Typed t;
    switch (n.type) {
      case Node::Neg: {
        Typed inner = Literal(*n.kids[0], hint);
        if (inner.kind == Kind::Text || inner.kind == Kind::Bool)
          Fail(err::kCriteriaTypeMismatch, "Data type mismatch in criteria expression (minus before text)");
        t = inner;
        t.sql = "(-" + inner.sql + ")";
        return t;
      }
      case Node::NullLit:
        t.sql = "NULL";
        t.kind = Kind::Null;
        return t;
      case Node::BoolLit:
        t.sql = n.flag ? "-1" : "0";
        t.kind = Kind::Bool;
        return t;
      case Node::DateLit:
        t.kind = Kind::Date;
        t.sql = "?";
        t.params.push_back(n.num);
        if (hint == Kind::Text) {
          t.kind = Kind::Text;
          t.params.back() = ToUtf8(CStr(Variant(Date(n.num)), ctx_.regional));
        }
        return t;
      case Node::NumLit:
        t.sql = "?";
        if (hint == Kind::Money) {
          t.kind = Kind::Money;
          t.params.push_back(Currency::FromDouble(n.num).scaled());
        } else if (hint == Kind::Text) {
          t.kind = Kind::Text;
          t.params.push_back(ToUtf8(n.text));
        } else {
          t.kind = Kind::Number;
          t.params.push_back(n.num);
        }
        return t;
      case Node::StrLit:
        return TextLiteral(n, hint);
      default:
        return Emit(n);
    }
  }

  // A text literal meeting a value of the kind `hint`. Its conversion is made even when the literal is
  // lifted out, so that a literal that does not fit fails here as it would anywhere.
  Typed TextLiteral(const Node& n, Kind hint) {
    Typed t;
    t.sql = "?";
    t.kind = TextLiteralKind(hint);
    SqlValue value = ConvertTextLiteral(n.text, hint, ctx_.regional);
    if (lifted && n.literal >= 0) {
      t.params.push_back(LiteralRef{static_cast<uint32_t>(lifted->size())});
      lifted->push_back(LiteralConversion{static_cast<uint32_t>(n.literal), hint});
    } else {
      t.params.push_back(std::move(value));
    }
    return t;
  }

  // Emits two operands; a literal takes the kind of the other side.
  std::pair<Typed, Typed> Operands(const Node& a, const Node& b) {
    if (IsLiteral(a) && !IsLiteral(b)) {
      Typed r = Emit(b);
      Typed l = Literal(a, r.cond ? Kind::Bool : r.kind);
      return {std::move(l), std::move(r)};
    }
    Typed l = Emit(a);
    Typed r = IsLiteral(b) ? Literal(b, l.cond ? Kind::Bool : l.kind) : Emit(b);
    return {std::move(l), std::move(r)};
  }

  static std::string AsValueSql(const Typed& t) { return t.cond ? "(-" + t.sql + ")" : t.sql; }

  static std::string AsCondSql(const Typed& t) {
    if (t.cond) return t.sql;
    if (t.kind == Kind::Null) return "NULL";
    if (t.kind == Kind::Text)
      Fail(err::kCriteriaTypeMismatch,
           "Data type mismatch in criteria expression (text used as a condition)");
    return "(" + t.sql + " <> 0)";
  }

  static Typed AsCond(Typed t) {
    t.sql = AsCondSql(t);
    t.cond = true;
    t.kind = Kind::Bool;
    return t;
  }

  // SQL of a value in the storage form of another kind.
  static std::string Coerce(const Typed& t, Kind to) {
    std::string v = AsValueSql(t);
    Kind from = t.kind;
    if (from == to || from == Kind::Null) return v;
    if (to == Kind::Text) return "lw_str(" + v + ", " + std::to_string(KindCode(from)) + ")";
    if (from == Kind::Text) return "lw_conv(" + v + ", " + std::to_string(KindCode(to)) + ")";
    switch (to) {
      case Kind::Money:
        return "CAST(round(" + v + " * 10000) AS INTEGER)";
      case Kind::Bool:
        return "(-(" + v + " <> 0))";
      case Kind::Number:
      case Kind::Date:
        if (from == Kind::Money) return "(" + v + " / 10000.0)";
        return v;
      default:
        return v;
    }
  }

  // The kind two operands are compared in.
  static Kind CommonKind(Kind a, Kind b) {
    if (a == b) return a;
    if (a == Kind::Null) return b;
    if (b == Kind::Null) return a;
    if (a == Kind::Text || b == Kind::Text) return Kind::Text;
    if (a == Kind::Date || b == Kind::Date) return Kind::Date;
    if (a == Kind::Money || b == Kind::Money) return Kind::Money;
    return Kind::Number;
  }

  Typed CompareOp(const Text& op, const Node& a, const Node& b) {
    auto [l, r] = Operands(a, b);
    Typed t;
    t.kind = Kind::Bool;
    t.cond = true;
    // A yes/no literal against a truth value tests the truth: "price > 0 = true", "reserve_met = yes".
    bool l_lit = a.type == Node::BoolLit, r_lit = b.type == Node::BoolLit;
    if ((op == u"=" || op == u"<>") && (l_lit != r_lit)) {
      const Typed& other = l_lit ? r : l;
      bool value = (l_lit ? a : b).flag;
      if (other.kind == Kind::Bool) {
        bool want = value == (op == u"=");
        std::string truth = AsCondSql(other);
        t.sql = want ? truth : "(NOT " + truth + ")";
        t.params = other.params;
        t.aggregate = other.aggregate;
        return t;
      }
    }
    Kind k = CommonKind(l.kind, r.kind);
    std::string ls = Coerce(l, k), rs = Coerce(r, k);
    if (k == Kind::Text) rs += " COLLATE NOCASE";
    t.sql = "(" + ls + " " + ToUtf8(op) + " " + rs + ")";
    t.params = l.params;
    t.params.insert(t.params.end(), r.params.begin(), r.params.end());
    t.aggregate = l.aggregate || r.aggregate;
    return t;
  }

  Typed Arith(const Text& op, const Node& a, const Node& b) {
    auto [l, r] = Operands(a, b);
    Typed t;
    t.params = l.params;
    t.params.insert(t.params.end(), r.params.begin(), r.params.end());
    t.aggregate = l.aggregate || r.aggregate;
    Kind lk = l.cond ? Kind::Bool : l.kind, rk = r.cond ? Kind::Bool : r.kind;
    if (lk == Kind::Null || rk == Kind::Null) {
      t.kind = Kind::Null;
      t.sql = "(" + AsValueSql(l) + " + " + AsValueSql(r) + ")";
      return t;
    }
    if (op == u"+" && (lk == Kind::Text || rk == Kind::Text)) {
      t.kind = Kind::Text;
      t.sql = "(" + Coerce(l, Kind::Text) + " || " + Coerce(r, Kind::Text) + ")";
      return t;
    }
    if (lk == Kind::Text || rk == Kind::Text)
      Fail(err::kCriteriaTypeMismatch, "Data type mismatch in criteria expression (arithmetic on text)");
    if (op == u"+" || op == u"-") {
      if (lk == Kind::Date || rk == Kind::Date) {
        t.kind = (op == u"-" && lk == Kind::Date && rk == Kind::Date) ? Kind::Number : Kind::Date;
        t.sql = "(" + Coerce(l, Kind::Number) + " " + ToUtf8(op) + " " + Coerce(r, Kind::Number) + ")";
      } else if (lk == Kind::Money || rk == Kind::Money) {
        t.kind = Kind::Money;
        t.sql = "(" + Coerce(l, Kind::Money) + " " + ToUtf8(op) + " " + Coerce(r, Kind::Money) + ")";
      } else {
        t.kind = Kind::Number;
        t.sql = "(" + AsValueSql(l) + " " + ToUtf8(op) + " " + AsValueSql(r) + ")";
      }
      return t;
    }
    bool lm = lk == Kind::Money, rm = rk == Kind::Money;
    std::string ln = lm ? AsValueSql(l) : Coerce(l, Kind::Number);
    std::string rn = rm ? AsValueSql(r) : Coerce(r, Kind::Number);
    if (op == u"*") {
      if (lm && rm) {
        t.kind = Kind::Money;
        t.sql = "CAST(round(" + ln + " * " + rn + " / 10000.0) AS INTEGER)";
      } else if (lm || rm) {
        t.kind = Kind::Money;
        t.sql = "CAST(round(" + ln + " * " + rn + ") AS INTEGER)";
      } else {
        t.kind = Kind::Number;
        t.sql = "(" + ln + " * " + rn + ")";
      }
      return t;
    }
    // Division is always by real numbers; a division by zero gives Null.
    if (lm && !rm) {
      t.kind = Kind::Money;
      t.sql = "CAST(round(" + ln + " * 1.0 / " + rn + ") AS INTEGER)";
    } else if (!lm && rm) {
      t.kind = Kind::Number;
      t.sql = "(" + ln + " * 10000.0 / " + rn + ")";
    } else {
      t.kind = Kind::Number;
      t.sql = "(" + ln + " * 1.0 / " + rn + ")";
    }
    return t;
  }

  Typed Aggregate(const Node& n) {
    if (!allow_aggregates)
      Fail(kAggregateMisplaced,
           "Cannot have aggregate function in this part of the statement (" + ToUtf8(n.text) + ")");
    if (n.kids.size() != 1)
      Fail(err::kSyntaxError, "Wrong number of arguments used with function " + ToUtf8(n.text));
    allow_aggregates = false;
    Typed arg = Emit(*n.kids[0]);
    allow_aggregates = true;
    Typed t;
    t.aggregate = true;
    t.params = arg.params;
    std::string v = AsValueSql(arg);
    Kind k = arg.cond ? Kind::Bool : arg.kind;
    if (SameName(n.text, u"count")) {
      t.kind = Kind::Number;
      t.sql = "count(" + v + ")";
    } else if (SameName(n.text, u"sum") || SameName(n.text, u"avg")) {
      if (k == Kind::Text)
        Fail(err::kCriteriaTypeMismatch,
             "Data type mismatch in criteria expression (" + ToUtf8(n.text) + " of text)");
      bool sum = SameName(n.text, u"sum");
      t.kind = (k == Kind::Money) ? Kind::Money : (k == Kind::Date && !sum ? Kind::Date : Kind::Number);
      if (sum)
        t.sql = "sum(" + v + ")";
      else if (k == Kind::Money)
        t.sql = "CAST(round(avg(" + v + ")) AS INTEGER)";
      else
        t.sql = "avg(" + v + ")";
    } else {  // min, max
      t.kind = k;
      t.sql = ToUtf8(LowerText(n.text)) + "(" + v + (k == Kind::Text ? " COLLATE NOCASE" : "") + ")";
    }
    return t;
  }

  static Text LowerText(TextView s) {
    Text out(s);
    for (auto& c : out) c = Lower(c);
    return out;
  }

  // BETWEEN and IN repeat their first operand, so nesting them could grow the SQL without bound.
  Typed Emit(const Node& n) {
    Typed t = EmitNode(n);
    if (t.sql.size() > kMaxSqlBytes || t.params.size() > kMaxParams)
      Fail(err::kSyntaxError, "Syntax error in query expression: the expression is too complex");
    return t;
  }

  Typed EmitNode(const Node& n) {
    switch (n.type) {
      case Node::NumLit:
      case Node::StrLit:
      case Node::DateLit:
      case Node::BoolLit:
      case Node::NullLit:
        return Literal(n, Kind::Null);
      case Node::Column: {
        auto [t, c] = Resolve(n.table, n.text);
        Typed out;
        out.sql = ColumnSql(t, c);
        out.kind = tables_[t]->columns[c].kind;
        out.table = t;
        out.column = c;
        return out;
      }
      case Node::CountStar: {
        if (!allow_aggregates) Fail(kAggregateMisplaced, "Cannot have aggregate function Count(*) here");
        Typed out;
        out.sql = "count(*)";
        out.kind = Kind::Number;
        out.aggregate = true;
        return out;
      }
      case Node::Call: {
        static constexpr std::u16string_view kAggregates[] = {u"count", u"sum", u"avg", u"min", u"max"};
        for (auto name : kAggregates)
          if (SameName(n.text, name)) return Aggregate(n);
        Fail(kUndefinedFunction, "Undefined function '" + ToUtf8(n.text) + "' in expression");
      }
      case Node::Neg: {
        if (IsLiteral(n)) return Literal(n, Kind::Null);
        Typed inner = Emit(*n.kids[0]);
        if (inner.kind == Kind::Text)
          Fail(err::kCriteriaTypeMismatch, "Data type mismatch in criteria expression (minus before text)");
        Typed out = inner;
        out.cond = false;
        out.kind = inner.cond ? Kind::Bool : inner.kind;
        out.sql = "(-" + AsValueSql(inner) + ")";
        return out;
      }
      case Node::Not: {
        Typed inner = Emit(*n.kids[0]);
        Typed out = inner;
        out.sql = "(NOT " + AsCondSql(inner) + ")";
        out.cond = true;
        out.kind = Kind::Bool;
        return out;
      }
      case Node::And:
      case Node::Or: {
        Typed out;
        out.kind = Kind::Bool;
        out.cond = true;
        out.sql = "(";
        for (size_t i = 0; i < n.kids.size(); ++i) {
          if (i) out.sql += n.type == Node::And ? " AND " : " OR ";
          Append(&out, AsCond(Emit(*n.kids[i])));
        }
        out.sql += ")";
        return out;
      }
      case Node::Compare:
        return CompareOp(n.text, *n.kids[0], *n.kids[1]);
      case Node::Arith:
        return Arith(n.text, *n.kids[0], *n.kids[1]);
      case Node::Concat: {
        auto [l, r] = Operands(*n.kids[0], *n.kids[1]);
        Typed out;
        out.kind = Kind::Text;
        out.sql = "(ifnull(" + Coerce(l, Kind::Text) + ", '') || ifnull(" + Coerce(r, Kind::Text) + ", ''))";
        out.params = l.params;
        out.params.insert(out.params.end(), r.params.begin(), r.params.end());
        out.aggregate = l.aggregate || r.aggregate;
        return out;
      }
      case Node::Like: {
        Typed l = Emit(*n.kids[0]);
        Typed r = IsLiteral(*n.kids[1]) ? Literal(*n.kids[1], Kind::Text) : Emit(*n.kids[1]);
        Typed out;
        out.kind = Kind::Bool;
        out.cond = true;
        out.sql = std::string(n.flag ? "(NOT " : "(") + "lw_like(" + Coerce(l, Kind::Text) + ", " +
                  Coerce(r, Kind::Text) + "))";
        out.params = l.params;
        out.params.insert(out.params.end(), r.params.begin(), r.params.end());
        out.aggregate = l.aggregate || r.aggregate;
        return out;
      }
      case Node::IsNull: {
        Typed inner = Emit(*n.kids[0]);
        Typed out = inner;
        out.sql = "(" + AsValueSql(inner) + (n.flag ? " IS NOT NULL)" : " IS NULL)");
        out.cond = true;
        out.kind = Kind::Bool;
        return out;
      }
      case Node::Between: {
        Typed lo = CompareOp(u">=", *n.kids[0], *n.kids[1]);
        Typed hi = CompareOp(u"<=", *n.kids[0], *n.kids[2]);
        Typed out;
        out.kind = Kind::Bool;
        out.cond = true;
        out.sql = n.flag ? "(NOT (" : "((";
        Append(&out, lo);
        out.sql += " AND ";
        Append(&out, hi);
        out.sql += "))";
        return out;
      }
      case Node::In: {
        Typed out;
        out.kind = Kind::Bool;
        out.cond = true;
        out.sql = n.flag ? "(NOT (" : "((";
        for (size_t i = 1; i < n.kids.size(); ++i) {
          if (i > 1) out.sql += " OR ";
          Append(&out, CompareOp(u"=", *n.kids[0], *n.kids[i]));
        }
        out.sql += "))";
        return out;
      }
    }
    Fail(err::kSyntaxError, "Syntax error in query expression");
  }

  // A value for a column of the given kind: literals converted, expressions coerced, yes/no never Null.
  Typed Value(const Node& n, Kind column_kind) {
    Typed v = IsLiteral(n) ? Literal(n, column_kind) : Emit(n);
    if (v.aggregate) Fail(kAggregateMisplaced, "Cannot have aggregate function in a value");
    Typed out = v;
    out.cond = false;
    out.kind = column_kind;
    out.sql = Coerce(v, column_kind);
    if (column_kind == Kind::Bool) out.sql = "ifnull(" + out.sql + ", 0)";
    return out;
  }

 private:
  const TranslateContext& ctx_;
  std::vector<const TableInfo*> tables_;
};

const TableInfo* FindTable(const TranslateContext& ctx, const TableRef& ref) {
  const TableInfo* t = ctx.schema.Find(ref.name);
  if (!t) Fail(kUnknownTable, "Cannot find the input table or query '" + ToUtf8(ref.name) + "'");
  return t;
}

void AppendFragment(Fragment* f, const std::string& sql, const std::vector<SqlValue>& params) {
  f->sql += sql;
  f->params.insert(f->params.end(), params.begin(), params.end());
}

Translation TranslateSelect(Statement& st, const TranslateContext& ctx,
                            std::vector<LiteralConversion>* lifted) {
  Translation tr;
  tr.type = Translation::Type::Select;
  for (auto& ref : st.from) tr.tables.push_back(FindTable(ctx, ref));
  Emitter em(ctx, tr.tables);
  em.lifted = lifted;

  // Output columns; over a join a name two tables share is given with its table.
  struct Out {
    Text name;
    Typed value;
    bool plain_column = false;
  };
  std::vector<Out> outs;
  bool any_aggregate = false;
  int expr_number = 1000;
  auto add_table = [&](size_t t) {
    for (size_t c = 0; c < tr.tables[t]->columns.size(); ++c) {
      Out o;
      o.name = tr.tables[t]->columns[c].name;
      o.value.sql = em.ColumnSql(static_cast<int>(t), static_cast<int>(c));
      o.value.kind = tr.tables[t]->columns[c].kind;
      o.value.table = static_cast<int>(t);
      o.value.column = static_cast<int>(c);
      o.plain_column = true;
      outs.push_back(std::move(o));
    }
  };
  for (auto& item : st.items) {
    if (item.kind == SelectItem::All) {
      for (size_t t = 0; t < tr.tables.size(); ++t) add_table(t);
    } else if (item.kind == SelectItem::TableAll) {
      bool found = false;
      for (size_t t = 0; t < tr.tables.size(); ++t) {
        if (SameName(item.table, tr.tables[t]->name)) {
          add_table(t);
          found = true;
          break;
        }
      }
      if (!found)
        Fail(err::kTooFewParameters, "Too few parameters. Expected 1. ('" + ToUtf8(item.table) +
                                         "' is not a table of this statement)");
    } else {
      em.allow_aggregates = true;
      Out o;
      o.value = em.Emit(*item.expr);
      em.allow_aggregates = false;
      any_aggregate = any_aggregate || o.value.aggregate;
      o.plain_column = item.expr->type == Node::Column;
      if (!item.alias.empty())
        o.name = item.alias;
      else if (o.plain_column)
        o.name = tr.tables[o.value.table]->columns[o.value.column].name;
      else
        o.name = u"Expr" + FromUtf8(std::to_string(expr_number++));
      outs.push_back(std::move(o));
    }
  }
  // Only a join can make two output columns clash; a single table never does, and the import opens
  // one-table cursors thousands of times.
  std::vector<Text> plain_names;
  if (tr.tables.size() > 1)
    for (auto& o : outs) plain_names.push_back(o.name);
  for (size_t i = 0; i < plain_names.size(); ++i) {
    if (!outs[i].plain_column || outs[i].value.table < 0) continue;
    for (size_t j = 0; j < outs.size(); ++j) {
      if (i != j && outs[j].plain_column && outs[j].value.table != outs[i].value.table &&
          SameName(plain_names[i], plain_names[j])) {
        outs[i].name = tr.tables[outs[i].value.table]->name + u"." + plain_names[i];
        break;
      }
    }
  }

  Fragment where;
  if (st.where) {
    Typed w = Emitter::AsCond(em.Emit(*st.where));
    where.sql = w.sql;
    where.params = w.params;
  }
  Fragment group;
  for (size_t i = 0; i < st.group.size(); ++i) {
    Typed g = em.Emit(*st.group[i]);
    AppendFragment(&group, (i ? ", " : "") + Emitter::AsValueSql(g), g.params);
  }
  Fragment having;
  if (st.having) {
    em.allow_aggregates = true;
    Typed h = Emitter::AsCond(em.Emit(*st.having));
    em.allow_aggregates = false;
    having.sql = h.sql;
    having.params = h.params;
  }
  tr.aggregate = st.distinct || any_aggregate || !st.group.empty() || st.having;
  Fragment order;
  for (size_t i = 0; i < st.order.size(); ++i) {
    em.allow_aggregates = tr.aggregate;
    Typed o = em.Emit(*st.order[i].expr);
    em.allow_aggregates = false;
    std::string sql = Emitter::AsValueSql(o);
    if (o.kind == Kind::Text) sql += " COLLATE NOCASE";
    AppendFragment(&order, (i ? ", " : "") + sql + (st.order[i].desc ? " DESC" : ""), o.params);
  }

  std::string from;
  for (size_t t = 0; t < tr.tables.size(); ++t) {
    if (t) from += ", ";
    from += QuoteIdent(tr.tables[t]->name) + " AS " + Emitter::Alias(t);
    if (t) tr.rowid_sql += ", ";
    tr.rowid_sql += Emitter::Alias(t) + ".rowid";
  }
  tr.from_sql = from;

  for (size_t i = 0; i < outs.size(); ++i) {
    if (i) tr.select_sql += ", ";
    tr.select_sql += Emitter::AsValueSql(outs[i].value);
    tr.select_params.insert(tr.select_params.end(), outs[i].value.params.begin(), outs[i].value.params.end());
    OutputColumn oc;
    oc.name = outs[i].name;
    oc.kind = outs[i].value.cond ? Kind::Bool : outs[i].value.kind;
    if (outs[i].plain_column) {
      oc.table = outs[i].value.table;
      oc.column = outs[i].value.column;
    }
    tr.output_by_name.emplace(FoldAsciiName(oc.name), static_cast<int>(tr.outputs.size()));
    tr.outputs.push_back(std::move(oc));
  }

  tr.full.sql = std::string("SELECT ") + (st.distinct ? "DISTINCT " : "") + tr.select_sql + " FROM " + from;
  tr.full.params = tr.select_params;
  if (!where.sql.empty()) AppendFragment(&tr.full, " WHERE " + where.sql, where.params);
  if (!group.sql.empty()) AppendFragment(&tr.full, " GROUP BY " + group.sql, group.params);
  if (!having.sql.empty()) AppendFragment(&tr.full, " HAVING " + having.sql, having.params);
  if (!order.sql.empty()) AppendFragment(&tr.full, " ORDER BY " + order.sql, order.params);

  tr.where = where;
  if (!tr.aggregate) {
    // Rows are kept by key in the query's order; ties keep the order in which the rows were written.
    tr.keys.sql = "SELECT " + tr.rowid_sql + " FROM " + from;
    if (!where.sql.empty()) AppendFragment(&tr.keys, " WHERE " + where.sql, where.params);
    AppendFragment(&tr.keys, " ORDER BY " + (order.sql.empty() ? "" : order.sql + ", ") + tr.rowid_sql,
                   order.params);
    tr.row_sql = "SELECT " + tr.select_sql + " FROM " + from + " WHERE ";
    for (size_t t = 0; t < tr.tables.size(); ++t)
      tr.row_sql += (t ? " AND " : "") + Emitter::Alias(t) + ".rowid = ?";
  }
  return tr;
}

Translation TranslateChange(Statement& st, const TranslateContext& ctx,
                            std::vector<LiteralConversion>* lifted) {
  Translation tr;
  tr.type = st.type;
  const TableInfo* table = FindTable(ctx, st.from[0]);
  tr.tables.push_back(table);
  Emitter em(ctx, tr.tables);
  em.lifted = lifted;
  std::string target = QuoteIdent(table->name) + " AS " + Emitter::Alias(0);
  Fragment& f = tr.change;
  if (st.type == Translation::Type::Delete) {
    f.sql = "DELETE FROM " + target;
  } else if (st.type == Translation::Type::Update) {
    f.sql = "UPDATE " + target + " SET ";
    for (size_t i = 0; i < st.sets.size(); ++i) {
      auto [t, c] = em.Resolve(st.sets[i].table, st.sets[i].column);
      Typed v = em.Value(*st.sets[i].value, table->columns[c].kind);
      AppendFragment(&f, (i ? ", " : "") + QuoteIdent(table->columns[c].name) + " = " + v.sql, v.params);
    }
  } else {
    std::vector<int> cols;
    if (st.insert_columns.empty()) {
      for (size_t c = 0; c < table->columns.size(); ++c) cols.push_back(static_cast<int>(c));
    } else {
      for (auto& name : st.insert_columns) cols.push_back(em.Resolve(u"", name).second);
    }
    if (cols.size() != st.values.size())
      Fail(kValueCountMismatch, "Number of query values and destination fields are not the same");
    f.sql = "INSERT INTO " + QuoteIdent(table->name) + " (";
    for (size_t i = 0; i < cols.size(); ++i)
      f.sql += (i ? ", " : "") + QuoteIdent(table->columns[cols[i]].name);
    f.sql += ") VALUES (";
    for (size_t i = 0; i < cols.size(); ++i) {
      Typed v = em.Value(*st.values[i], table->columns[cols[i]].kind);
      AppendFragment(&f, (i ? ", " : "") + v.sql, v.params);
    }
    f.sql += ")";
    return tr;
  }
  if (st.where) {
    Typed w = Emitter::AsCond(em.Emit(*st.where));
    AppendFragment(&f, " WHERE " + w.sql, w.params);
  }
  return tr;
}

Translation TranslateStatement(TextView statement, const TranslateContext& context, bool lift) {
  Parser parser(statement);
  Statement st = parser.ParseStatement();
  std::vector<LiteralConversion> conversions;
  std::vector<LiteralConversion>* lifted = lift ? &conversions : nullptr;
  Translation tr = st.type == Translation::Type::Select ? TranslateSelect(st, context, lifted)
                                                        : TranslateChange(st, context, lifted);
  if (lift) {
    tr.literal_count = static_cast<size_t>(parser.literal_count());
    tr.conversions = std::move(conversions);
  }
  return tr;
}

}  // namespace

Kind KindFromDeclaredType(std::string_view declared) {
  std::string up;
  for (char c : declared) up.push_back(static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c));
  auto starts = [&](std::string_view w) { return up.rfind(w, 0) == 0; };
  if (starts("YESNO") || starts("BOOL") || starts("BIT")) return Kind::Bool;
  if (starts("MONEY") || starts("CURRENCY")) return Kind::Money;
  if (starts("DATETIME") || starts("DATE")) return Kind::Date;
  if (starts("MEMO") || starts("TEXT")) return Kind::Text;
  if (starts("NUMBER")) return Kind::Number;
  if (up.find("INT") != std::string::npos || up.find("REAL") != std::string::npos ||
      up.find("FLOA") != std::string::npos || up.find("DOUB") != std::string::npos ||
      up.find("NUM") != std::string::npos)
    return Kind::Number;
  return Kind::Text;
}

int TableInfo::Find(TextView column) const {
  for (size_t i = 0; i < columns.size(); ++i)
    if (SameName(columns[i].name, column)) return static_cast<int>(i);
  return -1;
}

const TableInfo* Schema::Find(TextView table) const {
  for (auto& t : tables)
    if (SameName(t.name, table)) return &t;
  return nullptr;
}

Text FoldAsciiName(TextView name) {
  Text out(name);
  for (char16_t& c : out) c = Lower(c);
  return out;
}

std::string QuoteIdent(TextView name) {
  std::string out = "\"";
  for (char c : ToUtf8(name)) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

Translation Translate(TextView statement, const TranslateContext& context) {
  return TranslateStatement(statement, context, false);
}

Translation TranslateLifted(TextView statement, const TranslateContext& context) {
  return TranslateStatement(statement, context, true);
}

bool LiftLiterals(TextView s, LiftedStatement* out) {
  // The marker cannot stand outside a literal, a date or a bracketed name of a statement that
  // translates, so a skeleton never reads as another statement's.
  constexpr char16_t kMarker = u'\x01';
  out->skeleton.clear();
  out->literals.clear();
  out->skeleton.reserve(s.size());
  // The tokeniser meets quotes, brackets and dates only where a token starts, and nothing but these
  // three can hold such characters, so walking them alone cuts the literals exactly where it does.
  size_t i = 0;
  while (i < s.size()) {
    const char16_t c = s[i];
    if (c == u'[' || c == u'#') {
      const size_t j = s.find(c == u'[' ? u']' : u'#', i + 1);
      if (j == TextView::npos || (c == u'[' && j == i + 1)) return false;
      out->skeleton.append(s.substr(i, j + 1 - i));
      i = j + 1;
    } else if (c == u'\'' || c == u'"') {
      Text value;
      size_t j = i + 1;
      const bool closed = ReadQuoted(s, c, j, value);
      if (!closed) return false;
      out->literals.push_back(std::move(value));
      out->skeleton.push_back(kMarker);
      i = j + 1;
    } else if (c == kMarker) {
      return false;
    } else {
      out->skeleton.push_back(c);
      ++i;
    }
  }
  return true;
}

std::vector<SqlValue> ConvertLiterals(const Translation& translation, const std::vector<Text>& literals,
                                      const TranslateContext& context) {
  std::vector<SqlValue> values;
  values.reserve(translation.conversions.size());
  for (const auto& c : translation.conversions)
    values.push_back(ConvertTextLiteral(literals.at(c.literal), c.hint, context.regional));
  return values;
}

Fragment TranslateCriteria(TextView criteria, const std::vector<const TableInfo*>& tables,
                           const TranslateContext& context) {
  Parser parser(criteria);
  NodePtr e = parser.ParseCondition();
  Emitter em(context, tables);
  Typed t = Emitter::AsCond(em.Emit(*e));
  return Fragment{t.sql, t.params};
}

bool ParseDateLiteral(TextView s, Date* out) {
  size_t i = 0;
  auto skip = [&] {
    while (i < s.size() && IsBlank(s[i])) ++i;
  };
  auto number = [&](int* value, int* digits) {
    skip();
    *value = 0;
    *digits = 0;
    while (i < s.size() && IsDigit(s[i]) && *digits < 6) {
      *value = *value * 10 + (s[i] - u'0');
      ++*digits;
      ++i;
    }
    return *digits > 0;
  };
  int year = 1899, month = 12, day = 30, hour = 0, minute = 0, second = 0;
  int a, b, c, da, db, dc;
  skip();
  size_t start = i;
  bool has_date = false;
  if (number(&a, &da)) {
    skip();
    if (i < s.size() && (s[i] == u'/' || s[i] == u'-' || s[i] == u'.')) {
      char16_t sep = s[i++];
      if (!number(&b, &db)) return false;
      skip();
      if (i >= s.size() || s[i] != sep) return false;
      ++i;
      if (!number(&c, &dc)) return false;
      if (da == 4) {
        year = a, month = b, day = c;
      } else {
        month = a, day = b, year = c;
        if (dc <= 2) year += (year < 30) ? 2000 : 1900;
      }
      has_date = true;
    } else {
      i = start;  // a time alone
    }
  }
  skip();
  if (i < s.size()) {
    int h, m = 0, sec = 0, dh, dm, ds;
    if (!number(&h, &dh)) return false;
    skip();
    if (i >= s.size() || s[i] != u':') return false;
    ++i;
    if (!number(&m, &dm)) return false;
    skip();
    if (i < s.size() && s[i] == u':') {
      ++i;
      if (!number(&sec, &ds)) return false;
    }
    skip();
    if (i + 1 < s.size() && (s[i + 1] == u'M' || s[i + 1] == u'm')) {
      char16_t ap = Lower(s[i]);
      if (ap != u'a' && ap != u'p') return false;
      if (h < 1 || h > 12) return false;
      if (ap == u'a' && h == 12) h = 0;
      if (ap == u'p' && h != 12) h += 12;
      i += 2;
    }
    skip();
    if (i != s.size()) return false;
    if (h > 23 || m > 59 || sec > 59) return false;
    hour = h, minute = m, second = sec;
  } else if (!has_date) {
    return false;
  }
  if (has_date) {
    static constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 || day > kDays[month - 1])
      return false;
    bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    if (month == 2 && day == 29 && !leap) return false;
  }
  *out = MakeDate(year, month, day, hour, minute, second);
  return true;
}

}  // namespace lw::store
