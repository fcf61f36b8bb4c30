// The described tree: what is on the screen, as roles, names, values and states. Those who cannot
// look at pixels read it: tests, the inspector, assistive technology. It is made when it is asked
// for; nothing is kept while nobody listens.
#pragma once
#include <vector>

#include "platform/objects/object.h"

namespace platform {

struct DescribedNode {
  uint64_t serial = 0;  // of the object, or one of TakeSerial; never given twice
  Description what;
  std::string help;  // its tip
  std::vector<DescribedNode> children;
};

// Makes the tree and acts on it; the toolkit sets one.
struct TreeSource {
  // Appends the top-level windows, each with all that is in it.
  void (*describe)(std::vector<DescribedNode>* roots);
  // Does what the bit of ObjectAction says; false when there is no such node, or it cannot.
  bool (*act)(uint64_t serial, uint32_t action);
  // Called when the first listener is added and when the last one is removed.
  void (*heard)(bool is_heard);
};
// Null: none.
void SetTreeSource(const TreeSource* source);

std::vector<DescribedNode> DescribeTree();
bool ActOn(uint64_t serial, uint32_t action);

enum class Change : uint8_t { kName, kValue, kState, kBounds, kChildren, kEnded };
// `notice` is called at once for each change. It must not change any object.
struct TreeListener {
  void (*notice)(void* data, uint64_t serial, Change what) = nullptr;
  void* data = nullptr;
};
// Kept until it is removed; null is ignored.
void AddTreeListener(TreeListener* listener);
void RemoveTreeListener(TreeListener* listener);
extern bool tree_is_heard;  // there is a listener
void TellListeners(uint64_t serial, Change what);
inline void NoticeChange(uint64_t serial, Change what) {
  if (tree_is_heard) [[unlikely]]
    TellListeners(serial, what);
}

void FinishAccess();

}  // namespace platform
