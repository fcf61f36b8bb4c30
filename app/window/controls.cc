// The console's controls: the priority's slider, the box of the copies, and those of its tables.
#include "app/window/console.h"

namespace console {

void MakeControls(Console* c) {
  XwWindow* w = c->window;
  XwSetTab(w, 0);
  c->priority = XwSlider(w, kPriorityControl, 0, 0, 9, 1, XWC_ENABLED | XWC_VISIBLE, 1,
                         kMostPriority, c->choice.priority);
  XwDescribeControl(c->priority, "Priority");
  c->copies = XwEditBox(w, "1", kCopiesControl, 0, 0, 9, 9, XWC_ENABLED | XWC_VISIBLE);
  XwDescribeControl(c->copies, "Copies");
  c->files.MakeControls(w, kFilesControls, "Files");
  c->queue.MakeControls(w, kQueueControls, "Queue");
}

void PlaceControls(Console* c) {
  c->files.Place(c->layout.folder);
  c->queue.Place(c->layout.queue);
  const Area s = c->layout.slider;
  XwMove(c->priority, s.x, s.y, s.w, s.h);
  const Area f = c->layout.copies;
  XwMove(c->copies, f.x - 1, f.y, f.w + 2, f.h);
}

void UpdateControls(Console* c) {
  c->files.Cover(c->list_open || c->asking);
  c->queue.Cover(c->list_open || c->asking);
  XwWindow* wants = nullptr;
  if (HasKeyboard(c, FocusStop::kPriority)) wants = c->priority;
  if (HasKeyboard(c, FocusStop::kCopies)) wants = c->copies;
  if (c->list_open) wants = nullptr;
  for (XwWindow* control : {c->priority, c->copies})
    if (control->enabled != !c->asking) XwEnable(control, !c->asking);
  XwWindow* has = XwGetFocus(c->window);
  if (wants && has != wants) XwFocusControl(wants);
  if (!wants && (has == c->priority || has == c->copies)) XwSetFocus(c->window);
}

void EditCopies(Console* c, int type, bool gained) {
  if (type == XWE_EDIT_CHANGED) {
    const int copies = XwGetValue(c->copies);
    if (copies >= 1 && copies <= kMostCopies) c->choice.copies = copies;
    c->damage |= kToolsPane;
  } else if (type == XWE_EDIT_SELECT && gained) {
    if (c->list_open) ClosePrinterList(c);
    SetFocusStop(c, FocusStop::kCopies);
  } else {
    // What is no number of copies gives place to the one that counts.
    XwSetValue(c->copies, c->choice.copies);
    if (HasKeyboard(c, FocusStop::kCopies) && XwGetFocus(c->window) != c->copies)
      SetFocusStop(c, FocusStop::kFiles);
  }
}

void UseControl(Console* c, int id, int value) {
  if (id == kPriorityControl) {
    if (c->list_open) ClosePrinterList(c);
    SetFocusStop(c, FocusStop::kPriority);
    SlidePriority(c, value);
  }
  if (const int column = c->files.HeadOf(id); column >= 0) SortBy(c, column);
  if (c->files.Scrolled(id, value)) c->damage |= kFolderPane;
  if (c->queue.Scrolled(id, value)) c->damage |= kQueuePane;
}

}  // namespace console
