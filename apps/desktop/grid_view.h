// A grid of the model in a table view. The rows are read on demand through an item model over the
// model's grid, a screenful at a time, so a view of tens of thousands of rows costs what is on show.
#pragma once

#include <QAbstractTableModel>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "screen/grid.h"

namespace lw::desktop {

class ControlView;
class Renderer;

class GridModel : public QAbstractTableModel {
 public:
  explicit GridModel(Grid& grid);

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  // A cell takes typing where the model's grid would: open for updating, its column shown and unlocked.
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // What the user typed into a cell goes to `on_edit`, which hands it to the model's grid.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  std::function<void(int row, int col, const Text& value)> on_edit;

  // The rows changed: a new count starts the view afresh, the same count reads the rows on show again.
  void RowsChanged();
  // The columns changed: their number, captions or order.
  void ColumnsChanged();
  // Rows read from the model so far and kept (for tests of the reading on demand).
  size_t rows_read() const { return rows_read_; }

 private:
  const std::vector<Text>& Row(int row) const;

  Grid& grid_;
  int rows_ = 0;
  int columns_ = 0;
  mutable std::unordered_map<int, std::vector<Text>> cache_;
  mutable size_t rows_read_ = 0;
};

std::unique_ptr<ControlView> MakeGridView(Renderer& renderer, Control& control);

}  // namespace lw::desktop
