// What the pointer does to the window: presses, drags, what lies under it, and the wheel.
#include <utility>

#include "app/window/commands.h"
#include "app/window/console.h"
#include "app/window/queue_commands.h"

namespace console {
namespace {

constexpr int kDragMs = 40;
constexpr int kArrowCursor = 0, kSizeCursor = 10;

// The pane that a hit lies in.
unsigned PaneOf(const Hit& hit) {
  switch (hit.owner) {
    case kFiles:
    case kCrumbs:
      return kFolderPane;
    case kQueue:
      return kQueuePane;
    case kPlaces:
      return kPlacesPane;
    case kPrinters:
      return kPrintersPane;
    case kStatus:
      return kStatusPane;
    case kPages:
      return kDetailsPane;
    default:
      return 0;
  }
}

// A border of columns that can be moved.
bool IsColumnBorder(const Hit& hit) {
  return (hit.owner == kFiles || hit.owner == kQueue) && hit.part == Table::kBorder;
}

bool IsBorder(const Hit& hit) {
  return IsColumnBorder(hit) || hit.owner == kBorders;
}

int CursorOver(const Hit& hit) {
  return hit.owner == kBorders ? BorderCursor(hit)
         : IsColumnBorder(hit) ? kSizeCursor
                               : kArrowCursor;
}

}  // namespace

void SetHover(Console* c, const Hit& hit) {
  if (hit == c->hover) return;
  c->damage |= PaneOf(c->hover) | PaneOf(hit);
  if (CursorOver(hit) != CursorOver(c->hover)) XwSetCursor(c->window, CursorOver(hit));
  c->hover = hit;
}

// --- Presses

namespace {

void PressTable(Console* c, const Hit& hit, bool twice) {
  const bool files = hit.owner == kFiles;
  Table& table = files ? c->files.table : c->queue.table;
  if (IsColumnBorder(hit)) {
    if (twice) table.ResetColumns();
    table.Press(hit, Inp.px);
    return;
  }
  SetFocusStop(c, files ? FocusStop::kFiles : FocusStop::kQueue);
  const SelectionKeys keys = HeldKeys(c);
  table.Press(hit, Inp.px, keys);
  SelectionChanged(c, files);
  const bool opens = twice && hit.part == Table::kRow && !keys.shift && !keys.control;
  if (opens && files) OpenSelected(c);
  if (opens && !files) RunCommand(c, kJobDetailsCommand);
}

}  // namespace

void PressPrimary(Console* c) {
  const Hit hit = c->hits.At(Inp.item);
  const bool twice = XwDoubleClick(&c->last_press);
  SetHover(c, hit);
  c->pressed = hit;
  c->damage |= PaneOf(hit);
  if (hit.owner == kFiles || hit.owner == kQueue) PressTable(c, hit, twice);
  if (hit.owner == kPlaces) PressPlace(c, hit);
  if (hit.owner == kPrinters) PressPrinter(c, hit);
  if (hit.owner == kBorders) PressBorder(c, hit, twice);
  const bool details = (!hit || hit.owner == kPages) && c->layout.details.Holds(Inp.px, Inp.py);
  if (details && CanStopAt(c, FocusStop::kDetails)) SetFocusStop(c, FocusStop::kDetails);
}

// The secondary button opens the menu of the row, or of all that are selected with it.
void PressSecondary(Console* c) {
  const Hit hit = c->hits.At(Inp.item);
  if (c->files.table.HoldsRow() || c->queue.table.HoldsRow()) return;
  if (hit.owner == kPrinters && hit.part != SideList::kBody) {
    PressPrinter(c, hit);
    DrawConsole(c);
    return OpenContextMenu(c, kOnPrinters);
  }
  if ((hit.owner != kFiles && hit.owner != kQueue) || hit.part != Table::kRow) return;
  Table& table = hit.owner == kFiles ? c->files.table : c->queue.table;
  SetFocusStop(c, hit.owner == kFiles ? FocusStop::kFiles : FocusStop::kQueue);
  if (!table.IsSelected(hit.index)) {
    table.Press(hit, Inp.px);
    table.Release();
    SelectionChanged(c, hit.owner == kFiles);
  }
  DrawConsole(c);
  OpenContextMenu(c, hit.owner == kFiles ? kOnFiles : kOnJobs);
}

// --- What a release does

namespace {

// Pressed and released on the same thing.
void Use(Console* c, const Hit& hit) {
  switch (hit.owner) {
    case kPlaces:
      UsePlace(c, hit);
      break;
    case kPrinters:
      UsePrinter(c, hit);
      break;
    case kCrumbs:
      PressCrumb(c, hit.index);
      break;
    case kStatus:
      c->server.Refresh();
      break;
    case kPages:
      if (c->details.TurnPage(hit.part == DetailsPane::kNextPage ? 1 : -1))
        c->damage |= kDetailsPane;
      break;
    default:
      break;
  }
}

// No row is held any more: what has waited for it is shown.
void ShowWhatWaited(Console* c) {
  if (std::exchange(c->scrolls_by_drag, false)) XwTimer(c->window, kDragTimer, 0);
  if (std::exchange(c->queue_waits, false)) c->queue.Fill();
  ShowHeldReading(c);
}

// What was shown last counts where the pointer has not moved since: a list may be another one now.
void ReleaseTables(Console* c) {
  const bool held = c->files.table.HoldsRow() || c->queue.table.HoldsRow();
  if (held && (Inp.px != c->held_x || Inp.py != c->held_y)) Motion(c);
  DropCarried(c);
  const int gap = c->queue.table.gap();
  for (Table* table : {&c->files.table, &c->queue.table}) {
    if (table->HoldsRow()) SelectionChanged(c, table == &c->files.table);
    table->Release();
  }
  if (gap >= 0) DropJobs(c, gap);
  ShowWhatWaited(c);
}

}  // namespace

void Release(Console* c) {
  if (Inp.state & 1) return;  // another button
  const Hit hit = c->hits.At(Inp.item), pressed = c->pressed;
  c->pressed = {};
  ReleaseTables(c);
  c->damage |= PaneOf(pressed);
  SetHover(c, hit);
  if (pressed && hit == pressed) Use(c, hit);
}

bool CancelDrag(Console* c) {
  bool held = c->pressed.owner == kBorders;
  if (held) PutBackBorder(c);
  for (Table* table : {&c->files.table, &c->queue.table}) {
    if (!table->Cancel()) continue;
    SelectionChanged(c, table == &c->files.table);
    held = true;
  }
  if (!held) return false;
  EndCarry(c);
  c->pressed = {};
  c->last_press = 0;
  ShowWhatWaited(c);
  return true;
}

void Motion(Console* c) {
  const Hit hit = c->hits.At(Inp.item);
  for (Table* table : {&c->files.table, &c->queue.table}) {
    if (table->Drag(Inp.px, Inp.py)) {
      SelectionChanged(c, table == &c->files.table);
      c->last_press = 0;  // what was dragged was not clicked
    }
  }
  FollowCarry(c, hit);
  c->held_x = Inp.px;
  c->held_y = Inp.py;
  const bool scrolls = c->files.table.ScrollsByDrag() || c->queue.table.ScrollsByDrag();
  if (scrolls != std::exchange(c->scrolls_by_drag, scrolls))
    XwTimer(c->window, kDragTimer, scrolls ? kDragMs : 0);
  if (Carries(c)) return SetHover(c, {});
  // A border is under the pointer as long as it is held.
  if (c->pressed.owner == kBorders) DragBorder(c, c->pressed);
  if (IsBorder(c->pressed)) return SetHover(c, c->pressed);
  // While a button is held only the thing pressed shows that it is under the pointer.
  SetHover(c, !c->pressed || hit == c->pressed ? hit : Hit{});
}

void ScrollByDrag(Console* c) {
  for (Table* table : {&c->files.table, &c->queue.table})
    if (table->ScrollByDrag()) SelectionChanged(c, table == &c->files.table);
}

void TurnWheel(Console* c, float dy) {
  if (c->asking) return;
  const bool files = c->layout.folder.Holds(Inp.px, Inp.py);
  const bool queue = c->layout.queue.Holds(Inp.px, Inp.py);
  if (files && c->files.table.Wheel(dy)) c->damage |= kFolderPane;
  if (queue && c->queue.table.Wheel(dy)) {
    c->queue.StayHere();
    c->damage |= kQueuePane;
  }
  if (c->layout.places.Holds(Inp.px, Inp.py) && c->places.list.Wheel(dy)) c->damage |= kPlacesPane;
  if (c->layout.printers.Holds(Inp.px, Inp.py) && c->printer_list.list.Wheel(dy))
    c->damage |= kPrintersPane;
  if (c->layout.details.Holds(Inp.px, Inp.py) && c->details.scroll.Wheel(dy))
    c->damage |= kDetailsPane;
  DrawConsole(c);
}

}  // namespace console
