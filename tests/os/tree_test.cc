#include <errno.h>
#include <gtest/gtest.h>

#include <vector>

#include "os/os.h"
#include "tests/os/scratch.h"

namespace {

using Names = std::vector<std::string>;

// Both kinds of tree under one set of names.
void Expand(OS_TreeNode* node) {
  OS_TreeExpand(node);
}
void Expand(OS_TreeNodeN* node) {
  EXPECT_EQ(OS_TreeExpandN(node), 0);
}
void Destroy(OS_TreeNode* node) {
  OS_TreeDestroy(node);
}
void Destroy(OS_TreeNodeN* node) {
  OS_TreeDestroyN(node);
}
void ClearSel(OS_TreeNode* node) {
  OS_TreeClearSel(node);
}
void ClearSel(OS_TreeNodeN* node) {
  OS_TreeClearSelN(node);
}
int IsSelected(OS_TreeNode* node) {
  return OS_TreeIsSelected(node);
}
int IsSelected(OS_TreeNodeN* node) {
  return OS_TreeIsSelectedN(node);
}
int Scan(OS_TreeNode* node, OS_TreeNode** out) {
  return OS_TreeScan(node, out);
}
int Scan(OS_TreeNodeN* node, OS_TreeNodeN** out) {
  return OS_TreeScanN(node, out);
}

template <typename Node>
Names Shown(Node* root) {
  std::vector<Node*> out(Scan(root, static_cast<Node**>(nullptr)));
  EXPECT_EQ(Scan(root, out.data()), static_cast<int>(out.size()));
  Names names;
  for (Node* node : out) {
    EXPECT_EQ(std::string(node->path).rfind(node->name), strlen(node->path) - strlen(node->name));
    EXPECT_TRUE(std::filesystem::is_directory(node->path)) << node->path;
    names.push_back(std::to_string(node->depth) + node->name);
  }
  return names;
}

template <typename Node>
void ExpectTree(Node* root, const Scratch& scratch) {
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->name, root->path);
  EXPECT_EQ(root->open, 0);
  EXPECT_EQ(Shown(root), (Names{"1a", "1B", "1c"}));
  Node* b = &root->children[1];
  ASSERT_EQ(b->child_count, 2);  // the second level is there, closed
  EXPECT_EQ(b->children[0].children, nullptr);
  b->open = b->children[1].open = 1;
  EXPECT_EQ(Shown(root), (Names{"1a", "1B", "2x", "2y", "1c"}));
  Expand(&b->children[1]);
  EXPECT_EQ(b->children[1].open, 0);
  b->children[1].open = 1;
  EXPECT_EQ(Shown(root), (Names{"1a", "1B", "2x", "2y", "3deep", "1c"}));
  EXPECT_EQ(Shown(b), (Names{"2x", "2y", "3deep"}));

  b->children[1].children[0].selected = 7;
  EXPECT_EQ(IsSelected(root), 1);
  EXPECT_EQ(IsSelected(&root->children[0]), 0);
  ClearSel(root);
  EXPECT_EQ(IsSelected(root), 0);
  root->selected = 1;
  EXPECT_EQ(IsSelected(root), 1);

  scratch.Folder("new");
  root->open = 1;
  b->selected = 1;
  Expand(root);
  EXPECT_EQ(root->open, 0);
  EXPECT_EQ(Shown(root), (Names{"1a", "1B", "1c", "1new"}));
  EXPECT_EQ(root->children[1].selected, 0);
  Expand(&root->children[1]);
  Destroy(&root->children[1]);  // the node itself stays
  EXPECT_EQ(root->children[1].child_count, 0);
  EXPECT_EQ(root->children[1].children, nullptr);
  std::filesystem::remove(scratch.At("new"));
  Destroy(root);
}

TEST(Tree, ExpandScanSelectDestroy) {
  Scratch scratch;
  for (const char* path : {"c", "a", "B/y/deep", "B/x", ".hidden"}) scratch.Folder(path);
  scratch.File("file");
  ExpectTree(OS_TreeCreate(scratch.path().c_str()), scratch);
  ExpectTree(OS_TreeCreateN(scratch.path().c_str()), scratch);
}

TEST(Tree, RootOfTheSystemAndEmptyFolders) {
  Scratch scratch;
  scratch.Folder("empty");
  OS_TreeNode* root = OS_TreeCreate("/");
  ASSERT_GT(root->child_count, 0);
  EXPECT_EQ(root->children[0].path, "//" + std::string(root->children[0].name));
  OS_TreeDestroy(root);
  root = OS_TreeCreate(scratch.path().c_str());
  EXPECT_EQ(root->children[0].child_count, 0);
  EXPECT_NE(root->children[0].children, nullptr);
  OS_TreeDestroy(root);
}

TEST(Tree, WhatCannotBeReadStaysAsItIs) {
  Scratch scratch;
  scratch.Folder("a/b");
  OS_TreeNode* root = OS_TreeCreate(scratch.path().c_str());
  OS_TreeNodeN* whole = OS_TreeCreateN(scratch.path().c_str());
  root->children[0].open = whole->children[0].open = 1;
  std::filesystem::remove_all(scratch.At("a"));
  OS_TreeExpand(&root->children[0]);
  EXPECT_EQ(OS_TreeExpandN(&whole->children[0]), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(OS_TreeScan(root, nullptr), 2);
  EXPECT_EQ(OS_TreeScanN(whole, nullptr), 2);
  OS_TreeDestroy(root);
  OS_TreeDestroyN(whole);
  root = OS_TreeCreate("/missing");
  whole = OS_TreeCreateN("/missing");
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(root->open, 1);
  EXPECT_EQ(root->children, nullptr);
  EXPECT_EQ(whole->child_count, 0);
  OS_TreeDestroy(root);
  OS_TreeDestroyN(whole);
}

// Paths that the plain record has no room for, and depths past its byte.
TEST(Tree, DeepAndLong) {
  Scratch scratch;
  scratch.Folder(std::string(20, 'n'));
  std::string path = scratch.path();
  while (path.size() < 232) path += "/" + std::string(std::min<size_t>(231 - path.size(), 99), 'd');
  std::filesystem::create_directories(path + "/" + std::string(19, 'f'));  // 252 bytes
  std::filesystem::create_directories(path + "/" + std::string(20, 'g'));
  OS_TreeNode* root = OS_TreeCreate(path.c_str());
  EXPECT_EQ(Shown(root), Names{"1" + std::string(19, 'f')});
  OS_TreeDestroy(root);
  EXPECT_EQ(OS_TreeCreate((path + std::string(30, 'x')).c_str()), nullptr);
  OS_TreeNodeN* whole = OS_TreeCreateN(path.c_str());
  EXPECT_EQ(whole->child_count, 2);
  EXPECT_EQ(whole->children[1].path, path + "/" + std::string(20, 'g'));
  OS_TreeDestroyN(whole);
  root = OS_TreeCreate(scratch.path().c_str());
  root->children[0].depth = 255;
  std::filesystem::create_directories(std::string(root->children[0].path) + "/x");
  OS_TreeExpand(&root->children[0]);
  EXPECT_EQ(root->children[0].children[0].depth, 255);
  OS_TreeDestroy(root);
}

TEST(Tree, TheTwinFollowsLinksToFolders) {
  Scratch scratch;
  scratch.Folder("a:b/in");
  scratch.Link("link", "a:b");
  scratch.Link("dead", "nowhere");
  OS_TreeNodeN* root = OS_TreeCreateN(scratch.path().c_str());
  root->children[0].open = root->children[1].open = 1;
  EXPECT_EQ(Shown(root), (Names{"1a:b", "2in", "1link", "2in"}));
  OS_TreeDestroyN(root);
}

TEST(Tree, NullIsIgnored) {
  EXPECT_EQ(OS_TreeCreate(nullptr), nullptr);
  EXPECT_EQ(OS_TreeCreateN(nullptr), nullptr);
  EXPECT_EQ(OS_TreeExpandN(nullptr), -1);
  OS_TreeExpand(nullptr);
  OS_TreeDestroy(nullptr);
  OS_TreeDestroyN(nullptr);
  OS_TreeClearSel(nullptr);
  EXPECT_EQ(OS_TreeScan(nullptr, nullptr) + OS_TreeIsSelected(nullptr), 0);
  EXPECT_EQ(OS_TreeScanN(nullptr, nullptr) + OS_TreeIsSelectedN(nullptr), 0);
}

}  // namespace
