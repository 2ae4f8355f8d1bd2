// A grid of rows and columns. Bound to a data control it shows the rows of the cursor (a column per
// field) and a click on a row makes that record current; unbound it holds the rows code gives it.
#pragma once

#include <functional>
#include <vector>

#include "screen/control.h"

namespace lw {

class Grid : public Control {
 public:
  struct Column {
    Text caption;
    Text data_field;  // the field a bound grid shows in this column
    int width = -1;   // twips; -1 keeps the design width
    bool visible = true;
    bool locked = false;
    Text tooltip;
    // Turns a field value into the text shown; when unset the value is shown as text by the locale.
    std::function<Text(const Variant&)> format;
  };

  Grid(Form& form, Text name, int index = -1);

  std::vector<Column> columns;
  int AddColumn(const Text& caption, const Text& data_field = Text());
  int ColumnCount() const { return static_cast<int>(columns.size()); }
  // Raises 380 outside the grid.
  Column& column(int at);

  // Binds the grid to a data control: its rows are the cursor's. Columns without a field show nothing.
  void SetDataSource(DataControl* source);
  DataControl* grid_source() const { return source_; }

  // Unbound rows.
  void AddRow(std::vector<Text> cells);
  void ClearRows();
  void SetCell(int row, int col, const Text& text);

  // Rows shown (for a bound grid the cursor's count, which walks the cursor to its end once).
  int RowCount() const;
  // The text of one cell; "" outside the rows or columns.
  Text Cell(int row, int col) const;
  // Every row as shown, cells in column order (hidden columns included).
  std::vector<std::vector<Text>> Rows() const;
  // One row as shown (hidden columns included); empty outside the rows. A bound grid reads that row
  // alone, so a front end can show a long view a screenful at a time.
  std::vector<Text> RowCells(int row) const;

  // Current row from 0 (-1 for none) and column. For a bound grid the row follows the cursor.
  int row() const;
  int col() const { return col_; }
  // Makes a row current (a bound grid moves the data control there, saving a changed row first) and
  // fires OnRowColChange with the row and column left.
  void SetRow(int row);
  void SetCol(int col);

  // With allow_updates the user edits the current cell (`set GRID VALUE`); with allow_delete the Delete
  // key deletes the current row, and a bound grid deletes its record.
  bool allow_updates = false;
  bool allow_delete = false;
  int32_t odd_colour = 0xFFFFFF;
  int32_t even_colour = 0xFFFFFF;

  std::function<void(int last_row, int last_col)> OnRowColChange;
  std::function<void(int col)> OnHeadClick;
  // After the user dragged a heading border: the column and its new width are in `columns`.
  std::function<void(int col)> OnColResize;
  // Asked for the tip of a heading; may set `tip`.
  std::function<void(int col, Text& tip)> OnColumnTip;
  // After the user deleted a row, before the grid moves on to the next one.
  std::function<void()> OnAfterDelete;

  // The driver: `click grid N` clicks heading N; `row grid N` clicks row N.
  void UserClick(const Text* argument) override;
  void UserRow(int row);
  // `resize grid N WIDTH`: the user drags the right border of heading N to WIDTH twips.
  void UserResizeColumn(int col, int width);
  // `edit grid ROW COL VALUE`: the user types VALUE into a cell (a tick box takes True or False). A bound
  // grid makes that row current and writes the value to its field at once; refused while the grid is
  // not open for updating, or the column is locked or hidden. OnAfterColUpdate follows with the column.
  void UserEditCell(int row, int col, const Text& value);
  std::function<void(int col)> OnAfterColUpdate;
  void UserSet(const Text& value) override;
  void UserKey(int key_code, int ascii) override;
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

 private:
  // The user's value written to the current row's field; the row is left as it was when the store refuses.
  void StoreField(DataControl& source, const Text& field, const Variant& value);
  DataControl* source_ = nullptr;
  std::vector<std::vector<Text>> rows_;
  int row_ = -1;
  int col_ = 0;
};

}  // namespace lw
