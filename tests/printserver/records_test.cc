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

// The jobs of a list, the fields that have defaults or limits in a line each.
std::string Shown(const std::string& list, int32_t max = 10) {
  std::vector<NC_Job> jobs(static_cast<size_t>(max) + 1);
  memset(jobs.data(), 0x55, jobs.size() * sizeof(NC_Job));
  const int32_t count =
      NC_ParseJobs(list.data(), static_cast<int32_t>(list.size()), jobs.data(), max);
  std::string text;
  for (int32_t i = 0; i < count; ++i) {
    const NC_Job& job = jobs[static_cast<size_t>(i)];
    text += NC_JobStateWord(job.state);
    for (const int64_t number :
         {int64_t{job.copies}, int64_t{job.priority}, int64_t{job.hold}, job.size, job.printed,
          int64_t{job.number}, int64_t{job.kept}, int64_t{job.pages}, int64_t{job.pages_printed},
          int64_t{job.colour}}) {
      text += " " + std::to_string(number);
    }
    text += " " + std::string(job.document) + "|" + job.text + "|" + job.reasons + ";";
  }
  return text;
}

TEST(Records, Jobs) {
  const std::string id = "id=" + kId + "\n", rest = " 1 50 0 0 0 ";
  const std::string usual = "waiting" + rest + "0 1 -1 -1 -1 ||;";
  const struct {
    std::string list, shown;
  } rows[] = {
      {id, usual},
      {"===\n=\n\n" + id + "\n\n\n" + id, usual + usual},
      {"text=a=b \\\\\\n\\x\\\nstate=paper-out\ncopies=7\ntotal=9\nprinted=12\nnew-key=1\njunk\n" +
           id,
       "paper-out 7 50 0 0 9 0 1 -1 -1 -1 |a=b \\\nx\\|;"},
      {id + "copies=99999999999999999999\npriority=-1\nhold=x\nsize=1.5\n", usual},
      {id + "document=" + std::string(100000, 'x') + "\n\n",
       "waiting" + rest + "0 1 -1 -1 -1 " + std::string(255, 'x') + "||;"},
      {id + "number=2147483647\nkept=0\npages=12\npages-printed=0\ncolour=0A00ff\nreasons=a,b\n",
       "waiting" + rest + "2147483647 0 12 0 655615 ||a,b;"},
      {id + "number=2147483648\nkept=2\npages=-1\npages-printed=x\ncolour=0a00f\n", usual},
      {id + "state=done\ncolour=-a00ff\n", "done" + rest + "0 0 -1 -1 -1 ||;"},
      {id + "state=done\nkept=1\ncolour=0a00fff\n", "done" + rest + "0 1 -1 -1 -1 ||;"},
      {id + "state=failed\ncolour=0a00fg\n", "failed" + rest + "0 1 -1 -1 -1 ||;"},
      {id + "colour=ffffff\ncolour=\n", usual},
      {"\n\n\n", ""},
      {"state=held\n\nid=\n\n", ""},
      {"id=" + kId + "0\n\nid=0x" + kId.substr(2) + "\n\nid=-" + kId.substr(1) + "\n\n", ""},
      {std::string(100, '\0'), ""},
  };
  for (const auto& row : rows) EXPECT_EQ(Shown(row.list), row.shown) << row.list.substr(0, 60);
  EXPECT_EQ(Shown(id + "\n" + id + "\n" + id, 2), usual + usual);
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

TEST(Words, DependOnWhatWasAskedAndOnTheFailure) {
  EXPECT_STREQ(nc::JobStateText(static_cast<NC_JobState>(6)), nc::JobStateText(NC_JOB_WAITING));
  EXPECT_EQ(nc::ReasonsText(nullptr), "");
  EXPECT_EQ(nc::ReasonsText(",printer-refuses,,new-one,"), "the printer takes no jobs, new one");
  EXPECT_STREQ(nc::RefusalText(NC_STATUS_WRONG_STATE, nc::Asked::kPrint),
               "the printer takes no new jobs");
  EXPECT_STREQ(nc::RefusalText(NC_STATUS_WRONG_STATE, nc::Asked::kJob),
               NC_StatusText(NC_STATUS_WRONG_STATE));
  EXPECT_STREQ(nc::RefusalText(NC_STATUS_UNKNOWN_ID, nc::Asked::kPrinter), "no such printer");
  EXPECT_STREQ(nc::RefusalText(NC_STATUS_UNKNOWN_ID, nc::Asked::kJob), "no such job");
  EXPECT_NE(nc::ConnectText(NC_NO_HOST, ETIMEDOUT), nc::ConnectText(NC_NO_HOST, ENOENT));
  EXPECT_EQ(nc::ConnectText(NC_NO_SERVER, ETIMEDOUT), nc::FailureText(ETIMEDOUT));
  EXPECT_EQ(nc::FailureText(EPIPE), nc::FailureText(ECONNRESET));
}

}  // namespace
