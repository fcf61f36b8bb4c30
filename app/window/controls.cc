// The console's controls: those of the tools, of the tables, and the buttons of commands.
#include "app/look/controls.h"

#include "app/panes/ids.h"
#include "app/window/commands.h"
#include "app/window/console.h"
#include "app/window/queue_commands.h"

namespace console {

void MakeControls(Console* c) {
  XwWindow* w = c->window;
  XwSetTab(w, 0);
  c->tools.MakeControls(w);
  c->needs.MakeControls(w);
  c->places.MakeControls(w);
  c->printer_list.MakeControls(w);
  c->files.MakeControls(w);
  c->queue.MakeControls(w);
  c->banner.MakeControls(w);
  c->status.MakeControls(w);
  const QueueHead& head = c->queue.head;
  c->buttons = {c->tools.print,
                c->tools.up,
                c->tools.refresh,
                head.hold,
                head.release,
                head.again,
                head.remove,
                c->status.stop_sending,
                c->status.dismiss,
                c->banner.retry,
                c->banner.start_server,
                c->needs.load,
                c->needs.choose};
}

void PlaceControls(Console* c) {
  c->tools.Place(c->layout);
  c->needs.Place();
  c->places.Place();
  c->printer_list.Place();
  c->files.Place();
  c->queue.Place();
  PlaceQuestion(c);
}

XwWindow* ControlAt(const Console* c, FocusStop stop) {
  switch (stop) {
    case FocusStop::kRetry:
      return c->banner.retry;
    case FocusStop::kStartServer:
      return c->banner.start_server;
    case FocusStop::kPrint:
      return c->tools.print;
    case FocusStop::kPrinter:
      return c->tools.printer();
    case FocusStop::kProfile:
      return c->tools.profile();
    case FocusStop::kCopies:
      return c->tools.copies;
    case FocusStop::kPriority:
      return c->tools.priority;
    case FocusStop::kHold:
      return c->tools.hold;
    case FocusStop::kFilter:
      return c->files.filter;
    case FocusStop::kQueueFilter:
      return c->queue.head.text;
    case FocusStop::kQueueOwner:
      return c->queue.head.owner;
    case FocusStop::kQueuePart:
      return c->queue.head.part;
    default:
      return nullptr;
  }
}

bool CanStopAt(const Console* c, FocusStop stop) {
  if (IsControl(stop)) return CanFocus(ControlAt(c, stop));
  if (stop == FocusStop::kPrinters) return !c->layout.printers.Empty();
  return stop != FocusStop::kPlaces || !c->layout.places.Empty();
}

namespace {

// The keyboard goes where the stop is; with a control that cannot have it any more it goes back to
// the files.
void UpdateFocus(Console* c) {
  if (c->asking) return;
  if (!CanStopAt(c, c->stop)) SetFocusStop(c, FocusStop::kFiles);
  XwWindow* wants = ControlAt(c, c->stop);
  XwWindow* has = XwGetFocus(c->window);
  if (wants && has != wants) XwFocusControl(wants);
  if (!wants && has) XwSetFocus(c->window);
}

}  // namespace

void UpdateControls(Console* c) {
  c->banner.Place(CanStartServer(c));
  c->status.Update();
  ShowButtons(c);
  c->tools.Update(c->state, !c->asking);
  c->tools.ShowDocuments(c->files.Chosen().files);
  c->files.Enable(!c->asking);
  c->queue.Enable(!c->asking);
  c->places.list.Enable(!c->asking);
  c->printer_list.list.Enable(!c->asking);
  UpdateFocus(c);
}

namespace {

bool NothingIsChosen(const Console* c) {
  return c->files.Chosen().files + c->files.Chosen().folders == 0;
}

}  // namespace

void UseEditBox(Console* c, int type, int id, bool gained) {
  if (id == kQueueFilterControl) return UseQueueFilter(c, type, gained);
  const bool filter = id == kFilterControl;
  const FocusStop stop = filter ? FocusStop::kFilter : FocusStop::kCopies;
  // The report that a box has got the keyboard may wait behind its first keys.
  if (XwGetFocus(c->window) == ControlAt(c, stop)) SetFocusStop(c, stop);
  if (type == XWE_EDIT_SELECT && gained) return;
  if (filter && type == XWE_EDIT_CHANGED) SetFilter(c, c->files.FilterText());
  // The report of its Escape takes that key's place.
  if (filter && type == XWE_EDIT_SELECT && XwGetKeyState(XWE_ESCAPE)) SetFilter(c, "");
  if (filter && type == XWE_EDIT_DONE && NothingIsChosen(c)) c->files.table.Select(0);
  if (!filter) c->tools.Edited(type);
  c->damage |= kToolsPane | kFolderPane | kDetailsPane;
  if (type != XWE_EDIT_CHANGED && c->stop == stop && c->active &&
      XwGetFocus(c->window) != ControlAt(c, stop))
    SetFocusStop(c, FocusStop::kFiles);
}

void UseControl(Console* c, int id, int value) {
  RunCommand(c, id);
  if (c->tools.Chosen(id, value)) c->damage |= kToolsPane | kDetailsPane;
  if (id == kPrinterControl) ChoosePrinter(c, c->choice.printer);
  if (id == kPriorityControl) SetFocusStop(c, FocusStop::kPriority);
  if (const int column = c->files.table.HeadOf(id); column >= 0) SortBy(c, column);
  if (c->files.table.Scrolled(id, value)) c->damage |= kFolderPane;
  UseQueueControl(c, id, value);
  if (c->places.list.Scrolled(id, value)) c->damage |= kPlacesPane;
  if (c->printer_list.list.Scrolled(id, value)) c->damage |= kPrintersPane;
}

bool CanPrint(const Console* c) {
  return c->files.Chosen().files > 0;
}

// Before the printers are known the document waits for the server, and goes to its default.
std::string WhyNotPrint(const Console* c) {
  return c->printers.known() ? c->printers.WhyNotPrint() : "";
}

void PrintSelected(Console* c) {
  PrintOrder usual;
  usual.owner = OS_GetUserName();
  const NC_Printer* printer = ChosenPrinter(c->choice, c->state);
  usual.printer = printer ? printer->name : c->choice.printer;
  usual.profile = c->choice.profile;
  usual.copies = c->choice.copies;
  usual.priority = c->choice.priority;
  usual.hold = c->choice.hold;
  std::vector<PrintOrder> orders;
  for (const std::string& name : c->files.selection.Ids()) {
    const int row = c->files.folder.Find(name);
    if (c->files.folder.At(row).folder) continue;
    PrintOrder& order = orders.emplace_back(usual);
    order.path = c->files.folder.PathOf(row);
    order.document = name;
  }
  c->just_sent += int(orders.size());
  c->server.Send(std::move(orders));
  if (IsAway(c->state.link))
    Tell(c, true,
         (c->just_sent > 1 ? "They" : "It") +
             (" will be sent when " + c->server.host() + " is back"));
}

bool CanSelectAll(const Console* c) {
  return c->stop == FocusStop::kFiles || c->stop == FocusStop::kQueue;
}

void SelectAll(Console* c) {
  if (c->stop == FocusStop::kQueue)
    c->queue.selection.All();
  else
    c->files.selection.All();
  c->damage = kAllPanes;
}

}  // namespace console
