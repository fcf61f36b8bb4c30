#include "app/panes/name_choice.h"

#include <algorithm>

#include "app/format/cut.h"
#include "app/format/texts.h"
#include "app/look/controls.h"

namespace console {
namespace {

constexpr int kMostCharacters = 22;  // of an item

std::string ItemText(const std::string& name) {
  const std::string text = CutMiddle(Shown(name), kMostCharacters);
  return text.empty() ? " " : text;  // an empty one would be a separator
}

}  // namespace

void NameChoice::Make(XwWindow* window, int id, const char* name, const char* unchosen) {
  combo_ = XwComboBox(window, nullptr, id, 0, 0, 9, 9, XWC_ENABLED | XWC_VISIBLE | XWC_VARIANT, -1);
  XwDescribeControl(combo_, name);
  unchosen_ = unchosen;
  SetItems({});
}

void NameChoice::SetItems(std::vector<std::string> names) {
  names_ = std::move(names);
  std::vector<std::string> texts;
  for (const std::string& name : names_)
    texts.push_back(name.empty() && unchosen_ ? unchosen_ : ItemText(name));
  std::vector<const char*> items;
  for (const std::string& text : texts) items.push_back(text.c_str());
  items.push_back(nullptr);
  XwSetTextUtf8(combo_, items.data());
}

void NameChoice::Show(std::vector<std::string> names, const std::string& chosen, bool enabled) {
  const bool some = !names.empty();
  if (unchosen_) names.insert(names.begin(), "");
  if ((!chosen.empty() || unchosen_) &&
      std::find(names.begin(), names.end(), chosen) == names.end())
    names.push_back(chosen);
  if (names != names_ && XwGetFocus(combo_) != combo_) SetItems(std::move(names));
  const auto at = std::find(names_.begin(), names_.end(), chosen);
  const int item = at == names_.end() ? -1 : int(at - names_.begin());
  if (XwGetValue(combo_) != item) XwSetValue(combo_, item);
  EnableControl(combo_, enabled && some);
}

std::string NameChoice::At(int item) const {
  return item >= 0 && size_t(item) < names_.size() ? names_[size_t(item)] : "";
}

}  // namespace console
