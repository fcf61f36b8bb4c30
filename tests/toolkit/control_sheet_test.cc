// Every control in every state, as one sheet a scale.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "tests/support/picture.h"
#include "tests/toolkit/stage.h"
#include "toolkit/controls/framework.h"

namespace {

using namespace stage;
using testkit::Picture;

constexpr int kWidth = 748, kHeight = 208, kLeft = 72, kGap = 14, kRow = 36;
constexpr uint32_t kOn = XWC_ENABLED | XWC_VISIBLE;

int32_t no_menu[8];

// Controls side by side.
class Sheet {
 public:
  Sheet() {
    Open();
    window_ = XwCreate(0, 0, 0, kWidth, kHeight, Record);
    XwSetGround(window_, nullptr, 2);
    name_ = XwLabel(window_, "", 0, 4, 12, kLeft - 4, 22, kOn | XWC_LEFT);
    MakeButtons();
    MakeMarks();
    MakeSliders();
    MakeChoices();
    MakeBoxes();
    XwShow(window_, 1);
    input::Focus(Native(window_));
    Settle();
  }

  // A strip more: all controls after `change` was called with each of them.
  void Add(const char* name, const std::function<void(XwWindow*)>& change) {
    for (XwWindow* c : controls_) change(c);
    const Picture strip = Look(name);
    pixels_.insert(pixels_.end(), strip.pixels.begin(), strip.pixels.end());
  }
  // The same of what one control at a time can have.
  void AddOneByOne(const char* name, const std::function<void(XwWindow*)>& change) {
    Picture strip = Look(name);
    for (XwWindow* c : controls_) {
      change(c);
      Copy(Look(name), c, &strip);
    }
    pixels_.insert(pixels_.end(), strip.pixels.begin(), strip.pixels.end());
  }
  Picture Whole() const {
    const int width = Device(kWidth);
    return {width, int(pixels_.size()) / width, pixels_};
  }

 private:
  XwWindow* Put(XwWindow* control) {
    controls_.push_back(control);
    x_ += control->width + kGap;
    return control;
  }
  XwWindow* Button(const char* text, int width, uint32_t style, XwValue value = 0) {
    return Put(XwButton(window_, text, 1, x_, 10, width, 26, kOn | style, value));
  }
  void MakeButtons() {
    Button("Plain", 76, 0);
    XwSetDefaultButtons(window_, Button("First", 76, 0), nullptr);
    Button("Bevel", 66, XWC_VARIANT);
    const char* icon = reinterpret_cast<const char*>(IC_EXCHANGE);
    Button(icon, 26, XWC_ICON);
    XwSetText(Button(icon, 70, XWC_ICON | XWC_BESIDE), "Both");
    XwWindow* menu = Button(nullptr, 66, XWC_MENU, reinterpret_cast<XwValue>(no_menu));
    XwSetText(menu, "Menu");
    for (int value : {0, 1, 2}) Button("Head", 58, XWC_HEADER | XWC_LEFT, value);
  }
  void MakeMarks() {
    x_ = kLeft;
    for (uint32_t radio : {0u, uint32_t{XWC_VARIANT}})
      for (int value : {0, 1, 2})
        Put(XwCheckBox(window_, "Ag", 1, x_, 10 + kRow, kOn | radio, value));
    for (uint32_t frame : {uint32_t{XWC_VARIANT}, uint32_t{XWC_ICON}, 0u})
      Put(XwColor(window_, "Hue", 1, x_, 6 + kRow, 40, 26, kOn | frame, 0x5A35D9));
    Put(XwLabel(window_, "Label", 1, x_, 8 + kRow, 56, 22, kOn | XWC_LEFT));
  }
  void MakeSliders() {
    x_ = kLeft;
    const int y = 6 + 2 * kRow;
    for (int value : {0, 40, 100})
      Put(XwSlider(window_, 1, x_, y + 10, 80, 22, kOn, 0, 100, value));
    Put(XwSlider(window_, 1, x_, y, 22, 44, kOn, 0, 100, 40));
    // A small part of the document, most of it, all of it.
    for (int page : {10, 70, 100})
      Put(XwScrollBar(window_, 1, x_, y + 12, 70, 15, kOn, 0, 99, 1, page, 20));
    Put(XwScrollBar(window_, 1, x_, y, 15, 44, kOn, 0, 99, 1, 30, 20));
  }

  void MakeChoices() {
    static const char* const kProfiles[] = {
        "ISO Coated v2", "PSO Uncoated", "", "Japan Color 2011", "GRACoL 2013", "sRGB", nullptr};
    static const char* const kPapers[] = {"A4", "A3", "Letter", nullptr};
    x_ = kLeft;
    const int y = 16 + 3 * kRow;
    Put(XwComboBox(window_, kProfiles, 1, x_, y, 116, 24, kOn, 0));
    Put(XwComboBox(window_, kProfiles, 1, x_, y, 70, 24, kOn, 3));
    Put(XwComboBox(window_, kProfiles, 1, x_, y, 50, 24, kOn, -1));
    // More rows than show, all of them, none; a choice in two of them.
    XwSetValue(Put(XwListBox(window_, kProfiles, 1, x_, y, 124, 84, kOn)), 1);
    XwSetValue(Put(XwListBox(window_, kPapers, 1, x_, y, 80, 84, kOn)), 0);
    Put(XwListBox(window_, nullptr, 1, x_, y, 50, 84, kOn));
  }

  // With a text, empty, one that can only be read, and one beside its menu.
  void MakeBoxes() {
    static const char* const kFiles[] = {"*.pdf", nullptr};
    x_ = kLeft;
    const int y = 166;
    Put(XwEditBox(window_, "report", 1, x_, y, 66, 24, kOn));
    Put(XwEditBox(window_, "", 1, x_, y, 24, 24, kOn));
    Put(XwEditBox(window_, "fixed", 1, x_, y, 50, 24, kOn | XWC_VARIANT));
    XwSetText(Put(XwComboBox(window_, kFiles, 1, x_, y, 84, 24, kOn | XWC_EDITABLE, 0)), "*.pdf");
  }

  static int Device(int logical) { return int(std::lround(logical * atof(getenv("XW_SCALE")))); }

  // The content as it is now.
  Picture Look(const char* name) const {
    XwSetText(name_, name);
    while (RunLoop() != 0) {
    }
    const input::Picture whole = input::TakePicture(Native(window_));
    const int height = Device(kHeight);
    Picture p{whole.width, height, {}};
    p.pixels.assign(whole.pixels.end() - whole.width * height, whole.pixels.end());
    return p;
  }
  static void Copy(const Picture& from, const XwWindow* c, Picture* to) {
    // A pop-up button and its ring reach five pixels below the record.
    const int bottom = std::min(Device(c->y + c->height + 5), to->height);
    const int right = std::min(Device(c->x + c->width + 3), to->width);
    for (int y = Device(c->y - 3); y < bottom; ++y)
      for (int x = Device(c->x - 3); x < right; ++x) {
        const size_t i = size_t(y) * size_t(to->width) + size_t(x);
        to->pixels[i] = from.pixels[i];
      }
  }

  XwWindow *window_, *name_;
  std::vector<XwWindow*> controls_;
  int x_ = kLeft;
  std::vector<uint32_t> pixels_;
};

class ControlSheet : public testing::TestWithParam<const char*> {};

TEST_P(ControlSheet, LooksAsItShould) {
  setenv("XW_SCALE", GetParam(), 1);
  Sheet sheet;
  sheet.Add("Normal", [](XwWindow*) {});
  sheet.Add("Pressed", [](XwWindow* c) { platform::HoldControl(NativeControl(c), true); });
  input::Modifiers(platform::optionKey);
  sheet.Add("Letters", [](XwWindow* c) { platform::HoldControl(NativeControl(c), false); });
  input::KeyDown('z', 'z');  // a lone Alt would open the menu
  input::KeyUp('z', 'z');
  input::Modifiers(0);
  sheet.AddOneByOne("Focused", XwFocusControl);
  sheet.Add("Inactive", [](XwWindow*) { input::Focus(nullptr); });
  sheet.Add("Disabled", [](XwWindow* c) { XwEnable(c, 0); });
  EXPECT_TRUE(
      testkit::MatchesReference(sheet.Whole(), PICTURES, std::string("controls-") + GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Scales, ControlSheet, testing::Values("1", "1.5", "2"));

}  // namespace
