#include "screen/data_control.h"

#include <algorithm>

#include "core/primitives/encoding.h"
#include "screen/form.h"
#include "screen/grid.h"
#include "screen/names.h"
#include "screen/screen.h"

namespace lw {

namespace {
constexpr int kActionMove = 1;
constexpr int kActionRefresh = 2;
}  // namespace

DataControl::DataControl(Form& form, Text name, int index)
    : Control(form, ControlKind::DataControl, std::move(name), index) {}

DataControl::~DataControl() {
  // Bound controls may outlive the data control on their form; they must not call back into it.
  const auto bound = bound_;
  for (Control* c : bound) c->Unbind();
}

void DataControl::SetDatabase(Database* database) {
  if (database == database_) return;
  // A cursor belongs to its store; the new store shows rows only after the next Refresh.
  recordset_.reset();
  database_ = database;
}

void DataControl::Refresh() {
  if (!database_)
    throw RuntimeError(err::kObjectVariableNotSet, "Data control " + ToUtf8(name()) + " has no database");
  SaveIfDirty(kActionRefresh);
  auto fresh = database_->OpenRecordset(RecordSource);
  recordset_ = std::move(fresh);
  TellGrids(change::kRows);
  Reposition();
}

Recordset& DataControl::recordset() {
  if (!recordset_)
    throw RuntimeError(err::kObjectVariableNotSet, "Object variable or With block variable not set");
  return *recordset_;
}

void DataControl::MoveFirst() {
  Navigate([](Recordset& r) { r.MoveFirst(); });
}
void DataControl::MoveLast() {
  Navigate([](Recordset& r) { r.MoveLast(); });
}
void DataControl::MoveNext() {
  Navigate([](Recordset& r) { r.MoveNext(); });
}
void DataControl::MovePrevious() {
  Navigate([](Recordset& r) { r.MovePrevious(); });
}
void DataControl::MoveTo(int64_t position) {
  Navigate([position](Recordset& r) { r.SetAbsolutePosition(position); });
}

bool DataControl::FindFirst(TextView criteria) {
  Recordset& r = recordset();
  SaveIfDirty(kActionMove);
  r.FindFirst(criteria);
  if (r.NoMatch()) return false;
  Reposition();
  return true;
}

void DataControl::Navigate(const std::function<void(Recordset&)>& move) {
  Recordset& r = recordset();
  SaveIfDirty(kActionMove);
  move(r);
  Reposition();
}

void DataControl::AddNew() {
  Recordset& r = recordset();
  SaveIfDirty(kActionMove);
  r.AddNew();
  Reposition();
}

bool DataControl::dirty() const {
  return std::any_of(bound_.begin(), bound_.end(), [](const Control* c) { return c->data_changed(); });
}

void DataControl::SaveIfDirty(int action) {
  if (!recordset_ || !dirty()) return;
  bool save = true;
  if (OnValidate) OnValidate(action, save);
  if (!save) {
    for (Control* c : bound_) c->SetDataChanged(false);
    return;
  }
  UpdateRecord();
}

void DataControl::UpdateRecord() {
  if (!recordset_ || !dirty()) return;
  Recordset& r = *recordset_;
  if (!r.EditInProgress() && (r.Eof() || r.Bof())) {
    // No row to write to: the edits have nowhere to go, as with a desktop data control past its end.
    for (Control* c : bound_) c->SetDataChanged(false);
    return;
  }
  const bool began = !r.EditInProgress();
  if (began) r.Edit();
  try {
    for (Control* c : bound_) {
      if (!c->data_changed() || c->data_field().empty()) continue;
      r.SetField(c->data_field(), c->BoundValue(r.Fields(c->data_field())));
    }
    r.Update();
  } catch (...) {
    // The row stays as it was in the store and the edits stay in the controls, so nothing is lost.
    if (began && r.EditInProgress()) r.CancelUpdate();
    throw;
  }
  for (Control* c : bound_) c->SetDataChanged(false);
  TellGrids(change::kRows);
}

void DataControl::UpdateControls() {
  for (Control* c : bound_) c->SetDataChanged(false);
  if (recordset_ && recordset_->EditInProgress()) recordset_->CancelUpdate();
  Reposition();
}

void DataControl::Reposition() {
  const Regional* regional = database_ ? &database_->regional() : nullptr;
  Regional fallback;
  const bool on_row = recordset_ && !recordset_->Eof() && !recordset_->Bof();
  // A Change handler may bind or unbind controls: walk a copy.
  const auto bound = bound_;
  for (Control* c : bound) {
    if (c->data_field().empty()) continue;  // grids read the cursor themselves
    if (std::find(bound_.begin(), bound_.end(), c) == bound_.end()) continue;
    Variant value = on_row ? recordset_->Fields(c->data_field()) : Variant();
    c->LoadBoundValue(value, regional ? *regional : fallback);
  }
  TellGrids(change::kSelection);
  Fire(OnReposition);
}

void DataControl::TellGrids(unsigned changes) {
  if (!form().screen().observer()) return;
  for (Control* c : bound_)
    if (c->kind() == ControlKind::Grid) c->Changed(changes);
}

void DataControl::AddBound(Control& control) {
  if (std::find(bound_.begin(), bound_.end(), &control) == bound_.end()) bound_.push_back(&control);
}

void DataControl::RemoveBound(Control& control) {
  std::erase(bound_, &control);
}

std::optional<Text> DataControl::Property(TextView name, const std::vector<Text>& args) const {
  if (args.empty() && SameName(name, u"recordsource")) return RecordSource;
  return Control::Property(name, args);
}

}  // namespace lw
