// What a window costs among 1,000 siblings and among 10,000: making it, finding its place again,
// ending it; and showing it.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "toolkit/xw.h"

namespace {

constexpr int kFew = 1000, kMany = 10000, kRounds = 31;

int Handle(int) {
  return 0;
}

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
  return values[values.size() / 2];
}

XwWindow* parent;

struct Times {
  double create, reuse, destroy_each, destroy_whole, show;
};

Times Round(int count) {
  Times t{};
  parent = XwCreate(-255, 100, 100, 300, 200, Handle);
  std::vector<XwWindow*> children(static_cast<size_t>(count));
  t.create = Seconds([&] {
    for (XwWindow*& c : children) c = XwCreate(parent, 1, 1, 10, 10, Handle);
  });
  // Every second one ends and another takes its place.
  t.reuse = Seconds([&] {
    for (size_t i = 0; i < children.size(); i += 2) XwDestroy(children[i]);
    for (size_t i = 0; i < children.size(); i += 2)
      children[i] = XwCreate(parent, 1, 1, 10, 10, Handle);
  });
  t.destroy_each = Seconds([&] {
    for (XwWindow* c : children) XwDestroy(c);
  });
  for (XwWindow*& c : children) c = XwCreate(parent, 1, 1, 10, 10, Handle);
  t.destroy_whole = Seconds([&] { XwDestroy(parent); });
  return t;
}

// Shows 10,000 windows in families of `count`, and takes the time of one family: showing is short,
// so that what counts is whether memory is near, and both sizes must have the same of it.
Times ShowRound(int count) {
  Times t{};
  std::vector<XwWindow*> children;
  while (int(children.size()) < kMany) {
    parent = XwCreate(-255, 100, 100, 300, 200, Handle);
    for (int i = 0; i < count; ++i) children.push_back(XwCreate(parent, 1, 1, 10, 10, Handle));
  }
  t.show = Seconds([&] {
    for (XwWindow* c : children) XwShow(c, 1);
  });
  t.show *= double(count) / kMany;
  return t;
}

// Runs in a new process, since memory costs most when it is first touched.
Times RoundApart(Times (*round)(int), int count) {
  Times t{};
  int ends[2];
  if (pipe(ends) != 0) exit(1);
  pid_t child = fork();
  if (child == 0) {
    t = round(count);
    _exit(write(ends[1], &t, sizeof t) == sizeof t ? 0 : 1);
  }
  close(ends[1]);
  if (read(ends[0], &t, sizeof t) != sizeof t) exit(1);
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return t;
}

struct Row {
  const char* name;
  double Times::*field;
};
constexpr Row kRows[] = {{"create", &Times::create},
                         {"end half and create again", &Times::reuse},
                         {"end one by one", &Times::destroy_each},
                         {"end with the parent", &Times::destroy_whole}};
constexpr Row kShow = {"show", &Times::show};

// Medians of one figure over all rounds.
struct Pair {
  double few, many;
};
Pair Compare(const Row& row, const std::vector<Times>& few, const std::vector<Times>& many) {
  std::vector<double> f, m;
  for (const Times& t : few) f.push_back(t.*row.field);
  for (const Times& t : many) m.push_back(t.*row.field);
  const Pair p{Median(f), Median(m)};
  printf("%-26s %7.1f ns a window of %d, %7.1f ns of %d, ratio %.1f\n", row.name,
         p.few / kFew * 1e9, kFew, p.many / kMany * 1e9, kMany, p.many / p.few);
  return p;
}

}  // namespace

int main() {
  setenv("XW_DISPLAY", "headless", 1);
  XwSession("tree", "Tree", 7);
  XwCreate(-255, 100, 100, 300, 200, Handle);
  std::vector<Times> few, many, few_shown, many_shown;
  for (int round = 0; round <= kRounds; ++round) {
    const Times a = RoundApart(Round, kFew), b = RoundApart(Round, kMany);
    const Times c = RoundApart(ShowRound, kFew), d = RoundApart(ShowRound, kMany);
    if (round == 0) continue;
    few.push_back(a);
    many.push_back(b);
    few_shown.push_back(c);
    many_shown.push_back(d);
  }
  double worst = 0, all_few = 0, all_many = 0;
  for (const Row& row : kRows) {
    const Pair p = Compare(row, few, many);
    worst = std::max(worst, p.many / p.few);
    all_few += p.few;
    all_many += p.many;
  }
  const Pair show = Compare(kShow, few_shown, many_shown);
  printf("tree growth_ratio=%.2f worst_ratio=%.2f show_growth_ratio=%.2f ns_per_window=%.0f\n",
         all_many / all_few, worst, show.many / show.few, all_many / kMany * 1e9);
  return 0;
}
