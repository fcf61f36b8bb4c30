// Filling a list box of 100,000 rows, beside a bare array that gets a copy of each string; in turn,
// on the headless display. Then the first frame of a whole program with such a list (see
// first_frame.cc).
//   lists [rounds]
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/lists/lists.h"
#include "toolkit/xw.h"

namespace {

constexpr int kRows = 100000;

double Now() {
  using Clock = std::chrono::steady_clock;
  return std::chrono::duration<double, std::milli>(Clock::now().time_since_epoch()).count();
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

double FillList(XwWindow* window, const char* const* rows) {
  const char* const none[] = {nullptr};
  XwWindow* list = XwListBox(window, none, 1, 8, 8, 200, 180, XWC_ENABLED | XWC_VISIBLE);
  const double start = Now();
  XwUpdateListBox(list, rows);
  const double time = Now() - start;
  const auto control = static_cast<platform::ControlRef>(list->platform);
  if (platform::ListRowText(control, kRows - 1) != rows[kRows - 1]) exit(1);
  XwDestroy(list);
  return time;
}

double FillArray(const char* const* rows) {
  const double start = Now();
  size_t count = 0;
  while (rows[count]) ++count;
  auto** copies = static_cast<char**>(malloc(count * sizeof(char*)));
  for (size_t i = 0; i < count; ++i) copies[i] = strdup(rows[i]);
  const double time = Now() - start;
  if (strcmp(copies[kRows - 1], rows[kRows - 1]) != 0) exit(1);
  for (size_t i = 0; i < count; ++i) free(copies[i]);
  free(copies);
  return time;
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, atoi(argv[1])) : 101;
  std::vector<std::string> texts;
  std::vector<const char*> rows;
  for (int i = 1; i <= kRows; ++i) texts.push_back("Job " + std::to_string(i));
  for (const std::string& t : texts) rows.push_back(t.c_str());
  rows.push_back(nullptr);
  setenv("XW_DISPLAY", "headless", 1);
  XwSession("lists", "Lists", 7);
  XwWindow* window = XwCreate(0, 40, 40, 320, 200, nullptr);
  XwShow(window, 1);
  XwSync();
  std::vector<double> ours, bare;
  for (int i = -3; i < rounds; ++i) {  // the first rounds fetch the memory
    const double list = FillList(window, rows.data()), array = FillArray(rows.data());
    if (i < 0) continue;
    ours.push_back(list);
    bare.push_back(array);
  }
  XwEndSession();
  printf("%d rows: %.2f ms  floor %.2f ms\n", kRows, Median(ours), Median(bare));
  printf("lists fill_ratio=%.2f\n", Median(ours) / Median(bare));
  fflush(stdout);
  execl(FRAME, FRAME, argc > 1 ? argv[1] : nullptr, nullptr);
  perror(FRAME);
  return 1;
}
