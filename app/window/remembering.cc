// What is kept of the window between two runs.
#include <algorithm>

#include "app/window/console.h"
#include "app/window/queue_commands.h"

namespace console {
namespace {

// For a home folder that does not answer, at the start and at the end.
constexpr int kMostLoadMs = 500, kMostStoreMs = 500;

// As the window shows it now; what it does not show stays as it was.
Preferences Now(const Console* c) {
  Preferences p = c->remembered.preferences;
  p.window_width = c->window->width;
  p.window_height = c->window->height;
  p.window_left = std::max(0, int(c->window->x));
  p.window_top = std::max(0, int(c->window->y));
  p.file_columns = c->files.table.AskedWidths();
  p.queue_columns = c->queue.table.AskedWidths();
  NotePanes(c, &p);
  if (c->files.folder.known()) p.folder = c->files.folder.path();
  p.printer = c->choice.printer;
  p.file_order = int(c->files.folder.order());
  p.files_descending = c->files.folder.descending();
  p.hidden_names = c->files.folder.rows().shows_hidden() && !c->hidden_for_now;
  p.file_filter = c->files.FilterText();
  const QueueFilter& filter = c->queue.rows.filter();
  p.queue_order = int(c->queue.rows.order());
  p.queue_descending = c->queue.rows.descending();
  p.queue_filter = filter.text;
  p.mine_only = filter.mine;
  p.active_only = filter.part == QueueFilter::kActive;
  p.ended_only = filter.part == QueueFilter::kEnded;
  return p;
}

}  // namespace

Remembered Recall(const std::string& path) {
  const auto read = std::make_shared<Preferences>();
  const BackgroundTask task([read, path] { *read = LoadPreferences(path); });
  // What could not be read in time is not written over.
  if (!task.WaitFor(kMostLoadMs) || task.failed()) return {};
  return {*read, path.empty() ? nullptr : std::make_unique<PreferencesWriter>(path)};
}

void ShowRemembered(Console* c) {
  const Preferences& p = c->remembered.preferences;
  c->files.table.AskWidths(p.file_columns);
  c->queue.table.AskWidths(p.queue_columns);
  RecallPanes(c);
  c->server.SetPeriod(p.refresh_seconds * 1000);
  // The user's own default comes before the printer that was chosen last.
  const std::string& printer = p.default_printer.empty() ? p.printer : p.default_printer;
  if (!printer.empty()) ChoosePrinter(c, printer);
  if (p.file_order <= int(FileOrder::kTime))
    c->files.folder.Sort(FileOrder(p.file_order), p.files_descending);
  c->files.table.SetSort(int(c->files.folder.order()), c->files.folder.descending());
  c->files.folder.ShowHidden(p.hidden_names);
  if (!p.file_filter.empty()) SetFilter(c, p.file_filter);
  if (p.queue_order <= int(QueueOrder::kProfile))
    c->queue.Sort(QueueOrder(p.queue_order), p.queue_descending);
  const auto part = p.active_only  ? QueueFilter::kActive
                    : p.ended_only ? QueueFilter::kEnded
                                   : QueueFilter::kAll;
  FilterQueue(c, {p.mine_only, part, p.queue_filter});
}

void KeepPreferences(Console* c, const Preferences& preferences) {
  Remembered& r = c->remembered;
  r.preferences = preferences;
  r.preferences = Now(c);
  if (r.writer) r.writer->Store(r.preferences);
}

void RememberServer(Console* c) {
  Preferences p = c->remembered.preferences;
  if (c->state.link != Link::kReady || c->remembered.server_fixed || p.server.empty()) return;
  if (!p.recent_servers.empty() && p.recent_servers.front() == p.server) return;
  NoteServer(p.server, &p);
  KeepPreferences(c, p);
}

void Remember(Console* c) {
  Remembered& r = c->remembered;
  if (!r.writer) return;
  Preferences now = Now(c);
  if (now == r.preferences) return;
  r.preferences = std::move(now);
  r.writer->Store(r.preferences);
}

void FinishRemembering(Console* c) {
  Remember(c);
  if (c->remembered.writer) c->remembered.writer->Finish(kMostStoreMs);
}

}  // namespace console
