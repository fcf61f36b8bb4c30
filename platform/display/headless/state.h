// What the files of the headless display share.
#pragma once
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/display/headless/headless.h"
#include "platform/display/window.h"

namespace platform::headless {

struct NativeWindow {
  std::vector<uint32_t> buffer, shown;
  int width = 0, height = 0;              // of the buffer
  int shown_width = 0, shown_height = 0;  // of the picture on the "screen"
  bool mapped = false;
  bool unseen = false;  // new: nothing was reported of it yet
  double scale = 1;     // as the window knows it, or is about to hear
  const Cursor* cursor = nullptr;
};

struct State {
  bool open = false;
  std::vector<Screen> screens;  // main first
  bool unseen = false;          // a window is new
  std::vector<RawEvent> raw;    // not handed out: those from `next` on
  size_t next = 0;
  std::deque<std::string> paths;       // of open requests, in the order of `raw`
  std::string path;                    // the one handed out last
  std::vector<const Window*> stack;    // front first
  std::vector<const Window*> windows;  // all, in the order of creation
  const Window* focus = nullptr;
  bool focus_ended = false;  // the window that had it has ended, and no other has it
  int x = 0, y = 0;          // the pointer, logical at this scale
  double scale = 1;
  uint32_t buttons = 0, modifiers = 0;
  uint32_t reported = 0;  // buttons whose press was reported and whose release was not
  uint32_t orphans = 0;   // those of them whose window has ended: their release has none
  struct Key {
    uint32_t unicode = 0;
    const Window* window = nullptr;  // that heard of it going down
    bool orphan = false;             // that window has ended
    bool missed = false;             // let go when no window had the focus
  };
  std::map<uint32_t, Key> held;     // by symbol; a window has heard of each
  uint32_t reported_modifiers = 0;  // to the last window that had the focus
  const Window* pressed_in = nullptr;
  const Window* entered = nullptr;  // the window that knows of the pointer
  // What was asked for; `held` is false while another program has the pointer, or the window is not
  // on the screen.
  struct {
    const Window* window = nullptr;
    GrabMode mode = GrabMode::kNone;
    const Cursor* cursor = nullptr;
    bool held = false;
  } grab;
  bool taken = false;  // another program has the pointer
  // One of the two selections.
  struct Offer {
    SharedText own;      // the program's; null: another's
    SharedText foreign;  // of the other program; null: none, or it answers later
    bool later = false;
  };
  Offer offers[kSelectionCount];
  std::vector<int> asks;               // that the other program has not answered
  std::map<int, std::string> arrived;  // the texts of answers in `raw`
  std::string taken_text;              // the one handed out last
  bool selections_kept = false;        // the other program lets nobody else offer
  SharedText kept;                     // the desktop's copy; it outlives the display
  DeviceRect frames;                   // of new windows
  bool stepped = false;
  double now = 0;
  bool (*idle)() = nullptr;
  Counters counts;
};

State& Headless();
inline NativeWindow* Native(const Window* w) {
  return static_cast<NativeWindow*>(w->native);
}
// Moves the focus and reports it: the keys that are held are let go of in the old window, and what
// changed while no window had it is reported to the new one.
void GiveFocus(const Window* w);
// The scale of a window with this corner (device pixels) and logical size.
double ScaleAt(const Window& w, Point corner, int width, int height);
// The entries of the table.
bool OfferOwnText(Selection which, const SharedText& text);
void AskOtherForText(Selection which, int request, bool wanted);
void KeepOwnText();
// The text of an answer that is handed out; null: none.
std::string* TakeArrived(int request);
// The grab that was asked for begins if it can; a refusal is reported.
void TryGrab();
// The window leaves the screen: a grab of it, and a press in it, end, which is reported.
void LosePointer(const Window* w);

}  // namespace platform::headless
