// Where everything is, for a size of the window.
#pragma once
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
  // The middle: places and details are empty where the window is too narrow for them.
  Area places, folder_head, filter_label, filter, folder, details;
  Area queue_head, queue;
  Area status, stop_sending;
};

constexpr int kLeastWidth = 760, kLeastHeight = 480;

Layout LayOut(int width, int height);

}  // namespace console
