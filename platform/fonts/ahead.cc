#include "platform/fonts/ahead.h"

#include "platform/ahead_job.h"
#include "platform/fonts/state.h"

namespace platform {
namespace {

void (*open_fonts)();

AheadJob opening([] {
  open_fonts();
  for (const auto& font : Fonts().sized) OpenSized(font.get());
});

}  // namespace

void BeginOpening(void (*open)()) {
  if (!open || opening.begun()) return;
  open_fonts = open;
  opening.Begin();
}

void FinishOpening(void (*open)()) {
  if (opening.begun())
    opening.Finish();
  else if (open)
    open();
}

void DropOpening() {
  opening.Drop();
}

}  // namespace platform
