#include "printserver/records.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "printserver/nc.h"
#include "printserver/words.h"

namespace {

const std::string kId = "00112233445566778899aabbccddeeff";

std::vector<NC_Job> ParseJobs(const std::string& list, int32_t max = 10) {
  std::vector<NC_Job> jobs(static_cast<size_t>(max) + 1);
  memset(jobs.data(), 0x55, jobs.size() * sizeof(NC_Job));
  const int32_t count =
      NC_ParseJobs(list.data(), static_cast<int32_t>(list.size()), jobs.data(), max);
  jobs.resize(static_cast<size_t>(count));
  return jobs;
}

TEST(Records, JobDefaultsAndValues) {
  const auto jobs =
      ParseJobs("id=" + kId + "\n\ntext=a=b \\\\\\n\\x\\\nstate=paper-out\ncopies=7\n" +
                "total=9\nprinted=12\nnew-key=1\njunk\nid=" + kId);
  ASSERT_EQ(jobs.size(), 2U);
  EXPECT_EQ(jobs[0].state, NC_JOB_WAITING);
  EXPECT_EQ(jobs[0].copies, 1);
  EXPECT_EQ(jobs[0].priority, 50);
  EXPECT_STREQ(jobs[0].document, "");
  EXPECT_EQ(jobs[0].id[1], 0x11);
  EXPECT_STREQ(jobs[1].text, "a=b \\\nx\\");
  EXPECT_EQ(jobs[1].state, NC_JOB_PAPER_OUT);
  EXPECT_EQ(jobs[1].copies, 7);
  EXPECT_EQ(jobs[1].printed, 9);
  // What a server of today does not send.
  EXPECT_EQ(jobs[0].number, 0);
  EXPECT_EQ(jobs[0].kept, 1);
  EXPECT_EQ(jobs[0].pages, -1);
  EXPECT_EQ(jobs[0].pages_printed, -1);
  EXPECT_EQ(jobs[0].colour, -1);
}

TEST(Records, NewKeysOfJobs) {
  const struct {
    const char* lines;
    int number, kept, pages, printed, colour;
  } rows[] = {
      {"number=2147483647\nkept=0\npages=12\npages-printed=0\ncolour=0A00ff", INT32_MAX, 0, 12, 0,
       0x0a00ff},
      {"number=2147483648\nkept=2\npages=-1\npages-printed=x\ncolour=0a00f", 0, 1, -1, -1, -1},
      {"state=done\ncolour=-a00ff", 0, 0, -1, -1, -1},
      {"state=done\nkept=1\ncolour=0a00fff", 0, 1, -1, -1, -1},
      {"state=failed\ncolour=0a00fg", 0, 1, -1, -1, -1},
      {"colour=ffffff\ncolour=", 0, 1, -1, -1, -1},
  };
  for (const auto& row : rows) {
    const auto jobs = ParseJobs("id=" + kId + "\n" + row.lines + "\nreasons=a,b\n\n");
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs[0].number, row.number) << row.lines;
    EXPECT_EQ(jobs[0].kept, row.kept) << row.lines;
    EXPECT_EQ(jobs[0].pages, row.pages) << row.lines;
    EXPECT_EQ(jobs[0].pages_printed, row.printed) << row.lines;
    EXPECT_EQ(jobs[0].colour, row.colour) << row.lines;
    EXPECT_STREQ(jobs[0].reasons, "a,b");
  }
}

TEST(Records, WhatIsWrongIsLeftOut) {
  const struct {
    std::string list;
    size_t count;
  } cases[] = {
      {"", 0},
      {"\n\n\n", 0},
      {"state=held\n\n", 0},
      {"id=\n\n", 0},
      {"id=" + kId + "0\n\n", 0},
      {"id=0x" + kId.substr(2) + "\n\n", 0},
      {"id=-" + kId.substr(1) + "\n\n", 0},
      {std::string(100, '\0'), 0},
      {"===\n=\n\nid=" + kId + "\n\n\n\n", 1},
      {"id=" + kId + "\ncopies=99999999999999999999\npriority=-1\nhold=x\nsize=1.5\n", 1},
      {"id=" + kId + "\ndocument=" + std::string(100000, 'x') + "\n\n", 1},
  };
  for (const auto& row : cases) {
    const auto jobs = ParseJobs(row.list);
    ASSERT_EQ(jobs.size(), row.count) << row.list.substr(0, 60);
    for (const NC_Job& job : jobs) {
      EXPECT_EQ(job.copies, 1);
      EXPECT_EQ(job.priority, 50);
      EXPECT_EQ(job.hold, 0);
      EXPECT_EQ(job.size, 0);
      EXPECT_LT(strlen(job.document), sizeof job.document);
    }
  }
  std::string many;
  for (int i = 0; i < 20; ++i) many += "id=" + kId + "\n\n";
  EXPECT_EQ(ParseJobs(many, 7).size(), 7U);
  EXPECT_EQ(NC_ParseJobs(nullptr, 10, nullptr, 1), 0);
}

TEST(Records, PrintersScannersProfiles) {
  const std::string list = "name=A\nstate=printing\npaper=3\nid=" + kId +
                           "\npaused=1\naccepting=0\nreasons=x\nsupplies=k:-1\n\nstate=idle\n\n"
                           "name=B\nstate=new\nid=1\n";
  NC_Printer printers[4];
  ASSERT_EQ(NC_ParsePrinters(list.data(), static_cast<int32_t>(list.size()), printers, 4), 2);
  EXPECT_EQ(printers[0].state, NC_PRINTER_PRINTING);
  EXPECT_EQ(printers[0].paper, 3);
  EXPECT_EQ(printers[1].state, NC_PRINTER_IDLE);
  EXPECT_EQ(printers[0].has_id, 1);
  EXPECT_EQ(printers[0].id[15], 0xff);
  EXPECT_EQ(printers[0].paused, 1);
  EXPECT_EQ(printers[0].accepting, 0);
  EXPECT_STREQ(printers[0].reasons, "x");
  EXPECT_STREQ(printers[0].supplies, "k:-1");
  EXPECT_EQ(printers[1].paper, -1);
  EXPECT_EQ(printers[1].has_id, 0);
  EXPECT_EQ(printers[1].paused, 0);
  EXPECT_EQ(printers[1].accepting, 1);
  NC_Scanner scanners[1];
  ASSERT_EQ(NC_ParseScanners(list.data(), static_cast<int32_t>(list.size()), scanners, 1), 1);
  std::string records(96, '\xff');  // names without an end
  NC_Profile profiles[2];
  ASSERT_EQ(NC_ParseProfiles(records.data(), 2, profiles, 2), 2);
  EXPECT_EQ(strlen(profiles[1].name), 31U);
  EXPECT_EQ(profiles[1].dpi_along, 0xffff);
}

TEST(Records, TicketsAreWrittenWholeOrNotAtAll) {
  char ticket[32] = "";
  EXPECT_EQ(NC_AddTicketText(ticket, sizeof ticket, "document", "a\n\\b"), 1);
  EXPECT_EQ(NC_AddTicketNumber(ticket, sizeof ticket, "copies", -12), 1);
  EXPECT_STREQ(ticket, "document=a\\n\\\\b\ncopies=-12\n");
  EXPECT_EQ(NC_AddTicketText(ticket, sizeof ticket, "owner", "x"), 0);
  EXPECT_EQ(NC_AddTicketText(ticket, sizeof ticket, "x", "1"), 1);
  EXPECT_EQ(strlen(ticket), 31U);  // to the last byte
  EXPECT_EQ(NC_AddTicketText(ticket, sizeof ticket, "Key", "x"), 0);
  EXPECT_EQ(NC_AddTicketText(ticket, sizeof ticket, "", "x"), 0);
  EXPECT_EQ(NC_AddTicketText(ticket, 10, "k", "x"), 0);
}

TEST(Records, Ids) {
  uint8_t id[16];
  char text[33];
  ASSERT_EQ(NC_ParseId(kId.c_str(), id), 1);
  NC_FormatId(id, text);
  EXPECT_EQ(text, kId);
  EXPECT_EQ(NC_ParseId(kId.substr(1).c_str(), id), 0);
  EXPECT_EQ(NC_ParseId((kId.substr(1) + "g").c_str(), id), 0);
  EXPECT_EQ(NC_ParseId(nullptr, id), 0);
  EXPECT_STRNE(NC_StatusText(-1), "");
  EXPECT_STRNE(NC_StatusText(200), NC_StatusText(1));
  EXPECT_STREQ(NC_JobStateWord(NC_JOB_PAPER_OUT), "paper-out");
  EXPECT_STREQ(NC_JobStateWord(static_cast<NC_JobState>(-1)), "waiting");
  EXPECT_STREQ(NC_PrinterStateWord(static_cast<NC_PrinterState>(3)), "idle");
}

TEST(Words, WhatConsoleAndCommandLineSay) {
  EXPECT_STREQ(nc::JobStateText(NC_JOB_PAPER_OUT), "out of paper");
  EXPECT_STREQ(nc::JobStateText(NC_JOB_DONE), "printed");
  EXPECT_STREQ(nc::JobStateText(static_cast<NC_JobState>(6)), "waiting");
  EXPECT_STREQ(nc::PrinterStateText(NC_PRINTER_PAPER_OUT), "out of paper");
  EXPECT_EQ(nc::ReasonsText(nullptr), "");
  EXPECT_EQ(nc::ReasonsText(",printer-refuses,,new-one,"), "the printer takes no jobs, new one");
  EXPECT_STREQ(nc::RefusalText(NC_STATUS_WRONG_STATE, nc::Asked::kPrint),
               "the printer takes no new jobs");
  EXPECT_STREQ(nc::RefusalText(NC_STATUS_WRONG_STATE, nc::Asked::kJob),
               NC_StatusText(NC_STATUS_WRONG_STATE));
  EXPECT_STREQ(nc::RefusalText(NC_STATUS_UNKNOWN_ID, nc::Asked::kPrinter), "no such printer");
  EXPECT_STREQ(nc::RefusalText(NC_STATUS_UNKNOWN_ID, nc::Asked::kJob), "no such job");
  const struct {
    int code, error;
    const char* text;
  } rows[] = {{NC_NO_HOST, ENOENT, "this host is not known"},
              {NC_NO_HOST, ETIMEDOUT, "nobody says in time where this host is"},
              {NC_NO_HOST, EINVAL, "its port is not a number from 1 to 65535"},
              {NC_NO_SERVER, ECONNREFUSED, "no server there"},
              {NC_NO_SERVER, ETIMEDOUT, "it does not answer"},
              {NC_REFUSED, 0, "it refuses connections"},
              {NC_NO_SOCKET, EMFILE, "the system has no connection left"}};
  for (const auto& row : rows) EXPECT_EQ(nc::ConnectText(row.code, row.error), row.text);
  EXPECT_EQ(nc::FailureText(EPIPE), nc::FailureText(ECONNRESET));
  EXPECT_EQ(nc::FailureText(ETIMEDOUT), "it does not answer");
}

}  // namespace
