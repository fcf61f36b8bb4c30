// A window for controls, what they have reported, and the described tree.
#pragma once
#include <string>
#include <vector>

#include "platform/access/access.h"
#include "tests/toolkit/stage.h"

namespace stage {

using platform::DescribedNode;

constexpr uint32_t kOn = XWC_ENABLED | XWC_VISIBLE;

// Where controls are: inside a window at (100, 100).
struct ControlScreen {
  XwWindow* main;
  ControlScreen() {
    Open();
    main = Main();
    input::Focus(Native(main));
    RunLoop();
    XwSetFocus(main);
    Settle();
  }
};

inline const DescribedNode* FindNode(const std::vector<DescribedNode>& nodes,
                                     const std::string& name) {
  for (const DescribedNode& n : nodes) {
    if (n.what.name == name) return &n;
    if (const DescribedNode* found = FindNode(n.children, name)) return found;
  }
  return nullptr;
}
inline DescribedNode Node(const std::string& name) {
  const auto roots = platform::DescribeTree();
  const DescribedNode* n = FindNode(roots, name);
  return n ? *n : DescribedNode();
}
inline uint32_t State(const std::string& name) {
  return Node(name).what.state;
}

// The reports that came, "id=value" each.
inline std::string Reports() {
  std::string out;
  for (const Seen& s : seen)
    if (s.type == XWE_CONTROL)
      out += (out.empty() ? "" : " ") + std::to_string(s.event.item) + "=" +
             std::to_string(s.event.value);
  seen.clear();
  return out;
}
// Everything else that came.
inline std::string Others() {
  std::string out;
  for (const Seen& s : seen)
    if (s.type != XWE_CONTROL && s.type != XWE_MOTION)
      out += (out.empty() ? "" : " ") + std::to_string(s.type);
  seen.clear();
  return out;
}

inline std::string ClickAt(int x, int y, int button = 1) {
  input::Click(x, y, button);
  RunLoop();
  return Reports();
}
inline std::string Key(uint32_t keysym, uint32_t unicode, uint32_t modifiers = 0) {
  if (modifiers) input::Modifiers(modifiers);
  input::KeyDown(keysym, unicode);
  input::KeyUp(keysym, unicode);
  if (modifiers) input::Modifiers(0);
  RunLoop();
  return Reports();
}
inline int FocusedId() {
  XwWindow* f = XwGetFocus(W_Start);
  return f ? f->id : 0;
}

}  // namespace stage
