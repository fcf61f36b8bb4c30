// The strip over the status line while the server is away: why, when it is tried again, and what
// can be done about it.
#pragma once
#include <string>

#include "app/look/hits.h"
#include "app/panes/layout.h"
#include "app/server/server.h"

namespace console {

struct AwayBanner {
  static constexpr int kHeight = 34;

  // All three are looked at for as long as it lives.
  AwayBanner(const Layout& layout_of_all, const ServerState& state_now, const std::string& server)
      : layout(layout_of_all), state(state_now), host(server) {}
  void MakeControls(XwWindow* window);
  // After a new state: true when it comes or goes, and the window is laid out again. It stays while
  // the server is tried again.
  bool Follow();
  // Both buttons stand where the layout has the banner; the second one when starting is offered.
  void Place(bool offers_server);
  void Draw() const;
  void AddHits(Hits* hits) const;
  // What it says.
  std::string Text() const;

  const Layout& layout;
  const ServerState& state;
  const std::string& host;
  bool shown = false;
  int away_s = 0;                                      // since the server went away
  XwWindow *retry = nullptr, *start_server = nullptr;  // of commands
};

}  // namespace console
