// Which rows of a table are selected. Rows move: what is kept is ids, so the selection survives
// sorting, filters and refreshes, and what has ended hands its selection to nothing else.
//
// The table stands behind `Rows`, which has
//   int count() const          rows that are shown
//   Id IdAt(int) const         of a shown row
//   int RowOf(const Id&) const -1 when it is not shown
//   bool Has(const Id&) const  whether it exists, shown or hidden by a filter
// What a filter hides stays selected, but verbs act on what is shown: ask ShownIds.
#pragma once
#include <algorithm>
#include <functional>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

namespace console {

// What is held while a row is pressed.
struct SelectionKeys {
  bool shift = false, control = false;
};

template <class Id, class Hash = std::hash<Id>>
class Selection {
 public:
  bool Has(const Id& id) const { return ids_.count(id) != 0; }
  bool empty() const { return ids_.empty(); }
  // All of them, the hidden ones too.
  size_t size() const { return ids_.size(); }
  // The row that the keyboard stands on: -1 when it is on none.
  template <class Rows>
  int FocusRow(const Rows& rows) const {
    return focus_ ? rows.RowOf(*focus_) : -1;
  }
  // In the order of the rows.
  template <class Rows>
  std::vector<Id> ShownIds(const Rows& rows) const {
    std::vector<std::pair<int, Id>> shown;
    shown.reserve(ids_.size());
    for (const Id& id : ids_)
      if (const int row = rows.RowOf(id); row >= 0) shown.emplace_back(row, id);
    std::sort(shown.begin(), shown.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<Id> out;
    out.reserve(shown.size());
    for (auto& [row, id] : shown) out.push_back(std::move(id));
    return out;
  }
  // Whether one that is shown is selected.
  template <class Rows>
  bool AnyShown(const Rows& rows) const {
    return std::any_of(ids_.begin(), ids_.end(),
                       [&rows](const Id& id) { return rows.RowOf(id) >= 0; });
  }
  // The shown row when it is the only one that is selected, else -1.
  template <class Rows>
  int OnlyRow(const Rows& rows) const {
    int only = -1;
    for (const Id& id : ids_) {
      const int row = rows.RowOf(id);
      if (row >= 0 && only >= 0) return -1;
      if (row >= 0) only = row;
    }
    return only;
  }

  // The button goes down on a row, -1: below all of them, which leaves no row the keyboard. On a
  // row that is selected, without keys, the others stay until it comes up, since all of them may be
  // about to be dragged away.
  template <class Rows>
  void Press(const Rows& rows, int row, SelectionKeys keys) {
    pressed_.reset();
    held_.reset();
    before_ = {{}, focus_, anchor_};
    adds_ = keys.control;
    dragging_ = true;
    was_selected_ = false;
    below_ = row < 0 || row >= rows.count();
    if (below_) {
      adds_ = keys.shift || keys.control;
      before_.ids = ids_;
      if (!adds_) Set({});
      return;
    }
    const Id& id = rows.IdAt(row);
    held_ = id;
    if (!keys.shift && !keys.control && Has(id)) {
      pressed_ = focus_ = id;
      was_selected_ = true;
      return;
    }
    before_.ids = keys.control ? ids_ : std::exchange(ids_, {});
    if (keys.shift)
      Extend(rows, row, keys.control);
    else if (keys.control)
      Toggle(id);
    else
      Only(id);
  }
  // It comes up. Where nothing was dragged, the row is selected alone.
  void Release() {
    if (pressed_) Only(*std::exchange(pressed_, std::nullopt));
    before_ = {};
    dragging_ = false;
  }
  // What the present press and its drag have changed is as it was before.
  void Cancel() {
    if (!dragging_) return;
    if (!std::exchange(pressed_, std::nullopt)) ids_ = std::move(before_.ids);
    focus_ = before_.focus;
    anchor_ = before_.anchor;
    before_ = {};
    dragging_ = false;
  }
  // The pointer is drawn over rows to this one, since a Press: the range from there is selected,
  // beside what Control kept. A row past the last one is the last one. After a Press below the
  // rows the range begins at the last row, and is empty as long as this is past it.
  template <class Rows>
  void DragTo(const Rows& rows, int row) {
    if (!dragging_ || rows.count() == 0) return;
    if (pressed_) {
      anchor_ = std::exchange(pressed_, std::nullopt);
      before_.ids = std::move(ids_);
    }
    if (below_ && row >= rows.count()) {
      ids_ = adds_ ? before_.ids : Ids();
      focus_ = adds_ ? before_.focus : std::nullopt;
      anchor_ = adds_ ? before_.anchor : std::nullopt;
      return;
    }
    row = std::clamp(row, 0, rows.count() - 1);
    if (below_) anchor_ = rows.IdAt(rows.count() - 1);
    const int from = Anchor(rows, row);
    ids_ = adds_ ? before_.ids : Ids();
    Add(rows, from, row);
    focus_ = rows.IdAt(row);
  }
  // What was pressed is taken up, to be carried elsewhere: all that were selected if the row was
  // one of them, else what the press has selected. No range is left; a later DragTo makes one
  // again.
  template <class Rows>
  void TakeUp(const Rows& rows) {
    if (!dragging_ || below_) return;
    const int row = held_ ? rows.RowOf(*held_) : -1;
    if (pressed_) {
      anchor_ = std::exchange(pressed_, std::nullopt);
      before_.ids = ids_;
    } else if (was_selected_) {
      ids_ = before_.ids;
    } else if (row >= 0) {
      DragTo(rows, row);
    } else {
      ids_.clear();
    }
    focus_ = held_;
  }
  // A key moves the keyboard to this row: the row alone, with Shift the range from the anchor,
  // with Control nothing is selected or given up.
  template <class Rows>
  void MoveTo(const Rows& rows, int row, SelectionKeys keys) {
    if (rows.count() == 0) return;
    row = std::clamp(row, 0, rows.count() - 1);
    if (keys.shift)
      Extend(rows, row, keys.control);
    else if (keys.control)
      focus_ = rows.IdAt(row);
    else
      Only(rows.IdAt(row));
  }
  // Control and Space: the row that has the keyboard.
  void ToggleFocus() {
    if (focus_) Toggle(Id(*focus_));
  }
  // All that are shown; the keyboard stays where it is.
  template <class Rows>
  void All(const Rows& rows) {
    if (rows.count() == 0) return;
    ids_.reserve(size_t(rows.count()));
    Add(rows, 0, rows.count() - 1);
    if (!focus_) focus_ = anchor_ = rows.IdAt(0);
  }
  void Only(Id id) {
    ids_.clear();
    ids_.insert(id);
    focus_ = anchor_ = std::move(id);
  }
  void Set(const std::vector<Id>& ids) {
    ids_ = Ids(ids.begin(), ids.end());
    focus_ = anchor_ = ids.empty() ? std::nullopt : std::optional<Id>(ids.front());
  }
  // The keyboard stays.
  void Clear() { ids_.clear(); }

  // The rows are new. What does not exist any more leaves; where the keyboard's own has ended, the
  // keyboard goes to the row in its place, which is not selected by that. `focus_row`: FocusRow
  // before the change.
  template <class Rows>
  void Renew(const Rows& rows, int focus_row) {
    auto drop = [&](std::optional<Id>* id) {
      if (*id && !rows.Has(**id)) id->reset();
    };
    std::erase_if(ids_, [&](const Id& id) { return !rows.Has(id); });
    std::erase_if(before_.ids, [&](const Id& id) { return !rows.Has(id); });
    for (std::optional<Id>* id : {&pressed_, &held_, &anchor_, &before_.focus, &before_.anchor})
      drop(id);
    const bool had = focus_.has_value();
    drop(&focus_);
    if (had && !focus_ && rows.count() > 0 && focus_row >= 0)
      focus_ = rows.IdAt(std::min(focus_row, rows.count() - 1));
  }
  // One has become another: a document on its way is a job of the queue now.
  void Rename(const Id& from, const Id& to) {
    if (ids_.erase(from) != 0) ids_.insert(to);
    if (before_.ids.erase(from) != 0) before_.ids.insert(to);
    for (std::optional<Id>* id :
         {&focus_, &anchor_, &pressed_, &held_, &before_.focus, &before_.anchor})
      if (*id == from) *id = to;
  }

 private:
  using Ids = std::unordered_set<Id, Hash>;

  template <class Rows>
  void Add(const Rows& rows, int from, int to) {
    for (int i = std::min(from, to); i <= std::max(from, to); ++i) ids_.insert(rows.IdAt(i));
  }
  // Where a range begins; it begins at `row` where the anchor has ended or is hidden.
  template <class Rows>
  int Anchor(const Rows& rows, int row) {
    const int at = anchor_ ? rows.RowOf(*anchor_) : FocusRow(rows);
    if (at >= 0) return at;
    anchor_ = rows.IdAt(row);
    return row;
  }
  template <class Rows>
  void Extend(const Rows& rows, int row, bool beside) {
    const int from = Anchor(rows, row);
    anchor_ = rows.IdAt(from);
    if (!beside) ids_.clear();
    Add(rows, from, row);
    focus_ = rows.IdAt(row);
  }
  void Toggle(Id id) {
    if (ids_.erase(id) == 0) ids_.insert(id);
    focus_ = anchor_ = std::move(id);
  }

  // As it was before a press.
  struct Before {
    Ids ids;
    std::optional<Id> focus, anchor;
  };

  Ids ids_;
  Before before_;
  bool adds_ = false;                           // a drag adds its range to those
  bool dragging_ = false, below_ = false;       // below: the press was below the rows
  bool was_selected_ = false;                   // the row was, before a press without keys
  std::optional<Id> held_;                      // the row of the press
  std::optional<Id> focus_, anchor_, pressed_;  // pressed: selected alone when the button comes up
};

}  // namespace console
