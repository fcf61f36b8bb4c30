// The console's model of a folder with 100,000 files: what the thread that reads it does once, and
// then what a click on a header, a letter in the filter box and Select All cost the window. In time
// of the processor, since nothing here waits.
//   folder_rows [rounds]
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "app/model/folder_rows.h"
#include "app/model/selection.h"
#include "bench/clock.h"

namespace {

using namespace console;

constexpr int kFiles = 100000;

FolderListing Listing() {
  constexpr size_t kRecords = sizeof(OS_ListEntryN) * kFiles, kName = 40;
  FolderListing listing;
  listing.count = kFiles;
  listing.entries.reset(static_cast<OS_ListEntryN*>(malloc(kRecords + kFiles * kName)));
  char* names = reinterpret_cast<char*>(listing.entries.get()) + kRecords;
  for (int i = 0; i < kFiles; ++i) {
    char* name = names + size_t(i) * kName;
    const int number = int(i * 7919LL % kFiles);  // in no order
    snprintf(name, kName, "Scan %d of the Übersicht.%s", number, i % 3 ? "pdf" : "tif");
    listing.entries.get()[i] = {name, uint64_t(number) * 977 % 50000, number / 2, S_IFREG, S_IFREG};
  }
  return listing;
}

double Milliseconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) * 1e3 + double(t.tv_nsec) * 1e-6;
}

template <class Work>
double Time(int rounds, Work&& work) {
  std::vector<double> times;
  for (int i = 0; i < rounds; ++i) {
    const double start = Milliseconds();
    work();
    times.push_back(Milliseconds() - start);
  }
  return Median(times);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, atoi(argv[1])) : 21;
  std::shared_ptr<const FolderContent> content;
  std::vector<double> reading;
  for (int i = 0; i < std::min(rounds, 9); ++i) {
    FolderListing listing = Listing();
    const double start = Milliseconds();
    content = FolderContent::Of(std::move(listing));
    reading.push_back(Milliseconds() - start);
  }
  FolderRows rows;
  rows.Show(content);
  bool descending = false;
  const double sort = Time(rounds, [&] { rows.Sort(FileOrder::kSize, descending = !descending); });
  const double contains = Time(rounds, [&] { rows.Filter("ubersicht.p"); });
  const double pattern = Time(rounds, [&] { rows.Filter("*9*.pdf"); });
  rows.Filter("");
  Selection<std::string> selection;
  const double all = Time(rounds, [&] { selection.All(rows); });
  const double refresh = Time(rounds, [&] { selection.Renew(rows, 0); });
  if (rows.count() != kFiles || selection.size() != size_t{kFiles}) return 1;
  printf(
      "%d files: once %.1f ms; sort %.1f, contains %.1f, pattern %.1f, select all %.1f, "
      "refresh with all selected %.1f ms\n",
      kFiles, Median(reading), sort, contains, pattern, all, refresh);
  printf("folder_rows once_ms=%.1f sort_ms=%.1f filter_ms=%.1f select_ms=%.1f\n", Median(reading),
         sort, std::max(contains, pattern), std::max(all, refresh));
}
