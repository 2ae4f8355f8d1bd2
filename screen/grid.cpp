#include "screen/grid.h"

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "screen/data_control.h"
#include "screen/form.h"
#include "screen/names.h"
#include "screen/property_args.h"

namespace lw {

namespace {

[[noreturn]] void BadValue() {
  throw RuntimeError(err::kInvalidPropertyValue, "Invalid property value");
}

// Puts a cursor back where it stood after the grid has walked it.
class CursorPlace {
 public:
  explicit CursorPlace(Recordset& r) : r_(r) {
    if (r.Eof() && r.Bof()) {
      where_ = kEmpty;
    } else if (r.Eof()) {
      where_ = kAfterEnd;
    } else if (r.Bof()) {
      where_ = kBeforeStart;
    } else {
      where_ = kRow;
      bookmark_ = r.Bookmark();
    }
  }
  void Restore() {
    switch (where_) {
      case kEmpty:
        return;
      case kAfterEnd:
        r_.MoveLast();
        r_.MoveNext();
        return;
      case kBeforeStart:
        r_.MoveFirst();
        r_.MovePrevious();
        return;
      case kRow:
        r_.SetBookmark(bookmark_);
        return;
    }
  }

 private:
  enum Where { kEmpty, kAfterEnd, kBeforeStart, kRow };
  Recordset& r_;
  Where where_;
  RecordBookmark bookmark_;
};

}  // namespace

Grid::Grid(Form& form, Text name, int index) : Control(form, ControlKind::Grid, std::move(name), index) {}

int Grid::AddColumn(const Text& caption, const Text& data_field) {
  Column c;
  c.caption = caption;
  c.data_field = data_field;
  columns.push_back(std::move(c));
  Changed(change::kItems);
  return ColumnCount() - 1;
}

Grid::Column& Grid::column(int at) {
  if (at < 0 || at >= ColumnCount()) BadValue();
  // The caller may change the column through the reference.
  Changed(change::kItems);
  return columns[at];
}

void Grid::SetDataSource(DataControl* source) {
  if (source) {
    Bind(*source, Text());
  } else {
    Unbind();
  }
  row_ = -1;
  Changed(change::kRows | change::kSelection);
}

void Grid::AddRow(std::vector<Text> cells) {
  cells.resize(std::max<size_t>(cells.size(), columns.size()));
  rows_.push_back(std::move(cells));
  Changed(change::kRows);
}

void Grid::ClearRows() {
  rows_.clear();
  row_ = -1;
  Changed(change::kRows | change::kSelection);
}

void Grid::SetCell(int row, int col, const Text& text) {
  if (row < 0 || row >= static_cast<int>(rows_.size()) || col < 0) BadValue();
  auto& cells = rows_[row];
  if (col >= static_cast<int>(cells.size())) cells.resize(col + 1);
  cells[col] = text;
  Changed(change::kRows);
}

std::vector<std::vector<Text>> Grid::Rows() const {
  DataControl* source = data_source();
  if (!source) {
    auto out = rows_;
    for (auto& cells : out) cells.resize(std::max<size_t>(cells.size(), columns.size()));
    return out;
  }
  std::vector<std::vector<Text>> out;
  if (!source->HasRecordset()) return out;
  Recordset& r = source->recordset();
  if (r.Eof() && r.Bof()) return out;
  const Regional fallback;
  const Regional& regional = source->database() ? source->database()->regional() : fallback;
  std::unique_ptr<Recordset> copy;
  Recordset* walk = &r;
  if (r.EditInProgress()) {
    // Walking the cursor would drop the edit in hand: read the same query through a cursor of our own.
    copy = source->database()->OpenRecordset(source->RecordSource);
    walk = copy.get();
  }
  std::optional<CursorPlace> place;
  if (!copy) place.emplace(*walk);
  try {
    for (walk->MoveFirst(); !walk->Eof(); walk->MoveNext()) {
      std::vector<Text> cells;
      cells.reserve(columns.size());
      for (const Column& c : columns) {
        if (c.data_field.empty()) {
          cells.emplace_back();
          continue;
        }
        Variant v = walk->Fields(c.data_field);
        cells.push_back(c.format ? c.format(v) : v.IsNull() ? Text() : CStr(v, regional));
      }
      out.push_back(std::move(cells));
    }
  } catch (...) {
    if (place) place->Restore();
    throw;
  }
  if (place) place->Restore();
  return out;
}

int Grid::RowCount() const {
  DataControl* source = data_source();
  if (!source) return static_cast<int>(rows_.size());
  if (!source->HasRecordset()) return 0;
  Recordset& r = source->recordset();
  if (r.Eof() && r.Bof()) return 0;
  if (r.EditInProgress()) return static_cast<int>(Rows().size());
  CursorPlace place(r);
  r.MoveLast();
  int64_t count = r.RecordCount();
  place.Restore();
  return static_cast<int>(count);
}

Text Grid::Cell(int row, int col) const {
  if (row < 0 || col < 0 || col >= ColumnCount()) return Text();
  std::vector<Text> cells = RowCells(row);
  return col < static_cast<int>(cells.size()) ? cells[col] : Text();
}

std::vector<Text> Grid::RowCells(int row) const {
  if (row < 0) return {};
  DataControl* source = data_source();
  if (!source) {
    if (row >= static_cast<int>(rows_.size())) return {};
    auto cells = rows_[row];
    cells.resize(std::max<size_t>(cells.size(), columns.size()));
    return cells;
  }
  if (!source->HasRecordset()) return {};
  Recordset& r = source->recordset();
  if (r.Eof() && r.Bof()) return {};
  if (r.EditInProgress()) {
    // Moving the cursor would drop the edit in hand: the whole walk reads a cursor of its own.
    auto rows = Rows();
    return row < static_cast<int>(rows.size()) ? rows[row] : std::vector<Text>{};
  }
  if (row >= r.RecordCount()) return {};
  const Regional fallback;
  const Regional& regional = source->database() ? source->database()->regional() : fallback;
  CursorPlace place(r);
  std::vector<Text> cells;
  cells.reserve(columns.size());
  try {
    r.SetAbsolutePosition(row);
    for (const Column& c : columns) {
      if (c.data_field.empty()) {
        cells.emplace_back();
        continue;
      }
      Variant v = r.Fields(c.data_field);
      cells.push_back(c.format ? c.format(v) : v.IsNull() ? Text() : CStr(v, regional));
    }
  } catch (...) {
    place.Restore();
    throw;
  }
  place.Restore();
  return cells;
}

int Grid::row() const {
  DataControl* source = data_source();
  if (!source) return row_;
  if (!source->HasRecordset()) return -1;
  Recordset& r = source->recordset();
  if (r.Eof() || r.Bof()) return -1;
  return static_cast<int>(r.AbsolutePosition());
}

void Grid::SetRow(int row) {
  const int last = this->row();
  if (DataControl* source = data_source()) {
    if (row < 0 || row >= RowCount()) BadValue();
    source->MoveTo(row);
  } else {
    if (row < 0 || row >= static_cast<int>(rows_.size())) BadValue();
    row_ = row;
    Changed(change::kSelection);
  }
  if (OnRowColChange) OnRowColChange(last, col_);
}

void Grid::SetCol(int col) {
  if (col < 0 || col >= ColumnCount()) BadValue();
  const int last = col_;
  col_ = col;
  Changed(change::kSelection);
  if (last != col && OnRowColChange) OnRowColChange(row(), last);
}

void Grid::UserClick(const Text* argument) {
  if (!argument) return Control::UserClick(nullptr);
  int col = 0;
  if (!ParseInt(*argument, col))
    throw UserError("a click on grid " + ToUtf8(Reference()) + " takes a column number");
  if (col < 0 || col >= ColumnCount())
    throw UserError("grid " + ToUtf8(Reference()) + " has no column " + std::to_string(col));
  RequireReachable("click");
  if (!columns[col].visible) throw UserRefused("column " + std::to_string(col) + " is hidden");
  if (OnHeadClick) OnHeadClick(col);
}

void Grid::UserRow(int row) {
  RequireReachable("click a row of");
  if (row < 0 || row >= RowCount())
    throw UserError("grid " + ToUtf8(Reference()) + " has no row " + std::to_string(row));
  form().SetFocus(this);
  SetRow(row);
  Fire(OnClick);
}

void Grid::UserResizeColumn(int col, int width) {
  RequireReachable("resize a column of");
  if (col < 0 || col >= ColumnCount())
    throw UserError("grid " + ToUtf8(Reference()) + " has no column " + std::to_string(col));
  if (width < 0) throw UserError("a column width is a number of twips from 0");
  columns[col].width = width;
  if (OnColResize) OnColResize(col);
}

void Grid::UserEditCell(int row, int col, const Text& value) {
  RequireReachable("edit a cell of");
  if (row < 0 || row >= RowCount())
    throw UserError("grid " + ToUtf8(Reference()) + " has no row " + std::to_string(row));
  if (col < 0 || col >= ColumnCount())
    throw UserError("grid " + ToUtf8(Reference()) + " has no column " + std::to_string(col));
  if (!allow_updates) throw UserRefused("grid " + ToUtf8(Reference()) + " is not open for updating");
  const Column& c = columns[col];
  if (!c.visible || c.locked)
    throw UserRefused("column " + std::to_string(col) + " is " + (c.visible ? "locked" : "hidden"));
  form().SetFocus(this);
  SetRow(row);
  SetCol(col);
  if (DataControl* source = data_source()) {
    if (!c.data_field.empty()) StoreField(*source, c.data_field, value.empty() ? Variant() : Variant(value));
  } else {
    SetCell(row, col, value);
  }
  if (OnAfterColUpdate) OnAfterColUpdate(col);
}

void Grid::UserSet(const Text& value) {
  RequireReachable("edit");
  if (!allow_updates)
    throw UserRefused("cannot edit " + ToUtf8(Reference()) + ": it is not open for editing");
  if (col_ < 0 || col_ >= ColumnCount()) throw UserError("grid " + ToUtf8(Reference()) + " has no column");
  const Column& c = columns[col_];
  if (c.locked) throw UserRefused("column " + std::to_string(col_) + " is locked");
  DataControl* source = data_source();
  if (!source) {
    if (row_ < 0) throw UserError("grid " + ToUtf8(Reference()) + " has no current row");
    SetCell(row_, col_, value);
    return;
  }
  if (row() < 0) throw UserError("grid " + ToUtf8(Reference()) + " has no current row");
  if (c.data_field.empty()) throw UserRefused("column " + std::to_string(col_) + " shows no field");
  form().SetFocus(this);
  try {
    StoreField(*source, c.data_field, Variant(value));
  } catch (const RuntimeError& e) {
    throw UserRefused("the grid's row was not changed: " + e.description());
  }
}

void Grid::StoreField(DataControl& source, const Text& field, const Variant& value) {
  Recordset& r = source.recordset();
  r.Edit();
  try {
    r.SetField(field, value);
    r.Update();
  } catch (...) {
    // The store refused the value: the row keeps what it had, as a desktop grid would after its error.
    if (r.EditInProgress()) r.CancelUpdate();
    throw;
  }
  source.Reposition();
}

void Grid::UserKey(int key_code, int ascii) {
  Control::UserKey(key_code, ascii);
  if (key_code != key::kDelete || !allow_delete) return;
  DataControl* source = data_source();
  if (!source) {
    if (row_ < 0 || row_ >= static_cast<int>(rows_.size())) return;
    rows_.erase(rows_.begin() + row_);
    if (OnAfterDelete) OnAfterDelete();
    if (row_ >= static_cast<int>(rows_.size())) row_ = static_cast<int>(rows_.size()) - 1;
    return;
  }
  if (row() < 0) return;
  const int last = row();
  Recordset& r = source->recordset();
  r.Delete();
  if (OnAfterDelete) OnAfterDelete();
  // On to the row that followed the deleted one, or the new last row.
  r.MoveNext();
  if (r.Eof() && r.RecordCount() > 0) r.MoveLast();
  source->Reposition();
  if (OnRowColChange) OnRowColChange(last, col_);
}

std::optional<Text> Grid::Property(TextView name, const std::vector<Text>& args) const {
  const Text n = FoldName(name);
  if (args.empty()) {
    if (n == u"row" || n == u"value") return IntText(row());
    if (n == u"col") return IntText(col_);
    if (n == u"rows" || n == u"listcount") return IntText(RowCount());
    if (n == u"columns") return IntText(ColumnCount());
    if (n == u"text") {
      int r = row();
      return r >= 0 ? Cell(r, col_) : Text();
    }
  }
  if (n == u"cell" && args.size() == 2) return Cell(IntArgument(args, 0, name), IntArgument(args, 1, name));
  if (n == u"caption" || n == u"columnwidth" || n == u"columnvisible" || n == u"columnfield") {
    if (args.size() != 1)
      return args.empty() && n == u"caption" ? Control::Property(name, args) : std::nullopt;
    int col = IntArgument(args, 0, name);
    if (col < 0 || col >= ColumnCount()) throw UserError("grid has no column " + std::to_string(col));
    const Column& c = columns[col];
    if (n == u"caption") return c.caption;
    if (n == u"columnwidth") return IntText(c.width);
    if (n == u"columnvisible") return BoolText(c.visible);
    return c.data_field;
  }
  return Control::Property(name, args);
}

}  // namespace lw
