// The console's controls: the priority's slider, and those of its tables.
#include "app/console.h"

namespace console {

void MakeControls(Console* c) {
  XwWindow* w = c->window;
  XwSetTab(w, 0);
  c->priority = XwSlider(w, kPriorityControl, 0, 0, 9, 1, XWC_ENABLED | XWC_VISIBLE, 1,
                         kMostPriority, c->choice.priority);
  XwDescribeControl(c->priority, "Priority");
  c->files.MakeControls(w, kFilesControls, "Files");
  c->queue.MakeControls(w, kQueueControls, "Queue");
}

void PlaceControls(Console* c) {
  c->files.Place(c->layout.folder);
  c->queue.Place(c->layout.queue);
  const Area s = c->layout.slider;
  XwMove(c->priority, s.x, s.y, s.w, s.h);
}

void UpdateControls(Console* c) {
  c->files.Cover(c->list_open || c->asking);
  c->queue.Cover(c->list_open || c->asking);
  if (c->priority->enabled != !c->asking) XwEnable(c->priority, !c->asking);
  const bool has = XwGetFocus(c->window) == c->priority;
  const bool wants = HasKeyboard(c, FocusStop::kPriority) && !c->list_open;
  if (wants && !has) XwFocusControl(c->priority);
  if (has && !wants) XwSetFocus(c->window);
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
