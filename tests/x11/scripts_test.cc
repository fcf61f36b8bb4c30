// Texts of five scripts in edit boxes: typed on the headless display, pasted on X from another
// program; selected and cut on both. Both displays show the same.
#include <filesystem>

#include "platform/display/headless/headless.h"
#include "platform/text/utf8.h"
#include "tests/displays/window_picture.h"
#include "tests/os/scratch.h"
#include "tests/x11/selections.h"
#include "tests/x11/turn.h"
#include "toolkit/xw.h"

namespace x11_test {
namespace {

using testkit::Picture;

// What is seen as two characters, and what follows it.
const struct {
  const char *two, *rest;
} kTexts[] = {
    {"e\u0301a\u0308", " \u0141\u00F3d\u017A"},    // Latin, its marks apart
    {"\u0391\u03B8", "\u03AE\u03BD\u03B1"},        // Greek
    {"\u041C\u043E", "\u0441\u043A\u0432\u0430"},  // Cyrillic
    {"\u05E9\u05DC", "\u05D5\u05DD"},              // Hebrew, in stored order
    {"\u6771\u4EAC", "\u5927\u5224"},              // Chinese characters
};
constexpr size_t kCount = std::size(kTexts);
constexpr uint32_t kHome = 0xFF50, kRight = 0xFF53, kShift = 0xFFE1, kControl = 0xFFE3;

class Scripts : public Selections {
 protected:
  void SetUp() override {
    const std::filesystem::path fonts = "/usr/share/fonts/truetype";
    for (const char* file :
         {"dejavu/DejaVuSans.ttf", "dejavu/DejaVuSans-Bold.ttf", "noto/NotoSansHebrew-Regular.ttf",
          "droid/DroidSansFallbackFull.ttf"}) {
      if (!exists(fonts / file)) GTEST_SKIP() << file;
      scratch.Link((fonts / file).filename(), fonts / file);
    }
    setenv("XW_FONTS", scratch.path().c_str(), 1);
  }
  void TearDown() override {
    unsetenv("XW_FONTS");
    Selections::TearDown();
  }
  void Open() {
    XwSession("scripts", "Scripts", 7);
    top = XwCreate(0, 200, 150, 150, 24 + kCount * 34, [](int) { return 0; });
    for (size_t i = 0; i < kCount; ++i)
      boxes[i] =
          XwEditBox(top, "", int(i) + 1, 12, 12 + int(i) * 34, 126, 26, XWC_ENABLED | XWC_VISIBLE);
    XwShow(top, 1);
  }
  void End() {
    XwDestroy(top);
    XwEndSession();
  }
  std::string Text(size_t box) {
    char text[100];
    XwGetTextUtf8(boxes[box], text, sizeof text);
    return text;
  }
  // What the user does in the box until the first two are selected, and until they have been cut.
  template <typename Key, typename Look>
  void SelectAndCut(size_t box, Key key, Look look) {
    key(0, kHome);
    key(kShift, kRight);
    key(kShift, kRight);
    look(box);
    key(kControl, 'x');
    ASSERT_TRUE(Take([&] { return Text(box) == kTexts[box].rest; })) << Text(box);
    EXPECT_EQ(*OfferedText(kClip), kTexts[box].two);
  }
  bool Take(const std::function<bool()>& done) {
    return support::Eventually([&] {
      while (TakeTurn(0)) {
      }
      for (Peer* p : peers) p->Work();
      return done();
    });
  }
  const Scratch scratch;
  XwWindow* top = nullptr;
  XwWindow* boxes[kCount] = {};
};

TEST_F(Scripts, AreTypedPastedSelectedAndCut) {
  setenv("XW_DISPLAY", "headless", 1);
  Picture typed[kCount];
  Open();
  auto press = [&](uint32_t held, uint32_t key) {
    headless::Modifiers(!held ? 0u : held == kShift ? uint32_t{shiftKey} : uint32_t{controlKey});
    headless::KeyDown(key, key < 0x100 ? key : 0);
    headless::KeyUp(key);
    headless::Modifiers(0);
    Take([] { return true; });
  };
  for (size_t i = 0; i < kCount; ++i) {
    XwSetFocus(boxes[i]);
    Take([] { return true; });
    const std::string text = std::string(kTexts[i].two) + kTexts[i].rest;
    for (std::string_view rest = text; !rest.empty();) {
      const uint32_t c = TakeUtf8(&rest);
      headless::KeyDown(0x1000000 + c, c);
      headless::KeyUp(0x1000000 + c, c);
    }
    Take([&] { return Text(i) == text; });
    EXPECT_EQ(Text(i), text);
    SelectAndCut(i, press, [&](size_t box) {
      XwSync();
      const auto seen = headless::TakePicture(static_cast<WindowRef>(top->platform));
      typed[box] = {seen.width, seen.height, seen.pixels};
    });
  }
  EXPECT_TRUE(testkit::MatchesReference(typed[kCount - 1], PICTURES, "scripts"));
  End();
  FinishPlatform();

  StartServer("openbox", {});
  Open();
  const xcb_window_t window = x11::NativeOf(static_cast<WindowRef>(top->platform))->id;
  ASSERT_TRUE(Take([&] { return user().Focus() == window; }));
  auto hold = [&](uint32_t held, uint32_t key) {
    if (held) user().Key(held, true);
    user().Type(key);
    if (held) user().Key(held, false);
    user().Sync();
  };
  Peer& other = NewPeer();
  for (size_t i = 0; i < kCount; ++i) {
    const std::string text = std::string(kTexts[i].two) + kTexts[i].rest;
    other.Offer("CLIPBOARD", text);
    XwSetFocus(boxes[i]);
    hold(kControl, 'v');
    ASSERT_TRUE(Take([&] { return Text(i) == text; })) << Text(i);
    SelectAndCut(i, hold, [&](size_t box) {
      Picture seen;
      Take([&] { return (seen = WindowPicture(user(), window)) == typed[box]; });
      EXPECT_TRUE(testkit::SamePicture(typed[box], seen)) << box;
    });
  }
  End();
}

}  // namespace
}  // namespace x11_test
