// The queue: transfers of our own first, then the server's jobs in the order in which they print.
#pragma once
#include <vector>

#include "app/panes/layout.h"
#include "app/server/server.h"
#include "app/table/table.h"

namespace console {

// A row: a transfer of our own, or a job of the server.
struct QueueRow {
  int transfer = 0;  // its number, 0 for a job
  JobId job{};
  bool operator==(const QueueRow&) const = default;
};

struct QueuePane {
  // Both are looked at for as long as the pane lives.
  QueuePane(const Layout& layout_of_all, const ServerState& state_now);

  void MakeControls(XwWindow* window);
  void Place();
  void Draw(const Hit& hover, bool focused);
  void AddHits(Hits* hits) const;
  // After a new state: rows in order, the selection stays on its job.
  void Fill();
  // Whether it can be done to the selected row.
  bool CanChange(JobAction action) const;
  // Does it; nothing where it cannot be done.
  void Change(JobAction action, Server* server) const;

  const Layout& layout;
  const ServerState& state;
  std::vector<QueueRow> rows;
  QueueRow missing;  // was selected when it went; selected again if it comes back
  Table table;
  XwWindow *hold = nullptr, *release = nullptr, *remove = nullptr;  // of commands
};

}  // namespace console
