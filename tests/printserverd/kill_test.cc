// The daemon is killed at random moments, and looked at after each. QUORVIK_LONG=1: a thousand of
// each kind.
#include <gtest/gtest.h>
#include <signal.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "tests/printserverd/daemon.h"

using namespace testing_daemon;

namespace {

const char kConfig[] =
    "[server]\ndone-bytes=0\ndone-keep=2000\ndone-seconds=1G\n"
    "[printer]\nname=P\nrate=0\npaper=0\nkeep=100000\n";

class Killed : public Served {
 protected:
  using Id = std::string;

  static int Rounds() { return getenv("QUORVIK_LONG") ? 1000 : 50; }

  // Lets `act` speak with the daemon until it is killed, once for each round, and calls `look` on
  // the daemon that comes after. `act` returns when the connection is gone.
  void Run(const std::function<void(int round)>& act, const std::function<void()>& look) {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    StartWith(kConfig);
    for (int round = 0; round < Rounds() && !HasFailure(); ++round) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round));
      // Half of them early, where the steps of one request lie.
      const auto moment = std::chrono::microseconds(random() % (round % 2 ? 2000 : 20000));
      std::thread client([&] { act(round); });
      std::this_thread::sleep_for(moment);
      EXPECT_EQ(daemon.Stop(SIGKILL), 128 + SIGKILL);
      client.join();
      NC_Disconnect(fd);
      fd = -1;
      StartWith(kConfig);
      look();
    }
  }

  Id NewId() {
    uint8_t id[16];
    return NC_CreateRequestID(fd, id) == 1 ? Id(id, id + 16) : Id();
  }
  int Write(const Id& id, const std::string& data) {
    return NC_WritePrintRequest(fd, id.data(), data.data(), static_cast<uint32_t>(data.size()));
  }
  std::map<Id, NC_Job> Listed() {
    std::map<Id, NC_Job> jobs;
    for (const NC_Job& job : Jobs(fd)) jobs[Id(job.id, job.id + 16)] = job;
    return jobs;
  }
  std::string ContentOf(const Id& id) {
    return ReadWhole(
        daemon.Path("jobs/" + IdText(reinterpret_cast<const uint8_t*>(id.data())) + ".doc"));
  }
  // Each job has its two files, and nothing else is there.
  void ExpectNothingHalf(size_t jobs) {
    EXPECT_EQ(FilesIn(daemon.Path("jobs")).size(), 2 * jobs);
    EXPECT_TRUE(FilesIn(daemon.Path("aside")).empty());
  }
  void RemoveAll() {
    for (const auto& [id, job] : Listed()) EXPECT_EQ(NC_RemovePrintRequest(fd, id.data()), 1);
  }
};

TEST_F(Killed, WhileSubmitting) {
  std::map<Id, std::string> sent;
  std::set<Id> accepted;
  int64_t number = 0;
  Run(
      [&](int round) {
        for (int i = 0;; ++i) {
          const Id id = NewId();
          sent[id] = std::string(static_cast<size_t>(i % 7) * 30000, 'd') + std::to_string(round);
          const int status = Write(id, "hold=1\n\n" + sent[id]);
          if (status < 0) return;
          EXPECT_EQ(status, 1);
          accepted.insert(id);
        }
      },
      [&] {
        const auto jobs = Listed();
        for (const Id& id : accepted) EXPECT_EQ(jobs.count(id), 1U);
        for (const auto& [id, job] : jobs) {
          EXPECT_EQ(ContentOf(id), sent[id]);
          EXPECT_EQ(static_cast<size_t>(job.size), sent[id].size());
          EXPECT_GT(job.number, number);
        }
        for (const auto& [id, job] : jobs) number = std::max<int64_t>(number, job.number);
        EXPECT_LE(jobs.size(), accepted.size() + 1);
        ExpectNothingHalf(jobs.size());
        RemoveAll();
        sent.clear();
        accepted.clear();
      });
}

TEST_F(Killed, WhilePrinting) {
  std::map<std::string, bool> sent;  // each document is one of a kind; whether it was accepted
  int rounds = 0;
  Run(
      [&](int round) {
        for (int i = 0;; ++i) {
          const Id id = NewId();
          const std::string document = std::to_string(round) + "-" + std::to_string(i);
          sent[document] = false;
          const int status = Write(id, "\n" + document);
          if (status < 0) return;
          sent[document] = true;
        }
      },
      [&] {
        if (++rounds % 10 != 0) return;
        EXPECT_TRUE(Eventually([&] {
          const auto jobs = Jobs(fd);
          return std::all_of(jobs.begin(), jobs.end(),
                             [](const NC_Job& job) { return job.state == NC_JOB_DONE; });
        }));
        std::map<std::string, int> printed;
        for (const std::string& name : FilesIn(daemon.Path("printed/p"))) {
          ++printed[ReadWhole(daemon.Path("printed/p/" + name))];
          std::filesystem::remove(daemon.Path("printed/p/" + name));
        }
        for (const auto& [document, accepted] : sent) {
          if (accepted || printed.count(document)) {
            EXPECT_EQ(printed[document], 1) << document;
          }
        }
        EXPECT_LE(printed.size(), sent.size());
        sent.clear();
      });
}

TEST_F(Killed, WhileChanging) {
  constexpr int kJobs = 5;
  std::vector<Id> made;
  std::map<Id, int> said, asked;  // the version that was acknowledged, and the last one sent
  int paused_said = 0, paused_asked = 0;
  uint8_t printer[16];
  Run(
      [&](int round) {
        if (made.empty()) {
          for (int i = 0; i < kJobs; ++i) {
            const Id id = NewId();
            if (Write(id, "hold=1\ndocument=0\n\ndocument") != 1) return;
            made.push_back(id);
          }
          // The daemon may be killed while it answers.
          std::vector<char> list(NC_LIST_MAX);
          uint8_t status = 0;
          const int32_t size = NC_GetPrinterListN(fd, &status, list.data(), NC_LIST_MAX);
          NC_Printer first;
          if (size < 0 || NC_ParsePrinters(list.data(), size, &first, 1) < 1) return made.clear();
          memcpy(printer, first.id, 16);
        }
        for (int version = round * 10000 + 1;; ++version) {
          const Id& id = made[static_cast<size_t>(version) % made.size()];
          const Id& other = made[static_cast<size_t>(version / 3) % made.size()];
          asked[id] = version;
          const std::string before =
              id == other ? "priority=" + std::to_string(1 + version % 100)
                          : "before=" + IdText(reinterpret_cast<const uint8_t*>(other.data()));
          if (Write(id, "document=" + std::to_string(version) + "\n" + before + "\n") != 1) return;
          said[id] = version;
          paused_asked = version % 2;
          if (Change(fd, printer, "paused=" + std::to_string(paused_asked) + "\n") != 1) return;
          paused_said = paused_asked;
        }
      },
      [&] {
        const auto jobs = Listed();
        if (made.size() < kJobs) {
          RemoveAll();
          return made.clear();
        }
        EXPECT_EQ(jobs.size(), made.size());
        for (const auto& [id, job] : jobs) {
          const int version = atoi(job.document);
          EXPECT_TRUE(version == said[id] || version == asked[id])
              << version << " " << said[id] << " " << asked[id];
          said[id] = asked[id] = version;
          EXPECT_EQ(ContentOf(id), "document");
        }
        const int paused = Printers(fd)[0].paused;
        EXPECT_TRUE(paused == paused_said || paused == paused_asked);
        paused_said = paused_asked = paused;
        ExpectNothingHalf(jobs.size());
      });
}

TEST_F(Killed, WhileRemoving) {
  std::set<Id> there, removed;
  Id asked;
  Run(
      [&](int) {
        while (true) {
          for (int i = 0; i < 4; ++i) {
            const Id id = NewId();
            if (Write(id, "hold=1\n\ndocument") != 1) return;
            there.insert(id);
          }
          while (!there.empty()) {
            asked = *there.begin();
            if (NC_RemovePrintRequest(fd, asked.data()) != 1) return;
            there.erase(asked);
            removed.insert(asked);
          }
        }
      },
      [&] {
        const auto jobs = Listed();
        for (const Id& id : there) EXPECT_TRUE(id == asked || jobs.count(id) == 1);
        for (const auto& [id, job] : jobs) {
          EXPECT_EQ(removed.count(id), 0U);
          EXPECT_EQ(ContentOf(id), "document");
        }
        ExpectNothingHalf(jobs.size());
        RemoveAll();
        there.clear();
      });
}

}  // namespace
