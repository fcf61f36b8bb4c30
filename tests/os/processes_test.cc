// Child processes, pipes to and from them, and the disk and memory figures.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include "os/os.h"
#include "tests/os/scratch.h"

namespace {

void CloseAndReap(OS_Pipe* p) {
  EXPECT_EQ(OS_ClosePipe(p), 0);
  EXPECT_EQ(OS_ClosePipe(p), -1);  // nothing that somebody else opened since is closed
  OS_WaitProcess(p->pid);
  free(p);
}

// The shell tells how many arguments there were in all.
TEST(Processes, ArgumentsPastTheRoomAreLeftOut) {
  const auto count = [](int pid) { return WEXITSTATUS(OS_WaitProcess(pid)); };
#define TEN "x", "x", "x", "x", "x", "x", "x", "x", "x", "x"
  EXPECT_EQ(3 + count(OS_StartProcess("sh", "-c", "exit $#", TEN, TEN, TEN, TEN, nullptr)), 30);
  OS_Pipe* p = OS_StartPipe("sh", "-c", "exit $#", TEN, TEN, TEN, TEN, nullptr);
  EXPECT_EQ(3 + count(p->pid), 34);
  for (int none : {p->pid, 0, -5, INT32_MAX}) EXPECT_EQ(OS_WaitProcess(none), 0) << none;
  EXPECT_EQ(OS_StartProcess(nullptr, nullptr), -1);
  CloseAndReap(p);
}

TEST(Processes, AChildThatCannotRunGoesOn) {
  int pid = OS_StartProcess("/nowhere/program", nullptr);
  if (pid == 0) _exit(41);
  EXPECT_EQ(WEXITSTATUS(OS_WaitProcess(pid)), 41);
  OS_Pipe* p = OS_StartPipe("/nowhere/program", nullptr);
  if (!p) {
    // The child's streams are the pipes already.
    char c = 0;
    _exit(read(0, &c, 1) == 1 && write(1, &c, 1) == 1 ? c : 0);
  }
  char c = 0;
  EXPECT_EQ(OS_WritePipe(p, "Q", 1), 1);
  EXPECT_EQ(OS_ReadPipe(p, &c, 1), 1);
  EXPECT_EQ(c, 'Q');
  EXPECT_EQ(WEXITSTATUS(OS_WaitProcess(p->pid)), 'Q');
  CloseAndReap(p);
}

TEST(Pipes, CarryMoreThanTheyHold) {
  OS_Pipe* p = OS_StartPipe("cat", nullptr);
  ASSERT_NE(p, nullptr);
  for (int fd : {p->write_fd, p->read_fd}) EXPECT_EQ(fcntl(fd, F_GETFD), FD_CLOEXEC);
  std::string sent(40000, 'x'), got = sent;
  for (size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7);
  for (int round = 0; round < 5; ++round) {
    EXPECT_EQ(OS_WritePipe(p, sent.data(), 40000), 40000);
    EXPECT_EQ(OS_ReadPipe(p, got.data(), 40000), 40000);
    EXPECT_TRUE(got == sent);
  }
  kill(p->pid, SIGKILL);
  CloseAndReap(p);
}

// A pipe whose descriptors were closed by hand: the next one with their numbers is not mixed up.
TEST(Pipes, NumbersComeBack) {
  OS_Pipe* closed = OS_StartPipe("cat", nullptr);
  close(closed->write_fd);
  close(closed->read_fd);
  OS_WaitProcess(closed->pid);
  OS_Pipe* p = OS_StartPipe("sh", "-c", "read line; echo $line", nullptr);
  EXPECT_TRUE(p->write_fd == closed->write_fd || p->read_fd == closed->read_fd);
  char back[3] = "";
  EXPECT_EQ(OS_WritePipe(p, "a\n", 2), 2);
  EXPECT_EQ(OS_ReadPipe(p, back, 2), 2);
  EXPECT_STREQ(back, "a\n");
  CloseAndReap(p);
  free(closed);
}

// A child that has ended, reaped or not, ends reading and writing; what it left can still be read.
TEST(Pipes, EndWithTheirChild) {
  for (bool reaped : {false, true}) {
    char buf[16] = "";
    OS_Pipe* p = OS_StartPipe("sh", "-c", "printf 123456", nullptr);
    if (reaped) OS_WaitProcess(p->pid);
    EXPECT_EQ(OS_ReadPipe(p, buf, 4), 4);
    EXPECT_EQ(OS_ReadPipe(p, buf, 10), 0);
    EXPECT_EQ(OS_ReadPipe(p, buf, 1), 0);
    EXPECT_STREQ(buf, "5634");
    const std::string large(200000, 'x');
    EXPECT_EQ(OS_WritePipe(p, large.data(), 1), -1);
    CloseAndReap(p);
    // A pipe that is full when the child ends.
    p = OS_StartPipe("sleep", "0.1", nullptr);
    EXPECT_EQ(OS_WritePipe(p, large.data(), static_cast<int>(large.size())), -1);
    EXPECT_EQ(errno, EPIPE);
    CloseAndReap(p);
  }
}

// Where standard streams are closed the pipe's ends do not take their numbers; a child has the same
// few descriptors whatever other pipes are open.
TEST(Pipes, DescriptorsLieAboveTheStandardStreams) {
  fflush(nullptr);
  for (const int first : {0, 2}) {
    const pid_t tester = fork();
    if (tester == 0) {
      for (int fd = first; fd < 3; ++fd) close(fd);
      std::string listed[2];
      bool good = true;
      for (std::string& list : listed) {
        OS_Pipe* p =
            OS_StartPipe("sh", "-c", "cd /proc/self/fd; set -- *; printf %-99s \"$*\"", nullptr);
        list.resize(99);
        good = good && p->write_fd > 2 && p->read_fd > 2 && OS_ReadPipe(p, list.data(), 99) == 99;
      }
      _exit(good && listed[0] == listed[1] && listed[0].rfind("0 1 ", 0) == 0 ? 0 : 1);
    }
    EXPECT_EQ(OS_WaitProcess(tester), 0);
  }
}

TEST(Pipes, BadArguments) {
  OS_Pipe none = {-1, -1, 0};
  char c = 0;
  EXPECT_EQ(OS_StartPipe(nullptr, nullptr), nullptr);
  EXPECT_EQ(OS_ReadPipe(nullptr, &c, 1) + OS_ReadPipe(&none, nullptr, 1), 0);
  EXPECT_EQ(OS_ReadPipe(&none, &c, 0) + OS_ReadPipe(&none, &c, 1), 0);
  EXPECT_EQ(OS_WritePipe(nullptr, &c, 1) + OS_WritePipe(&none, nullptr, 1), -2);
  EXPECT_EQ(OS_WritePipe(&none, &c, -1) + OS_WritePipe(&none, &c, 1), -2);
  EXPECT_EQ(OS_ClosePipe(nullptr), -1);
}

TEST(Figures, OfTheDiskAndOfMemory) {
  uint64_t total = 1, available = 1, figures[2] = {};
  struct statfs disk;
  ASSERT_EQ(chdir("/") + statfs("/", &disk), 0);
  OS_DiskInfo(&total, &available);
  EXPECT_EQ(total, uint64_t(disk.f_bsize) * disk.f_blocks);
  EXPECT_TRUE(available > 0 && available <= total && available % disk.f_bsize == 0);
  OS_DiskInfo(nullptr, nullptr);
  OS_MemInfo(&figures[0], nullptr, nullptr, &figures[1]);
  EXPECT_EQ(figures[0], 0xEB28000u);
  EXPECT_EQ(figures[1], 0x6400000u);
}

}  // namespace
