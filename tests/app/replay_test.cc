// The console recorded, and its recording replayed: the same events and the same picture on the
// headless display, the same events on X.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <sstream>

#include "app/window/console.h"
#include "platform/display/headless/headless.h"
#include "platform/windows/windows.h"
#include "tests/app/scripted_server.h"
#include "tests/os/scratch.h"
#include "tests/support/trace.h"
#include "tests/support/x_server.h"

namespace console {
namespace {

namespace display = platform::headless;

// Of this process and its children, so that tests can run side by side.
const std::string kAddress =
    "127.61." + std::to_string(getpid() >> 8 & 255) + "." + std::to_string(getpid() & 255);

// --- In the program's process

Console* opened;
XwHandler traced;
std::string picture_file;

// The last picture is that before the end.
int Watch(int type) {
  if (type == XWE_CLOSE && !picture_file.empty()) {
    XwSync();
    const auto w = static_cast<platform::WindowRef>(opened->window->platform);
    display::WritePng(display::TakePicture(w), picture_file);
  }
  return traced(type);
}

void Start(const std::string& home) {
  setenv("HOME", home.c_str(), 1);
  setenv("USER", "mia", 1);
  XwSession("Quorvik", "Quorvik", 7);
  opened = OpenConsole(kAddress, home);
  if (!opened) _exit(8);
  support::HookTrace(opened->window, "main");
  traced = opened->window->handler;
  opened->window->handler = Watch;
}

int Pump(int type) {
  return type;
}

void Turn(int times) {
  while (times-- > 0) XwWaitEvent(nullptr);
}

void Until(const std::function<bool()>& holds) {
  for (int i = 0; i < 20000 && !holds(); ++i) {
    usleep(1000);
    Turn(1);
  }
  if (!holds()) _exit(9);
}

void Click(const Area& a) {
  display::Click(opened->window->x + a.x + a.w / 2, opened->window->y + a.y + a.h / 2);
  Turn(2);
}

void ControlP() {
  display::Modifiers(platform::controlKey);
  display::KeyDown('p', 'p');
  display::KeyUp('p', 'p');
  display::Modifiers(0);
  Turn(2);
}

// What the user does.
[[noreturn]] void Record(const std::string& home) {
  display::UseSteppedClock(1000);
  Start(home);
  XwWindow* pump = XwCreate(0, 0, 0, 50, 50, Pump);
  display::Step(0.007);  // never at the moment of a timer of the console
  XwTimer(pump, 1, 20);
  Console* c = opened;
  Until([&] { return c->state.link == Link::kReady && !c->state.printers->empty(); });
  const auto w = static_cast<platform::WindowRef>(c->window->platform);
  display::Configure(w, {40, 120, 40 + 860, 120 + 600});
  Turn(3);
  Until([&] { return c->files.folder.Find("Jobs") >= 0; });
  Click(c->files.table.RowArea(c->files.folder.Find("Jobs")));
  Click(c->files.table.RowArea(c->files.folder.Find("Jobs")));
  Until([&] { return c->files.folder.Find("Überlänge.pdf") >= 0; });
  Click(c->files.table.RowArea(c->files.folder.Find("Überlänge.pdf")));
  ControlP();
  Until([&] { return c->queue.rows.count() == 1 && !c->queue.rows.IdAt(0).outgoing; });
  Click(c->files.table.RowArea(c->files.folder.Find("b.txt")));
  display::Scroll(0, 40);
  Click(c->layout.copies);
  display::KeyDown('2', '2');
  display::KeyUp('2', '2');
  Turn(2);
  Click(c->layout.print);
  Until([&] { return c->queue.rows.count() == 2 && !c->queue.rows.IdAt(0).outgoing; });
  Click(c->queue.table.RowArea(0));
  Click(c->queue.head.hold_area);
  Until([&] { return c->state.jobs->at(0).state == NC_JOB_HELD && c->state.pending.empty(); });
  display::OpenFiles({home + "/Jobs/Überlänge.pdf"}, true);
  Until([&] { return c->files.table.selected() == c->files.folder.Find("Überlänge.pdf"); });
  Click(c->queue.table.RowArea(1));
  Click(c->queue.head.remove_area);
  Until([&] { return c->queue.rows.count() == 1; });
  display::MovePointer(c->window->x + 300, c->window->y + 200);
  Turn(9);
  display::Close(w);
  for (;;) XwWaitEvent(nullptr);
}

[[noreturn]] void Replay(const std::string& home) {
  Start(home);
  XwRunEventLoop();
}

// --- In the test's

struct Outcome {
  int status = -1;
  std::string trace;
};

Outcome RunProgram(void (*program)(const std::string&), const std::string& home,
                   const std::vector<std::pair<const char*, std::string>>& environment,
                   const std::string& picture) {
  scripted::Server server(kAddress);
  int ends[2];
  Outcome o;
  if (pipe(ends) != 0) return o;
  const pid_t pid = fork();
  if (pid == 0) {
    close(ends[0]);
    for (const auto& [name, value] : environment) setenv(name, value.c_str(), 1);
    picture_file = picture;
    support::WriteTraceTo(ends[1]);
    program(home);
  }
  close(ends[1]);
  char bytes[4096];
  ssize_t n;
  while ((n = read(ends[0], bytes, sizeof bytes)) > 0) o.trace.append(bytes, size_t(n));
  close(ends[0]);
  waitpid(pid, &o.status, 0);
  o.trace = support::MergeMotions(o.trace);
  return o;
}

// A trace without the lines that begin so. Redraws depend on when a result comes, and on X on what
// the server has lost; timers on the time.
std::string Without(const std::vector<const char*>& beginnings, const std::string& trace) {
  std::string rest;
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line);)
    if (std::none_of(beginnings.begin(), beginnings.end(),
                     [&](const char* b) { return line.starts_with(b); }))
      rest += line + "\n";
  return support::MergeMotions(rest);
}

// Folders that are read slowly: longer than is waited for them at once.
FolderReader::Read usual_read;
void ReadSlowly(FolderReading* r) {
  usleep(40000);
  usual_read(r);
}

class Recording : public testing::Test {
 protected:
  void SetUp() override {
    home_.Folder("home/Jobs");
    home_.File("home/Jobs/Überlänge.pdf", std::string(70000, 'x'));
    home_.File("home/Jobs/b.txt", "words\n");
    file_ = home_.At("recording");
    recorded_ = RunProgram(Record, home_.At("home"),
                           {{"XW_DISPLAY", "headless"}, {"XW_RECORD", file_}}, home_.At("a.png"));
    ASSERT_EQ(recorded_.status, 0);
    ASSERT_NE(recorded_.trace.find("main 778"), std::string::npos) << recorded_.trace;
  }
  Scratch home_;
  std::string file_;
  Outcome recorded_;
};

TEST_F(Recording, ReplaysToTheSameTraceAndPicture) {
  // Folders that were read at once are waited for, and those that were waited for come no sooner.
  usual_read = FolderReader::read;
  for (const bool slow : {false, true}) {
    FolderReader::read = slow ? ReadSlowly : usual_read;
    if (slow) {
      recorded_ = RunProgram(Record, home_.At("home"),
                             {{"XW_DISPLAY", "headless"}, {"XW_RECORD", file_}}, home_.At("a.png"));
      ASSERT_EQ(recorded_.status, 0);
    }
    for (const bool slow_again : {false, true}) {
      FolderReader::read = slow_again ? ReadSlowly : usual_read;
      const Outcome o =
          RunProgram(Replay, home_.At("home"), {{"XW_DISPLAY", "headless"}, {"XW_REPLAY", file_}},
                     home_.At("b.png"));
      EXPECT_EQ(o.status, 0);
      EXPECT_EQ(Without({"main 769"}, o.trace), Without({"main 769"}, recorded_.trace))
          << ReadFile(file_);
      const std::string picture = ReadFile(home_.At("a.png"));
      EXPECT_GT(picture.size(), 5000u);
      EXPECT_TRUE(picture == ReadFile(home_.At("b.png")));
    }
  }
}

TEST_F(Recording, ReplaysOnXWhateverThePointerThereDoes) {
  support::XServer server({"-screen", "0", "1280x1024x24"});
  ASSERT_TRUE(server.running() && server.StartManager("openbox"));
  support::XUser user;
  user.Move(200, 300);
  const Outcome o =
      RunProgram(Replay, home_.At("home"), {{"XW_DISPLAY", "x11"}, {"XW_REPLAY", file_}}, "");
  EXPECT_EQ(o.status, 0);
  // Motions and keys tell of the box below the pointer, as last drawn. A record that was posted
  // while a button was held, and taken later, tells that it is held.
  const auto steady = [](const std::string& trace) {
    std::istringstream lines(Without({"main 769", "main 770", "main 779", "main 112"}, trace));
    std::string rest;
    for (std::string line; std::getline(lines, line);)
      rest += line.substr(0, line.find(" state ")) + "\n";
    return rest;
  };
  EXPECT_EQ(steady(o.trace), steady(recorded_.trace)) << ReadFile(file_);
}

}  // namespace
}  // namespace console
