// Devices that the usual test server has not: a wheel that turns in fractions, a pen, a finger.
// They are the input test driver's of an Xorg server without a screen; where there is none, the
// tests are skipped.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/x11/reports.h"

namespace x11_test {
namespace {

constexpr char kConfiguration[] = R"(
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoAddGPU" "false"
EndSection
Section "Device"
  Identifier "video"
  Driver "dummy"
EndSection
Section "Monitor"
  Identifier "monitor"
  HorizSync 1-200
  VertRefresh 1-200
  Modeline "1024x768" 65.0 1024 1048 1184 1344 768 771 777 806
EndSection
Section "Screen"
  Identifier "screen"
  Device "video"
  Monitor "monitor"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Modes "1024x768"
    Virtual 1024 768
  EndSubSection
EndSection
Section "ServerLayout"
  Identifier "layout"
  Screen "screen"
  InputDevice "keys" "CoreKeyboard"
  InputDevice "wheel" "CorePointer"
  InputDevice "pen" "SendCoreEvents"
  InputDevice "finger" "SendCoreEvents"
EndSection
)";

struct DeviceKind {
  const char *name, *type, *pressure;
};
constexpr DeviceKind kDeviceKinds[] = {{"keys", "Keyboard", "false"},
                                       {"wheel", "Pointer", "false"},
                                       {"pen", "PointerAbsoluteProximity", "true"},
                                       {"finger", "Touch", "false"}};
// Axes of the driver's pointers, the range of its absolute ones, and a notch of its wheel.
constexpr int kX = 0, kY = 1, kHorizontal = 2, kVertical = 3, kPressure = 4;
constexpr double kFar = 65535, kFullPressure = 1000, kNotch = 120;
// Logical pixels that a notch is reported as.
constexpr float kNotchPixels = 48;

// The driver's protocol: records with a head of length and type.
struct Head {
  uint32_t length, type;
};
enum : uint32_t { kVersion = 0, kSync = 1, kMotion = 2, kButton = 4, kTouch = 6 };
struct Valuators {
  uint32_t has_unaccelerated;
  uint8_t mask[8];
  double values[64], unaccelerated[64];
};
struct Version {
  Head head;
  uint16_t major, minor;
};
struct Motion {
  Head head;
  uint32_t absolute;
  Valuators axes;
};
struct Button {
  Head head;
  int32_t absolute, button;
  uint32_t press;
  Valuators axes;
};
struct Touch {
  Head head;
  uint32_t id, type;
  Valuators axes;
};
constexpr uint32_t kTouchBegin = 18, kTouchUpdate = 19, kTouchEnd = 20;

using Axes = std::vector<std::pair<int, double>>;

// One device of the server, played over the driver's socket.
class Device {
 public:
  bool Connect(const std::string& path) {
    fd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    if (connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return false;
    Version version{{sizeof version, kVersion}, 1, 0};
    return Send(version) && recv(fd_, &version, sizeof version, MSG_WAITALL) == sizeof version;
  }
  ~Device() {
    if (fd_ >= 0) close(fd_);
  }
  void Move(bool absolute, const Axes& axes) {
    Motion m{{sizeof m, kMotion}, absolute, {}};
    Fill(axes, &m.axes);
    SendAndWait(m);
  }
  void Press(int button, bool down, const Axes& axes) {
    Button b{{sizeof b, kButton}, 1, button, down, {}};
    Fill(axes, &b.axes);
    SendAndWait(b);
  }
  void Finger(uint32_t type, const Axes& axes) {
    Touch t{{sizeof t, kTouch}, 1, type, {}};
    Fill(axes, &t.axes);
    SendAndWait(t);
  }

 private:
  template <class T>
  bool Send(const T& record) {
    return send(fd_, &record, sizeof record, MSG_NOSIGNAL) == sizeof record;
  }
  // The server answers once it has dealt with everything before.
  template <class T>
  void SendAndWait(const T& record) {
    Head head{sizeof head, kSync};
    ASSERT_TRUE(Send(record) && Send(head));
    ASSERT_EQ(recv(fd_, &head, sizeof head, MSG_WAITALL), ssize_t(sizeof head));
  }
  static void Fill(const Axes& axes, Valuators* out) {
    for (const auto& [axis, value] : axes) {
      out->mask[axis / 8] |= uint8_t(1 << axis % 8);
      out->values[axis] = value;
    }
  }
  int fd_ = -1;
};

class Devices : public Reports {
 protected:
  // A focused window with the pointer in it, on a server with the devices.
  void SetUp() override {
    char folder[] = "/tmp/devices.XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    folder_ = folder;
    std::ofstream file(folder_ + "/xorg.conf");
    file << kConfiguration;
    for (const DeviceKind& kind : kDeviceKinds) {
      file << "Section \"InputDevice\"\n  Identifier \"" << kind.name
           << "\"\n  Driver \"inputtest\"\n  Option \"SocketPath\" \"" << folder_ << '/'
           << kind.name << "\"\n  Option \"DeviceType\" \"" << kind.type
           << "\"\n  Option \"PointerHasPressure\" \"" << kind.pressure << "\"\nEndSection\n";
    }
    file.close();
    auto server = support::XServer::WithConfiguration(folder_ + "/xorg.conf");
    if (!server->running() || !wheel.Connect(folder_ + "/wheel") ||
        !pen.Connect(folder_ + "/pen") || !finger.Connect(folder_ + "/finger")) {
      GTEST_SKIP() << "no Xorg server with the dummy video driver and the inputtest device";
    }
    UseServer(std::move(server));
    StartSession();
    window = Ready();
  }
  void TearDown() override {
    Reports::TearDown();
    std::filesystem::remove_all(folder_);
  }
  // The value of an absolute axis at a place on the screen.
  static double Across(double x) { return x / 1023 * kFar; }
  static double Down(double y) { return y / 767 * kFar; }

  Device wheel, pen, finger;
  WindowRef window = nullptr;

 private:
  std::string folder_;
};

// No turn is lost, and none counts twice, whether its position or its click tells of it.
TEST_F(Devices, WholeNotchesCountOnceFromTheFirstOn) {
  wheel.Move(false, {{kX, 3}});
  for (int i = 0; i < 3; ++i) wheel.Move(false, {{kVertical, kNotch}});
  user().Move(700, 700);  // out of the window, where it turns on
  wheel.Move(false, {{kVertical, 5 * kNotch}});
  user().Move(150, 200);
  for (int i = 0; i < 2; ++i) wheel.Move(false, {{kVertical, -kNotch}});
  ASSERT_TRUE(Wait(RawEvent::kScroll, 5));
  Collect([] { return true; });
  const auto scrolls = Of(RawEvent::kScroll);
  ASSERT_EQ(scrolls.size(), 5u);
  for (size_t i = 0; i < 5; ++i)
    EXPECT_FLOAT_EQ(scrolls[i].dy, i < 3 ? kNotchPixels : -kNotchPixels);
}

TEST_F(Devices, APenHasItsPressure) {
  pen.Move(true, {{kX, Across(200)}, {kY, Down(250)}, {kPressure, 0}});
  pen.Press(1, true, {{kPressure, kFullPressure / 2}});
  pen.Move(true, {{kX, Across(230)}, {kPressure, kFullPressure}});
  pen.Press(1, false, {{kPressure, 0}});
  ASSERT_TRUE(Wait(RawEvent::kRelease));
  const auto presses = Of(RawEvent::kPress), motions = Of(RawEvent::kMotion);
  ASSERT_EQ(presses.size(), 1u);
  EXPECT_EQ(presses[0].tablet_type, kEventTabletPoint);
  EXPECT_EQ(presses[0].button, 1);
  EXPECT_NEAR(presses[0].root_x, 200, 1);
  EXPECT_NEAR(presses[0].root_y, 250, 1);
  EXPECT_NEAR(presses[0].tablet.pressure, 32768, 1);
  ASSERT_FALSE(motions.empty());
  EXPECT_EQ(motions.back().tablet.pressure, 65535);
  EXPECT_EQ(motions.back().tablet.buttons, 1);
  EXPECT_NEAR(motions.back().root_x, 230, 1);
  // A mouse between the pen's strokes is a mouse.
  reports.clear();
  wheel.Move(false, {{kX, 3}});
  ASSERT_TRUE(Wait(RawEvent::kMotion));
  EXPECT_EQ(Of(RawEvent::kMotion)[0].tablet_type, 0);
}

TEST_F(Devices, AFingerIsThePrimaryButton) {
  finger.Finger(kTouchBegin, {{kX, Across(200)}, {kY, Down(250)}});
  finger.Finger(kTouchUpdate, {{kX, Across(260)}, {kY, Down(250)}});
  finger.Finger(kTouchEnd, {});
  ASSERT_TRUE(Wait(RawEvent::kRelease));
  const auto presses = Of(RawEvent::kPress), releases = Of(RawEvent::kRelease);
  ASSERT_EQ(presses.size(), 1u);
  EXPECT_EQ(presses[0].button, 1);
  EXPECT_EQ(presses[0].tablet_type, 0);
  EXPECT_NEAR(presses[0].root_x, 200, 1);
  ASSERT_EQ(releases.size(), 1u);
  EXPECT_NEAR(releases[0].root_x, 260, 1);
}

}  // namespace
}  // namespace x11_test
