// Rows that are carried out of their table: jobs to a printer, files to the queue or to a printer.
#include <utility>

#include "app/format/words.h"
#include "app/window/console.h"
#include "app/window/queue_commands.h"

namespace console {
namespace {

constexpr int kArrowCursor = 0, kHandCursor = 16;

bool CarriesFiles(const Console* c) {
  return c->files.table.Carries();
}

bool IsFiles(const Console* c, const Table* source) {
  return source == &c->files.table;
}

// What takes the rows under the pointer. The table of the files scrolls on while the pointer is
// dragged over the head of the queue, so a drag of files becomes a carry over the rows below it;
// from then on the whole pane takes them.
CarryTarget TargetUnder(const Console* c, const Table& source, const Hit& hit) {
  const bool on_printer = hit.owner == kPrinters && hit.part != SideList::kBody;
  if (on_printer) return {false, c->printer_list.NameAt(hit.index), &source};
  const bool in_head = CarriesFiles(c) && c->layout.queue_head.Holds(Inp.px, Inp.py);
  const bool in_queue = in_head || c->layout.queue.Holds(Inp.px, Inp.py);
  return {in_queue && IsFiles(c, &source), "", &source};
}

std::string WhyNotPrintCarried(const Console* c, const CarryTarget& to) {
  const std::string why = to.queue ? WhyNotPrint(c) : WhyNotPrintOn(c, to.printer);
  const ChosenFiles& chosen = c->files.Chosen();
  if (!why.empty() || chosen.files > 0) return why;
  return chosen.folders == 0   ? "The file is not there any more"
         : chosen.folders == 1 ? "A folder is not printed"
                               : "Folders are not printed";
}

std::string PrintHint(const Console* c, const CarryTarget& to) {
  const int files = c->files.Chosen().files;
  const std::string printer = to.queue ? c->printers.chosen() : to.printer;
  return "Drop to print" + (files > 1 ? " " + NumberOf(files, "file", "files") : "") +
         (printer.empty() ? "" : " on " + Quoted(printer));
}

std::string MoveHint(const Console* c, const CarryTarget& to, const VerbCheck& check) {
  const size_t jobs = check.on.size();
  const std::string what = jobs == 1 ? Quoted(c->queue.rows.NameOf(check.on.front()))
                                     : NumberOf(int64_t(jobs), "job", "jobs");
  return "Drop to move " + what + " to " + Quoted(to.printer);
}

void ShowTarget(Console* c) {
  const CarryTarget& to = c->carried_to;
  if (!to || !to.source->Carries()) return ShowDropTarget(c, {}, "");
  std::string why, hint;
  if (IsFiles(c, to.source)) {
    why = WhyNotPrintCarried(c, to);
    if (why.empty()) hint = PrintHint(c, to);
  } else {
    const VerbCheck check = CheckMoveTo(c, to.printer);
    why = check.why_not;
    if (check.possible()) hint = MoveHint(c, to, check);
  }
  ShowDropTarget(c, hint.empty() ? CarryTarget{} : to, hint.empty() ? why : hint);
}

void PrintCarried(Console* c, const CarryTarget& to) {
  const std::string why = WhyNotPrintCarried(c, to);
  if (!why.empty()) return TellWhy(c, why);
  std::vector<std::string> paths;
  for (const std::string& name : c->files.selection.Ids())
    paths.push_back(JoinPath(c->files.folder.path(), name));
  PrintFiles(c, std::move(paths), to.printer);
}

}  // namespace

void ShowDropTarget(Console* c, const CarryTarget& to, const std::string& hint) {
  c->queue.SetTakesDrop(to.queue);
  c->printer_list.takes_drop = to.printer;
  c->status.Hint(hint);
  c->damage |= kQueuePane | kPrintersPane | kStatusPane;
}

bool Carries(const Console* c) {
  return CarriesFiles(c) || c->queue.table.Carries();
}

void FollowCarry(Console* c, const Hit& hit) {
  Table& table = c->files.table.HoldsRow() ? c->files.table : c->queue.table;
  CarryTarget to = table.HoldsRow() ? TargetUnder(c, table, hit) : CarryTarget();
  if (to && table.TakeUp()) {
    SelectionChanged(c, IsFiles(c, &table));
    c->last_press = 0;
  }
  if (!table.Carries()) to = {};
  const bool shows = std::exchange(c->carry_shows, table.Carries());
  if (shows != c->carry_shows) XwSetCursor(c->window, shows ? kArrowCursor : kHandCursor);
  if (to == c->carried_to) return;
  c->carried_to = std::move(to);
  ShowTarget(c);
}

void ShowCarry(Console* c) {
  if (c->carried_to) ShowTarget(c);
}

void EndCarry(Console* c) {
  if (std::exchange(c->carry_shows, false)) XwSetCursor(c->window, kArrowCursor);
  if (std::exchange(c->carried_to, {})) ShowTarget(c);
}

void DropCarried(Console* c) {
  const CarryTarget to = c->carried_to;
  // Something else may have released the table in between.
  const bool carries = to && to.source->Carries();
  EndCarry(c);
  if (!carries) return;
  if (IsFiles(c, to.source)) return PrintCarried(c, to);
  MoveJobsTo(c, to.printer);
}

}  // namespace console
