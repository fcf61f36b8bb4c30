#include <errno.h>
#include <gtest/gtest.h>

#include "os/os.h"
#include "tests/os/scratch.h"

namespace {

// Both kinds of tree under one set of names.
#define BOTH(name, plain, whole)  \
  auto name(OS_TreeNode* node) {  \
    return plain(node);           \
  }                               \
  auto name(OS_TreeNodeN* node) { \
    return whole(node);           \
  }
BOTH(Expand, OS_TreeExpand, OS_TreeExpandN)
BOTH(Destroy, OS_TreeDestroy, OS_TreeDestroyN)
BOTH(ClearSelected, OS_TreeClearSel, OS_TreeClearSelN)
BOTH(IsSelected, OS_TreeIsSelected, OS_TreeIsSelectedN)
int Scan(OS_TreeNode* node, OS_TreeNode** out) {
  return OS_TreeScan(node, out);
}
int Scan(OS_TreeNodeN* node, OS_TreeNodeN** out) {
  return OS_TreeScanN(node, out);
}

// The depths and names of what is shown.
template <typename Node>
std::string Shown(Node* root) {
  std::vector<Node*> out(Scan(root, nullptr));
  EXPECT_EQ(Scan(root, out.data()), static_cast<int>(out.size()));
  std::string text;
  for (Node* node : out) {
    EXPECT_EQ(node->path + std::string(node->path).rfind('/') + 1, node->name);
    EXPECT_TRUE(std::filesystem::is_directory(node->path)) << node->path;
    text += (text.empty() ? "" : " ") + std::to_string(node->depth) + node->name;
  }
  return text;
}

template <typename Node>
void ExpectTree(Node* root, const Scratch& scratch) {
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->name, root->path);
  EXPECT_EQ(root->open, 0);
  EXPECT_EQ(Shown(root), "1a 1B 1c");
  Node* b = &root->children[1];
  ASSERT_EQ(b->child_count, 2);  // the second level is there, closed
  EXPECT_EQ(b->children[0].children, nullptr);
  Expand(&b->children[1]);
  root->open = 1;  // says nothing about what lies below its children
  EXPECT_EQ(Shown(root), "1a 1B 1c");
  b->open = b->children[1].open = 1;
  EXPECT_EQ(Shown(root), "1a 1B 2x 2y 3deep 1c");
  EXPECT_EQ(Shown(b), "2x 2y 3deep");

  b->children[1].children[0].selected = 7;
  EXPECT_EQ(IsSelected(root), 1);
  EXPECT_EQ(IsSelected(&root->children[0]), 0);
  ClearSelected(root);
  EXPECT_EQ(IsSelected(root), 0);
  root->selected = 1;
  EXPECT_EQ(IsSelected(root), 1);
  ClearSelected(root);
  EXPECT_EQ(root->selected, 0);

  scratch.Folder("new");
  root->open = b->selected = 1;
  Expand(root);
  EXPECT_EQ(root->open, 0);
  EXPECT_EQ(Shown(root), "1a 1B 1c 1new");
  EXPECT_EQ(root->children[1].selected, 0);
  std::filesystem::remove(scratch.At("new"));
  // A folder that has gone keeps what it had.
  Expand(&root->children[1]);
  root->children[1].open = 1;
  std::filesystem::rename(scratch.At("B"), scratch.At("gone"));
  Expand(&root->children[1]);
  EXPECT_EQ(Scan(root, nullptr), 6);
  std::filesystem::rename(scratch.At("gone"), scratch.At("B"));
  Destroy(&root->children[1]);  // the node itself stays
  EXPECT_EQ(root->children[1].child_count, 0);
  EXPECT_EQ(root->children[1].children, nullptr);
  Destroy(root);
}

TEST(Tree, ExpandScanSelectDestroy) {
  Scratch scratch;
  for (const char* path : {"c", "a", "B/y/deep", "B/x", ".hidden"}) scratch.Folder(path);
  scratch.File("file");
  ExpectTree(OS_TreeCreate(scratch.path().c_str()), scratch);
  ExpectTree(OS_TreeCreateN(scratch.path().c_str()), scratch);
  OS_TreeNode* root = OS_TreeCreate(scratch.path().c_str());
  EXPECT_EQ(root->children[0].child_count, 0);
  EXPECT_NE(root->children[0].children, nullptr);
  OS_TreeDestroy(root);
  root = OS_TreeCreate("/");
  ASSERT_GT(root->child_count, 0);
  EXPECT_EQ(root->children[0].path, "//" + std::string(root->children[0].name));
  OS_TreeDestroy(root);
}

TEST(Tree, RootsThatCannotBeRead) {
  OS_TreeNode* plain = OS_TreeCreate("/missing");
  OS_TreeNodeN* whole = OS_TreeCreateN("/missing");
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(plain->open, 1);
  EXPECT_EQ(plain->children, nullptr);
  errno = 0;
  EXPECT_EQ(OS_TreeExpandN(whole), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(whole->child_count, 0);
  OS_TreeDestroy(plain);
  OS_TreeDestroyN(whole);
}

// Paths that the plain record has no room for, depths past its byte; links only in the twin.
TEST(Tree, WhatOnlyTheTwinHas) {
  Scratch scratch;
  std::string path = scratch.path();
  while (path.size() < 232) path += "/" + std::string(std::min<size_t>(231 - path.size(), 99), 'd');
  const std::string fits(19, 'f'), long_one(20, 'g');  // 252 and 253 bytes
  for (const auto& name : {fits, long_one}) std::filesystem::create_directories(path + "/" + name);
  std::filesystem::create_directory_symlink(fits, path + "/link:");
  OS_TreeNode* plain = OS_TreeCreate(path.c_str());
  EXPECT_EQ(Shown(plain), "1" + fits);
  OS_TreeDestroy(plain);
  EXPECT_EQ(OS_TreeCreate((path + std::string(30, 'x')).c_str()), nullptr);
  OS_TreeNodeN* whole = OS_TreeCreateN(path.c_str());
  EXPECT_EQ(Shown(whole), "1" + fits + " 1" + long_one + " 1link:");
  OS_TreeDestroyN(whole);
  scratch.Folder("a/x");
  plain = OS_TreeCreate(scratch.path().c_str());
  plain->children[0].depth = 255;
  OS_TreeExpand(&plain->children[0]);
  EXPECT_EQ(plain->children[0].children[0].depth, 255);
  OS_TreeDestroy(plain);
}

TEST(Tree, NullIsIgnored) {
  EXPECT_TRUE(!OS_TreeCreate(nullptr) && !OS_TreeCreateN(nullptr));
  EXPECT_EQ(OS_TreeExpandN(nullptr), -1);
  OS_TreeExpand(nullptr);
  OS_TreeDestroy(nullptr);
  OS_TreeDestroyN(nullptr);
  OS_TreeClearSel(nullptr);
  EXPECT_EQ(OS_TreeScan(nullptr, nullptr) + OS_TreeIsSelected(nullptr), 0);
}

}  // namespace
