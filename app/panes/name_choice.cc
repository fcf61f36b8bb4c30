#include "app/panes/name_choice.h"

#include <algorithm>
#include <climits>

#include "app/format/cut.h"
#include "app/format/texts.h"
#include "app/look/controls.h"
#include "app/look/style.h"

namespace console {
namespace {

constexpr int kMostCharacters = 22;  // of an item
// What a record is wider than its box, and the box than its text.
constexpr int kAroundText = 3 + 33;

std::string ItemText(const std::string& name, int width) {
  const std::string text = CutMiddleTo(Shown(name), [width](const std::string& cut) {
    return CharacterCount(cut) <= kMostCharacters &&
           XwTextWidthUtf8(TheStyle().normal, cut.c_str()) <= width;
  });
  return text.empty() ? " " : text;  // an empty one would be a separator
}

}  // namespace

void NameChoice::Make(XwWindow* window, int id, const char* name, const char* unchosen) {
  combo_ = XwComboBox(window, nullptr, id, 0, 0, 9, 9, XWC_ENABLED | XWC_VISIBLE | XWC_VARIANT, -1);
  XwDescribeControl(combo_, name);
  unchosen_ = unchosen;
  SetItems({}, -1);
}

// The box shows the text of the chosen one, which is cut for it; in the menu the others have more
// room.
void NameChoice::SetItems(std::vector<std::string> names, int chosen) {
  names_ = std::move(names);
  width_ = combo_->width;
  fitted_ = chosen;
  texts_.clear();
  for (const std::string& name : names_) {
    const bool fits = int(texts_.size()) == chosen;
    texts_.push_back(name.empty() && unchosen_
                         ? unchosen_
                         : ItemText(name, fits ? width_ - kAroundText : INT_MAX));
  }
  std::vector<const char*> items;
  for (const std::string& text : texts_) items.push_back(text.c_str());
  items.push_back(nullptr);
  XwSetTextUtf8(combo_, items.data());
}

void NameChoice::Show(std::vector<std::string> names, const std::string& chosen, bool enabled) {
  const bool some = !names.empty();
  if (unchosen_) names.insert(names.begin(), "");
  if ((!chosen.empty() || unchosen_) &&
      std::find(names.begin(), names.end(), chosen) == names.end())
    names.push_back(chosen);
  const auto place = [&chosen](const std::vector<std::string>& all) {
    const auto at = std::find(all.begin(), all.end(), chosen);
    return at == all.end() ? -1 : int(at - all.begin());
  };
  int item = place(names);
  const bool others = names != names_ || combo_->width != width_ || item != fitted_;
  if (others && XwGetFocus(combo_) != combo_) SetItems(std::move(names), item);
  item = place(names_);
  if (XwGetValue(combo_) != item) XwSetValue(combo_, item);
  ShowTip(item);
  EnableControl(combo_, enabled && some);
}

// Of a name that is cut, all of it.
void NameChoice::ShowTip(int item) {
  const std::string name = Shown(At(item));
  const std::string tip = item < 0 || name.empty() || name == texts_[size_t(item)] ? "" : name;
  if (tip == tip_) return;
  tip_ = tip;
  XwSetTip(combo_, 0, tip.empty() ? nullptr : tip.c_str());
}

std::string NameChoice::Choose(int item) {
  if (item != fitted_) {
    SetItems(names_, item);
    XwSetValue(combo_, item);
  }
  return At(item);
}

std::string NameChoice::At(int item) const {
  return item >= 0 && size_t(item) < names_.size() ? names_[size_t(item)] : "";
}

}  // namespace console
