// The clipboard, as programs see it.
#include "platform/clipboard/clipboard.h"

#include <cstdlib>
#include <cstring>

#include "platform/loop/tracking.h"
#include "toolkit/core/memory.h"
#include "toolkit/xw.h"

using namespace platform;

int XwSetClipboard(const char* utf8) {
  if (utf8) return OfferText(Selection::kClipboard, utf8);
  GiveUp(Selection::kClipboard);
  return 1;
}

char* XwGetClipboard(int ms) {
  char* block = nullptr;
  WaitForText(
      Selection::kClipboard, ms,
      [](void* data, const std::string* text) {
        if (!text) return;
        auto* copy = static_cast<char*>(malloc(text->size() + 1));
        if (copy == nullptr) OutOfMemory();
        memcpy(copy, text->c_str(), text->size() + 1);
        *static_cast<char**>(data) = copy;
      },
      &block);
  return block;
}
