#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <vector>

#include "printserver/nc.h"
#include "tests/os/scratch.h"
#include "tests/printserver/peer.h"

namespace {

std::string Bytes(size_t n, int first) {
  std::string text(n, 0);
  for (size_t i = 0; i < n; ++i) text[i] = static_cast<char>(first + i);
  return text;
}

const std::string kId = Bytes(16, 200);
const std::string kKey = Bytes(80, 1);
const std::string kA = Bytes(100, 7);
const std::string kB = Bytes(40, 90);
const std::string kRecords = Bytes(144, 3);

std::string Padded(std::string text, size_t size) {
  text.resize(size);
  return text;
}

// Where lists arrive: bytes past the announced ones must stay as they are.
struct Buffer {
  char bytes[256];
  uint8_t status = 99;
  Buffer() { memset(bytes, '#', sizeof bytes); }
};

// One command: what goes out, what comes back, what the caller gets.
struct Case {
  const char* name;
  std::string request;
  std::string reply;
  int32_t result;
  std::string filled;  // what the buffer then begins with
  int status;          // 99: not stored
  std::function<int32_t(int, Buffer*)> call;
};

std::vector<Case> Cases() {
  using std::string;
  const string zero(1, 0), five = Integer(5) + "queue";
  const string list = "\x07" + five, none = "\x07" + Integer(0);
  return {
      {"queue", "KRV\x01", five, 5, "queue", 99,
       [](int fd, Buffer* b) { return NC_GetPrintQueue(fd, b->bytes); }},
      {"printers", "KRV\x02", list, 5, "queue", 7,
       [](int fd, Buffer* b) { return NC_GetPrinterList(fd, &b->status, b->bytes); }},
      {"printers of status 0", "KRV\x02", zero, 0, "", 0,
       [](int fd, Buffer* b) { return NC_GetPrinterList(fd, &b->status, b->bytes); }},
      {"scanners", "KRV\x0A", list, 5, "queue", 7,
       [](int fd, Buffer* b) { return NC_GetScannerList(fd, &b->status, b->bytes); }},
      {"scanners of status 0", "KRV\x0A", zero, 0, "", 0,
       [](int fd, Buffer* b) { return NC_GetScannerListN(fd, &b->status, b->bytes, 0); }},
      {"profiles", "KRV\x0B" + kKey, Integer(3) + kRecords, 3, kRecords, 99,
       [](int fd, Buffer* b) { return NC_GetProfileList(fd, kKey.data(), b->bytes); }},
      {"no profiles", "KRV\x0B" + kKey, Integer(0), 0, "", 99,
       [](int fd, Buffer* b) { return NC_GetProfileListN(fd, kKey.data(), b->bytes, 0); }},
      {"print", "KRV\x03" + kId + Integer(4) + "data", "\xFF", 255, "", 99,
       [](int fd, Buffer*) { return NC_WritePrintRequest(fd, kId.data(), "data", 4); }},
      {"print nothing", "KRV\x03" + kId + Integer(0), "\x05", 5, "", 99,
       [](int fd, Buffer*) { return NC_WritePrintRequest(fd, kId.data(), nullptr, 0); }},
      {"remove file, longest", "KRV\x07" + Padded(string(511, 'p'), 512), "\x01", 1, "", 99,
       [](int fd, Buffer*) { return NC_RemoveFile(fd, string(511, 'p').c_str()); }},
      {"layout", "KRV\x08", "", 1, "", 99,
       [](int fd, Buffer*) { return NC_StartLayoutServer(fd); }},
      {"scan", "KRV\x09" + Padded("one", 80) + Padded(string(79, 's'), 80), "", 1, "", 99,
       [](int fd, Buffer*) { return NC_StartScanServer(fd, "one", string(79, 's').c_str()); }},
  };
}

enum class Then { kMore, kClose, kStall };

// Run one command against a server that answers `pieces`, one after the other, then sends more,
// closes, or says nothing more.
void Exchange(const Case& c, const std::vector<std::string>& pieces, Then then) {
  const bool whole = then == Then::kMore;
  std::string request, extra;
  Pair pair([&](int end) {
    request = ReceiveText(end, c.request.size());
    for (const std::string& piece : pieces) {
      SendText(end, piece);
      if (pieces.size() > 1) usleep(50);
    }
    if (whole) SendText(end, "next");
    if (then != Then::kClose) extra = ReceiveText(end, 1);
  });
  if (then == Then::kStall) NC_SetDeadline(pair.fd, 10);
  Buffer buffer;
  errno = 0;
  EXPECT_EQ(c.call(pair.fd, &buffer), whole ? c.result : -1) << c.name << pieces[0].size();
  const int expected = then == Then::kStall ? ETIMEDOUT : ECONNRESET;
  EXPECT_TRUE(whole || errno == expected) << c.name << pieces[0].size();
  if (whole) {
    EXPECT_EQ(ReceiveText(pair.fd, 4), "next") << c.name;  // took exactly its own reply
    EXPECT_EQ(buffer.status, c.status) << c.name;
    EXPECT_EQ(std::string(buffer.bytes, sizeof buffer.bytes),
              c.filled + std::string(sizeof buffer.bytes - c.filled.size(), '#'))
        << c.name;
  }
  pair.Finish();
  EXPECT_EQ(request, c.request) << c.name;
  EXPECT_EQ(extra, "") << c.name;  // sent nothing more
}

// The calls that have no second reading in fuzz/client_calls.cc.
TEST(Commands, RepliesInAnySplitAndCut) {
  for (const Case& c : Cases()) {
    Exchange(c, {c.reply}, Then::kMore);
    std::vector<std::string> bytes;
    for (size_t k = 0; k < c.reply.size(); ++k) {
      const std::string start = c.reply.substr(0, k);
      bytes.push_back(c.reply.substr(k, 1));
      if (k > 0) Exchange(c, {start, c.reply.substr(k)}, Then::kMore);
      Exchange(c, {start}, Then::kClose);
      if (k < 2 || k % 4 == 1) Exchange(c, {start}, Then::kStall);
    }
    if (!bytes.empty()) Exchange(c, bytes, Then::kMore);
  }
}

// More than fits, or more than can be: refused with nothing more read and nothing written.
TEST(Commands, AnnouncedSizesThatAreRefused) {
  const struct {
    const char* name;
    std::string reply;
    std::function<int32_t(int, Buffer*)> call;
  } rows[] = {
      {"plain queue", Integer(0x80000000),
       [](int fd, Buffer* b) { return NC_GetPrintQueue(fd, b->bytes); }},
      {"huge queue", Integer(UINT32_MAX),
       [](int fd, Buffer* b) { return NC_GetPrintQueueN(fd, b->bytes, UINT32_MAX); }},
      {"plain scanners", "\x01" + Integer(UINT32_MAX),
       [](int fd, Buffer* b) { return NC_GetScannerList(fd, &b->status, b->bytes); }},
      {"profiles", Integer(3),
       [](int fd, Buffer* b) { return NC_GetProfileListN(fd, kKey.data(), b->bytes, 143); }},
      // 48 times this is 16 in 32 bits.
      {"profiles that wrap", Integer(0x15555556),
       [](int fd, Buffer* b) { return NC_GetProfileListN(fd, kKey.data(), b->bytes, 256); }},
      {"plain profiles", Integer(INT32_MAX / 48 + 1),
       [](int fd, Buffer* b) { return NC_GetProfileList(fd, kKey.data(), b->bytes); }},
      {"gamut", Integer(1) + Integer(0x80000000),
       [](int fd, Buffer*) { return NC_CopyGamutFile(fd, kA.data(), kB.data(), "/dev/null"); }},
      {"bounded gamut", Integer(1) + Integer(11),
       [](int fd, Buffer*) {
         return NC_CopyGamutFileN(fd, kA.data(), kB.data(), "/dev/null", 10);
       }},
  };
  for (const auto& row : rows) {
    Pair pair([&](int end) {
      SendText(end, row.reply + "next");
      AwaitEnd(end);
    });
    Buffer buffer;
    errno = 0;
    EXPECT_EQ(row.call(pair.fd, &buffer), -1) << row.name;
    EXPECT_EQ(errno, EMSGSIZE) << row.name;
    EXPECT_EQ(ReceiveText(pair.fd, 4), "next") << row.name;
    EXPECT_EQ(std::string(buffer.bytes, sizeof buffer.bytes), std::string(256, '#')) << row.name;
  }
}

TEST(Commands, BadArgumentsSendNothing) {
  std::string received;
  Pair pair([&](int end) { received = ReceiveText(end, 1); });
  const int fd = pair.fd;
  char buf[512];
  const std::string long_path(512, 'p'), long_text(80, 's');
  const int32_t results[] = {NC_GetPrintQueue(fd, nullptr),
                             NC_GetPrinterList(fd, nullptr, nullptr),
                             NC_GetScannerListN(fd, nullptr, nullptr, 9),
                             NC_GetProfileList(fd, nullptr, buf),
                             NC_GetProfileListN(fd, kKey.data(), nullptr, 5),
                             NC_CreateRequestID(fd, nullptr),
                             NC_WritePrintRequest(fd, nullptr, buf, 1),
                             NC_WritePrintRequest(fd, kId.data(), nullptr, 1),
                             NC_WritePrintRequest(fd, kId.data(), buf, 0x80000000),
                             NC_RemovePrintRequest(fd, nullptr),
                             NC_RemoveFile(fd, nullptr),
                             NC_RemoveFile(fd, long_path.c_str()),
                             NC_StartScanServer(fd, "s", nullptr),
                             NC_StartScanServer(fd, long_text.c_str(), "s"),
                             NC_CopyGamutFile(fd, nullptr, kB.data(), "x"),
                             NC_CopyGamutFile(fd, kA.data(), nullptr, "x"),
                             NC_CopyGamutFile(fd, kA.data(), kB.data(), nullptr)};
  for (const int32_t& result : results) EXPECT_EQ(result, -1) << &result - results;
  pair.Finish();
  EXPECT_EQ(received, "");
}

// ------------------------------------------------------------------------------------------------

struct GamutRun {
  int32_t result;
  std::string request;
  std::string left;  // what the connection still holds
};

GamutRun FetchGamut(const std::string& reply, const std::string& path, int64_t limit) {
  GamutRun run;
  Pair pair([&](int end) {
    run.request = ReceiveText(end, 144);
    SendText(end, reply);
  });
  run.result = limit < 0 ? NC_CopyGamutFile(pair.fd, kA.data(), kB.data(), path.c_str())
                         : NC_CopyGamutFileN(pair.fd, kA.data(), kB.data(), path.c_str(),
                                             static_cast<uint32_t>(limit));
  run.left = ReceiveText(pair.fd, 4);
  pair.Finish();
  EXPECT_EQ(run.request, "KRV\x04" + kA + kB);
  return run;
}

TEST(Gamut, FilesOfEverySize) {
  Scratch scratch;
  for (const size_t size : {1, 8191, 8192, 8193, 20000}) {
    const std::string path = scratch.File("gamut", std::string(30000, 'o'));
    const std::string content = Bytes(size, static_cast<int>(size));
    const std::string reply =
        Integer(0x90000000) + Integer(static_cast<uint32_t>(size)) + content + "next";
    const GamutRun run = FetchGamut(reply, path, size % 2 ? -1 : static_cast<int64_t>(size));
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.left, "next");
    struct stat state;
    ASSERT_EQ(stat(path.c_str(), &state), 0);  // before reading it, which may set a time
    EXPECT_EQ(ReadFile(path), content);
    EXPECT_TRUE(state.st_mtime == 0x90000000 && state.st_atime == 0x90000000);
    EXPECT_EQ(state.st_mtim.tv_nsec, 0);
  }
  // None touches nothing; what cannot be written is taken in all the same.
  EXPECT_EQ(FetchGamut(Integer(5) + Integer(0), scratch.At("new"), 0).result, 0);
  EXPECT_FALSE(std::filesystem::exists(scratch.At("new")));
  const GamutRun run = FetchGamut(Integer(5) + Integer(9000) + Bytes(9000, 1) + "next", "", 9000);
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.left, "next");
}

TEST(Gamut, ConnectionsThatEndEarly) {
  Scratch scratch;
  const std::string reply = Integer(7) + Integer(9000) + Bytes(9000, 1);
  for (const size_t cut : {0, 1, 4, 7}) {
    const std::string path = scratch.File("gamut", "old");
    EXPECT_EQ(FetchGamut(reply.substr(0, cut), path, -1).result, -1) << cut;
    EXPECT_EQ(ReadFile(path), "old") << cut;
  }
  for (const size_t cut : {8, 100, 8 + 8192, 8 + 8999}) {
    const std::string path = scratch.File("gamut", "old");
    EXPECT_EQ(FetchGamut(reply.substr(0, cut), path, -1).result, 0) << cut;
    struct stat state;
    ASSERT_EQ(stat(path.c_str(), &state), 0);
    EXPECT_EQ(state.st_mtime, 7) << cut;
    EXPECT_EQ(state.st_size % 8192, 0) << cut;
    EXPECT_EQ(FetchGamut(reply.substr(0, cut), path, 9000).result, -1) << cut;
    EXPECT_EQ(FetchGamut(reply.substr(0, cut), scratch.At("no/such"), -1).result, 1) << cut;
  }
}

TEST(Gamut, StrangersLinksAreNotFollowed) {
  if (geteuid() != 0) GTEST_SKIP() << "needs to give files away";
  Scratch scratch;
  const std::string victim = scratch.File("victim", "precious");
  const std::string link = scratch.Link("gamut", victim);
  ASSERT_EQ(lchown(link.c_str(), 12345, 0), 0);
  EXPECT_EQ(FetchGamut(Integer(7) + Integer(4) + "datanext", link, -1).result, 1);
  EXPECT_EQ(ReadFile(victim), "precious");
}

// It takes longer than the deadline, which counts from piece to piece.
TEST(Gamut, SlowFilesAreNoTimeouts) {
  Scratch scratch;
  Pair pair([](int end) {
    ReceiveText(end, 144);
    SendText(end, Integer(7) + Integer(25 * 8192));
    for (int i = 0; i < 25; ++i) {
      usleep(50000);
      SendText(end, std::string(8192, 'x'));
    }
    AwaitEnd(end);
  });
  NC_SetDeadline(pair.fd, 1000);
  EXPECT_EQ(NC_CopyGamutFileN(pair.fd, kA.data(), kB.data(), scratch.At("f").c_str(), 1 << 20), 0);
}

}  // namespace
