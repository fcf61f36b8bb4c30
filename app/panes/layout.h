// Where everything is, for a size of the window.
#pragma once
#include "app/look/area.h"

namespace console {

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
  // The middle: places and details are empty where the window is too narrow for them.
  Area places, folder_head, filter_label, filter, folder, details;
  Area queue_head, hold_job, release_job, remove_job, queue;
  Area status, stop_sending;
};

constexpr int kLeastWidth = 760, kLeastHeight = 480;

Layout LayOut(int width, int height);
// Its tool bar (tools_layout.cc).
void LayOutTools(Layout* l);

}  // namespace console
