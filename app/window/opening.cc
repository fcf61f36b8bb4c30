// Documents that come from elsewhere: from other programs, and as the program's arguments.
#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/model/crumbs.h"
#include "app/window/console.h"
#include "app/work/dropped_paths.h"

namespace console {
namespace {

void QueueDropped(Console* c, const DroppedPaths& dropped) {
  if (c->asking) return;
  const int folders = int(dropped.folders.size());
  if (dropped.files.empty()) {
    if (folders > 0) return EnterFolder(c, dropped.folders.front(), "");
    return Tell(c, false, "What was dropped cannot be printed: " + dropped.trouble);
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
  SendOrders(c, std::move(orders), folders + dropped.others);
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
  // One on a mount that does not answer holds up nothing.
  const BackgroundTask task([paths = std::move(paths)] {
    auto* dropped = new DroppedPaths(LookAtDropped(paths));
    const std::string detail =
        std::to_string(dropped->files.size()) + " " + std::to_string(dropped->folders.size());
    XwPost("dropped", detail.c_str(), TakeDropped, dropped);
  });
  if (task.failed()) Tell(c, false, "What was dropped cannot be looked at just now");
}

void OpenFiles(Console* c, const FilesToOpen& files) {
  const auto& [found, missing] = files;
  ShowDocuments(c, found);
  if (found.empty() && !missing.empty()) ShowFolderOf(c, missing.front());
  std::vector<std::string> names;
  for (const std::string& path : missing) names.push_back(LastName(path));
  if (!names.empty()) Tell(c, false, MissingText(names));
  c->damage |= kStatusPane;
  DrawConsole(c);
}

}  // namespace console
