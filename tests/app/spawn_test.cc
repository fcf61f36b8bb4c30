// What started programs inherit, and the print server that the console starts.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "app/work/local_server.h"
#include "app/work/spawn.h"
#include "os/system_paths.h"
#include "printserver/nc.h"
#include "tests/os/scratch.h"

namespace console {
namespace {

class SpawnTest : public testing::Test {
 protected:
  void SetUp() override {
    setenv("XDG_STATE_HOME", files_.At("state").c_str(), 1);
    setenv("XDG_CONFIG_HOME", files_.At("config").c_str(), 1);
    os::SetExecutablePath(PRINTSERVERD_FOLDER "/quorvik");
    // An address of the loopback network that no other test has.
    const auto pid = unsigned(getpid());
    host_ = "127.61." + std::to_string(pid >> 7 & 255) + "." + std::to_string(1 + (pid & 127));
  }
  void TearDown() override {
    for (const pid_t pid : started_) {
      kill(pid, SIGTERM);
      EXPECT_EQ(Child(pid, true).Wait(), 0);
    }
    os::SetExecutablePath(nullptr);
  }
  LocalServerResult StartServer(const std::string& server) {
    const LocalServerResult result = StartLocalServer(server, 50000);
    if (result.pid > 0) started_.push_back(result.pid);
    return result;
  }

  Scratch files_;
  std::string host_;
  std::vector<pid_t> started_;
};

TEST_F(SpawnTest, ProgramsGetThreeDescriptorsAndUsualSignals) {
  signal(SIGPIPE, SIG_IGN);
  sigset_t blocked, before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigprocmask(SIG_BLOCK, &blocked, &before);
  const int extra = open("/dev/null", O_RDONLY);  // not closed on exec
  const int out = open(files_.At("out").c_str(), O_RDWR | O_CREAT, 0600);
  Program program;
  program.words = {"sh", "-c", "ls /proc/$$/fd; exec grep SigBlk /proc/self/status"};
  program.output = out;
  EXPECT_EQ(Start(program).Wait(), 0);
  EXPECT_EQ(ReadFile(files_.At("out")), "0\n1\n2\nSigBlk:\t0000000000000000\n");
  close(extra);
  close(out);
  program.words = {"sh", "-c", "kill -PIPE $$"};
  program.output = -1;
  const int status = Start(program).Wait();
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE);
  program.words = {"/nowhere/at/all"};
  EXPECT_FALSE(Start(program).running());
  EXPECT_EQ(errno, ENOENT);
  sigprocmask(SIG_SETMASK, &before, nullptr);
  signal(SIGPIPE, SIG_DFL);
}

TEST_F(SpawnTest, TheServerOutlivesItsStarterAndTellsItsSpool) {
  files_.Folder("state/quorvik");
  const size_t much = 2 << 20;
  chmod(files_.File("state/quorvik/printserverd.log", std::string(much, '\n')).c_str(), 0600);
  const LocalServerResult first = StartServer(host_);
  ASSERT_TRUE(first.started) << first.message << ReadFile(first.log);
  EXPECT_EQ(first.spool, files_.At("state/quorvik/spool"));
  EXPECT_EQ(first.message, "A print server was started; its spool is " + first.spool);
  EXPECT_EQ(ModeOf(first.log), 0600u);
  EXPECT_LT(ReadFile(first.log).size(), much) << "a log that is too large begins again";
  EXPECT_EQ(getsid(first.pid), first.pid);
  const int fd = NC_ConnectN(host_.c_str(), 20000);
  EXPECT_GE(fd, 0);
  NC_Disconnect(fd);
  // A second one gets in the way of the first.
  EXPECT_EQ(StartServer("127.62.0.1").message,
            "The print server did not start: another one uses the spool " + first.spool);
  setenv("XDG_STATE_HOME", files_.At("other").c_str(), 1);
  EXPECT_EQ(
      StartServer(host_).message,
      "The print server did not start: another program uses its address, " + host_ + ":51470");
  // A port alone is one of this computer.
  EXPECT_TRUE(IsLocalhost(":9100"));
  const LocalServerResult any_port = StartServer(":0");
  EXPECT_TRUE(any_port.started) << any_port.message;
}

TEST_F(SpawnTest, WhyNoServerStarts) {
  files_.Folder("config/quorvik");
  files_.File("config/quorvik/printserverd.conf", "nonsense\n");
  const LocalServerResult wrong = StartServer(host_);
  EXPECT_EQ(wrong.message,
            "The print server did not start: its configuration has a mistake, which " + wrong.log +
                " tells");
  EXPECT_NE(ReadFile(wrong.log).find("printserverd.conf: line 1"), std::string::npos)
      << ReadFile(wrong.log);
  setenv("XDG_STATE_HOME", files_.File("file").c_str(), 1);
  EXPECT_EQ(StartServer(host_).message,
            "The print server was not started: its log cannot be written in " +
                files_.At("file/quorvik"));
  EXPECT_FALSE(StartServer("example.org").started);
  os::SetExecutablePath(files_.At("quorvik").c_str());
  setenv("PATH", "relative::", 1);
  EXPECT_EQ(StartServer("").message, "No print server is installed here: printserverd is missing");
  // Along PATH, but not what cannot be run.
  const std::string other = files_.Folder("c");
  chmod(files_.File("c/helper").c_str(), 0700);
  ASSERT_EQ(chdir(other.c_str()), 0);  // the current folder is not meant
  setenv("PATH", (".::" + files_.Folder("a") + ":" + files_.Folder("b")).c_str(), 1);
  files_.File("a/helper");
  chmod(files_.File("b/helper").c_str(), 0700);
  EXPECT_EQ(FindProgram("helper"), files_.At("b/helper"));
}

}  // namespace
}  // namespace console
