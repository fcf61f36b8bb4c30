// Random input over the whole console, beside a print server: nothing that a user or the desktop
// does ends it but a request to quit, and it can always be left. QUORVIK_SEED chooses the first
// seed.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "app/window/console.h"
#include "platform/access/access.h"
#include "platform/display/headless/headless.h"
#include "platform/display/window.h"
#include "platform/events/timers.h"
#include "platform/windows/internal.h"
#include "tests/os/scratch.h"
#include "tests/printserverd/daemon.h"
#include "tests/support/random_input.h"
#include "tests/support/seed.h"
#include "tests/support/time_limit.h"
#include "toolkit/xw.h"

namespace console {
namespace {

namespace display = platform::headless;

constexpr int kPrograms = 10;  // tests, which may run side by side
constexpr double kPeriod = 0.005;
constexpr int kLookEach = 50;  // events
// Turns after which a console that was told to end has not done so.
constexpr int kLastTurns = 4000;

bool Long() {
  return getenv("QUORVIK_LONG") != nullptr;
}
int64_t EventsOfASeed() {
  return Long() ? 100000 : 10000;
}

// --- In the console's process

// Outlives it: a console that was left is started again.
struct Progress {
  int64_t events = 0;
  int starts = 0;
  bool done = false;  // what came to an end after that was told to
};
Progress* progress;
support::RandomInput* user;
int last_turns = 0;

[[noreturn]] void Fail(const char* what) {
  fprintf(stderr, "%s, after %lld events, in the console's start %d\n", what,
          static_cast<long long>(progress->events), progress->starts);
  _exit(9);
}

platform::WindowRef AnyWindow() {
  const auto& all = platform::WindowList();
  return all.empty() ? nullptr : all[user->Number(uint32_t(all.size()))];
}

std::vector<platform::Rect> places;  // of all that the described tree names

void LookAt(const std::vector<platform::DescribedNode>& nodes, std::set<uint64_t>* serials) {
  for (const platform::DescribedNode& n : nodes) {
    if (!serials->insert(n.serial).second) Fail("two nodes of the described tree are one");
    if (!n.what.bounds.empty()) places.push_back(n.what.bounds);
    LookAt(n.children, serials);
  }
}

// A click on something that is there, or a drag to it: blind events rarely hit anything.
void Aim() {
  if (places.empty()) return;
  const platform::Rect& r = places[user->Number(uint32_t(places.size()))];
  display::MovePointer((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  const int button = user->Number(6) ? 1 : 2;
  display::Press(button);
  if (user->Number(4)) display::Release(button);
}

// Told to end, it ends, whatever is open, once an alert has its answer.
void Leave() {
  progress->done = true;
  if (last_turns % 10 == 0) {
    // An alert ends by its answer alone: Escape gives one.
    support::RandomInput::LetGo();
    display::Focus(AnyWindow());
    display::Modifiers(0);
    display::KeyDown(0xFF1B, 27);
    display::KeyUp(0xFF1B, 27);
    display::Quit();
  }
  if (++last_turns > kLastTurns) Fail("the console does not end");
}

// In every wait, that of a menu or an alert too.
void Turn(platform::EventLoopTimerRef, void*) {
  if (progress->events >= EventsOfASeed()) return Leave();
  const int64_t before = progress->events;
  for (int i = user->Between(1, 6); i > 0; --i, ++progress->events)
    user->Number(4) ? user->Act(AnyWindow) : Aim();
  // The server and the folder have real time.
  if (user->Number(100) == 0) usleep(1000);
  if (before / kLookEach == progress->events / kLookEach) return;
  std::set<uint64_t> serials;
  places.clear();
  LookAt(platform::DescribeTree(), &serials);
}

[[noreturn]] void RunConsole(const std::string& host, const std::string& home, uint64_t seed) {
  for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "PATH"})
    setenv(name, (home + "/..").c_str(), 1);
  setenv("USER", "mia", 1);
  setenv("QUORVIK_SERVER", host.c_str(), 1);
  setenv("XW_DISPLAY", "headless", 1);
  user = new support::RandomInput(seed, {-10, -10, 1290, 1000}, 60);
  display::UseSteppedClock(1000);
  XwSession("Quorvik", "Quorvik", 7);
  if (!OpenConsole(host, home)) Fail("it does not open");
  platform::InstallEventLoopTimer(kPeriod, kPeriod, Turn, nullptr);
  XwRunEventLoop();
  Fail("the loop has ended");
}

// --- In the test's

class RandomInputTest : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    home_.Folder("home/Jobs/Archive");
    for (const char* name : {"home/a.txt", "home/b.pdf", "home/Jobs/c 1.txt", "home/Jobs/ß.txt"})
      home_.File(name, std::string(name) + "\n");
    for (int i = 0; i < 60; ++i)
      home_.File("home/Jobs/Archive/" + std::to_string(i) + ".txt",
                 std::string(size_t(i) * 99, 'x'));
    void* shared =
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    progress = new (shared) Progress;
  }
  void TearDown() override { munmap(progress, sizeof(Progress)); }

  // All events of a seed, in as many consoles as it takes. False when one ends otherwise.
  bool Play(uint64_t seed) {
    *progress = {};
    while (!progress->done) {
      ++progress->starts;
      const pid_t pid = fork();
      if (pid == 0)
        RunConsole(daemon_.host(), home_.At("home"), seed * 1000 + uint64_t(progress->starts));
      int status = -1;
      if (waitpid(pid, &status, 0) != pid) return false;
      EXPECT_EQ(status, 0) << "seed " << seed << ", start " << progress->starts << ", event "
                           << progress->events;
      if (status != 0) return false;
    }
    printf("seed %llu: %lld events, %d starts\n", static_cast<unsigned long long>(seed),
           static_cast<long long>(progress->events), progress->starts);
    fflush(stdout);  // before the next fork
    EXPECT_GE(progress->events, EventsOfASeed());
    return true;
  }
  // Jobs of both owners that wait in the queue, so that its verbs have something to act on.
  void FillQueue() {
    daemon_.Start({"--rate", "10K"});
    const int fd = daemon_.Connect();
    for (int i = 0; i < 8; ++i) {
      uint8_t id[NC_ID_SIZE];
      const std::string ticket = "document=" + std::to_string(i) +
                                 ".pdf\nowner=" + (i % 2 ? "mia" : "jon") +
                                 "\nhold=" + std::to_string(i % 3 > 0);
      EXPECT_EQ(testing_daemon::Send(fd, ticket + "\n", std::string(20000, 'x'), id), 1);
    }
    close(fd);
  }
  std::string Read(const std::string& name) {
    std::ifstream in(home_.At(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

  Scratch home_;
  testing_daemon::Daemon daemon_;
};

TEST_P(RandomInputTest, EndsNoConsoleAndChangesNoFile) {
  const support::TimeLimit limit(Long() ? 0 : 120, "random events");
  FillQueue();
  const uint64_t first = support::Seed(1);
  for (int i = GetParam(); i < (Long() ? 100 : kPrograms); i += kPrograms) {
    if (!Play(first + uint64_t(i))) return;
    EXPECT_EQ(Read("home/a.txt"), "home/a.txt\n");
    EXPECT_EQ(Read("home/Jobs/c 1.txt"), "home/Jobs/c 1.txt\n");
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomInputTest, testing::Range(0, kPrograms));

}  // namespace
}  // namespace console
