// The status line: the server, what was told last, what is being sent.
#pragma once
#include <string>

#include "app/look/hits.h"
#include "app/panes/layout.h"
#include "app/server/server.h"

namespace console {

// What was told last.
struct StatusMessage {
  bool good = true;
  std::string text;  // UTF-8
};

struct StatusPane {
  // All three are looked at for as long as the pane lives.
  StatusPane(const Layout& layout_of_all, const ServerState& state_now, const std::string& server)
      : layout(layout_of_all), state(state_now), host(server) {}
  void MakeControls(XwWindow* window);
  // One button shows while something is being sent, the other when starting a server is offered.
  void Update(bool offers_server);
  // `selection`: what is selected, in words; it shows where nothing is being told.
  void Draw(const Hit& hover, const std::string& selection) const;
  void AddHits(const std::string& selection, Hits* hits) const;

  // Shows it for a few seconds.
  void Tell(bool good, const std::string& utf8);
  bool Tells() const { return message_s_ > 0; }
  const StatusMessage& message() const { return message_; }
  void ForgetMessage() { message_s_ = 0; }
  // A second has passed: true when the line looks different now.
  bool Tick();
  // Something is being sent, or its cancelling is not yet answered.
  bool SendingRuns() const;
  // What the line says of the server, without its name.
  std::string ServerText() const;

  const Layout& layout;
  const ServerState& state;
  const std::string& host;
  int away_s = 0;                                             // since the server went away
  XwWindow *stop_sending = nullptr, *start_server = nullptr;  // of commands

 private:
  // Beside the server's state; empty when nothing is offered.
  Area StartArea() const;

  StatusMessage message_;
  int message_s_ = 0;  // that it is still shown
  bool offers_server_ = false;
};

}  // namespace console
