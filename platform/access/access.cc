#include "platform/access/access.h"

namespace platform {
namespace {

struct Access {
  const TreeSource* source = nullptr;
  std::vector<TreeListener*> listeners;
};
Access state;

}  // namespace

bool tree_is_heard = false;

void SetTreeSource(const TreeSource* source) {
  state.source = source;
}

std::vector<DescribedNode> DescribeTree() {
  std::vector<DescribedNode> roots;
  if (state.source) state.source->describe(&roots);
  return roots;
}

bool ActOn(uint64_t serial, uint32_t action) {
  return state.source && state.source->act(serial, action);
}

void AddTreeListener(TreeListener* listener) {
  if (!listener) return;
  RemoveTreeListener(listener);
  state.listeners.push_back(listener);
  tree_is_heard = true;
}

void RemoveTreeListener(TreeListener* listener) {
  std::erase(state.listeners, listener);
  tree_is_heard = !state.listeners.empty();
}

void TellListeners(uint64_t serial, Change what) {
  const std::vector<TreeListener*> now = state.listeners;
  for (TreeListener* l : now) l->notice(l->data, serial, what);
}

void FinishAccess() {
  state = Access();
  tree_is_heard = false;
}

}  // namespace platform
