// The status line: the server, what was told last, what is being sent.
#pragma once
#include <string>
#include <vector>

#include "app/look/hits.h"
#include "app/model/notices.h"
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
  // One button shows while something is being sent, one beside an error that is not read, one
  // while documents wait to be sent.
  void Update();
  // `selection`: what is selected, in words; it shows where nothing is being told.
  void Draw(const Hit& hover, const std::string& selection) const;
  void AddHits(const std::string& selection, Hits* hits) const;

  // Shows it for a few seconds; an error (kBad) until it is read. Both have their place.
  void Tell(Tone tone, const std::string& utf8) { notices_.Tell({tone, utf8}, now_ms_); }
  // That message goes, if it still stands.
  void Forget(const std::string& utf8) { notices_.Forget(utf8); }
  // Why something cannot be done: until it is read.
  void TellReason(const std::string& utf8) { notices_.TellReason(utf8); }
  void PassReason() { notices_.PassReason(); }
  // As of Notices.
  void TellState(const std::string& utf8) { notices_.TellState(utf8); }
  void EndState() { notices_.EndState(); }
  void TellNotSent(int document, const std::string& name, const std::string& trouble) {
    notices_.TellNotSent(document, name, trouble);
  }
  void KeepNotSent(const std::vector<int>& documents) { notices_.KeepNotSent(documents); }
  // What takes a while, `key` names it; "": it is over.
  void Progress(const std::string& key, const std::string& utf8) { notices_.Progress(key, utf8); }
  // What would become of what is being dragged; "": nothing is.
  void Hint(const std::string& utf8) { notices_.Hint(utf8); }
  bool HasError() const { return notices_.HasError(); }
  // What it shows now; without a text: nothing.
  Message message() const { return notices_.Shown(now_ms_); }
  // The error that is shown has been read; without one the message goes.
  void ReadMessage();
  // A second has passed: true when the line looks different now.
  bool Tick();
  // Something is being sent, or its cancelling is not yet answered.
  bool SendingRuns() const;
  // What the line says of the server, without its name.
  std::string ServerText() const;

  const Layout& layout;
  const ServerState& state;
  const std::string& host;
  int queued = 0;  // documents that wait to be sent and can be cancelled
  XwWindow *stop_sending = nullptr, *dismiss = nullptr, *cancel_queued = nullptr;  // of commands

 private:
  // Of the parts, with what separates a part of the sending from the next; 0: it has no room, or
  // there is none. `text` and `bar` are those of the sending.
  struct Widths {
    int server = 0, text = 0, bar = 0, cancel = 0, passing = 0, error = 0;
  };
  // Beside an error with its button stands what passes.
  struct Parts {
    Area server, passing, cancel, error, dismiss, sending;
  };
  Widths Share() const;
  Parts Split() const;
  Message Passing() const { return notices_.Passing(now_ms_); }

  Notices notices_;
  int64_t now_ms_ = 0;  // counted by Tick
  std::string cancel_text_;
};

}  // namespace console
