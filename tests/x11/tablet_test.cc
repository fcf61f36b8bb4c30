// Pointer events of the second input extension, decoded from their bytes.
#include "platform/display/x11/devices.h"

#include <gtest/gtest.h>
#include <xcb/xinput.h>

#include <cmath>
#include <cstring>
#include <string>

namespace platform::x11 {
namespace {

void Append(std::vector<uint8_t>* out, const void* data, size_t size) {
  const auto* p = static_cast<const uint8_t*>(data);
  out->insert(out->end(), p, p + size);
}

void AppendFixed(std::vector<uint8_t>* out, double value) {
  const int32_t whole = int32_t(std::floor(value));
  const uint32_t part = uint32_t((value - whole) * 4294967296.0);
  Append(out, &whole, 4);
  Append(out, &part, 4);
}

// A motion of device 12 with the axes of `mask` set to `values`, buttons held as in `buttons`.
std::vector<uint8_t> Motion(uint32_t mask, const std::vector<double>& values, uint32_t buttons) {
  xcb_input_button_press_event_t e{};
  e.response_type = XCB_GE_GENERIC;
  e.event_type = XCB_INPUT_MOTION;
  e.deviceid = 2;
  e.sourceid = 12;
  e.event = 77;
  e.time = 1000;
  e.event_x = int32_t(10.5 * 65536);
  e.event_y = int32_t(-3.25 * 65536);
  e.buttons_len = 1;
  e.valuators_len = 1;
  e.mods.effective = 0x05;
  e.group.effective = 1;
  std::vector<uint8_t> bytes;
  Append(&bytes, &e, sizeof e);
  Append(&bytes, &buttons, 4);
  Append(&bytes, &mask, 4);
  for (double v : values) AppendFixed(&bytes, v);
  return bytes;
}

// A pen as its driver announces it: pressure 0..2047, tilt -64..63.
PointerDevice Pen() {
  PointerDevice d;
  d.id = 12;
  d.pressure = {2, 0, 2047};
  d.tilt_x = {3, -64, 63};
  d.tilt_y = {4, -64, 63};
  return d;
}

TEST(PointerEvents, EveryCutIsRefused) {
  const auto bytes = Motion(1 << 0 | 1 << 2 | 1 << 4, {100.5, 1024, -7.75}, 1 << 1);
  for (size_t size = 0; size < bytes.size(); ++size) {
    // The copy is exactly as long as it says, so that a read past its end is seen.
    const std::vector<uint8_t> cut(bytes.begin(), bytes.begin() + long(size));
    PointerEvent e;
    EXPECT_FALSE(DecodePointerEvent(cut.data(), cut.size(), &e)) << size;
  }
  auto huge = bytes;
  const uint16_t words = 0xFFFF;
  memcpy(huge.data() + offsetof(xcb_input_button_press_event_t, valuators_len), &words, 2);
  PointerEvent e;
  EXPECT_FALSE(DecodePointerEvent(huge.data(), huge.size(), &e));
}

TEST(PointerEvents, PensHavePressureTiltAndButtons) {
  struct Row {
    double pressure, tilt_x, tilt_y;
    uint32_t held;
    TabletPoint wanted;
  };
  constexpr uint32_t kTip = 1 << 1, kMiddle = 1 << 2, kRight = 1 << 3;
  const Row rows[] = {
      {0, -64, 63, 0, {0, 0, -32767, 32767}},
      {2047, 63, -64, kTip, {1, 65535, 32767, -32767}},
      {1023.5, -0.5, -0.5, kTip | kRight, {3, 32768, 0, 0}},
      {5000, 900, -900, kMiddle, {4, 65535, 32767, -32767}},
  };
  PointerDevice pen = Pen();
  for (const Row& row : rows) {
    const auto bytes =
        Motion(1 << 2 | 1 << 3 | 1 << 4, {row.pressure, row.tilt_x, row.tilt_y}, row.held);
    PointerEvent e;
    ASSERT_TRUE(DecodePointerEvent(bytes.data(), bytes.size(), &e));
    TakeTablet(&pen, e);
    EXPECT_EQ(pen.tablet.pressure, row.wanted.pressure);
    EXPECT_EQ(pen.tablet.tilt_x, row.wanted.tilt_x);
    EXPECT_EQ(pen.tablet.tilt_y, row.wanted.tilt_y);
    EXPECT_EQ(pen.tablet.buttons, row.wanted.buttons);
  }
  // What an event does not name stays.
  const auto bytes = Motion(1 << 3, {63}, 0);
  PointerEvent e;
  ASSERT_TRUE(DecodePointerEvent(bytes.data(), bytes.size(), &e));
  TakeTablet(&pen, e);
  EXPECT_EQ(pen.tablet.pressure, 65535);
  EXPECT_EQ(pen.tablet.tilt_x, 32767);
}

TEST(PointerEvents, WheelsCountFractionsOfANotch) {
  PointerDevice d;
  d.vertical.number = 3;
  d.vertical.increment = 15;
  d.horizontal.number = 2;
  d.horizontal.increment = -10;  // turned round
  auto turn = [&d](int axis, double value) {
    PointerEvent e;
    e.values = {{axis, value}};
    return TakeScroll(&d, e);
  };
  EXPECT_EQ(turn(3, 1000).dy, 0);  // the first position is no turn
  EXPECT_DOUBLE_EQ(turn(3, 1015).dy, 1);
  EXPECT_DOUBLE_EQ(turn(3, 1012).dy, -0.2);
  EXPECT_EQ(turn(2, 0).dx, 0);
  EXPECT_DOUBLE_EQ(turn(2, 5).dx, -0.5);
  EXPECT_EQ(turn(3, 1e9).dy, 0);  // reset
  d.vertical.valid = false;       // the pointer was elsewhere
  EXPECT_EQ(turn(3, 1030).dy, 0);
  d.vertical.increment = 0;
  EXPECT_EQ(turn(3, 1060).dy, 0);
}

}  // namespace
}  // namespace platform::x11
