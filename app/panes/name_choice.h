// A combo box over names that come from the server. The chosen name changes by the user alone:
// where the server has it no longer it stays shown, after the others. Names are cut in the middle
// to 22 characters, the chosen one to what the box has room for as well.
#pragma once
#include <string>
#include <vector>

#include "toolkit/xw.h"

namespace console {

class NameChoice {
 public:
  // `name`: what it is called. `unchosen`: the item for "", null for none.
  void Make(XwWindow* window, int id, const char* name, const char* unchosen);
  XwWindow* control() const { return combo_; }
  // What there is, and what is chosen. The items stay while the box has the keyboard. It is
  // disabled where there is nothing, and when `enabled` is false.
  void Show(std::vector<std::string> names, const std::string& chosen, bool enabled);
  // Somebody has chosen an item, and its menu is closed: its name.
  std::string Choose(int item);
  // The name of an item.
  std::string At(int item) const;

 private:
  void SetItems(std::vector<std::string> names, int chosen);
  void ShowTip(int item);

  XwWindow* combo_ = nullptr;
  const char* unchosen_ = nullptr;
  std::vector<std::string> names_, texts_;  // of its items, and what they show
  int width_ = 0, fitted_ = -1;             // the width for which that item's text is cut
  std::string tip_;
};

}  // namespace console
