#include "toolkit/core/trace.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "toolkit/core/state.h"

namespace {

constexpr const char* kSubjects[] = {"events", "windows", "draw"};
constexpr const char* kRefusals[] = {
    "none",           "stale-window",  "no-timer-slot",   "no-box-list",
    "stack-too-deep", "path-too-long", "display-refused", "too-many-children"};

unsigned ReadSubjects() {
  const char* wanted = getenv("XW_TRACE");
  unsigned mask = 0;
  for (unsigned i = 0; wanted && i < 3; ++i)
    if (strstr(wanted, kSubjects[i])) mask |= 1u << i;
  return mask;
}

}  // namespace

const unsigned traced_subjects = ReadSubjects();

void Trace(Subject subject, const char* format, ...) {
  if (!Traced(subject)) return;
  fprintf(stderr, "%s: ", kSubjects[int(subject)]);
  va_list args;
  va_start(args, format);
  vfprintf(stderr, format, args);
  va_end(args);
  fputc('\n', stderr);
}

void WriteDrawing(const char* call, std::initializer_list<int> numbers) {
  std::string line = call;
  for (const int n : numbers) line += " " + std::to_string(n);
  Trace(Subject::kDraw, "%s", line.c_str());
}

void Refuse(Refusal what) {
  toolkit::state.refusal = what;
  Trace(Subject::kWindows, "refused %s", kRefusals[int(what)]);
}

Refusal TakeRefusal() {
  return std::exchange(toolkit::state.refusal, Refusal::kNone);
}
