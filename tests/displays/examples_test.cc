// The examples as a user starts them, and one script of what the user does on both displays: the
// picture on the headless display is the reference, the real window on X, under a window manager,
// shows the same, and the program gets the same events.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/displays/program.h"
#include "tests/displays/window_picture.h"
#include "tests/os/scratch.h"

namespace {

using testkit::Picture;

// What the user has done: nothing, or steps with places in the content. The picture is that of the
// moment behind the last one.
struct State {
  const char* name;
  const char* steps;
};
struct Example {
  const char* name;
  const char* title;
  std::vector<State> states = {};
  const char* argument = nullptr;
};
const Example kExamples[] = {
    {"01-hello", "Hello"},
    {"02-drawing", "Drawing"},
    {"03-menus",
     "Menus",
     {{"keyed", "modifiers 4096\nkey 111\nmodifiers 0"}, {"inactive", "unfocus"}}},
    {"04-buttons",
     "Buttons",
     {{"pressed", "press 276 48"},
      {"keyboard", "key 65289\nkey 65289\nkey 65289\nmodifiers 2048"},
      {"changed",
       "click 28 164\nclick 264 186\nclick 380 108\nclick 200 284\nclick 200 284\n"
       "click 132 186\nclick 316 108\nclick 330 152"},
      {"inactive", "unfocus"}}},
    {"05-fields",
     "Fields",
     {{"typed", "key 65367 key 65288 key 88 key 65289 key 49 key 50"},
      {"combo", "click 389 73 key 65364 key 65364 key 65293"},
      {"in-place", "click 60 283 key 65367 key 65288 key 65293"},
      {"inactive", "unfocus"}}},
    {"06-lists",
     "Lists",
     {{"keyboard", "key 65289 key 65367 key 65362"},
      {"pressed", "click 200 116 click 170 168 press 60 97"},
      {"changed", "click 60 97 click 340 114 click 340 46 key 65364 key 65364 key 65293"},
      {"inactive", "unfocus"}}},
    {"07-dialog",
     "Dialog",
     {{"keyboard", "key 65289 key 51 key 65289 key 65363 key 65289 key 65364"},
      {"changed", "click 150 30 key 65364 key 65293 click 270 235 click 150 200 press 360 277"},
      {"inactive", "unfocus"}}},
    {"08-toolbar",
     "Toolbar",
     {{"keyboard", "key 65289 key 65289 key 32"},
      {"changed", "click 210 20 key 65364 key 65293 click 470 20 click 566 20 press 84 20"},
      {"inactive", "unfocus"}}},
    {"09-alert",
     "Alert",
     {{"keyboard", "key 65289 key 65289 key 32 in 2 key 65289 key 65289 key 65293 in 1"},
      {"escaped", "click 60 30 in 2 key 65307 in 1"}}},
    {"10-clock", "Clock", {}, "10:08:36"},
};

void PrintTo(const Example& e, std::ostream* out) {
  *out << e.name;
}

// The steps as a recording, a twentieth of a second apart. "in 2": keys go to the second window.
// Behind them `rest` seconds until the last line: as long the program shows what they led to, and
// knows nothing of the real pointer and focus.
void WriteRecording(const char* steps, const std::string& file, double rest) {
  std::ofstream out(file);
  out << "xw-record 1\n0.1 focus w1\n";
  std::istringstream lines(steps);
  double time = 0.1;
  int window = 1;
  auto line = [&](const char* kind) -> std::ofstream& {
    out << (time += 0.05) << ' ' << kind << " w" << window;
    return out;
  };
  auto pointer = [&](const char* kind, int x, int y) {
    y += 24;  // the menu bar
    line(kind) << " x=" << x << " y=" << y << " rx=" << 120 + x << " ry=" << 96 + y
               << (*kind == 'm' ? "" : " button=1") << '\n';
  };
  std::string step;
  while (lines >> step) {
    int a = 0, b = 0;
    if (step != "unfocus") lines >> a;
    if (step == "in") {
      window = a;
    } else if (step == "click" || step == "press") {
      lines >> b;
      pointer("motion", a, b);
      pointer("press", a, b);
      if (step == "click") pointer("release", a, b);
    } else if (step == "key") {
      for (const char* kind : {"key-down", "key-up"})
        line(kind) << " key=" << a << " base=" << a << (a < 128 ? " char=" + std::to_string(a) : "")
                   << '\n';
    } else {
      line(step.c_str()) << (a ? " modifiers=" + std::to_string(a) : "") << '\n';
    }
  }
  time += rest;
  pointer("motion", 1, 1);
}

// Of the program at rest; with a recording, at its end.
Picture OnHeadless(const Example& example, const std::string& folder, const char* scale) {
  std::string file = folder + "/" + example.name + ".png";
  unlink(file.c_str());
  setenv("XW_DISPLAY", "headless", 1);
  setenv("XW_SNAPSHOT", file.c_str(), 1);
  setenv("XW_SCALE", scale, 1);
  Program program(std::string(EXAMPLES) + "/" + example.name, example.argument,
                  (folder + "/headless").c_str());
  Picture picture;
  const bool ends_by_itself = getenv("XW_REPLAY");
  if (!ends_by_itself) support::Eventually([&] { return testkit::LoadPng(file, &picture); });
  EXPECT_EQ(ends_by_itself ? program.Wait() : program.End(), 0) << example.name;
  unsetenv("XW_SNAPSHOT");
  testkit::LoadPng(file, &picture);
  return picture;
}

// The types of events that a program has traced, but redraws, motions and the request to quit,
// which come when there is time for them.
std::string Events(const std::string& file) {
  std::istringstream lines(ReadFile(file));
  std::string events;
  for (std::string line; std::getline(lines, line);)
    if (line != "events: 769" && line != "events: 770" && line != "events: 796")
      events += line + '\n';
  return events;
}

// The window's picture once it and the events are those of the headless display, or what it showed
// last.
Picture OnX(const Example& example, const std::string& folder, const Picture& wanted) {
  setenv("XW_DISPLAY", "x11", 1);
  setenv("XW_SCALE", "1", 1);
  support::XServer server({"-screen", "0", "1280x1024x24"});
  EXPECT_TRUE(server.running() && server.StartManager("openbox"));
  support::XUser user;
  Program program(std::string(EXAMPLES) + "/" + example.name, example.argument,
                  (folder + "/x").c_str());
  xcb_window_t window = user.Find(example.title);
  Picture seen;
  if (!window) return seen;
  support::Eventually([&] {
    if (!user.Viewable(window)) return false;
    seen = WindowPicture(user, window);
    return seen == wanted && Events(folder + "/x") == Events(folder + "/headless");
  });
  EXPECT_EQ(program.End(), 0) << example.name;
  return seen;
}

class Examples : public testing::TestWithParam<Example> {
 protected:
  void SetUp() override {
    setenv("XW_FONTS", FONTS, 1);
    setenv("XW_TRACE", "events", 1);
  }
  const Scratch scratch_;
};

TEST_P(Examples, ShowTheSameOnBothDisplays) {
  Picture headless = OnHeadless(GetParam(), scratch_.path(), "1");
  EXPECT_TRUE(testkit::MatchesReference(headless, PICTURES, GetParam().name));
  EXPECT_TRUE(testkit::SamePicture(headless, OnX(GetParam(), scratch_.path(), headless)));
  std::string doubled = std::string(GetParam().name) + "-2x";
  EXPECT_TRUE(
      testkit::MatchesReference(OnHeadless(GetParam(), scratch_.path(), "2"), PICTURES, doubled));
}

TEST_P(Examples, LookTheSameAfterWhatTheUserDid) {
  for (const State& state : GetParam().states) {
    SCOPED_TRACE(state.name);
    const std::string file = scratch_.path() + "/" + state.name, on_x = file + "-x";
    WriteRecording(state.steps, file, 0);
    WriteRecording(state.steps, on_x, 1000);
    setenv("XW_REPLAY", file.c_str(), 1);
    const Picture headless = OnHeadless(GetParam(), scratch_.path(), "1");
    EXPECT_TRUE(testkit::MatchesReference(headless, PICTURES,
                                          std::string(GetParam().name) + "-" + state.name));
    setenv("XW_REPLAY", on_x.c_str(), 1);
    EXPECT_TRUE(testkit::SamePicture(headless, OnX(GetParam(), scratch_.path(), headless)));
    EXPECT_EQ(Events(scratch_.At("x")), Events(scratch_.At("headless")));
    unsetenv("XW_REPLAY");
  }
}

INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(kExamples),
                         [](const auto& i) { return "Example" + std::string(i.param.name, 2); });

}  // namespace
