// Process start to the first complete frame answered by the server, of which the program tells: a
// program and the floor run in turn on an X server that the bench starts. This file is built three
// times: first_frame runs the first example and the console, gallery a window of a hundred
// controls, lists_frame a list of 100,000 rows. The floor, which keeps as many rows, runs twice,
// with shared libraries and with the archives that the example has: much of a small program's start
// is the mapping of its libraries.
//   first_frame [rounds], gallery [rounds], lists_frame [rounds]
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "bench/server.h"

extern char** environ;

namespace {

const char* const kRegular = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const char* const kBold = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";

double Now() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) * 1e3 + double(t.tv_nsec) * 1e-6;
}

// With `out` as its standard output.
pid_t Start(std::vector<const char*> command, int out) {
  command.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
  pid_t pid = 0;
  const int error = posix_spawnp(&pid, command[0], &actions, nullptr,
                                 const_cast<char* const*>(command.data()), environ);
  posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? pid : -1;
}

struct Sample {
  double wall = 0;  // milliseconds
  double cpu = 0;
  long memory = 0;  // kB
};

bool Measure(const std::vector<const char*>& command, Sample* out) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  const double start = Now();
  const pid_t pid = Start(command, ends[1]);
  close(ends[1]);
  char byte;
  const bool shown = pid >= 0 && read(ends[0], &byte, 1) == 1;
  out->wall = Now() - start;
  close(ends[0]);
  int status = 0;
  rusage usage{};
  if (pid < 0 || wait4(pid, &status, 0, &usage) != pid || status != 0 || !shown) return false;
  out->cpu = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
             double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-3;
  out->memory = usage.ru_maxrss;
  return true;
}

template <class F>
double Median(std::vector<Sample> v, F figure) {
  std::sort(v.begin(), v.end(),
            [&](const Sample& a, const Sample& b) { return figure(a) < figure(b); });
  return double(figure(v[v.size() / 2]));
}

void Print(const char* name, const std::vector<Sample>& s) {
  printf("%-6s %7.2f ms (least %.2f)  cpu %6.2f ms  %6.0f kB\n", name,
         Median(s, [](const Sample& a) { return a.wall; }),
         std::min_element(s.begin(), s.end(),
                          [](const Sample& a, const Sample& b) { return a.wall < b.wall; })
             ->wall,
         Median(s, [](const Sample& a) { return a.cpu; }),
         Median(s, [](const Sample& a) { return a.memory; }));
}

bool Run(int rounds) {
  const std::vector<const char*> hello = {PROGRAM},
                                 floor = {FLOOR, kRegular, kBold, WIDTH, HEIGHT, ROWS},
                                 floor_static = {FLOOR_STATIC, kRegular, kBold,
                                                 WIDTH,        HEIGHT,   ROWS};
  std::vector<Sample> hellos, floors, statics, consoles;
  // In the first rounds programs end as they do for a user, and leave what the next start uses.
  setenv("QUORVIK_FIRST_RUN", "1", 1);
  for (int i = -3; i < rounds; ++i) {
    if (i == 0) unsetenv("QUORVIK_FIRST_RUN");
    Sample f, s, h;
    if (!Measure(floor, &f) || !Measure(floor_static, &s) || !Measure(hello, &h)) return false;
#ifdef CONSOLE
    Sample c;
    if (!Measure({CONSOLE}, &c)) return false;
    if (i >= 0) consoles.push_back(c);
#endif
    if (i < 0) continue;
    floors.push_back(f);
    statics.push_back(s);
    hellos.push_back(h);
  }
  Print("floor", floors);
  Print("static", statics);
  Print("xw", hellos);
  if (!consoles.empty()) Print("console", consoles);
  auto wall = [](const Sample& s) { return s.wall; };
  auto memory = [](const Sample& s) { return s.memory; };
  printf(NAME " " TIME_RATIO "=%.2f memory_ratio=%.2f static_" TIME_RATIO
              "=%.2f "
              "static_memory_ratio=%.2f",
         Median(hellos, wall) / Median(floors, wall),
         Median(hellos, memory) / Median(floors, memory),
         Median(hellos, wall) / Median(statics, wall),
         Median(hellos, memory) / Median(statics, memory));
  if (!consoles.empty())
    printf(" console_ratio=%.2f", Median(consoles, wall) / Median(floors, wall));
  putchar('\n');
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, atoi(argv[1])) : 101;
  char cache[] = "/tmp/" NAME ".XXXXXX";
  if (mkdtemp(cache) == nullptr) return 1;
  setenv("XDG_CACHE_HOME", cache, 1);
  setenv("XW_DISPLAY", "x11", 1);
  const pid_t server = StartServer();
  if (server < 0) {
    fprintf(stderr, NAME ": cannot start Xvfb\n");
    return 1;
  }
  const bool ran = Run(rounds);
  if (!ran) fprintf(stderr, NAME ": a program failed\n");
  kill(server, SIGTERM);
  waitpid(server, nullptr, 0);
  const pid_t rm = Start({"rm", "-r", cache}, STDERR_FILENO);
  if (rm > 0) waitpid(rm, nullptr, 0);
  return ran ? 0 : 1;
}
