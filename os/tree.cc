// A tree of folders in memory, expanded on demand.
#include <errno.h>
#include <limits.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "os/os.h"

static_assert(offsetof(OS_TreeNode, depth) == 1 && offsetof(OS_TreeNode, selected) == 2 &&
              offsetof(OS_TreeNode, path) == 3 && offsetof(OS_TreeNode, name) == 256 &&
              offsetof(OS_TreeNode, child_count) == 256 + sizeof(void*) &&
              offsetof(OS_TreeNode, children) == 256 + 2 * sizeof(void*));

namespace {

// Both kinds of node hold their children in one array, so that the walks are the same. Paths bound
// how deep a tree can be, and with it the recursion.

// Free all that hangs below a node.
template <typename Node>
void FreeChildren(Node* node) {
  for (int i = 0; i < node->child_count; ++i) FreeChildren(&node->children[i]);
  free(node->children);
  node->children = nullptr;
  node->child_count = 0;
}

// Only the root is a block of its own.
template <typename Node>
void Destroy(Node* node) {
  if (!node) return;
  FreeChildren(node);
  if (node->depth == 0) free(node);
}

template <typename Node>
void Adopt(Node* node, Node* children, int count) {
  FreeChildren(node);
  node->children = children;
  node->child_count = static_cast<decltype(node->child_count)>(count);
  node->open = 0;
}

template <typename Node>
int Scan(Node* node, Node** out) {
  int count = 0;
  for (int i = 0; node && i < node->child_count; ++i) {
    Node* child = &node->children[i];
    if (out) out[count] = child;
    ++count;
    if (child->open) count += Scan(child, out ? out + count : nullptr);
  }
  return count;
}

template <typename Node>
void ClearSelected(Node* node) {
  if (!node) return;
  node->selected = 0;
  for (int i = 0; i < node->child_count; ++i) ClearSelected(&node->children[i]);
}

template <typename Node>
bool IsSelected(const Node* node) {
  if (!node) return false;
  const Node* children = node->children;
  return node->selected || std::any_of(children, children + std::max<int>(node->child_count, 0),
                                       [](const Node& child) { return IsSelected(&child); });
}

// Write "<folder>/<name>" and return where in it the name begins.
char* JoinPath(char* path, const char* folder, size_t folder_length, const char* name) {
  memcpy(path, folder, folder_length);
  path[folder_length] = '/';
  return strcpy(path + folder_length + 1, name);
}

}  // namespace

extern "C" {

OS_TreeNode* OS_TreeCreate(const char* path) {
  if (!path || strlen(path) >= sizeof OS_TreeNode::path) return nullptr;
  auto* root = static_cast<OS_TreeNode*>(calloc(1, sizeof(OS_TreeNode)));
  if (!root) return nullptr;
  root->name = strcpy(root->path, path);
  root->open = 1;
  OS_TreeExpand(root);
  for (int i = 0; i < root->child_count; ++i) OS_TreeExpand(&root->children[i]);
  return root;
}

void OS_TreeExpand(OS_TreeNode* node) {
  int count = 0;
  OS_ListEntry* list =
      node ? OS_ListDir(node->path, "*", &count, OS_LIST_FOLDERS, OS_SORT_NAME) : nullptr;
  if (!list) return;
  auto* children = static_cast<OS_TreeNode*>(calloc(count, sizeof(OS_TreeNode)));
  const size_t length = strlen(node->path);
  int used = 0;
  // The first entry is "..".
  for (int i = 1; children && i < count && used < INT16_MAX; ++i) {
    OS_TreeNode* child = &children[used];
    if (length + 1 + strlen(list[i].name) >= sizeof child->path) continue;
    child->name = JoinPath(child->path, node->path, length, list[i].name);
    child->depth = static_cast<uint8_t>(std::min(node->depth + 1, UINT8_MAX));
    ++used;
  }
  if (children) Adopt(node, children, used);
  OS_ListFree(list);
}

void OS_TreeDestroy(OS_TreeNode* node) {
  Destroy(node);
}

int OS_TreeScan(OS_TreeNode* node, OS_TreeNode** out) {
  return Scan(node, out);
}

void OS_TreeClearSel(OS_TreeNode* node) {
  ClearSelected(node);
}

int OS_TreeIsSelected(OS_TreeNode* node) {
  return IsSelected(node);
}

OS_TreeNodeN* OS_TreeCreateN(const char* path) {
  if (!path) return nullptr;
  // The path lies behind its node, as the paths of children lie behind their array.
  auto* root = static_cast<OS_TreeNodeN*>(calloc(1, sizeof(OS_TreeNodeN) + strlen(path) + 1));
  if (!root) return nullptr;
  root->path = root->name = strcpy(reinterpret_cast<char*>(root + 1), path);
  root->open = 1;
  OS_TreeExpandN(root);
  const int error = errno;
  for (int i = 0; i < root->child_count; ++i) OS_TreeExpandN(&root->children[i]);
  errno = error;
  return root;
}

int OS_TreeExpandN(OS_TreeNodeN* node) {
  if (!node) {
    errno = EINVAL;
    return -1;
  }
  int count = 0;
  OS_ListEntryN* list = OS_ListDirN(node->path, "*", &count, OS_LIST_FOLDERS, OS_SORT_NAME);
  if (!list) return -1;
  const size_t length = strlen(node->path);
  size_t size = count * sizeof(OS_TreeNodeN);
  for (int i = 1; i < count; ++i) size += length + strlen(list[i].name) + 2;
  auto* children = static_cast<OS_TreeNodeN*>(calloc(1, size));
  char* path = reinterpret_cast<char*>(children + count);
  for (int i = 1; children && i < count; ++i) {
    OS_TreeNodeN* child = &children[i - 1];
    child->path = path;
    child->name = JoinPath(path, node->path, length, list[i].name);
    child->depth = node->depth + 1;
    path += length + strlen(list[i].name) + 2;
  }
  if (children) Adopt(node, children, count - 1);
  OS_ListFreeN(list);
  return children ? 0 : -1;
}

void OS_TreeDestroyN(OS_TreeNodeN* node) {
  Destroy(node);
}

int OS_TreeScanN(OS_TreeNodeN* node, OS_TreeNodeN** out) {
  return Scan(node, out);
}

void OS_TreeClearSelN(OS_TreeNodeN* node) {
  ClearSelected(node);
}

int OS_TreeIsSelectedN(OS_TreeNodeN* node) {
  return IsSelected(node);
}

}  // extern "C"
