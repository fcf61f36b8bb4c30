// Sending documents: what goes to the server, from where, and what is said of it.
#include <sys/stat.h>

#include "tests/os/scratch.h"
#include "tests/quorvik-print/fake_server.h"

namespace {

using Strings = std::vector<std::string>;

const std::string kOne = Id("01"), kTwo = Id("02");

TEST_F(Cli, TicketsAndDocuments) {
  const Scratch scratch;
  const std::string file = scratch.File("a.txt", "text"), empty = scratch.File("empty");
  server.queues = {Job("01", 41) + Job("02", 42, "document=\x1bx\n")};
  Outcome outcome =
      Run({"print", "--hold", "--copies=999", "--priority", "60", "--owner", "bob", "--profile",
           "Fine", "--media", "A3", "--printer", "P", "--colour", "0a0b0c", "--", file, empty});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(outcome.error, "");  // progress goes to terminals alone
  const std::string rest =
      "owner=bob\nprinter=P\nprofile=Fine\nmedia=A3\ncopies=999\npriority=60\nhold=1\n"
      "colour=0a0b0c\n\n";
  EXPECT_EQ(Requests(), (Strings{kOne + " document=a.txt\n" + rest + "text",
                                 kTwo + " document=empty\n" + rest}));
  EXPECT_EQ(outcome.out, kOne + " 41 d41, ann\n" + kTwo + " 42 \\u{001B}x, ann\n");

  const std::string plain = "owner=ann\ncopies=1\npriority=50\nhold=0\n\n";
  const struct {
    std::string line, document;
  } rows[] = {{"printf in | $Q print", "document=standard input\n" + plain + "in"},
              {"printf in | $Q print --title 'a b' -", "document=a b\n" + plain + "in"},
              {"printf in | $Q print /dev/stdin", "document=stdin\n" + plain + "in"},
              {"$Q print /proc/sys/kernel/ostype", "document=ostype\n" + plain + "Linux\n"},
              {"mkfifo f; printf in >f & $Q print f", "document=f\n" + plain + "in"}};
  for (const auto& row : rows) {
    outcome = Shell("cd " + scratch.path() + " && " + row.line);
    EXPECT_EQ(outcome.code, 0) << row.line << outcome.error;
    const Strings requests = Requests();
    ASSERT_EQ(requests.size(), 1U) << row.line;
    EXPECT_EQ(requests[0].substr(33), row.document) << row.line;
    EXPECT_TRUE(
        Has(outcome.out, " - " + row.document.substr(9, row.document.find('\n') - 9) + ", ann\n"))
        << outcome.out;  // not in the list: no number
  }
  // A name past the limit is cut between characters.
  Run({"print", "--title", std::string(254, 'x') + "\xc3\xa4", file});
  EXPECT_EQ(Requests().at(0).substr(33, 9 + 254 + 3), "document=" + std::string(254, 'x') + "\now");
}

TEST_F(Cli, DocumentsThatCannotBeSent) {
  const Scratch scratch;
  const std::string file = scratch.File("a", "x"), large = scratch.File("large");
  ASSERT_EQ(truncate(large.c_str(), int64_t{INT32_MAX} - 10), 0);
  const struct {
    std::string line;
    int code;
    std::string error;
    size_t sent = 0;
  } rows[] = {
      {"$Q print none " + file, 4, "none: No such file", 1},
      {"$Q print . " + file, 4, ".: a folder cannot be printed", 1},
      {"$Q print " + large + " " + file, 4, "large: too large to be printed", 1},
      {"$Q print </dev/null", 4, "standard input is empty"},
      {"$Q print <&-", 4, "standard input is empty"},
      {"printf x | TMPDIR=/nowhere $Q print", 4, "/nowhere: no file can be made"},
      {"$Q print --owner " + std::string(4096, 'o') + " " + file, 2, "the options are too long"},
      {"$Q print /proc/self/mem", 4, "/proc/self/mem: cannot be read"},
  };
  for (const auto& row : rows) {
    const Outcome outcome = Shell("cd " + scratch.path() + " && " + row.line);
    EXPECT_EQ(outcome.code, row.code) << row.line << outcome.error;
    EXPECT_TRUE(Has(outcome.error, row.error)) << outcome.error;
    EXPECT_EQ(Requests().size(), row.sent) << row.line;
  }
  server.statuses = {5, 7};
  const Outcome outcome = Run({"print", file, file, file});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(Has(outcome.error, "a: refused: the printer takes no new jobs\n"));
  EXPECT_TRUE(Has(outcome.error, "a: refused: no such printer or profile\n"));
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1);
}

TEST_F(Cli, AnswersThatAreLost) {
  const Scratch scratch;
  const std::string file = scratch.File("a", std::string(100000, 'x'));
  // Sent whole, and found in the queue: that is as good as the answer.
  server.statuses = {-1};
  server.queues = {"", Job("01", 8)};
  Outcome outcome = Run({"print", file, file});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(outcome.out, kOne + " 8 d8, ann\n" + kTwo + " - a, ann\n");
  // Not sent whole.
  const std::string large = scratch.File("large", std::string(40 << 20, 'x'));
  server.statuses = {-2};
  outcome = Run({"print", large, file});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_TRUE(Has(outcome.error, "large: not accepted, the connection to the server failed: it "))
      << outcome.error;
  EXPECT_EQ(outcome.out, "");
  // Sent whole, and not found.
  server.statuses = {-1};
  server.queues = {""};
  outcome = Run({"print", file, file});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_TRUE(Has(outcome.error, "it may have been accepted all the same: look for " + Id("04")))
      << outcome.error;
}

TEST_F(Cli, WaitingForTheEnd) {
  const Scratch scratch;
  const std::string file = scratch.File("a", "x");
  int id = 0;
  const struct {
    Strings arguments;
    std::vector<Strings> lists;  // the records after those of the new job's id, list by list
    int code;
    std::string error;
  } rows[] = {
      {{}, {{"state=waiting\n"}, {"state=printing\n"}, {"state=done\n"}}, 0, ""},
      {{},
       {{}, {"reasons=printer-paused\n"}, {"state=done\n"}},
       0,
       "d5, ann: the printer is paused"},
      {{},
       {{}, {"state=failed\nreasons=document-rejected\n"}},
       1,
       "5 d5, ann: failed: the printer cannot print this document"},
      {{}, {{}, {"state=failed\ntext=why\n"}}, 1, "failed: why"},
      {{}, {{"state=printing\n"}, {}}, 5, "no longer listed, and its end is not known"},
      {{}, {{"state=held\n"}, {"state=held\n"}, {}}, 1, "5 d5, ann: removed"},
      {{"--hold"}, {{}, {}}, 1, "removed"},
      // Another job that is done is still listed, so it was not printed.
      {{},
       {{"state=printing\n", "state=done\n"},
        {"state=printing\n", "state=done\n"},
        {"", "state=done\n"}},
       1,
       "5 d5, ann: removed"},
      {{}, {{"state=printing\n"}, {"state=printing\n"}, {"", "state=done\n"}}, 5, "is not known"},
  };
  for (const auto& row : rows) {
    server.queues.clear();
    ++id;
    for (const Strings& list : row.lists) {
      std::string records;
      if (!list.empty() && !list[0].empty()) records = Job("0" + std::to_string(id), 5, list[0]);
      if (list.size() > 1) records += Job("ee", 1, list[1]);
      server.queues.push_back(records);
    }
    Strings arguments = row.arguments;
    arguments.insert(arguments.begin(), {"print", "--wait", file});
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.code, row.code) << id << outcome.error;
    EXPECT_TRUE(Has(outcome.error, row.error)) << id << outcome.error;
  }
}

}  // namespace
