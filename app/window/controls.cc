// The console's controls: those of the tools, of the tables, and the buttons of commands.
#include <algorithm>
#include <utility>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/panes/ids.h"
#include "app/window/commands.h"
#include "app/window/console.h"
#include "app/window/form.h"
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
  c->details.MakeControls(w);
  c->banner.MakeControls(w);
  c->status.MakeControls(w);
  const QueueHead& head = c->queue.head;
  c->buttons = {c->tools.print,         c->tools.refresh,  c->tools.colour,
                c->tools.no_colour,     c->tools.options,  head.hold,
                head.release,           head.again,        head.remove,
                c->status.stop_sending, c->status.dismiss, c->status.cancel_queued,
                c->files.show_all,      c->queue.show_all, c->banner.retry,
                c->banner.start_server, c->needs.load,     c->needs.choose};
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
    case FocusStop::kShowAllFiles:
      return c->files.show_all;
    case FocusStop::kShowAllJobs:
      return c->queue.show_all;
    case FocusStop::kRetry:
      return c->banner.retry;
    case FocusStop::kStartServer:
      return c->banner.start_server;
    case FocusStop::kNeedsButton:
      return c->needs.Button();
    case FocusStop::kDismiss:
      return c->status.dismiss;
    case FocusStop::kPrint:
      return c->tools.print;
    case FocusStop::kRefresh:
      return c->tools.refresh;
    case FocusStop::kPrinter:
      return c->tools.printer();
    case FocusStop::kProfile:
      return c->tools.profile();
    case FocusStop::kMedia:
      return c->tools.media();
    case FocusStop::kCopies:
      return c->tools.copies;
    case FocusStop::kPriority:
      return c->tools.priority;
    case FocusStop::kHold:
      return c->tools.hold;
    case FocusStop::kColour:
      return c->tools.ShownColour();
    case FocusStop::kOptions:
      return c->tools.options;
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
  if (stop == FocusStop::kDetails) return c->details.TakesKeys();
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
  c->status.queued = StillQueued(c);
  c->status.Update();
  c->files.Update();
  c->queue.Update();
  ShowButtons(c);
  c->tools.Update(c->state, c->printers.Names(), !c->asking);
  c->tools.ShowDocuments(c->files.Chosen().files);
  c->files.Enable(!c->asking);
  c->queue.Enable(!c->asking);
  c->places.list.Enable(!c->asking);
  c->printer_list.list.Enable(!c->asking);
  c->details.scroll.Enable(!c->asking);
  UpdateFocus(c);
}

namespace {

bool NothingIsChosen(const Console* c) {
  return c->files.Chosen().files + c->files.Chosen().folders == 0;
}

}  // namespace

namespace {

// Whether the Escape that a box reports ends a drag instead, and so leaves the text alone. It is
// reported twice: as the key, and as the loss of the keyboard.
bool EndsDrag(Console* c) {
  if (std::exchange(c->drag_escaped, false)) return true;
  return c->drag_escaped = XwGetKeyState(XWE_ESCAPE) && CancelDrag(c);
}

}  // namespace

FocusStop StopAfterBox(const Console* c, FocusStop table) {
  const XwWindow* has = XwGetFocus(c->window);
  for (const FocusStop box : {FocusStop::kCopies, FocusStop::kFilter, FocusStop::kQueueFilter})
    if (has && has == ControlAt(c, box)) return box;
  return table;
}

namespace {

std::string WhyNoCopies(const Console* c) {
  return c->choice.no_copies ? "Copies is a number from 1 to " + NumberText(kMostCopies) : "";
}

// Return has ended the box, and what stands there is no number of copies.
void StayInCopies(Console* c) {
  GoToBox(c->tools.copies);
  TellWhy(c, WhyNoCopies(c), WhyNoCopies);
  c->damage |= kToolsPane | kDetailsPane;
}

// The filter of the files, or the copies.
void UseOtherBox(Console* c, int type, int id, bool gained) {
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
  if (!filter && type == XWE_EDIT_CHANGED && c->choice.no_copies)
    TellWhy(c, WhyNoCopies(c), WhyNoCopies);
  if (!filter && type == XWE_EDIT_DONE && c->choice.no_copies) return StayInCopies(c);
  if (!filter && type == XWE_EDIT_SELECT && XwGetKeyState(XWE_ESCAPE)) {
    c->tools.PutBackCopies();
    c->status.PassReason();
    c->damage |= kStatusPane;
  }
  // The report of a key takes its place, also of one that does nothing in a box.
  if (!filter && type == XWE_EDIT_CHANGED && XwGetKeyState(XWE_UP)) c->tools.ChangeCopies(1);
  if (!filter && type == XWE_EDIT_CHANGED && XwGetKeyState(XWE_DOWN)) c->tools.ChangeCopies(-1);
  c->damage |= kToolsPane | kFolderPane | kDetailsPane;
  if (type != XWE_EDIT_CHANGED && c->stop == stop && c->active &&
      XwGetFocus(c->window) != ControlAt(c, stop))
    SetFocusStop(c, StopAfterBox(c, FocusStop::kFiles));
}

}  // namespace

void UseEditBox(Console* c, int type, int id, bool gained) {
  if (type == XWE_EDIT_SELECT && !gained && EndsDrag(c)) return;
  if (id == kQueueFilterControl)
    UseQueueFilter(c, type, gained);
  else
    UseOtherBox(c, type, id, gained);
  // At last: it may take the keyboard elsewhere.
  if (type == XWE_EDIT_CHANGED) RunFunctionKey(c);
}

void UseControl(Console* c, int id, int value) {
  // Who clicks twice by habit does not want everything twice.
  if (id == kPrintCommand && XwDoubleClick(&c->last_print)) return;
  RunCommand(c, id);
  if (c->tools.Chosen(id, value)) c->damage |= kToolsPane | kDetailsPane;
  if (id == kPrinterControl) ChoosePrinter(c, c->choice.printer);
  if (id == kPriorityControl) SetFocusStop(c, FocusStop::kPriority);
  if (const int column = c->files.table.HeadOf(id); column >= 0) SortBy(c, column);
  if (c->files.table.Scrolled(id, value)) c->damage |= kFolderPane;
  UseQueueControl(c, id, value);
  if (c->places.list.Scrolled(id, value)) c->damage |= kPlacesPane;
  if (c->printer_list.list.Scrolled(id, value)) c->damage |= kPrintersPane;
  if (c->details.scroll.Scrolled(id, value)) c->damage |= kDetailsPane;
}

// Before the printers are known the document waits for the server, and goes to its default.
std::string WhyNotPrintOn(const Console* c, const std::string& printer) {
  if (c->choice.no_copies) return WhyNoCopies(c);
  return c->printers.known() ? c->printers.WhyNotPrintOn(printer) : "";
}

std::string WhyNotPrint(const Console* c) {
  return WhyNotPrintOn(c, c->printers.chosen());
}

std::string WhyNotPrintSelected(const Console* c) {
  const std::string why = WhyNotPrint(c);
  return why.empty() && c->files.Chosen().files == 0 ? "No file is selected" : why;
}

PrintOrder UsualOrder(const Console* c) {
  PrintOrder usual;
  usual.owner = OS_GetUserName();
  const NC_Printer* printer = ChosenPrinter(c->choice, c->state);
  usual.printer = printer ? printer->name : c->choice.printer;
  usual.profile = c->choice.profile;
  usual.media = c->choice.media;
  usual.copies = c->choice.copies;
  usual.priority = c->choice.priority;
  usual.hold = c->choice.hold;
  usual.colour = c->choice.colour;
  return usual;
}

void SendOrders(Console* c, std::vector<PrintOrder> orders, int folders) {
  const int n = int(orders.size());
  if (orders.empty()) return;
  const PrintOrder& first = orders.front();
  std::string text =
      OrderedText("queued", "on", {n, first.document, first.printer, first.copies, first.hold});
  const int before = StillQueued(c) + c->just_sent;
  c->just_sent += n;
  const int last = c->server.Send(std::move(orders));
  c->status.PassReason();  // of an earlier drop
  if (!IsInQueue(c->stop)) c->queue.FollowSent(last - n + 1);
  if (folders > 0) text += ", without " + NumberOf(folders, "folder", "folders");
  const bool away = IsAway(c->state.link);
  if (before > 0) text += "; " + NumberText(before + n) + " wait to be sent";
  if (away)
    text += std::string(before > 0 ? "" : ", to be sent") + " when " + Shown(c->server.host()) +
            " is back";
  Tell(c, true, text);
  c->choice.AfterPrint();
  c->tools.ShowChoice();
  c->damage |= kToolsPane | kDetailsPane;
}

void PrintSelected(Console* c) {
  const PrintOrder usual = UsualOrder(c);
  std::vector<PrintOrder> orders;
  for (const std::string& name : c->files.selection.Ids()) {
    const int row = c->files.folder.Find(name);
    const FolderEntry e = c->files.folder.At(row);
    if (e.folder) continue;
    PrintOrder& order = orders.emplace_back(usual);
    order.size = e.size;
    order.path = c->files.folder.PathOf(row);
    order.document = name;
  }
  SendOrders(c, std::move(orders), c->files.Chosen().folders);
}

int StillQueued(const Console* c) {
  const auto& all = c->state.transfers;
  return int(std::count_if(all.begin(), all.end(),
                           [](const Transfer& t) { return t.state == Sending::kWaiting; }));
}

std::string WhyNotCancelQueued(const Console* c) {
  return StillQueued(c) > 0 ? "" : "No document waits to be sent";
}

void CancelQueued(Console* c) {
  const TakenBack back = c->server.CancelWaiting();
  if (back.waiting > 0) return Tell(c, true, TakenBackText(back));
  Tell(c, true, "Nothing was taken back: all had been sent");
}

bool CanSelectAll(const Console* c) {
  return c->stop == FocusStop::kFiles || c->stop == FocusStop::kQueue ||
         XwCanEdit(XwGetFocus(c->window), XWU_SELECT_ALL);
}

void SelectAll(Console* c) {
  XwWindow* box = XwGetFocus(c->window);
  if (XwCanEdit(box, XWU_SELECT_ALL)) return XwEdit(box, XWU_SELECT_ALL);
  if (c->stop == FocusStop::kQueue)
    c->queue.selection.All();
  else
    c->files.selection.All();
  c->damage = kAllPanes;
}

}  // namespace console
