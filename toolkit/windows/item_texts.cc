#include "toolkit/windows/item_texts.h"

#include <cstring>
#include <string>

#include "platform/lists/lists.h"
#include "platform/menus/menus.h"
#include "platform/text/mac_roman.h"

using namespace platform;

namespace {

constexpr size_t kLongestItem = 255;  // in the toolkit's characters

// As UTF-8; most texts need no other form. Valid until the next call.
std::string_view Converted(std::string_view text, bool utf8) {
  static std::string converted;
  if (utf8 || IsAscii(text)) return text;
  converted = MacRomanToUtf8(text.data());
  return converted;
}

MenuRef MenuOf(const char* const* texts, bool utf8) {
  MenuRef menu = CreateNewMenu(0);
  for (; texts && *texts; ++texts) {
    const std::string text = utf8 ? *texts : std::string(*texts, strnlen(*texts, kLongestItem));
    const int item = AppendMenuItemText(menu, std::string(Converted(text, utf8)).c_str());
    if (text.empty()) ChangeMenuItemAttributes(menu, item, kMenuItemAttrSeparator, 0);
  }
  return menu;
}

}  // namespace

void SetComboMenu(XwWindow* combo, const char* const* texts, bool utf8) {
  auto before = static_cast<MenuRef>(combo->menu);
  MenuRef menu = MenuOf(texts, utf8);
  combo->menu = menu;
  // The button of an editable one shows no item.
  if (!IsEditableCombo(combo)) SetPopUpButtonMenu(static_cast<ControlRef>(combo->platform), menu);
  DisposeMenu(before);
}

void SetListRows(XwWindow* list, const char* const* texts, bool utf8) {
  auto control = static_cast<ControlRef>(list->platform);
  const int before = ListRowCount(control);
  int row = 0;
  for (; texts && texts[row]; ++row) {
    const std::string_view text = Converted(texts[row], utf8);
    row < before ? ListSetRow(control, row, text) : ListAddRow(control, text);
  }
  ListDeleteRows(control, row);
  ListSelectRow(control, -1);
  list->value = -1;
  ListShowRows(control);
}
