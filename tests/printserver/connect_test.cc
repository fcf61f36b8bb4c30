#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <signal.h>
#include <string.h>
#include <sys/eventfd.h>

#include "os/final_path.h"
#include "printserver/nc.h"
#include "printserver/resolve.h"
#include "tests/printserver/peer.h"

namespace {

const std::string kGreeting = "\x04\x03\x02\x01";

// A name whose look-up gets no answer as long as a NoNames lives.
constexpr char kSilentName[] = "silent.invalid";
int no_names_end = -1;

class NoNames {
 public:
  NoNames() { no_names_end = end_.get(); }
  ~NoNames() {
    eventfd_write(end_.get(), 1);
    usleep(20000);  // the look-ups use it still
  }

 private:
  os::Handle end_{eventfd(0, EFD_CLOEXEC)};
};

using Connector = int (*)(const char*);

constexpr Connector kConnectors[] = {[](const char* host) { return NC_Connect(host, 1); },
                                     [](const char* host) { return NC_ConnectN(host, 5000); }};

TEST(Connect, GreetingAndItsAnswers) {
  const struct {
    std::string answer;
    int expected;  // 0: a connection
  } rows[] = {{std::string(1, 0), NC_REFUSED}, {"\x01", 0}, {"\xFF", 0}, {"", NC_NO_SERVER}};
  for (const Connector connect_to : kConnectors) {
    for (const auto& row : rows) {
      Listener server;
      std::string greeting;
      server.Serve(1, [&](int end) {
        greeting = ReceiveText(end, 4);
        SendText(end, row.answer);
        if (!row.answer.empty()) AwaitEnd(end);
      });
      const int fd = connect_to(server.host.c_str());
      EXPECT_EQ(fd < 0 ? fd : 0, row.expected);
      if (fd >= 0) {
        EXPECT_EQ(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
        EXPECT_EQ(NC_Disconnect(fd), 0);
      }
      server.Join();
      EXPECT_EQ(greeting, kGreeting);
    }
  }
}

TEST(Connect, NobodyThereAndNoSuchHost) {
  for (const Connector connect_to : kConnectors) {
    EXPECT_EQ(connect_to("127.3.3.3"), NC_NO_SERVER);
    EXPECT_EQ(connect_to("256.256.256.256"), NC_NO_HOST);
    EXPECT_EQ(connect_to(std::string(5000, 'h').c_str()), NC_NO_HOST);
  }
}

// Whatever the connecting waits for, far within its deadline.
TEST(Connect, ADescriptorEndsTheWaiting) {
  constexpr int kHour = 3600000;
  const os::Handle stop(eventfd(0, EFD_CLOEXEC));
  {
    Listener server;
    server.Serve(1, Greet);
    const int fd = NC_ConnectStopN(server.host.c_str(), kHour, stop.get());
    EXPECT_GE(fd, 0);
    NC_Disconnect(fd);
  }
  Listener silent;
  std::thread other([&] {
    usleep(20000);
    eventfd_write(stop.get(), 1);
  });
  EXPECT_EQ(NC_ConnectStopN(silent.host.c_str(), kHour, stop.get()), NC_CANCELLED);
  other.join();
  const NoNames no_names;
  EXPECT_EQ(NC_ConnectStopN(kSilentName, kHour, stop.get()), NC_CANCELLED);
  errno = 0;
  EXPECT_EQ(NC_ConnectStopN(silent.host.c_str(), 20, -1), NC_NO_SERVER);
  EXPECT_EQ(errno, ETIMEDOUT);
}

// A look-up that is given up goes on by itself, and harms nobody when it ends.
TEST(Connect, LookUpsHaveADeadline) {
  const NoNames no_names;
  errno = 0;
  EXPECT_EQ(NC_ConnectN(kSilentName, 30), NC_NO_HOST);
  EXPECT_EQ(errno, ETIMEDOUT);
  errno = 0;
  int fd = -1;
  EXPECT_EQ(NC_ReadyN(kSilentName, &fd, 30), 0);
  EXPECT_EQ(fd, NC_NO_HOST);
  EXPECT_EQ(errno, ETIMEDOUT);
  in_addr address;
  EXPECT_TRUE(nc::Resolve("localhost", &address, nc::Deadline::In(20000)));
  EXPECT_TRUE(nc::Resolve(nullptr, &address, nc::Deadline::None()));
  EXPECT_EQ(address.s_addr, htonl(INADDR_LOOPBACK));
  EXPECT_FALSE(nc::Resolve("no-such-host.invalid", &address, nc::Deadline::In(20000)));
  EXPECT_EQ(errno, ENOENT);
}

TEST(Connect, PortsOfTheCallsEndingInN) {
  Listener server("127.0.0.1", 0);
  server.Serve(8, Greet);
  const std::string port = ":" + std::to_string(server.port), whole = server.host + port;
  for (const std::string& host : {whole, port, "localhost" + port}) {
    const int fd = NC_ConnectN(host.c_str(), 20000);
    EXPECT_GE(fd, 0) << host;
    EXPECT_GE(NC_GetDeadline(fd), 20000);
    EXPECT_LE(NC_GetDeadline(fd), 20100);
    NC_Disconnect(fd);
  }
  int fd = -1, result = 0;
  for (int i = 0; i < 10000 && result == 0; ++i) result = NC_ReadyN(whole.c_str(), &fd, 20000);
  EXPECT_EQ(result, 1);
  EXPECT_GE(NC_GetDeadline(fd), 20000);
  NC_Disconnect(fd);
  EXPECT_EQ(NC_Connect(whole.c_str(), 1), NC_NO_HOST);
  for (const char* bad : {":", ":0", ":65536", ":+1", ":1x", ":99999999999"}) {
    errno = 0;
    EXPECT_EQ(NC_ConnectN((server.host + bad).c_str(), 1000), NC_NO_HOST) << bad;
    EXPECT_EQ(errno, EINVAL) << bad;
  }
  fd = -1;
  EXPECT_EQ(NC_ReadyN(":0", &fd, 1000), 0);
  EXPECT_EQ(fd, NC_NO_HOST);
}

using ReadyCall = int (*)(const char*, int*);

constexpr ReadyCall kReadyCalls[] = {
    [](const char* host, int* fd) { return NC_Ready(host, fd); },
    [](const char* host, int* fd) { return NC_ReadyN(host, fd, 5000); }};

TEST(Ready, ReplacesTheAttemptByAGreetedConnection) {
  for (const ReadyCall ready : kReadyCalls) {
    Listener server;
    std::string greetings;
    server.Serve(2, [&](int end) {
      const std::string greeting = ReceiveText(end, 4);
      greetings += greeting;
      if (!greeting.empty()) {
        SendText(end, "\x01");
        greetings += ReceiveText(end, 4);
      }
    });
    int fd = NC_Connect(server.host.c_str(), 0);
    ASSERT_GE(fd, 0);
    EXPECT_NE(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
    int result = 0;
    for (int i = 0; i < 1000 && result == 0; ++i) result = ready(server.host.c_str(), &fd);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(NC_SendCommand(fd, 8), 4);
    NC_Disconnect(fd);
    server.Join();
    EXPECT_EQ(greetings, kGreeting + "KRV\x08");
  }
}

TEST(Ready, RefusalAndAbsenceGiveAFreshAttempt) {
  for (const ReadyCall ready : kReadyCalls) {
    Listener server;
    server.Serve(2, [](int end) {
      if (!ReceiveText(end, 4).empty()) SendText(end, std::string(1, 0));
    });
    int fd = -4;
    EXPECT_EQ(ready(server.host.c_str(), &fd), 0);  // begins
    ASSERT_GE(fd, 0);
    pollfd one = {fd, POLLOUT, 0};
    ASSERT_EQ(poll(&one, 1, 5000), 1);
    EXPECT_EQ(ready(server.host.c_str(), &fd), 0);  // refused: begins again
    EXPECT_GE(fd, 0);
    close(fd);
    server.Join();
    int bad = -1;
    EXPECT_EQ(ready("256.256.256.256", &bad), 0);
    EXPECT_EQ(bad, NC_NO_HOST);
    EXPECT_EQ(ready(server.host.c_str(), nullptr), 0);
    int ends[2];  // an attempt that failed counts as ended
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    close(ends[1]);
    EXPECT_EQ(ready("256.256.256.256", &ends[0]), 0);
    EXPECT_EQ(ends[0], NC_NO_HOST);
    int closed = 987;
    EXPECT_EQ(ready(server.host.c_str(), &closed), 0);
    EXPECT_EQ(closed, 987);
  }
}

// A pending attempt stays as it is: the server's queue is full, so the handshake cannot end.
TEST(Ready, PendingStaysPending) {
  Listener server;
  ASSERT_EQ(listen(server.fd, 0), 0);
  signal(SIGPIPE, SIG_DFL);
  int fds[8];
  for (int& fd : fds) fd = NC_Connect(server.host.c_str(), 0);
  EXPECT_EQ(signal(SIGPIPE, SIG_IGN), SIG_IGN);
  int last = fds[7];
  ASSERT_GE(last, 0);
  EXPECT_EQ(NC_Ready(server.host.c_str(), &last), 0);
  EXPECT_EQ(last, fds[7]);
  for (int fd : fds) NC_Disconnect(fd);
}

TEST(Transfer, ExactCountsOrNothing) {
  char buf[9] = {};
  Pair pair([](int end) {
    for (const char* piece : {"1", "234", "5678", "9"}) {
      SendText(end, piece);
      usleep(1000);
    }
  });
  EXPECT_EQ(NC_Read(pair.fd, buf, 8), 8);
  EXPECT_STREQ(buf, "12345678");
  // Nothing to wait for, and an end in the middle.
  for (const int32_t n : {0, -5, 2}) EXPECT_EQ(NC_Read(pair.fd, buf, n), -1) << n;
  EXPECT_EQ(NC_Write(pair.fd, buf, 0), 0);
  EXPECT_EQ(NC_Write(pair.fd, buf, -5), -1);
  EXPECT_EQ(NC_Write(pair.fd, buf, 1), -1);  // and no signal
  EXPECT_EQ(NC_Write(pair.fd, nullptr, 5) + NC_Read(pair.fd, nullptr, 5), -2);
  EXPECT_EQ(NC_Read(-1, buf, 1) + NC_Write(-1, buf, 1) + NC_SendCommand(-1, 1), -3);
  std::string received;
  const std::string large(3 << 20, 'x');  // more than any socket holds
  for (const int deadline : {0, 20000}) {
    Pair slow([&](int end) {
      usleep(20000);
      received = ReceiveText(end, large.size());
    });
    EXPECT_EQ(NC_SetDeadline(slow.fd, deadline), 0);
    EXPECT_EQ(NC_Write(slow.fd, large.data(), 3 << 20), 3 << 20);
    slow.Finish();
    EXPECT_EQ(received, large);
  }
}

TEST(Transfer, DeadlinesEndBothDirections) {
  Pair pair(Hold);
  EXPECT_EQ(NC_GetDeadline(pair.fd), 0);
  EXPECT_EQ(NC_SetDeadline(pair.fd, -1), -1);
  EXPECT_EQ(NC_SetDeadline(-1, 100), -1);
  EXPECT_EQ(NC_SetDeadline(pair.fd, 20), 0);
  EXPECT_GE(NC_GetDeadline(pair.fd), 20);
  EXPECT_LE(NC_GetDeadline(pair.fd), 40);
  char byte;
  errno = 0;
  EXPECT_EQ(NC_Read(pair.fd, &byte, 1), -1);
  EXPECT_EQ(errno, ETIMEDOUT);
  errno = 0;
  const std::string large(3 << 20, 'x');
  EXPECT_EQ(NC_Write(pair.fd, large.data(), static_cast<int32_t>(large.size())), -1);
  EXPECT_EQ(errno, ETIMEDOUT);
  EXPECT_EQ(NC_SetDeadline(pair.fd, INT32_MAX), 0);
  EXPECT_GT(NC_GetDeadline(pair.fd), INT32_MAX / 2);
  EXPECT_EQ(NC_SetDeadline(pair.fd, 0), 0);
  EXPECT_EQ(NC_GetDeadline(pair.fd), 0);
}

// A byte now and then does not stretch the deadline of one call.
TEST(Transfer, TricklesEnd) {
  Pair pair([](int end) {
    while (SendText(end, "x")) usleep(5000);
  });
  NC_SetDeadline(pair.fd, 40);
  char buf[1 << 16];
  errno = 0;
  EXPECT_EQ(NC_Read(pair.fd, buf, sizeof buf), -1);
  EXPECT_EQ(errno, ETIMEDOUT);
}

TEST(Host, NameAndAddress) {
  char name[64] = {}, expected[64] = {}, address[16] = "unset";
  ASSERT_EQ(gethostname(expected, 64), 0);
  EXPECT_EQ(NC_GetHostName(name), 0);
  EXPECT_STREQ(name, expected);
  NC_GetHostAddr(address);
  EXPECT_STREQ(address, "127.0.0.1");
  NC_GetHostAddr(nullptr);
  EXPECT_EQ(NC_GetHostName(nullptr) + NC_Disconnect(-1), -2);
}

}  // namespace

// Goes before the system's own.
extern "C" int gethostbyname_r(const char* name, hostent* entry, char* scratch, size_t size,
                               hostent** result, int* error) {
  static const auto real =
      reinterpret_cast<decltype(&gethostbyname_r)>(dlsym(RTLD_NEXT, "gethostbyname_r"));
  if (strcmp(name, kSilentName) == 0) {
    pollfd end = {no_names_end, POLLIN, 0};
    poll(&end, 1, 20000);
  }
  return real(name, entry, scratch, size, result, error);
}
