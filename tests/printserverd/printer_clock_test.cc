// A printer over a clock of the test's own.
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <filesystem>

#include "printserverd/printer.h"

using namespace printserverd;

namespace {

class PrinterClock : public testing::Test {
 protected:
  PrinterClock() {
    EXPECT_TRUE(disk.Start());
    settings.printers.emplace_back();
    settings.printers[0].name = "P";
    settings.printers[0].folder = "p";
    settings.printers[0].rate = settings.printers[0].sheet_bytes = 1000;
  }
  ~PrinterClock() override {
    EXPECT_TRUE(disk.Finish(10000));
    std::filesystem::remove_all(folder);
  }

  // Makes the printer of the settings.
  void Make() {
    PrinterEntry entry;
    entry.name = "P";
    entry.id = RequestId(16, 'p');
    printer = std::make_unique<Printer>(settings.printers[0], entry,
                                        PrinterUses{root.get(), &disk, &queue, &counters, faults});
    queue.SetPrinter("P", printer->View());
  }

  void Settle() {
    while (disk.Pending() > 0) {
      pollfd one = {disk.fd(), POLLIN, 0};
      poll(&one, 1, 10);
      disk.RunDone();
    }
  }

  RequestId Add(int64_t size, int64_t copies = 1) {
    RequestId id;
    NewId(&id);
    const DocumentRef document = queue.CreateDocument(id);
    queue.AddBytes(size);
    const auto bytes = std::make_shared<std::vector<char>>(size, 'x');
    queue.Write(document, bytes, {bytes->data(), bytes->size()}, [] {});
    Ticket ticket;
    ticket.printer = "P";
    ticket.copies = copies;
    queue.Accept(document, ticket, size, "",
                 [](Status status) { EXPECT_EQ(status, Status::kDone); });
    Settle();
    return id;
  }

  // The clock goes to `ms`; the printer does what is due.
  const Job& At(int64_t ms, const RequestId& id) {
    for (int i = 0; i < 20; ++i) {
      printer->Tick(ms);
      Settle();
    }
    return *queue.Find(id);
  }

  static std::string NewFolder() {
    std::string name = testing::TempDir() + "printer-XXXXXX";
    return mkdtemp(name.data());
  }

  const std::string folder = NewFolder();
  const Fd root = OpenOwnFolder(folder);
  const Fd jobs = OpenSubfolder(root.get(), "jobs", true);
  const Fd aside = OpenSubfolder(root.get(), "aside", true);
  Settings settings;
  Faults faults;
  Disk disk;
  Counters counters{root.get(), &disk};
  AccessLog log{&disk};
  Queue queue{QueueUses{root.get(), jobs.get(), aside.get(), settings, &disk, &counters, &log}};
  std::unique_ptr<Printer> printer;
};

TEST_F(PrinterClock, GoesOnAtItsRateWithFreshPaper) {
  settings.printers[0].paper = 2;
  Make();
  const RequestId id = Add(5000);
  At(0, id);
  EXPECT_EQ(At(2000, id).state, JobState::kPrinting);
  EXPECT_EQ(At(2050, id).state, JobState::kPaperOut);
  EXPECT_EQ(At(90000, id).printed, 2000);
  const auto paper = [&](int64_t sheets) {
    settings.printers[0].paper = sheets;
    printer->Set(settings.printers[0]);
    const std::string record = printer->Record(true);
    return record.substr(record.find("paper=") + 6, 1);
  };
  EXPECT_EQ(paper(2), "0");  // the same settings load nothing
  EXPECT_EQ(paper(3), "3");
  EXPECT_EQ(paper(2), "2");
  printer->LoadPaper();
  EXPECT_EQ(At(90000, id).printed, 2000);
  EXPECT_EQ(At(91000, id).printed, 3000);
  EXPECT_EQ(At(92000, id).printed, 4000);
  EXPECT_EQ(At(92050, id).state, JobState::kPaperOut);
}

TEST_F(PrinterClock, RefillsItself) {
  settings.printers[0].paper = 1;
  settings.printers[0].refill_seconds = 10;
  Make();
  const RequestId id = Add(2000);
  At(0, id);
  At(1000, id);
  EXPECT_EQ(At(1050, id).state, JobState::kPaperOut);
  EXPECT_EQ(At(11049, id).state, JobState::kPaperOut);
  EXPECT_EQ(At(11050, id).state, JobState::kPrinting);
  EXPECT_EQ(At(12050, id).state, JobState::kDone);
}

TEST_F(PrinterClock, TriesAgainAfterItsFault) {
  faults.output_error = 1;
  settings.printers[0].rate = 0;
  Make();
  const RequestId id = Add(10), next = Add(10);
  EXPECT_EQ(At(0, id).state, JobState::kWaiting);
  EXPECT_EQ(At(29999, next).state, JobState::kWaiting);
  EXPECT_NE(printer->Record(true).find("reasons=output-error\n"), std::string::npos);
  EXPECT_EQ(At(30000, id).state, JobState::kDone);
  EXPECT_EQ(At(30000, next).state, JobState::kDone);
}

TEST_F(PrinterClock, HoldsNothingWhoseOutputIsOnItsWay) {
  settings.printers[0].rate = 0;
  Make();
  const RequestId id = Add(10);
  Status status = Status::kRefused;
  for (int i = 0; i < 10 && !queue.Find(id)->finishing; ++i) {
    Settle();
    printer->Tick(0);
  }
  EXPECT_EQ(queue.Find(id)->state, JobState::kPrinting);
  queue.Change(id, "hold=1\n", "", [&](Status answer) { status = answer; });
  EXPECT_EQ(status, Status::kWrongState);
  EXPECT_EQ(At(0, id).state, JobState::kDone);
}

// Neither the printer nor an end of what is kept comes between a change and the disk.
TEST_F(PrinterClock, WhatIsBeingChangedIsNotTouched) {
  settings.printers[0].rate = 0;
  Make();
  const RequestId id = Add(10);
  std::string answers;
  const auto change = [&](const char* ticket) {
    queue.Change(id, ticket, "",
                 [&](Status answer) { answers += std::to_string(static_cast<int>(answer)); });
  };
  change("copies=2\n");
  printer->Tick(0);
  EXPECT_EQ(queue.Find(id)->state, JobState::kWaiting);
  Settle();
  EXPECT_EQ(At(0, id).state, JobState::kDone);
  settings.done_keep = settings.spool_limit = 0;
  change("hold=0\n");
  queue.Prune(time(nullptr));
  EXPECT_FALSE(queue.MakeBytes(1));
  Settle();
  EXPECT_EQ(answers, "11");
  EXPECT_EQ(At(0, id).state, JobState::kDone);
  EXPECT_TRUE(queue.MakeBytes(0));
  EXPECT_FALSE(queue.Find(id)->kept);
}

}  // namespace
