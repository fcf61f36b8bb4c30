// A table's selection as the table sees it: by rows. What is kept is ids (model/selection.h), so
// that it stays with what was selected wherever that moves.
#pragma once
#include <functional>
#include <utility>
#include <vector>

#include "app/model/selection.h"

namespace console {

class RowSelection {
 public:
  virtual ~RowSelection() = default;
  virtual bool Has(int row) const = 0;
  // Where the keyboard is, -1: on no row.
  virtual int FocusRow() const = 0;
  // The selected row when it is the only one, else -1.
  virtual int OnlyRow() const = 0;
  // Whether a row is selected.
  virtual bool Any() const = 0;

  // As in Selection.
  virtual void Press(int row, SelectionKeys keys) = 0;
  virtual void DragTo(int row) = 0;
  virtual void TakeUp() = 0;
  virtual void Release() = 0;
  virtual void Cancel() = 0;
  virtual void MoveTo(int row, SelectionKeys keys) = 0;
  virtual void ToggleFocus() = 0;
  virtual void All() = 0;
  virtual void Clear() = 0;
};

// `Rows` is what Selection asks of them; it is looked at for as long as this lives.
template <class Rows, class Id, class Hash = std::hash<Id>>
class SelectionOf final : public RowSelection {
 public:
  explicit SelectionOf(const Rows& rows) : rows_(rows) {}

  bool Has(int row) const override { return ids_.Has(rows_.IdAt(row)); }
  int FocusRow() const override { return ids_.FocusRow(rows_); }
  int OnlyRow() const override { return ids_.OnlyRow(rows_); }
  bool Any() const override { return ids_.AnyShown(rows_); }
  void Press(int row, SelectionKeys keys) override {
    ids_.Press(rows_, row, keys);
    Changed();
  }
  void DragTo(int row) override {
    ids_.DragTo(rows_, row);
    Changed();
  }
  void TakeUp() override {
    ids_.TakeUp(rows_);
    Changed();
  }
  void Release() override {
    ids_.Release();
    Changed();
  }
  void Cancel() override {
    ids_.Cancel();
    Changed();
  }
  void MoveTo(int row, SelectionKeys keys) override {
    ids_.MoveTo(rows_, row, keys);
    Changed();
  }
  void ToggleFocus() override {
    ids_.ToggleFocus();
    Changed();
  }
  void All() override {
    ids_.All(rows_);
    Changed();
  }
  void Clear() override {
    ids_.Clear();
    Changed();
  }

  // The shown ones, in the order of the rows: what verbs act on.
  std::vector<Id> Ids() const { return ids_.ShownIds(rows_); }
  // These alone; the keyboard goes to the first.
  void Set(const std::vector<Id>& ids) {
    ids_.Set(ids);
    Changed();
  }
  // The rows are others, or stand in another order.
  void Renew() {
    ids_.Renew(rows_, focus_row_);
    Changed();
  }
  void Rename(const Id& from, const Id& to) {
    ids_.Rename(from, to);
    Changed();
  }
  // Another number after each change.
  int changes() const { return changes_; }

 private:
  void Changed() {
    ++changes_;
    focus_row_ = FocusRow();
  }

  const Rows& rows_;
  Selection<Id, Hash> ids_;
  int focus_row_ = -1;  // after the last change
  int changes_ = 0;
};

}  // namespace console
