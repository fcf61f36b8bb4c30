// A proxy before the daemon ends, resets or stalls the connection after each byte of each reply.
// The client's call fails as it says, within its deadline, and the daemon serves on: what it did
// for the client whose answer was lost is done.
#include <climits>
#include <fstream>

#include "os/final_path.h"
#include "tests/printserver/peer.h"
#include "tests/printserverd/daemon.h"

using namespace testing_daemon;

namespace {

enum class Way { kEnd, kReset, kStall };

// Takes one client after the other and forwards all it says, and of the answers so many bytes.
class Proxy {
 public:
  explicit Proxy(const Daemon* daemon) : daemon_(daemon) {
    listener_.Serve(INT_MAX, [this](int client) { Forward(client); });
  }

  std::string place() const { return listener_.host + ":" + std::to_string(listener_.port); }
  // For the clients from now on; the answer to the greeting is the first byte.
  void Cut(int64_t after, Way way) {
    limit_ = after;
    way_ = way;
    forwarded_ = 0;
  }
  int64_t forwarded() const { return forwarded_; }

 private:
  void Forward(int client) {
    const os::Handle server(daemon_->ConnectRaw());
    int64_t left = limit_;
    char buffer[65536];
    while (left > 0) {
      pollfd both[] = {{client, POLLIN, 0}, {server.get(), POLLIN, 0}};
      poll(both, 2, -1);
      const bool answer = both[1].revents != 0;
      const int from = answer ? server.get() : client;
      const ssize_t n =
          recv(from, buffer, answer ? std::min<int64_t>(left, sizeof buffer) : sizeof buffer, 0);
      if (n <= 0) return;
      if (answer) {
        left -= n;
        forwarded_ += n;
      }
      send(answer ? client : server.get(), buffer, static_cast<size_t>(n), MSG_NOSIGNAL);
    }
    End(client, server.get());
  }

  // The request still goes to the daemon, the answer goes nowhere.
  void End(int client, int server) const {
    char buffer[65536];
    pollfd one = {client, POLLIN, 0};
    const int wait = way_ == Way::kStall ? -1 : 20;
    while (poll(&one, 1, wait) > 0) {
      const ssize_t n = recv(client, buffer, sizeof buffer, 0);
      if (n <= 0) break;
      send(server, buffer, static_cast<size_t>(n), MSG_NOSIGNAL);
    }
    if (way_ != Way::kReset) return;
    const linger now = {1, 0};
    setsockopt(client, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  }

  const Daemon* daemon_;
  std::atomic<int64_t> limit_{INT64_MAX}, forwarded_{0};
  std::atomic<Way> way_{Way::kEnd};
  Listener listener_{"127.0.0.1", 0};  // the last: its thread uses the others
};

using Cuts = Served;

TEST_F(Cuts, AfterEachByteOfEachReply) {
  StartWith("[printer]\nname=P\n[profile]\nname=Plain\nmedia=A4\n[scanner]\nname=S\n");
  std::ofstream(daemon.Path("gamut/g")) << "gamut";
  uint8_t kept[16], job[16], id[16];
  ASSERT_EQ(Send(fd, "hold=1\n", "kept", kept), NC_STATUS_DONE);
  const std::string gamut = daemon.folder() + "/gamut";
  char list[65536], key[NC_PROFILE_KEY] = "", a[NC_GAMUT_A] = "g", b[NC_GAMUT_B] = "";
  uint8_t status = 0;
  const struct {
    const char* name;
    std::function<int(int fd)> call;
  } commands[] = {
      {"greeting", [](int) { return 0; }},
      {"queue", [&](int to) { return NC_GetPrintQueueN(to, list, sizeof list); }},
      {"printers", [&](int to) { return NC_GetPrinterListN(to, &status, list, sizeof list); }},
      {"scanners", [&](int to) { return NC_GetScannerListN(to, &status, list, sizeof list); }},
      {"profiles", [&](int to) { return NC_GetProfileListN(to, key, list, sizeof list); }},
      {"gamut", [&](int to) { return NC_CopyGamutFileN(to, a, b, gamut.c_str(), 1000); }},
      {"id", [&](int to) { return NC_CreateRequestID(to, id); }},
      {"change", [&](int to) { return Change(to, kept, "priority=60\n\n"); }},
      {"remove", [&](int to) { return NC_RemovePrintRequest(to, job); }},
      {"remove a file", [&](int to) { return NC_RemoveFile(to, "file"); }},
  };
  Proxy proxy(&daemon);
  const int share = getenv("QUORVIK_LONG") ? 1 : 10;
  int cuts = 0, runs = 0;
  for (const auto& command : commands) {
    proxy.Cut(INT64_MAX, Way::kEnd);
    const auto run = [&](int deadline) {
      if (strcmp(command.name, "remove") == 0) Send(fd, "hold=1\n", "gone", job);
      std::ofstream(daemon.Path("files/file")) << "x";
      const int to = NC_ConnectN(proxy.place().c_str(), deadline);
      const int result = to < 0 ? to : command.call(to);
      if (to >= 0) NC_Disconnect(to);
      return result;
    };
    ASSERT_GE(run(20000), 0) << command.name;
    const int64_t length = proxy.forwarded();
    for (int64_t after = 0; after < length; ++after) {
      for (const Way way : {Way::kEnd, Way::kReset, Way::kStall}) {
        if (cuts++ % share != 0) continue;
        ++runs;
        proxy.Cut(after, way);
        const int result = run(way == Way::kStall ? 60 : 20000);
        EXPECT_TRUE(result < 0) << command.name << " after " << after << ": " << result;
        if (way == Way::kStall) {
          EXPECT_EQ(errno, ETIMEDOUT);
        }
        // Nobody asked to remove the job where the greeting got no answer.
        if (after == 0) NC_RemovePrintRequest(fd, job);
        EXPECT_TRUE(Eventually([&] { return Jobs(fd).size() == 1; }));
      }
    }
    EXPECT_EQ(JobOf(fd, kept).state, NC_JOB_HELD);
  }
  printf("cuts: %d of %d\n", runs, cuts);
}

}  // namespace
