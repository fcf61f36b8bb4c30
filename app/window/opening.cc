// Documents that come from elsewhere: from other programs, and as the program's arguments.
#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/model/crumbs.h"
#include "app/window/console.h"
#include "app/work/dropped_paths.h"

namespace console {
namespace {

// What is neither printed nor opened of it.
void TellLeftOut(Console* c, const DroppedPaths& dropped) {
  const std::string what = dropped.others == 1
                               ? Quoted(dropped.other)
                               : NumberText(dropped.others) + " of what was dropped";
  if (dropped.others > 0) Tell(c, false, what + " cannot be printed: " + dropped.trouble);
  const bool opens = dropped.files.empty();
  const int folders = int(dropped.folders.size()) - opens;
  if (folders > 0)
    Tell(c, false,
         NumberOf(folders, opens ? "other folder is" : "folder is",
                  opens ? "other folders are" : "folders are") +
             (opens ? " not opened" : " not printed: dropped alone, a folder is opened"));
}

void QueueDropped(Console* c, const DroppedPaths& dropped) {
  if (c->asking) return;
  TellLeftOut(c, dropped);
  if (dropped.files.empty()) {
    if (!dropped.folders.empty()) EnterFolder(c, dropped.folders.front(), "");
    return;
  }
  if (const std::string why = WhyNotPrint(c); !why.empty()) return TellWhy(c, why);
  const PrintOrder usual = UsualOrder(c);
  std::vector<PrintOrder> orders;
  for (const DroppedPaths::File& file : dropped.files) {
    PrintOrder& order = orders.emplace_back(usual);
    order.path = file.path;
    order.document = LastName(file.path);
    order.size = file.size;
  }
  SendOrders(c, std::move(orders), 0);
}

void TakeDropped(void* data, int taken) {
  const std::unique_ptr<DroppedPaths> dropped(static_cast<DroppedPaths*>(data));
  Console* c = TheConsole();
  if (!taken || !c) return;
  QueueDropped(c, *dropped);
  c->damage |= kStatusPane;
  DrawConsole(c);
}

}  // namespace

void TakeDocuments(Console* c) {
  int count = 0;
  const char* const* files = XwDroppedFiles(&count);
  std::vector<std::string> paths(files, files + count);
  if (Inp.param) return ShowDocuments(c, std::move(paths));
  // One on a mount that does not answer holds up nothing. Each has a kind of its own: a result
  // would replace one of the same kind that still waits.
  static int drops = 0;
  const BackgroundTask task(
      [paths = std::move(paths), kind = "dropped " + std::to_string(++drops)] {
        auto* dropped = new DroppedPaths(LookAtDropped(paths));
        const std::string detail =
            std::to_string(dropped->files.size()) + " " + std::to_string(dropped->folders.size());
        XwPost(kind.c_str(), detail.c_str(), TakeDropped, dropped);
      });
  if (task.failed()) Tell(c, false, "What was dropped cannot be looked at just now");
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
