// Which drawn thing lies under the pointer. While the window is drawn, each thing that can be hit
// enters its area; an event's item then leads back to it.
#pragma once
#include <string>
#include <vector>

#include "app/look/area.h"
#include "toolkit/xw.h"

namespace console {

// Who drew it, which part of it, and which one of several.
struct Hit {
  int owner = 0, part = 0, index = 0;
  bool operator==(const Hit&) const = default;
  explicit operator bool() const { return owner != 0; }
};

// What a thing is for those who cannot see it. Role and state as XwDescribe has them.
struct Words {
  int role = 0;  // 0: nothing is said
  uint32_t state = 0;
  std::string name, value;
  std::string tip = "";
};

class Hits {
 public:
  // For the selected window: a new list, and its end.
  void Begin() {
    hits_.clear();
    XwBoxList(3, 0, 0, 0, 0);
  }
  void End() { XwBoxList(4, 0, 0, 0, 0); }
  void Add(const Hit& hit, const Area& a, const Words& words = {}) { Enter(hit, a, kHit, words); }
  // What was entered there so far is covered.
  void Cover(const Area& a, const Words& words = {}) { Enter({}, a, 0, words); }
  // Of an event: Inp.item. Nothing for 0, and for what lies outside the list.
  Hit At(int item) const {
    return item > 0 && size_t(item) <= hits_.size() ? hits_[size_t(item) - 1] : Hit{};
  }

 private:
  static constexpr int kHit = 100;
  // A box is hit inside its border only, so it is entered a pixel wider on the left and above.
  void Enter(const Hit& hit, const Area& a, int id, const Words& w) {
    if (a.Empty()) return;
    hits_.push_back(hit);
    XwBoxList(id, a.x - 1, a.y - 1, a.w + 1, a.h + 1);
    if (w.role) XwDescribe(-1, w.role, w.state, w.name.c_str(), w.value.c_str());
    if (!w.tip.empty()) XwSetTip(XW, int(hits_.size()), w.tip.c_str());
  }
  std::vector<Hit> hits_;
};

}  // namespace console
