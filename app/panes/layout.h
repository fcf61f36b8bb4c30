// Where everything is, for a size of the window.
#pragma once
#include <cstdint>

#include "app/look/area.h"

namespace console {

struct Layout {
  Area tools;
  // On the tool bar: the button that prints, moving about, and how to print.
  Area print, up, refresh;
  Area printer_label, printer;
  Area profile_label, profile;  // empty where there is no room
  Area copies_label, less, copies, more;
  Area priority_label, slider, priority;
  Area hold;
  // Below the tools: what somebody has to do something about; empty when there is nothing.
  Area needs, needs_button;
  // At the sides: empty where they are not wanted, or the window is too narrow for them.
  Area places, printers, folder_head, filter_label, filter, folder, details;
  Area queue_head, queue;
  Area banner;  // empty while the server is there
  Area status, stop_sending;
};

constexpr int kLeastWidth = 760, kLeastHeight = 480;

// What the user wants of the panes. Sizes are in logical pixels, 0 the usual one; each pane has its
// least all the same.
struct PaneSizes {
  // The pane that somebody has opened in a window that is too narrow for it to show by itself; it
  // has its side alone.
  enum Opened : uint8_t { kNone, kPlaces, kPrinters, kDetails };

  bool needs = false;
  bool places = true, printers = true, details = true;  // whether they are wanted
  Opened opened = kNone;
  int left_width = 0, details_width = 0;
  int printers_height = 0, queue_height = 0;
};

Layout LayOut(int width, int height, const PaneSizes& sizes = {});
// Whether a pane shows by itself in a window of that width.
bool ShowsByItself(PaneSizes::Opened pane, int width);

}  // namespace console
