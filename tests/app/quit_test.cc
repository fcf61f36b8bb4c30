// The question before the end, and the end itself.
#include <gtest/gtest.h>
#include <signal.h>

#include "tests/app/console_fixture.h"
#include "tests/printserverd/daemon.h"

namespace console {
namespace {

using testing_daemon::Daemon;

// The program's own end, in a process of its own: its exit code, and its memory under a leak check.
enum class Way { kCloseWithoutSending, kQuit, kCloseWhenSent };
void QuitWhileSending(const std::string& home, const Daemon& daemon, Way way) {
  setenv("HOME", home.c_str(), 1);
  display::UseSteppedClock(1000);
  XwSession("Quorvik", "Quorvik", 7);
  Console* c = OpenConsole(daemon.host(), home);
  XwWindow* pump = XwCreate(0, 0, 0, 50, 50, Pump);
  XwTimer(pump, 1, 20);
  auto until = [](const std::function<bool()>& holds) {
    for (int i = 0; i < 20000 && !holds(); ++i) {
      usleep(1000);
      XwWaitEvent(nullptr);
    }
  };
  until([&] { return c->state.link == Link::kReady && c->files.folder.Find("big.bin") >= 0; });
  c->files.table.Select(c->files.folder.Find("big.bin"));
  const_cast<Daemon&>(daemon).Signal(SIGSTOP);
  PrintSelected(c);
  until([&] { return c->state.quiet_s >= 1 && c->queue.rows.count() == 1; });
  if (c->queue.rows.count() != 1) _exit(9);
  auto key = [](uint32_t keysym) {
    display::KeyDown(keysym);
    display::KeyUp(keysym);
  };
  if (way == Way::kQuit) display::Quit();
  // Asked twice: the first answer is to stay.
  for (int i = 0; i < 2 && way != Way::kQuit; ++i) {
    display::Close(static_cast<platform::WindowRef>(c->window->platform));
    until([&] { return c->asking; });
    if (i == 0) key(0xFF1B);
    until([&] { return i == 1 || !c->asking; });
  }
  if (way == Way::kCloseWhenSent) const_cast<Daemon&>(daemon).Signal(SIGCONT);
  if (way == Way::kCloseWithoutSending) key(0xFF09), key(0xFF0D);
  for (;;) XwWaitEvent(nullptr);
}

TEST_F(ConsoleTest, QuittingEndsARunningTransferInOrder) {
  home_.File("big.bin", Bytes(30000000));
  Daemon daemon;
  daemon.Start();
  const auto jobs_after = [&](Way way) {
    EXPECT_EXIT(QuitWhileSending(home_.path(), daemon, way), testing::ExitedWithCode(0), "");
    daemon.Signal(SIGCONT);
    const int fd = daemon.Connect();
    const size_t jobs = testing_daemon::Jobs(fd).size();
    NC_Disconnect(fd);
    return jobs;
  };
  EXPECT_EQ(jobs_after(Way::kCloseWithoutSending), 0u);
  EXPECT_EQ(jobs_after(Way::kQuit), 0u);
  EXPECT_EQ(jobs_after(Way::kCloseWhenSent), 1u);
}

}  // namespace
}  // namespace console
