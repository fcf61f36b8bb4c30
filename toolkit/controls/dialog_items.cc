// Many controls out of one list.
#include "toolkit/core/alive.h"
#include "toolkit/core/saturate.h"
#include "toolkit/xw.h"

namespace {

enum : uint8_t {
  kEnd = 0,
  kButton = 1,
  kCheckBox = 2,
  kEditBox = 3,
  kComboBox = 4,
  kLabel = 5,
  kSlider = 6,
  kScrollBar = 7,
  kColor = 8,
  kListBox = 9
};

}  // namespace

void XwCreateDialogItems(XwWindow* parent, const XwDialogItem* items, int32_t dx, int32_t dy) {
  if (!CheckWindow(parent) || !items) return;
  for (const XwDialogItem* i = items; i->type != kEnd; ++i) {
    const char* text = i->text ? i->text : "";
    const auto* texts = reinterpret_cast<const char* const*>(i->text);
    const int x = i->x < 0 ? parent->width + i->x : Saturate(int64_t{i->x} + dx);
    const int y = i->y < 0 ? parent->height + i->y : Saturate(int64_t{i->y} + dy);
    switch (i->type) {
      case kButton:
        XwButton(parent, text, i->id, x, y, i->width, i->height, i->style, i->value);
        break;
      case kCheckBox:
        XwCheckBox(parent, text, i->id, x, y, i->style, int32_t(i->value));
        break;
      case kComboBox:
        XwComboBox(parent, texts, i->id, x, y, i->width, i->height, i->style, int32_t(i->value));
        break;
      case kEditBox: {
        XwWindow* box = XwEditBox(parent, text, i->id, x, y, i->width, i->height, i->style);
        if (!i->text) XwSetValue(box, int32_t(i->value));
        break;
      }
      case kLabel:
        XwLabel(parent, text, i->id, x, y, i->width, i->height, i->style);
        break;
      case kSlider:
        XwSlider(parent, i->id, x, y, i->width, i->height, i->style, i->minimum, i->maximum,
                 int32_t(i->value));
        break;
      case kScrollBar:
        XwScrollBar(parent, i->id, x, y, i->width, i->height, i->style, i->minimum, i->maximum,
                    i->line, i->page, int32_t(i->value));
        break;
      case kColor:
        XwColor(parent, text, i->id, x, y, i->width, i->height, i->style, int32_t(i->value));
        break;
      case kListBox:
        XwListBox(parent, texts, i->id, x, y, i->width, i->height, i->style);
        break;
      default:
        break;
    }
  }
}
