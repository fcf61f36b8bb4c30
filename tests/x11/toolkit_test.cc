// The toolkit on a real server: sizes in steps, and the size and scale of the screen.
#include <xcb/randr.h>

#include <cmath>

#include "tests/x11/managed.h"
#include "tests/x11/turn.h"
#include "toolkit/xw.h"

namespace x11_test {
namespace {

class Sizes : public Toolkit<X11Test> {
 protected:
  // A session with a shown window that resizes in steps.
  void Session(int width, int height, int step_x, int step_y) {
    XwSession("Session", "Toolkit", 0);
    XwWindow* w = top =
        XwCreate(0, 200, 150, int16_t(width), int16_t(height), [](int) { return 0; });
    if (step_x != 0) XwSetSizes(w, 50, 50, 800, 600, uint16_t(step_x), uint16_t(step_y));
    XwShow(w, 1);
  }
  std::pair<int, int> Size() {
    const auto at = user().Where(Id());
    return {at.width, at.height};
  }
};

// A manager cannot be told of a step that is not whole, so it grants any size: that is answered.
TEST_F(Sizes, AStepThatIsNoWholeNumberOfPixelsIsKeptWithoutHints) {
  setenv("XW_SCALE", "1.5", 1);
  StartServer("openbox", {});
  unsetenv("XW_SCALE");
  setenv("XW_SCALE", "1.5", 1);
  Session(100, 100, 5, 7);
  unsetenv("XW_SCALE");
  ASSERT_TRUE(Run([&] { return user().Viewable(Id()); }));
  Rest();
  const auto hints = user().Words(Id(), "WM_NORMAL_HINTS");
  ASSERT_EQ(hints.size(), 18u);
  EXPECT_EQ(hints[0] & (1u << 6 | 1u << 8), 0u);  // neither increments nor a base
  struct Row {
    int width, height;
  };
  for (const Row& row : {Row{200, 260}, Row{233, 300}, Row{157, 190}}) {
    SCOPED_TRACE(row.width);
    // The manager moves it so; the toolkit answers with whole steps.
    user().Ask(Id(), "_NET_MOVERESIZE_WINDOW",
               {10u | 1u << 10 | 1u << 11, 0, 0, uint32_t(row.width), uint32_t(row.height)});
    Rest();
    EXPECT_EQ(top->width % 5, 0);
    EXPECT_EQ(top->height % 7, 100 % 7);
    EXPECT_LE(std::abs(top->width * 1.5 - row.width), 5 * 1.5);
    const auto [width, height] = Size();
    EXPECT_EQ(width, int(std::floor(top->width * 1.5 + 0.5)));
    EXPECT_EQ(height, int(std::floor((top->height + 24) * 1.5 + 0.5)));
  }
}

class Screens : public Sizes {
 protected:
  void PublishDots(int dpi) {
    const std::string text = "Xft.dpi:\t" + std::to_string(dpi) + "\n";
    xcb_change_property(user().connection(), XCB_PROP_MODE_REPLACE, user().root(),
                        XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8, uint32_t(text.size()),
                        text.data());
    user().Sync();
  }
  // The one monitor gets another mode, and the screen its size.
  void SetMode(uint16_t width, uint16_t height) {
    xcb_connection_t* c = user().connection();
    const xcb_window_t root = user().root();
    xcb_randr_mode_info_t mode{};
    mode.width = mode.htotal = width;
    mode.height = mode.vtotal = height;
    const std::string name = std::to_string(width);
    mode.name_len = uint16_t(name.size());
    x11::Reply<xcb_randr_create_mode_reply_t> made(xcb_randr_create_mode_reply(
        c, xcb_randr_create_mode(c, root, mode, uint32_t(name.size()), name.data()), nullptr));
    x11::Reply<xcb_randr_get_screen_resources_reply_t> all(
        xcb_randr_get_screen_resources_reply(c, xcb_randr_get_screen_resources(c, root), nullptr));
    ASSERT_TRUE(made && all);
    const xcb_randr_output_t output = *xcb_randr_get_screen_resources_outputs(all.p);
    const xcb_randr_crtc_t crtc = *xcb_randr_get_screen_resources_crtcs(all.p);
    xcb_randr_add_output_mode(c, output, made->mode);
    x11::Reply<xcb_randr_set_crtc_config_reply_t> set(xcb_randr_set_crtc_config_reply(
        c,
        xcb_randr_set_crtc_config(c, crtc, 0, 0, 0, 0, made->mode, XCB_RANDR_ROTATION_ROTATE_0, 1,
                                  &output),
        nullptr));
    ASSERT_TRUE(set && set->status == XCB_RANDR_SET_CONFIG_SUCCESS);
    xcb_randr_set_screen_size(c, root, width, height, 200, 150);
    user().Sync();
  }
  uint32_t LargestWidth() {
    FlushWindow(nullptr);
    const auto hints = user().Words(Id(), "WM_NORMAL_HINTS");
    return hints.size() > 7 ? hints[7] : 0;
  }
};

TEST_F(Screens, FiguresFollowScaleAndSize) {
  StartServer("openbox", {});
  Session(100, 100, 0, 0);
  XwSetSizes(top, 50, 50, 0, 0, 0, 0);
  EXPECT_EQ(XW_SCREENX, 1024);
  PublishDots(192);
  EXPECT_TRUE(Run([] { return XW_SCREENX == 512; }));
  EXPECT_EQ(XW_SCREENY, 384);
  EXPECT_EQ(top->width, 100);
  SetMode(800, 600);
  EXPECT_TRUE(Run([] { return XW_SCREENX == 400; }));
  EXPECT_EQ(XW_SCREENY, 300);
  EXPECT_EQ(LargestWidth(), 800u) << "the screen is the limit that it has";
  PublishDots(96);
  EXPECT_TRUE(Run([] { return XW_SCREENX == 800; }));
  EXPECT_EQ(XW_SCREENY, 600);
  XwSetSizes(top, 50, 50, 300, 0, 0, 0);
  SetMode(640, 480);
  EXPECT_TRUE(Run([] { return XW_SCREENX == 640; }));
  EXPECT_EQ(LargestWidth(), 300u);
}

}  // namespace
}  // namespace x11_test
