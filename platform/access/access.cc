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
  if (source && tree_is_heard) source->heard(true);
}

std::vector<DescribedNode> DescribeTree() {
  std::vector<DescribedNode> roots;
  if (state.source) state.source->describe(&roots);
  return roots;
}

bool ActOn(uint64_t serial, uint32_t action) {
  return state.source && state.source->act(serial, action);
}

static void Hear() {
  const bool heard = !state.listeners.empty();
  if (heard == tree_is_heard) return;
  tree_is_heard = heard;
  if (state.source) state.source->heard(heard);
}

void AddTreeListener(TreeListener* listener) {
  if (!listener) return;
  std::erase(state.listeners, listener);
  state.listeners.push_back(listener);
  Hear();
}

void RemoveTreeListener(TreeListener* listener) {
  std::erase(state.listeners, listener);
  Hear();
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
