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
struct QueueRowHash {
  size_t operator()(const QueueRow& row) const;
};

// What Selection asks of the rows.
struct QueueRowList {
  int count() const { return int(rows.size()); }
  const QueueRow& IdAt(int row) const { return rows[size_t(row)]; }
  int RowOf(const QueueRow& id) const;
  bool Has(const QueueRow& id) const;

  std::vector<QueueRow> rows;
  // Was sent, and can be gone for a moment before the list that shows it as a job has come.
  std::vector<QueueRow> expected;
};

struct QueuePane {
  // Both are looked at for as long as the pane lives.
  QueuePane(const Layout& layout_of_all, const ServerState& state_now);

  void MakeControls(XwWindow* window);
  void Place();
  void Draw(const Hit& hover, bool focused);
  void AddHits(Hits* hits) const;
  // After a new state: rows in order, the selection stays on its jobs.
  void Fill();
  // Whether it can be done to one of the selected rows.
  bool CanChange(JobAction action) const;
  // Does it to all of them where it can be done.
  void Change(JobAction action, Server* server) const;

  const Layout& layout;
  const ServerState& state;
  QueueRowList list;
  std::vector<QueueRow>& rows = list.rows;
  SelectionOf<QueueRowList, QueueRow, QueueRowHash> selection{list};
  Table table;
  XwWindow *hold = nullptr, *release = nullptr, *remove = nullptr;  // of commands
};

}  // namespace console
