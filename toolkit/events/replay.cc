// Record and replay, as programs see them.
#include "platform/input/record.h"
#include "toolkit/xw.h"

const char* XwTakeUp(const char* what, const char* detail) {
  return what && *what ? platform::TakeUp(what, detail) : nullptr;
}

int XwReplaying() {
  return platform::record_mode == platform::RecordMode::kReplaying;
}
