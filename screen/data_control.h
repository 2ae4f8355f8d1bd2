// A data control: a named data source (`seller`, `Bidder`, `setup_datacontrl`, `Misc` ...) that owns a
// cursor on the store with a settable record source. Controls bound to it show the fields of the current
// row; an edit in a bound control is written back when the row is saved (UpdateRecord) or left (a move
// or a Refresh), as a desktop data control does.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/store/store.h"
#include "screen/control.h"

namespace lw {

class Grid;

class DataControl : public Control, public CursorSource {
 public:
  DataControl(Form& form, Text name, int index = -1);
  ~DataControl() override;

  // The store the data control reads; set before the first Refresh.
  void SetDatabase(Database* database);
  Database* database() const { return database_; }

  // Saves a changed row, runs RecordSource and stands on its first row; bound controls follow and
  // OnReposition fires. When the statement fails the old cursor stays and the error propagates.
  void Refresh() override;
  bool HasRecordset() const override { return recordset_ != nullptr; }
  // The cursor; raises 91 before the first Refresh. Moving it directly does not update bound
  // controls: use the moves below, or Navigate, or call Reposition afterwards.
  Recordset& recordset() override;

  // Moves that save a changed row first and then show the new row.
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  // Position from 0.
  void MoveTo(int64_t position);
  // Finds the first row that meets `criteria`; false (and no move) when none does.
  bool FindFirst(TextView criteria);
  // Saves a changed row, runs `move` on the cursor, then shows the row it stands on.
  void Navigate(const std::function<void(Recordset&)>& move);

  // Saves a changed row, starts a new one and shows it (blank) in the bound controls; what is typed
  // there is written by UpdateRecord (or dropped by UpdateControls, which also cancels the new row).
  void AddNew();

  // Writes the edits of the bound controls to the current row now. Nothing happens when there are none.
  void UpdateRecord();
  // Re-reads the current row into the bound controls, dropping their edits.
  void UpdateControls();
  // Shows the current row in the bound controls and fires OnReposition; for code that moved the cursor
  // itself.
  void Reposition();
  // Some bound control holds an edit not yet written.
  bool dirty() const;

  // Before a changed row is written (action: 1 move, 2 refresh, 3 update), OnValidate may clear `save`
  // to drop the edits instead.
  std::function<void(int action, bool& save)> OnValidate;
  std::function<void()> OnReposition;

  // Besides the common ones: recordsource, the query it shows.
  std::optional<Text> Property(TextView name, const std::vector<Text>& args) const override;

  // Kept by Control::Bind and the grid.
  void AddBound(Control& control);
  void RemoveBound(Control& control);
  const std::vector<Control*>& bound() const { return bound_; }

 private:
  void SaveIfDirty(int action);
  // Tells the observer that the grids showing this cursor changed: their rows or their current row.
  void TellGrids(unsigned changes);
  Database* database_ = nullptr;
  std::unique_ptr<Recordset> recordset_;
  std::vector<Control*> bound_;
};

}  // namespace lw
