#include "toolkit/controls/dropped.h"

#include "toolkit/core/alive.h"

static void Send(const XwEvent& e, XwWindow* focus) {
  if (!IsLive(e.window)) return;
  Inp = e;
  // The focused window of that time may be destroyed.
  Inp.focus = focus;
  XwSendEvent(e.window, e.type, e.item, e.value, e.param);
}

void Dropped::Add(const XwEvent& e) {
  const bool drawing = e.type == XWE_CONFIGURE || e.type == XWE_EXPOSE;
  if (drawing)
    redraws_[{e.window, e.type}] = e;
  else if (e.type == XWE_QUIT || e.type == XWE_PREFERENCES || e.type == XWE_OPEN)
    requests_[e.type] = e;
}

void Dropped::PostAgain() const {
  const XwEvent current = Inp;
  for (const auto& [key, e] : redraws_) Send(e, current.focus);
  for (const auto& [type, e] : requests_) Send(e, current.focus);
  Inp = current;
}
