// Windows of a program under a window manager.
#pragma once
#include <algorithm>

#include "platform/display/x11/x.h"
#include "tests/x11/fixture.h"

namespace x11_test {

using namespace platform;

class Managed : public X11Test {
 protected:
  xcb_window_t Id(WindowRef w) { return x11::NativeOf(w)->id; }
  bool HasState(WindowRef w, const char* state) {
    const auto all = user().Words(Id(w), "_NET_WM_STATE");
    return std::find(all.begin(), all.end(), user().Atom(state)) != all.end();
  }
  // By hand, in steps that the manager can follow.
  void Drag(int x, int y, int dx, int dy) {
    user().Move(x, y);
    user().Button(1, true);
    for (int step = 1; step <= 4; ++step) {
      Settle();
      user().Move(x + dx * step / 4, y + dy * step / 4);
    }
    Settle();
    user().Button(1, false);
    Settle();
  }
  // Where the server has the content, against where the record says it is.
  void ExpectBoundsAgree(WindowRef w) {
    const auto at = user().Where(Id(w));
    EXPECT_EQ(w->content.left, at.x);
    EXPECT_EQ(w->content.top, at.y + w->menu_bar_height);
    EXPECT_EQ(w->content.width(), at.width);
    EXPECT_EQ(w->content.height() + w->menu_bar_height, at.height);
  }
  // A window of another program, shown.
  xcb_window_t Foreign(const Rect& r) {
    xcb_connection_t* c = user().connection();
    const xcb_window_t id = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, id, user().root(), int16_t(r.left), int16_t(r.top),
                      uint16_t(r.width()), uint16_t(r.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    // Where it is asked for: position and size that the user chose.
    const uint32_t hints[18] = {3};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
    xcb_map_window(c, id);
    user().Sync();
    return id;
  }
  // From the top-level frame's bottom window up: is `a` above `b`?
  bool Above(WindowRef a, WindowRef b) { return AboveId(Id(a), Id(b)); }
  bool AboveId(xcb_window_t a, xcb_window_t b) {
    xcb_connection_t* c = user().connection();
    auto* tree = xcb_query_tree_reply(c, xcb_query_tree(c, user().root()), nullptr);
    const xcb_window_t* all = xcb_query_tree_children(tree);
    const xcb_window_t fa = user().Frame(a), fb = user().Frame(b);
    int at_a = -1, at_b = -1;
    for (int i = 0; i < xcb_query_tree_children_length(tree); ++i) {
      if (all[i] == fa) at_a = i;
      if (all[i] == fb) at_b = i;
    }
    free(tree);
    return at_a > at_b;
  }
};

}  // namespace x11_test
