// The picture of a window as the screen shows it, its menu bar included.
#pragma once
#include "tests/support/picture.h"
#include "tests/support/x_server.h"

inline testkit::Picture WindowPicture(support::XUser& user, xcb_window_t window) {
  const support::Screenshot screen = user.Look();
  const support::XUser::Geometry g = user.Where(window);
  testkit::Picture p{g.width, g.height, {}};
  for (int y = g.y; y < g.y + g.height; ++y)
    for (int x = g.x; x < g.x + g.width; ++x) p.pixels.push_back(0xFF000000u | screen.at(x, y));
  return p;
}
