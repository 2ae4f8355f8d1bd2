#include "apps/desktop/grid_view.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QTableView>

#include <algorithm>

#include "apps/desktop/desktop.h"
#include "apps/desktop/qt_convert.h"
#include "apps/desktop/renderer.h"
#include "apps/desktop/views.h"
#include "core/primitives/encoding.h"

namespace lw::desktop {

namespace {

// Rows kept between paints; a long scroll reads afresh.
constexpr size_t kRowsKept = 2000;
// A column the model gives no width is as wide as its caption, and no narrower than this.
constexpr int kNarrowest = 60;
constexpr int kWidest = 320;
constexpr int kSampledRows = 40;

int CountRows(const Grid& grid) {
  try {
    return grid.RowCount();
  } catch (const RuntimeError&) {
    return 0;  // a cursor that cannot be read shows no rows
  }
}

}  // namespace

GridModel::GridModel(Grid& grid) : grid_(grid), rows_(CountRows(grid)), columns_(grid.ColumnCount()) {}

int GridModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int GridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns_;
}

const std::vector<Text>& GridModel::Row(int row) const {
  auto it = cache_.find(row);
  if (it != cache_.end()) return it->second;
  if (cache_.size() >= kRowsKept) cache_.clear();
  std::vector<Text> cells;
  try {
    cells = grid_.RowCells(row);
  } catch (const RuntimeError&) {
    // A row that cannot be read (gone from the store since) shows empty.
  }
  ++rows_read_;
  return cache_.emplace(row, std::move(cells)).first->second;
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rows_ || index.column() >= columns_) return {};
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: {
      const auto& cells = Row(index.row());
      return index.column() < static_cast<int>(cells.size()) ? Q(cells[index.column()]) : QString();
    }
    case Qt::BackgroundRole:
      return QColour(index.row() % 2 == 0 ? grid_.even_colour : grid_.odd_colour);
    default:
      return {};
  }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= grid_.ColumnCount()) return {};
  const Grid::Column& c = grid_.columns[section];
  if (role == Qt::DisplayRole) return Q(c.caption);
  if (role == Qt::ToolTipRole) {
    Text tip = c.tooltip;
    if (grid_.OnColumnTip) grid_.OnColumnTip(section, tip);
    return tip.empty() ? QVariant() : QVariant(Q(tip));
  }
  return {};
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags f = QAbstractTableModel::flags(index);
  if (!index.isValid() || index.column() >= grid_.ColumnCount() || !grid_.allow_updates) return f;
  const Grid::Column& c = grid_.columns[index.column()];
  return c.visible && !c.locked ? f | Qt::ItemIsEditable : f;
}

bool GridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || !index.isValid() || !on_edit) return false;
  on_edit(index.row(), index.column(), FromQ(value.toString()));
  return true;
}

void GridModel::RowsChanged() {
  const int rows = CountRows(grid_);
  cache_.clear();
  if (rows != rows_) {
    beginResetModel();
    rows_ = rows;
    endResetModel();
  } else if (rows_ > 0 && columns_ > 0) {
    Q_EMIT dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
  }
}

void GridModel::ColumnsChanged() {
  beginResetModel();
  cache_.clear();
  columns_ = grid_.ColumnCount();
  rows_ = CountRows(grid_);
  endResetModel();
}

namespace {

class GridView : public ControlView {
 public:
  GridView(Renderer& r, Control& c) : ControlView(r, c), grid_(static_cast<Grid&>(c)) {
    table_ = new QTableView;
    model_ = std::make_unique<GridModel>(grid_);
    table_->setModel(model_.get());
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    // Only cells the model lets the user type into open an editor (see GridModel::flags).
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    model_->on_edit = [this](int row, int col, const Text& value) {
      UserAction([this, row, col, value] { grid_.UserEditCell(row, col, value); });
    };
    table_->setWordWrap(false);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 6);
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    QHeaderView* head = table_->horizontalHeader();
    head->setSectionsClickable(true);
    head->setHighlightSections(false);
    head->setStretchLastSection(false);
    QObject::connect(head, &QHeaderView::sectionClicked, [this](int col) {
      const Text n = FromUtf8(std::to_string(col));
      UserAction([this, n] { grid_.UserClick(&n); });
    });
    QObject::connect(head, &QHeaderView::sectionResized, [this](int col, int, int size) {
      if (renderer_.syncing() || sizing_) return;
      UserAction([this, col, size] { grid_.UserResizeColumn(col, Twips(size)); });
    });
    Connect();
    QObject::connect(table_, &QTableView::clicked, [this](const QModelIndex& index) {
      // A press that made the row current was that row's click already.
      if (std::exchange(moved_by_press_, false) || !index.isValid()) return;
      const int row = index.row();
      UserAction([this, row] { grid_.UserRow(row); });
    });
    KeepRowsInSight(*table_, table_->verticalHeader()->defaultSectionSize());
    widget_ = table_;
    WatchInput(table_->viewport());
    Sync(change::kAll);
  }
  ~GridView() override {
    // The table goes later than this view; it must not read a model that is gone.
    if (table_) table_->setModel(nullptr);
  }
  GridModel& model() const { return *model_; }
  QTableView& table() const { return *table_; }
  bool Stretches() const override { return true; }

  void Sync(unsigned changes) override {
    SyncCommon(changes);
    if (changes & change::kItems) {
      model_->ColumnsChanged();
      Connect();
      Columns();
    } else if (changes & change::kRows) {
      model_->RowsChanged();
    }
    if (changes & (change::kItems | change::kRows | change::kSelection)) CurrentRow();
  }

  void Check(std::vector<std::string>& problems) const override {
    ControlView::Check(problems);
    if (model_->columnCount() != grid_.ColumnCount()) Report(problems, "shows another number of columns");
    for (int c = 0; c < grid_.ColumnCount() && c < model_->columnCount(); ++c) {
      if (model_->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString() != Q(grid_.columns[c].caption))
        Report(problems, "heading " + std::to_string(c) + " differs");
      if (table_->isColumnHidden(c) == grid_.columns[c].visible)
        Report(problems, "column " + std::to_string(c) + " visibility differs");
    }
    if (model_->rowCount() != CountRows(grid_)) Report(problems, "shows another number of rows");
  }

 private:
  // A new model selection after a reset: the current row's changes are the user's moves.
  void Connect() {
    QObject::disconnect(current_);
    current_ = QObject::connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged,
                                [this](const QModelIndex& now, const QModelIndex&) {
                                  if (renderer_.syncing() || !now.isValid() || now.row() == grid_.row())
                                    return;
                                  moved_by_press_ = true;
                                  const int row = now.row();
                                  UserAction([this, row] { grid_.UserRow(row); });
                                });
  }
  // A column the model gives no width is as wide as its caption and the first screenful of its cells.
  void Columns() {
    sizing_ = true;
    const QFontMetrics metrics = table_->fontMetrics();
    const int sample = std::min(model_->rowCount(), kSampledRows);
    for (int c = 0; c < grid_.ColumnCount(); ++c) {
      const Grid::Column& col = grid_.columns[c];
      table_->setColumnHidden(c, !col.visible);
      int width = Pixels(col.width);
      if (col.width < 0) {
        width = metrics.horizontalAdvance(Q(col.caption)) + 24;
        for (int r = 0; r < sample; ++r)
          width = std::max(
              width,
              metrics.horizontalAdvance(model_->data(model_->index(r, c), Qt::DisplayRole).toString()) + 12);
        width = std::clamp(width, kNarrowest, kWidest);
      }
      table_->setColumnWidth(c, width);
    }
    sizing_ = false;
  }
  void CurrentRow() {
    const int row = grid_.row();
    QItemSelectionModel* selection = table_->selectionModel();
    if (row < 0 || row >= model_->rowCount()) {
      selection->clearSelection();
      return;
    }
    const QModelIndex at = model_->index(row, std::max(0, std::min(grid_.col(), model_->columnCount() - 1)));
    if (selection->currentIndex().row() != row) {
      selection->setCurrentIndex(at, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
      table_->scrollTo(at);
    }
  }

  Grid& grid_;
  QTableView* table_;
  std::unique_ptr<GridModel> model_;
  QMetaObject::Connection current_;
  bool sizing_ = false;
  bool moved_by_press_ = false;
};

}  // namespace

std::unique_ptr<ControlView> MakeGridView(Renderer& renderer, Control& control) {
  return std::make_unique<GridView>(renderer, control);
}

}  // namespace lw::desktop
