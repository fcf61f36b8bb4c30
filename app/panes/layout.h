// Where everything is, for a size of the window.
#pragma once
#include <cstdint>

#include "app/look/area.h"

namespace console {

// The width of the label of the files' filter where it is an icon.
constexpr int kFilterIcon = 14;

struct Layout {
  Area tools;
  // On the tool bar; what has no room is empty, and stands in the menu of the options.
  Area print, refresh;
  Area printer_label, printer;
  Area profile_label, profile;
  Area media_label, media;
  Area copies_label, copies;
  Area priority_label, slider, priority;
  Area hold, colour, options;
  // At the sides: empty where they are not wanted, or the window is too narrow for them.
  Area places, printers, folder_head, filter_label, filter, folder, details;
  Area queue_head, queue;
  Area banner;  // empty while the server is there
  Area needs;   // in the same place; empty while nobody is needed
  Area status, stop_sending;
};

constexpr int kLeastWidth = 760, kLeastHeight = 480;

// What the user wants of the panes. Sizes are in logical pixels, 0 the usual one; each pane has its
// least all the same.
struct PaneSizes {
  // The pane that somebody has opened in a window that is too narrow for it to show by itself; it
  // has its side alone.
  enum Opened : uint8_t { kNone, kPlaces, kPrinters, kDetails };

  bool places = true, printers = true, details = true;  // whether they are wanted
  Opened opened = kNone;
  int left_width = 0, details_width = 0;
  int printers_height = 0, queue_height = 0;
};

Layout LayOut(int width, int height, const PaneSizes& sizes = {});
// Whether a pane shows by itself in a window of that width.
bool ShowsByItself(PaneSizes::Opened pane, int width);
// Its tool bar (tools_layout.cc).
void LayOutTools(Layout* l);

}  // namespace console
