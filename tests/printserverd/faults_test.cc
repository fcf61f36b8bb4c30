// The daemon with each of its system calls failing in each way. It does not hang and does not die;
// what it has accepted is there after a restart, whole; what it has removed is gone; what it has
// refused is not there.
#include <fcntl.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "tests/printserverd/daemon.h"
#include "tests/support/faults.h"

using namespace testing_daemon;

namespace {

const char kConfig[] = "[printer]\nname=P\nrate=0\npaper=0\nkeep=100000\n[scanner]\nname=S\n";
constexpr int kDeadlineMs = 20000;

struct Sent {
  uint8_t id[16] = {};
  std::string document;
  int accepted = -1;  // the daemon's answer, -1 when it was lost
  int removed = -2;   // the same, -2 when nobody asked for it
};

class DaemonFaults : public testing::Test {
 protected:
  DaemonFaults() {
    folder_ = mkdtemp((::testing::TempDir() + "faults-XXXXXX").data());
    const int pid = getpid();
    host_ = "127." + std::to_string(64 + (pid >> 16 & 63)) + "." + std::to_string(pid >> 8 & 255) +
            "." + std::to_string(pid & 255);
    std::ofstream(folder_ + "/config") << kConfig;
    // One for the process: it stays mapped.
    static const std::string shared = ::testing::TempDir() + "faults." + std::to_string(pid);
    static const int removed = atexit([] { unlink(shared.c_str()); });
    EXPECT_EQ(removed, 0);
    setenv("QUORVIK_FAULT_FILE", shared.c_str(), 1);
  }
  ~DaemonFaults() override { std::filesystem::remove_all(folder_); }

  // Starts the program and waits until it listens; false when it ends instead.
  bool Start(const char* program) {
    const std::string spool = folder_ + "/spool", config = folder_ + "/config";
    pid_ = fork();
    if (pid_ == 0) {
      const int log = open((folder_ + "/log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      dup2(log, STDERR_FILENO);
      execl(program, program, "--listen", host_.c_str(), "--spool", spool.c_str(), "--config",
            config.c_str(), nullptr);
      _exit(127);
    }
    for (;;) {
      const int fd = NC_ConnectN(host_.c_str(), kDeadlineMs);
      if (fd >= 0) {
        NC_Disconnect(fd);
        return true;
      }
      if (waitpid(pid_, &status_, WNOHANG) == pid_) return false;
      usleep(1000);
    }
  }
  void Stop() {
    kill(pid_, SIGTERM);
    waitpid(pid_, &status_, 0);
    EXPECT_TRUE(WIFEXITED(status_) && WEXITSTATUS(status_) == 0)
        << status_ << ReadWhole(folder_ + "/log");
  }

  // Runs `act` on a connection of its own.
  int On(const std::function<int(int fd)>& act) const {
    const int fd = NC_ConnectN(host_.c_str(), kDeadlineMs);
    const int result = fd < 0 ? -1 : act(fd);
    if (fd >= 0) NC_Disconnect(fd);
    return result;
  }

  // A life of a daemon: jobs come, change, go and are printed.
  std::vector<Sent> Live() {
    std::vector<Sent> all;
    for (const char* ticket : {"hold=1\n", "hold=1\n", "hold=0\n"}) {
      Sent sent;
      sent.document = std::string(3000, static_cast<char>('a' + all.size()));
      sent.accepted = On([&](int fd) { return Send(fd, ticket, sent.document, sent.id); });
      all.push_back(sent);
    }
    On([&](int fd) { return Change(fd, all[0].id, "priority=70\n\n"); });
    all[1].removed = On([&](int fd) { return NC_RemovePrintRequest(fd, all[1].id); });
    char list[65536];
    uint8_t status = 0;
    On([&](int fd) { return NC_GetPrintQueueN(fd, list, sizeof list); });
    On([&](int fd) { return NC_GetPrinterListN(fd, &status, list, sizeof list); });
    On([&](int fd) { return NC_GetScannerListN(fd, &status, list, sizeof list); });
    std::ofstream(folder_ + "/spool/files/file") << "x";
    const int removed = On([&](int fd) { return NC_RemoveFile(fd, "file"); });
    EXPECT_TRUE(removed != 1 || !std::filesystem::exists(folder_ + "/spool/files/file"));
    const std::string gamut = folder_ + "/gamut";
    std::ofstream(folder_ + "/spool/gamut/g") << "gamut";
    unlink(gamut.c_str());
    const int copied = On([&](int fd) {
      char a[NC_GAMUT_A] = "g", b[NC_GAMUT_B] = "";
      return NC_CopyGamutFileN(fd, a, b, gamut.c_str(), 1000);
    });
    const std::string got = ReadWhole(gamut);
    EXPECT_TRUE(copied != 0 || got == "gamut" || got.empty()) << got;
    return all;
  }

  // After a restart without faults.
  void Check(const std::vector<Sent>& all, const support::Fault& fault) {
    std::map<std::string, NC_Job> jobs;
    On([&](int fd) {
      for (const NC_Job& job : Jobs(fd)) jobs[IdText(job.id)] = job;
      return 0;
    });
    for (const Sent& sent : all) {
      const std::string id = IdText(sent.id);
      const bool listed = jobs.count(id) > 0;
      if (sent.accepted == 1 && sent.removed == -2) {
        EXPECT_TRUE(listed) << fault.call();
      }
      if (sent.accepted == 1 && sent.removed == 1) {
        EXPECT_FALSE(listed) << fault.call();
      }
      if (sent.accepted > 1) {
        EXPECT_FALSE(listed) << fault.call() << " " << sent.accepted;
      }
      if (!listed) continue;
      EXPECT_EQ(ReadWhole(folder_ + "/spool/jobs/" + id + ".doc"), sent.document);
      if (jobs[id].state == NC_JOB_DONE) {
        EXPECT_TRUE(IsPrinted(sent)) << fault.call();
      }
    }
    EXPECT_TRUE(FilesIn(folder_ + "/spool/aside").empty()) << fault.call();
  }
  bool IsPrinted(const Sent& sent) const {
    for (const std::string& name : FilesIn(folder_ + "/spool/printed/p")) {
      if (ReadWhole(folder_ + "/spool/printed/p/" + name) == sent.document) return true;
    }
    return false;
  }

  std::string folder_, host_;
  pid_t pid_ = 0;
  int status_ = 0;
};

TEST_F(DaemonFaults, ALifeOfJobs) {
  const support::ExemptFromFaults exempt;
  support::SweepFaults("printserverd", 10, [&](support::Fault& fault) {
    std::filesystem::remove_all(folder_ + "/spool");
    fault.Begin();
    const bool started = Start(PRINTSERVERD_FAULTY);
    std::vector<Sent> all;
    if (started) {
      all = Live();
      Stop();
    } else {
      EXPECT_TRUE(WIFEXITED(status_) && WEXITSTATUS(status_) != 0) << status_;
      EXPECT_NE(ReadWhole(folder_ + "/log"), "");
    }
    fault.End();
    ASSERT_TRUE(Start(PRINTSERVERD)) << ReadWhole(folder_ + "/log");
    Check(all, fault);
    if (!fault.happened()) {
      for (const Sent& sent : all) EXPECT_EQ(sent.accepted, 1);
    }
    Stop();
  });
}

// A daemon that could not read something when it started leaves it as it is: the next one has all.
TEST_F(DaemonFaults, AStartWithJobs) {
  const support::ExemptFromFaults exempt;
  ASSERT_TRUE(Start(PRINTSERVERD));
  std::vector<Sent> all(4);
  for (Sent& sent : all) {
    sent.document = std::string(2000, 'x');
    sent.accepted = On([&](int fd) { return Send(fd, "hold=1\n", sent.document, sent.id); });
  }
  Stop();
  support::SweepFaults("printserverd with jobs", 10, [&](support::Fault& fault) {
    fault.Begin();
    if (Start(PRINTSERVERD_FAULTY)) {
      Stop();
    } else {
      EXPECT_TRUE(WIFEXITED(status_) && WEXITSTATUS(status_) != 0) << status_;
    }
    fault.End();
    ASSERT_TRUE(Start(PRINTSERVERD)) << ReadWhole(folder_ + "/log");
    Check(all, fault);
    Stop();
  });
}

}  // namespace
