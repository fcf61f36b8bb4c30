// The daemon with each of its system calls failing in each way. It does not hang and does not die;
// what it has accepted is there after a restart, whole; what it has removed is gone; what it has
// refused is not there.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "tests/printserverd/daemon.h"
#include "tests/support/faults.h"

using namespace testing_daemon;

namespace {

const char kConfig[] = "[printer]\nname=P\nrate=0\npaper=0\nkeep=100000\n[scanner]\nname=S\n";

struct Sent {
  uint8_t id[16] = {};
  std::string document;
  int accepted = -1;  // the daemon's answer, -1 when it was lost
  int removed = -2;   // the same, -2 when nobody asked for it
};

class DaemonFaults : public ::testing::Test {
 protected:
  DaemonFaults() {
    daemon_.WriteFile("config", kConfig);
    // One for the process: it stays mapped.
    static const std::string shared = ::testing::TempDir() + "faults." + std::to_string(getpid());
    static const int removed = atexit([] { unlink(shared.c_str()); });
    EXPECT_EQ(removed, 0);
    setenv("QUORVIK_FAULT_FILE", shared.c_str(), 1);
  }

  // Starts the daemon, or the one with faults, which says why when it ends instead.
  bool Start(const char* program = PRINTSERVERD) {
    daemon_.WriteFile("said", "");
    const int ended = daemon_.Launch(program, {"--config", daemon_.folder() + "/config"});
    EXPECT_TRUE(ended < 0 || (ended > 0 && ended < 128 && daemon_.Said() != "")) << ended;
    return ended < 0;
  }
  void Stop() { EXPECT_EQ(daemon_.Stop(SIGTERM), 0); }

  // Runs `act` on a connection of its own.
  int On(const std::function<int(int fd)>& act) const {
    const int fd = NC_ConnectN(daemon_.host(), 20000);
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
    std::ofstream(daemon_.Path("files/file")) << "x";
    const int removed = On([&](int fd) { return NC_RemoveFile(fd, "file"); });
    EXPECT_TRUE(removed != 1 || !std::filesystem::exists(daemon_.Path("files/file")));
    const std::string gamut = daemon_.folder() + "/gamut";
    std::ofstream(daemon_.Path("gamut/g")) << "gamut";
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
      // An answer that was lost, or a removal that was refused, leaves both open.
      if (sent.accepted > 0 && (sent.accepted > 1 || sent.removed == -2 || sent.removed == 1)) {
        EXPECT_EQ(listed, sent.accepted == 1 && sent.removed == -2)
            << fault.call() << " " << sent.accepted << " " << sent.removed;
      }
      if (!listed) continue;
      EXPECT_EQ(ReadWhole(daemon_.Path("jobs/" + id + ".doc")), sent.document);
      EXPECT_TRUE(jobs[id].state != NC_JOB_DONE || IsPrinted(sent)) << fault.call();
    }
    EXPECT_TRUE(FilesIn(daemon_.Path("aside")).empty()) << fault.call();
  }
  bool IsPrinted(const Sent& sent) const {
    for (const std::string& name : FilesIn(daemon_.Path("printed/p"))) {
      if (ReadWhole(daemon_.Path("printed/p/" + name)) == sent.document) return true;
    }
    return false;
  }

  Daemon daemon_;
};

TEST_F(DaemonFaults, ALifeOfJobs) {
  const support::ExemptFromFaults exempt;
  support::SweepFaults("printserverd", 10, [&](support::Fault& fault) {
    std::filesystem::remove_all(daemon_.Path(""));
    std::vector<Sent> all;
    fault.Begin();
    if (Start(PRINTSERVERD_FAULTY)) {
      all = Live();
      Stop();
    }
    fault.End();
    ASSERT_TRUE(Start());
    Check(all, fault);
    for (const Sent& sent : all) EXPECT_TRUE(fault.happened() || sent.accepted == 1);
    Stop();
  });
}

// A daemon that could not read something when it started leaves it as it is: the next one has all.
TEST_F(DaemonFaults, AStartWithJobs) {
  const support::ExemptFromFaults exempt;
  ASSERT_TRUE(Start());
  std::vector<Sent> all(4);
  for (Sent& sent : all) {
    sent.document = std::string(2000, 'x');
    sent.accepted = On([&](int fd) { return Send(fd, "hold=1\n", sent.document, sent.id); });
  }
  Stop();
  support::SweepFaults("printserverd with jobs", 10, [&](support::Fault& fault) {
    fault.Begin();
    if (Start(PRINTSERVERD_FAULTY)) Stop();
    fault.End();
    ASSERT_TRUE(Start());
    Check(all, fault);
    Stop();
  });
}

}  // namespace
