// The server's keymap as read here, against what xkbcommon reads of it over a connection of its
// own: every key, in every layout, with every combination of modifiers.
#include <dlfcn.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <cstdlib>

#include "platform/display/x11/x.h"
#include "platform/late_library.h"
#include "tests/x11/fixture.h"

namespace x11_test {
namespace {

using namespace platform;

// xkbcommon's reader and the xcb that belongs to it. Loaded beside the one that the program is
// linked with; neither sees the other's names.
class Reader {
 public:
  bool Open() {
    for (const char* name : {"libxcb.so.1", "libxkbcommon.so.0", "libxkbcommon-x11.so.0"}) {
      libraries_.push_back(dlopen(name, RTLD_NOW | RTLD_LOCAL));
      if (libraries_.back() == nullptr) return false;
    }
    auto* xcb = libraries_[0];
    auto* common = libraries_[1];
    auto* x = libraries_[2];
    return FindFunction(xcb, "xcb_connect", &connect) &&
           FindFunction(x, "xkb_x11_setup_xkb_extension", &setup) &&
           FindFunction(x, "xkb_x11_get_core_keyboard_device_id", &device) &&
           FindFunction(x, "xkb_x11_keymap_new_from_device", &keymap_new) &&
           FindFunction(common, "xkb_context_new", &context_new) &&
           FindFunction(common, "xkb_state_new", &state_new) &&
           FindFunction(common, "xkb_state_update_mask", &update) &&
           FindFunction(common, "xkb_state_key_get_one_sym", &one_sym) &&
           FindFunction(common, "xkb_keymap_num_layouts", &layouts) &&
           FindFunction(common, "xkb_keymap_unref", &keymap_unref) &&
           FindFunction(common, "xkb_state_unref", &state_unref) &&
           FindFunction(common, "xkb_context_unref", &context_unref) &&
           FindFunction(xcb, "xcb_disconnect", &disconnect);
  }
  decltype(&::xcb_connect) connect = nullptr;
  decltype(&::xcb_disconnect) disconnect = nullptr;
  decltype(&xkb_x11_setup_xkb_extension) setup = nullptr;
  decltype(&xkb_x11_get_core_keyboard_device_id) device = nullptr;
  decltype(&xkb_x11_keymap_new_from_device) keymap_new = nullptr;
  decltype(&xkb_context_new) context_new = nullptr;
  decltype(&xkb_context_unref) context_unref = nullptr;
  decltype(&xkb_state_new) state_new = nullptr;
  decltype(&xkb_state_unref) state_unref = nullptr;
  decltype(&xkb_state_update_mask) update = nullptr;
  decltype(&xkb_state_key_get_one_sym) one_sym = nullptr;
  decltype(&xkb_keymap_num_layouts) layouts = nullptr;
  decltype(&xkb_keymap_unref) keymap_unref = nullptr;

 private:
  std::vector<void*> libraries_;
};

// How many of all the combinations differ; the first few are told.
int Differences(const Reader& r, xkb_keymap* map) {
  xkb_state* state = r.state_new(map);
  int wrong = 0;
  for (unsigned group = 0; group < r.layouts(map) && group < 4; ++group) {
    for (unsigned mods = 0; mods < 256; ++mods) {
      r.update(state, mods, 0, 0, group, 0, 0);
      for (int code = 8; code < 256; ++code) {
        const uint32_t wanted = r.one_sym(state, xkb_keycode_t(code));
        const uint32_t found = x11::KeysymOf(uint8_t(code), int(group), uint8_t(mods));
        if (wanted == found) continue;
        if (++wrong <= 3) {
          ADD_FAILURE() << "key " << code << " group " << group << " modifiers " << mods << ": "
                        << std::hex << found << ", not " << wanted;
        }
      }
    }
  }
  r.state_unref(state);
  return wrong;
}

TEST_F(X11Test, KeymapsAreReadAsTheLibraryReadsThem) {
  Reader r;
  if (!r.Open()) GTEST_SKIP() << "no libxkbcommon-x11";
  Start();
  Show("Keys", {50, 80, 250, 180});
  xcb_connection_t* c = r.connect(nullptr, nullptr);
  ASSERT_TRUE(
      r.setup(c, 1, 0, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr));
  xkb_context* context = r.context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES);
  for (const char* layout :
       {"us", "de", "fr", "us,ru,gr,il", "ru,us", "us -variant intl", "de -variant neo",
        "fr -variant bepo", "ca -variant multix", "jp", "tr", "cz,sk", "in -variant eng",
        "us,de -option grp:alt_shift_toggle,caps:swapescape,lv3:ralt_switch,numpad:mac"}) {
    SCOPED_TRACE(layout);
    ASSERT_EQ(system((std::string("setxkbmap -option ; setxkbmap ") + layout).c_str()), 0);
    // What has changed is reported before the next picture is answered.
    for (int i = 0; i < 3; ++i) {
      kX11Display.flush(true);
      RunUntil([] { return true; });
    }
    xkb_keymap* map = r.keymap_new(context, c, r.device(c), XKB_KEYMAP_COMPILE_NO_FLAGS);
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(Differences(r, map), 0);
    r.keymap_unref(map);
  }
  r.context_unref(context);
  r.disconnect(c);
}

}  // namespace
}  // namespace x11_test
