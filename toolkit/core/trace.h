// What the toolkit does, a line each on standard error, when XW_TRACE names the subject
// (XW_TRACE=events,windows,draw): events as they are dispatched, windows made and ended, and the
// calls that draw, each with its numbers; XwSet with the window's serial and size. Refusals have
// names, so that tests need not look at effects.
#pragma once
#include <initializer_list>

enum class Subject { kEvents, kWindows, kDraw };

extern const unsigned traced_subjects;  // a bit each
inline bool Traced(Subject subject) {
  return traced_subjects >> unsigned(subject) & 1;
}
// A line with the subject's name before it; nothing when the subject is not traced.
void Trace(Subject subject, const char* format, ...) __attribute__((format(printf, 2, 3)));

// The same for a drawing call: its name and its numbers.
void WriteDrawing(const char* call, std::initializer_list<int> numbers);
template <typename... N>
inline void TraceDrawing(const char* call, N... numbers) {
  if (Traced(Subject::kDraw)) [[unlikely]]
    WriteDrawing(call, {int(numbers)...});
}

// The toolkit declined to do something: one name each.
enum class Refusal {
  kNone,
  kStaleWindow,      // a window that is not alive, or null
  kNoTimerSlot,      // all timers are in use
  kNoBoxList,        // a box without a list
  kStackTooDeep,     // XwPush beyond the stack
  kPathTooLong,      // a document's path does not fit
  kDisplayRefused,   // the display made no window
  kTooManyChildren,  // a parent's list is full
};
void Refuse(Refusal what);
// The latest one; reading it clears it.
Refusal TakeRefusal();
