#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>

#include <vector>

#include "printserver/nc.h"
#include "tests/os/scratch.h"
#include "tests/printserver/peer.h"

namespace {

const std::string kId = "0123456789abcdef";

struct Watched {
  std::vector<int64_t> sent;
  int64_t total = 0;
  int64_t stop_at = INT64_MAX;
};

int Watch(void* context, int64_t sent, int64_t total) {
  auto* watched = static_cast<Watched*>(context);
  watched->sent.push_back(sent);
  watched->total = total;
  return sent >= watched->stop_at;
}

// The ends of a document, opened for reading.
class Document {
 public:
  explicit Document(const std::string& path) : fd(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~Document() { close(fd); }
  const int fd;
};

// Sends a document under an empty ticket.
int32_t Write(int fd, int document, int64_t size, NC_ProgressFunc progress = nullptr,
              void* context = nullptr) {
  return NC_WritePrintRequestN(fd, kId.data(), "", document, size, progress, context);
}

std::string Pattern(size_t size) {
  std::string text(size, 0);
  for (size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 31 + i / 256);
  return text;
}

TEST(PrintRequest, TicketBlankLineDocumentUnderOneLength) {
  Scratch scratch;
  const struct {
    std::string ticket, on_wire;
    size_t size;
  } rows[] = {
      {"document=a.pdf\ncopies=2", "document=a.pdf\ncopies=2\n\n", 1},
      {"document=a.pdf\ncopies=2\n", "document=a.pdf\ncopies=2\n\n", 300000},
      {"hold=1", "hold=1\n\n", 0},
      {"", "\n", 10},
      {"", "\n", 0},
      {"owner=J\xC3\xB6rg", "owner=J\xC3\xB6rg\n\n", 5 << 20},
  };
  for (const auto& row : rows) {
    const std::string content = Pattern(row.size);
    const Document document(scratch.File("doc", content + "beyond"));
    const std::string data = row.on_wire + content;
    const std::string expected =
        "KRV\x03" + kId + Integer(static_cast<uint32_t>(data.size())) + data;
    std::string received;
    Pair pair([&](int end) {
      usleep(1000);
      received = ReceiveText(end, expected.size());
      SendText(end, "\xAA");
      received += ReceiveText(end, 1);
    });
    Watched watched;
    NC_SetDeadline(pair.fd, 20000);
    EXPECT_EQ(
        NC_WritePrintRequestN(pair.fd, kId.data(), row.ticket.c_str(), row.size ? document.fd : -1,
                              static_cast<int64_t>(row.size), Watch, &watched),
        0xAA);
    EXPECT_EQ(fcntl(pair.fd, F_GETFL) & O_NONBLOCK, 0);
    pair.Finish();
    EXPECT_TRUE(received == expected) << row.ticket << " " << row.size;
    ASSERT_FALSE(watched.sent.empty());
    EXPECT_TRUE(std::is_sorted(watched.sent.begin(), watched.sent.end()));
    EXPECT_EQ(watched.sent.back(), static_cast<int64_t>(data.size()));
    EXPECT_EQ(watched.total, static_cast<int64_t>(data.size()));
  }
}

TEST(PrintRequest, DocumentsFromAPipeAndFromTheMiddle) {
  Scratch scratch;
  const std::string content = Pattern(400000);
  const auto send = [&](int document, int64_t size) {
    std::string received;
    Pair pair([&](int end) {
      received = ReceiveText(end, 24 + 1 + static_cast<size_t>(size));
      SendText(end, std::string(1, 0));
      AwaitEnd(end);
    });
    NC_SetDeadline(pair.fd, 20000);
    EXPECT_EQ(Write(pair.fd, document, size), 0);
    pair.Finish();
    return received.substr(25);
  };
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  std::thread writer([&] {
    for (size_t done = 0; done < content.size(); done += 1000) {
      EXPECT_EQ(write(ends[1], content.data() + done, 1000), 1000);
    }
    close(ends[1]);
  });
  EXPECT_TRUE(send(ends[0], static_cast<int64_t>(content.size())) == content);
  writer.join();
  close(ends[0]);
  const Document document(scratch.File("doc", content));
  lseek(document.fd, 1234, SEEK_SET);
  EXPECT_TRUE(send(document.fd, 300000) == content.substr(1234, 300000));
}

TEST(PrintRequest, LengthsAndTicketsThatAreRefused) {
  Scratch scratch;
  const std::string path = scratch.File("doc");
  const int64_t largest = int64_t{INT32_MAX} - 5;  // with "a=b", its end and the blank line
  ASSERT_EQ(truncate(path.c_str(), largest), 0);
  const Document document(path);
  const struct {
    const char* ticket;
    int64_t size;
  } rows[] = {{"a=b", largest + 1}, {"a=b", int64_t{1} << 33}, {"a=b", INT64_MAX}, {"a=b", -1},
              {nullptr, 1},         {"a=b\n\nc=d", 1},         {"\na=b", 1},       {"a=b\n\n", 1}};
  std::string head;
  Pair pair([&](int end) { head = ReceiveText(end, 24); });
  for (const auto& row : rows) {
    EXPECT_EQ(NC_WritePrintRequestN(pair.fd, kId.data(), row.ticket, document.fd, row.size, nullptr,
                                    nullptr),
              NC_BAD_REQUEST)
        << (row.ticket ? row.ticket : "null") << " " << row.size;
  }
  EXPECT_EQ(NC_WritePrintRequestN(pair.fd, nullptr, "", -1, 0, nullptr, nullptr), NC_BAD_REQUEST);
  EXPECT_EQ(NC_WritePrintRequestN(-1, kId.data(), "", -1, 0, nullptr, nullptr), NC_ERROR);
  // The largest goes out, as the first that the server gets; it stops early.
  NC_SetDeadline(pair.fd, 20000);
  EXPECT_EQ(
      NC_WritePrintRequestN(pair.fd, kId.data(), "a=b", document.fd, largest, nullptr, nullptr),
      NC_ERROR);
  pair.Finish();
  EXPECT_EQ(head, "KRV\x03" + kId + Integer(INT32_MAX));
}

TEST(PrintRequest, DocumentsThatCannotBeRead) {
  Scratch scratch;
  const Document shorter(scratch.File("doc", Pattern(1000)));
  const Document folder(scratch.path());
  const Document null("/dev/null");
  for (const int fd : {shorter.fd, folder.fd, null.fd, -1}) {
    Pair pair([](int end) { AwaitEnd(end); });
    NC_SetDeadline(pair.fd, 20000);
    EXPECT_EQ(Write(pair.fd, fd, 1001), NC_UNREADABLE) << fd;
  }
}

// A server that takes so much and then stalls or closes: the request ends by its progress function,
// by its deadline, or by the failure. A document that stalls ends in the first two ways as well.
TEST(PrintRequest, WhatStallsOrEnds) {
  Scratch scratch;
  constexpr int64_t size = 4 << 20;
  const Document document(scratch.File("doc", Pattern(size)));
  int silent[2];
  ASSERT_EQ(pipe(silent), 0);
  enum How { kCancel, kStall, kClose };
  const struct {
    size_t taken;
    int64_t stop_at;
    int document;
  } rows[] = {{0, 0, document.fd},
              {10, 0, document.fd},
              {1 << 20, 1 << 20, document.fd},
              {size + 25, size, document.fd},
              {size, 1, silent[0]}};
  for (const auto& row : rows) {
    for (const How how : {kCancel, kStall, kClose}) {
      if (how == kClose && row.document == silent[0]) continue;
      Pair pair([&](int end) {
        if (row.document == document.fd) ReceiveText(end, row.taken);
        if (how != kClose) Hold(end);
      });
      lseek(document.fd, 0, SEEK_SET);
      NC_SetDeadline(pair.fd, how == kStall ? 30 : 20000);
      // Called though nothing moves, and may end it then.
      struct Patience {
        int64_t stop_at;
        int still;
      } patience = {row.stop_at, 0};
      const auto lose_patience = [](void* context, int64_t sent, int64_t) {
        auto* p = static_cast<Patience*>(context);
        return sent >= p->stop_at && ++p->still >= 3 ? 1 : 0;
      };
      errno = 0;
      EXPECT_EQ(
          Write(pair.fd, row.document, size, how == kCancel ? +lose_patience : nullptr, &patience),
          how == kCancel ? NC_CANCELLED : NC_ERROR)
          << row.taken << " " << how;
      EXPECT_TRUE(how != kStall || errno == ETIMEDOUT) << row.taken;
      EXPECT_EQ(fcntl(pair.fd, F_GETFL) & O_NONBLOCK, 0);
    }
  }
  close(silent[0]);
  close(silent[1]);
}

// It takes longer than the deadline, which counts from progress to progress.
TEST(PrintRequest, SlowServersAreNoTimeouts) {
  Scratch scratch;
  constexpr size_t size = 6 << 20;
  const Document document(scratch.File("doc", Pattern(size)));
  Pair pair([](int end) {
    for (size_t left = size + 25; left > 0;) {
      usleep(50000);
      const size_t n = std::min<size_t>(left, 250000);
      if (ReceiveText(end, n).size() < n) return;
      left -= n;
    }
    SendText(end, "\x07");
    AwaitEnd(end);
  });
  NC_SetDeadline(pair.fd, 1000);
  EXPECT_EQ(Write(pair.fd, document.fd, size), 7);
}

}  // namespace
