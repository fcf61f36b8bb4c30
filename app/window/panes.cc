// Which panes show, and how large they are: the borders between them, and the commands.
#include <algorithm>

#include "app/window/side_commands.h"

namespace console {
namespace {

// Parts of hits.
enum Border { kLeftBorder = 1, kRightBorder, kQueueBorder, kPrintersBorder };
// How far beside a border the pointer may be to take hold of it.
constexpr int kReach = 3;

bool LiesAcross(int border) {
  return border == kQueueBorder || border == kPrintersBorder;
}

// The pane that the border belongs to.
Area PaneAt(const Layout& l, int border) {
  switch (border) {
    case kLeftBorder:
      return l.places.Empty() ? l.printers : l.places;
    case kRightBorder:
      return l.details;
    case kQueueBorder:
      return l.queue_head;
    default:
      return l.places.Empty() ? Area{} : l.printers;
  }
}

// Where the border is, in the direction in which it moves.
int Place(const Layout& l, int border) {
  const Area pane = PaneAt(l, border);
  return LiesAcross(border) ? pane.y : border == kLeftBorder ? pane.right() : pane.x;
}

Area BorderArea(const Layout& l, int border) {
  const Area pane = PaneAt(l, border);
  if (pane.Empty()) return {};
  const int at = Place(l, border);
  if (LiesAcross(border)) return {pane.x, at - kReach, pane.w, 2 * kReach};
  const int bottom = l.queue_head.y;
  return {at - kReach, l.folder_head.y, 2 * kReach, bottom - l.folder_head.y};
}

int* SizeOf(PaneSizes* sizes, int border) {
  int* const all[] = {&sizes->left_width, &sizes->details_width, &sizes->queue_height,
                      &sizes->printers_height};
  return all[border - 1];
}

// The size that the pane has when its border is there.
int SizeAt(const Layout& l, int border, int at) {
  switch (border) {
    case kLeftBorder:
      return at;
    case kRightBorder:
      return l.details.right() - at;
    case kQueueBorder:
      return l.status.y - at - l.queue_head.h;
    default:
      return l.printers.bottom() - at;
  }
}

// What is seen is what is remembered: not what was asked for beyond that.
void TakeSize(Console* c, int border, int size) {
  int* asked = SizeOf(&c->panes, border);
  *asked = std::max(1, size);
  LayOutWindow(c);
  *asked = SizeAt(c->layout, border, Place(c->layout, border));
}

bool Shows(const Console* c, FocusStop list) {
  return !(list == FocusStop::kPlaces ? c->layout.places : c->layout.printers).Empty();
}

// Where the window is too narrow for it, it takes the place of another one there.
void Open(Console* c, bool* wanted, PaneSizes::Opened pane) {
  *wanted = true;
  if (!ShowsByItself(pane, c->window->width)) c->panes.opened = pane;
  LayOutWindow(c);
}

void Hide(Console* c, bool* wanted, PaneSizes::Opened pane) {
  if (c->panes.opened == pane && !ShowsByItself(pane, c->window->width))
    c->panes.opened = PaneSizes::kNone;
  else
    *wanted = false;
  LayOutWindow(c);
}

// Its key goes to a list that shows, and hides it from there; its menu item shows and hides it.
void ToggleList(Console* c, bool* wanted, FocusStop list) {
  const auto pane = list == FocusStop::kPlaces ? PaneSizes::kPlaces : PaneSizes::kPrinters;
  const bool by_key = c->modifiers & XWS_CONTROL;
  if (!Shows(c, list)) {
    Open(c, wanted, pane);
    SetFocusStop(c, list);
  } else if (by_key && c->stop != list) {
    SetFocusStop(c, list);
  } else {
    Hide(c, wanted, pane);
    SetFocusStop(c, FocusStop::kFiles);
  }
}

}  // namespace

void AddBorderHits(Console* c) {
  for (int border = kLeftBorder; border <= kPrintersBorder; ++border)
    c->hits.Add({kBorders, border, 0}, BorderArea(c->layout, border));
}

int BorderCursor(const Hit& hit) {
  constexpr int kSizeUp = 8, kSizeRight = 10;
  return LiesAcross(hit.part) ? kSizeUp : kSizeRight;
}

void PressBorder(Console* c, const Hit& hit, bool twice) {
  c->panes_before = c->panes;
  if (twice) {
    *SizeOf(&c->panes, hit.part) = 0;
    LayOutWindow(c);
  }
  c->border_grip = (LiesAcross(hit.part) ? Inp.py : Inp.px) - Place(c->layout, hit.part);
}

void DragBorder(Console* c, const Hit& hit) {
  const int at = (LiesAcross(hit.part) ? Inp.py : Inp.px) - c->border_grip;
  if (at == Place(c->layout, hit.part)) return;
  TakeSize(c, hit.part, SizeAt(c->layout, hit.part, at));
  c->last_press = 0;  // what was dragged was not clicked
}

void PutBackBorder(Console* c) {
  c->panes = c->panes_before;
  LayOutWindow(c);
}

bool ShowsPlaces(const Console* c) {
  return Shows(c, FocusStop::kPlaces);
}
bool ShowsPrinters(const Console* c) {
  return Shows(c, FocusStop::kPrinters);
}
bool ShowsDetails(const Console* c) {
  return !c->layout.details.Empty();
}

void TogglePlaces(Console* c) {
  ToggleList(c, &c->panes.places, FocusStop::kPlaces);
}
void TogglePrinters(Console* c) {
  ToggleList(c, &c->panes.printers, FocusStop::kPrinters);
}
void ToggleDetails(Console* c) {
  (ShowsDetails(c) ? Hide : Open)(c, &c->panes.details, PaneSizes::kDetails);
}

// --- Sizes by the keyboard

namespace {

// The border that makes the pane with the keyboard wider or higher, and whether the pane beside it
// is the one that the border belongs to.
struct PaneBorder {
  int border = 0;  // 0: none
  bool others = false;
};
PaneBorder BorderOf(const Console* c, bool across) {
  const bool side = c->stop == FocusStop::kPlaces || c->stop == FocusStop::kPrinters;
  const bool queue = c->stop == FocusStop::kQueue, details = c->stop == FocusStop::kDetails;
  PaneBorder b = across ? PaneBorder{side ? kPrintersBorder : kQueueBorder,
                                     c->stop != FocusStop::kPrinters && !queue}
                 : side ? PaneBorder{kLeftBorder, false}
                        : PaneBorder{queue ? 0 : kRightBorder, !details};
  if (b.border && PaneAt(c->layout, b.border).Empty()) b.border = 0;
  return b;
}

constexpr int kSizeStep = 40;

}  // namespace

std::vector<CommandChoice> PaneSizeChoices(const Console* c) {
  const bool wide = BorderOf(c, false).border != 0, high = BorderOf(c, true).border != 0;
  return {{"Wider", false, wide},
          {"Narrower", false, wide},
          {"Higher", false, high},
          {"Lower", false, high},
          {"As Usual for All"}};
}

void ChangePaneSize(Console* c, int choice) {
  if (choice == 4) {
    for (int border = kLeftBorder; border <= kPrintersBorder; ++border)
      *SizeOf(&c->panes, border) = 0;
    return LayOutWindow(c);
  }
  const PaneBorder b = BorderOf(c, choice >= 2);
  if (!b.border) return;
  const int step = (choice % 2 == 1) == b.others ? kSizeStep : -kSizeStep;
  TakeSize(c, b.border, SizeAt(c->layout, b.border, Place(c->layout, b.border)) + step);
}

void GoToPrinters(Console* c) {
  if (!ShowsPrinters(c)) Open(c, &c->panes.printers, PaneSizes::kPrinters);
  SetFocusStop(c, FocusStop::kPrinters);
  // Where the chosen one is gone the keyboard is at none.
  if (!c->printer_list.At()) c->printer_list.GoTo(c->printer_list.NameAt(0));
  c->damage |= kPrintersPane;
}

void RecallPanes(Console* c) {
  const Preferences& p = c->remembered.preferences;
  c->panes.places = p.show_places;
  c->panes.printers = p.show_printers;
  c->panes.details = p.show_details;
  c->panes.left_width = p.places_width;
  c->panes.details_width = p.details_width;
  c->panes.queue_height = p.queue_height;
  c->panes.printers_height = p.printers_height;
  LayOutWindow(c);
}

void NotePanes(const Console* c, Preferences* p) {
  p->show_places = c->panes.places;
  p->show_printers = c->panes.printers;
  p->show_details = c->panes.details;
  p->places_width = c->panes.left_width;
  p->details_width = c->panes.details_width;
  p->queue_height = c->panes.queue_height;
  p->printers_height = c->panes.printers_height;
}

}  // namespace console
