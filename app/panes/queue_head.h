// The line above the queue: what is in it, the buttons of its commands, and what it shows.
#pragma once
#include <string>

#include "app/model/queue_rows.h"
#include "app/panes/layout.h"
#include "toolkit/xw.h"

namespace console {

struct QueueHead {
  // Where everything is; what has no room is empty.
  Area hold_area, release_area, again_area, remove_area;
  Area label, text_area, owner_area, part_area;

  void MakeControls(XwWindow* window);
  void Place(const Area& head);
  void Enable(bool on);
  // The controls follow what the queue shows.
  void ShowFilter(const QueueFilter& filter);
  // What the controls ask for.
  QueueFilter Filter() const;
  // Where the summary stands.
  Area SummaryArea(const Area& head) const;
  void Draw(const Area& head, const std::string& summary) const;

  XwWindow *hold = nullptr, *release = nullptr, *again = nullptr, *remove = nullptr;  // of commands
  XwWindow *text = nullptr, *owner = nullptr, *part = nullptr;
};

}  // namespace console
