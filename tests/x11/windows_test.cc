// Windows on a real server: what a person would see, asked of the server.
#include "tests/x11/session.h"

namespace x11_test {
namespace {

using namespace platform;

TEST_F(X11Test, AWindowShowsItsPicture) {
  Start();
  WindowRef w = Show("Picture", {100, 100, 300, 250});
  ASSERT_NE(w, nullptr);
  const support::Screenshot shot = user().Look();
  EXPECT_EQ(shot.at(100, 100), 0x3366CCu);
  EXPECT_EQ(shot.at(299, 249), 0x3366CCu);
  EXPECT_NE(shot.at(300, 249), 0x3366CCu);
  EXPECT_NE(shot.at(299, 250), 0x3366CCu);
}

}  // namespace
}  // namespace x11_test
