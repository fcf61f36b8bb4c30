// Documents that come from elsewhere: from other programs, and as the program's arguments.
#include <iterator>
#include <utility>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/model/crumbs.h"
#include "app/window/console.h"
#include "app/work/dropped_paths.h"

namespace console {
namespace {

void TellOthers(Console* c, const DroppedPaths& dropped) {
  const std::string what = dropped.others == 1
                               ? Quoted(dropped.other)
                               : NumberText(dropped.others) + " of what was dropped";
  if (dropped.others > 0) Tell(c, false, what + " cannot be printed: " + dropped.trouble);
}

// What is neither printed nor opened of the folders.
void TellFolders(Console* c, const DroppedPaths& dropped) {
  const bool opens = dropped.files.empty();
  const int folders = int(dropped.folders.size()) - opens;
  if (folders > 0)
    Tell(c, false,
         NumberOf(folders, opens ? "other folder is" : "folder is",
                  opens ? "other folders are" : "folders are") +
             (opens ? " not opened" : " not printed: dropped alone, a folder is opened"));
}

struct Dropped {
  DroppedPaths paths;
  std::string printer;  // in whose row they were dropped; "": elsewhere
  bool own;             // from the table of the files: no folder is opened
};

void QueueDropped(Console* c, const Dropped& all) {
  const auto& [dropped, printer, own] = all;
  if (c->asking) return Tell(c, false, "What was dropped is not printed: the window is to close");
  TellOthers(c, dropped);
  if (!own) TellFolders(c, dropped);
  if (dropped.files.empty()) {
    if (!own && !dropped.folders.empty()) EnterFolder(c, dropped.folders.front(), "");
    return;
  }
  const std::string why = printer.empty() ? WhyNotPrint(c) : WhyNotPrintOn(c, printer);
  if (!why.empty()) return TellWhy(c, why);
  PrintOrder usual = UsualOrder(c);
  if (const PrinterRow* row = c->printers.Find(printer)) {
    usual.printer = printer;
    if (!usual.media.empty() && !HasMedia(*row->printer, usual.media)) {
      c->status.Tell(Tone::kWarning, NoMediaText(printer, usual.media));
      usual.media.clear();
    }
  }
  std::vector<PrintOrder> orders;
  for (const DroppedPaths::File& file : dropped.files) {
    PrintOrder& order = orders.emplace_back(usual);
    order.path = file.path;
    order.document = LastName(file.path);
    order.size = file.size;
  }
  SendOrders(c, std::move(orders), own ? int(dropped.folders.size()) : 0);
}

void TakeDropped(void* data, int taken) {
  const std::unique_ptr<Dropped> dropped(static_cast<Dropped*>(data));
  Console* c = TheConsole();
  if (!taken || !c) return;
  QueueDropped(c, *dropped);
  c->damage |= kStatusPane;
  DrawConsole(c);
}

// One on a mount that does not answer holds up nothing. Each is of another kind: a result would
// replace one of the same kind that still waits.
void LookAt(Console* c, std::vector<std::string> paths, const std::string& printer, bool own) {
  const std::string kind = "dropped" + std::to_string(++c->drops);
  const BackgroundTask task([paths = std::move(paths), printer, own, kind] {
    auto* dropped = new Dropped{LookAtDropped(paths), printer, own};
    const std::string detail = std::to_string(dropped->paths.files.size()) + " " +
                               std::to_string(dropped->paths.folders.size());
    XwPost(kind.c_str(), detail.c_str(), TakeDropped, dropped);
  });
  if (task.failed()) Tell(c, false, "What was dropped cannot be looked at just now");
}

}  // namespace

// Nothing comes of the last drop.
static void DropFailed(Console* c) {
  c->awaited_drops.erase(XwDropNumber());
  Tell(c, false, "What was dropped could not be taken");
  DrawConsole(c);
}

void DragDocuments(Console* c, int what) {
  if (what == XW_DRAG_FAILED) return DropFailed(c);
  const bool over = what == XW_DRAG_OVER && !c->asking;
  const Hit hit = c->hits.At(Inp.item);
  const bool on_row = !c->asking && hit.owner == kPrinters && hit.part != SideList::kBody;
  const std::string at = on_row ? c->printer_list.NameAt(hit.index) : "";
  const std::string row = over ? at : "";
  if (what == XW_DRAG_DROPPED) c->awaited_drops[XwDropNumber()] = at;
  if (over) SetHover(c, {});  // what was under the pointer before
  if (std::exchange(c->drag_shows, over) && over && row == c->drag_printer) return;
  c->drag_printer = row;
  const std::string printer = row.empty() ? c->printers.chosen() : row;
  const std::string why = WhyNotPrintOn(c, printer);
  const bool takes = over && why.empty();
  // What is dragged is not known before it is dropped.
  const std::string where =
      "Drop to print" + (printer.empty() ? "" : " on " + Quoted(printer)) + ", or to open a folder";
  ShowDropTarget(c, takes ? CarryTarget{row.empty(), row} : CarryTarget{},
                 takes  ? where
                 : over ? why
                        : "");
  DrawConsole(c);
}

// The printer on which the documents of the 798 were dropped; "": the chosen one. Of drops during a
// question only the last one comes.
static std::string PlaceOfDrop(Console* c) {
  auto& awaited = c->awaited_drops;
  const auto drop = awaited.find(XwDropNumber());
  if (drop == awaited.end()) return "";
  const std::string printer = drop->second;
  const auto drops = std::distance(awaited.begin(), drop) + 1;
  awaited.erase(awaited.begin(), std::next(drop));
  if (drops > 1)
    Tell(c, false,
         "Only the last of " + NumberText(drops) + " drops was taken: a question was open");
  return printer;
}

void TakeDocuments(Console* c) {
  int count = 0;
  const char* const* files = XwDroppedFiles(&count);
  std::vector<std::string> paths(files, files + count);
  if (Inp.param) return ShowDocuments(c, std::move(paths));
  const std::string printer = PlaceOfDrop(c);
  LookAt(c, std::move(paths), printer, false);
}

void PrintFiles(Console* c, std::vector<std::string> paths, const std::string& printer) {
  LookAt(c, std::move(paths), printer, true);
}

void OpenFiles(Console* c, const FilesToOpen& files) {
  const auto& [found, missing, devices] = files;
  ShowDocuments(c, found);
  const bool leads = found.empty() && !missing.empty() && ParentPath(missing.front()) != "/";
  if (leads) ShowFolderOf(c, missing.front());
  std::vector<std::string> names;
  for (const std::string& path : missing) names.push_back(LastName(path));
  if (!names.empty()) Tell(c, false, MissingText(names));
  c->damage |= kStatusPane;
  DrawConsole(c);
}

}  // namespace console
