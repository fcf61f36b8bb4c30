#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <thread>
#include <vector>

#include "os/os.h"
#include "tests/os/scratch.h"

namespace {

using Names = std::vector<std::string>;

constexpr int kBoth = OS_LIST_FOLDERS | OS_LIST_FILES;

template <typename Entry>
struct ListedAs {
  std::vector<Entry> entries;
  Names names;
  int count = -7;
};
using Listed = ListedAs<OS_ListEntry>;
using Whole = ListedAs<OS_ListEntryN>;

template <typename Entry, typename Free>
ListedAs<Entry> Take(Entry* list, int count, Free free_list) {
  ListedAs<Entry> result;
  result.count = count;
  EXPECT_EQ(list != nullptr, count > 0);
  for (int i = 0; i < count; ++i) {
    result.entries.push_back(list[i]);
    result.names.push_back(list[i].name);
  }
  free_list(list);
  return result;
}

Listed List(const std::string& path, const char* patterns, int types, int sort) {
  int count = -7;
  OS_ListEntry* list = OS_ListDir(path.c_str(), patterns, &count, types, sort);
  return Take(list, count, OS_ListFree);
}

Whole ListN(const std::string& path, const char* patterns, int types, int sort) {
  int count = -7;
  OS_ListEntryN* list = OS_ListDirN(path.c_str(), patterns, &count, types, sort);
  return Take(list, count, OS_ListFreeN);
}

// Files of every size and age that the sorts can tell apart, with hidden names and folders.
void Populate(const Scratch& scratch) {
  const struct {
    const char* name;
    size_t size;
    time_t time;
  } files[] = {{"b.h", 10, 300},       {"A.h", 3000, 200}, {"c.c", 2000, 100},
               {"B.C", 1, 0x90000000}, {".hid", 5, 50},    {".x", 6, 60}};
  for (const auto& file : files) {
    SetTime(scratch.File(file.name, std::string(file.size, 'x')), file.time);
  }
  for (const char* name : {"Sub", "other", ".hidden", ".d", "..odd"}) scratch.Folder(name);
}

TEST(ListDir, PatternsTypesAndSorts) {
  Scratch scratch;
  Populate(scratch);
  const struct {
    const char* patterns;
    int types;
    int sort;
    Names expected;
  } rows[] = {
      {"*.c", OS_LIST_FILES, OS_SORT_NAME, {"c.c", "B.C"}},
      {"*.c", OS_LIST_FILES, OS_SORT_NAME | OS_SORT_WHOLE, {"B.C", "c.c"}},
      {"*.C", OS_LIST_FILES, OS_SORT_NAME | OS_SORT_WHOLE, {"B.C", "B.C"}},
      {"*.h,*.c", OS_LIST_FILES, OS_SORT_NAME, {"A.h", "b.h", "c.c", "B.C"}},
      {"*.h|*.c", OS_LIST_FILES, OS_SORT_NAME | OS_SORT_WHOLE, {"A.h", "B.C", "b.h", "c.c"}},
      {"*", OS_LIST_FILES, OS_SORT_NAME | OS_SORT_DESCENDING, {"c.c", "b.h", "B.C", "A.h"}},
      {"*", OS_LIST_FILES, OS_SORT_TIME, {"c.c", "A.h", "b.h", "B.C"}},
      {"*", OS_LIST_FILES, OS_SORT_TIME | OS_SORT_SIZE, {"c.c", "A.h", "b.h", "B.C"}},
      {"*", OS_LIST_FILES, OS_SORT_SIZE | OS_SORT_DESCENDING, {"A.h", "c.c", "b.h", "B.C"}},
      {"*", OS_LIST_FILES, OS_SORT_NAME | OS_SORT_SIZE, {"A.h", "B.C", "b.h", "c.c"}},
      {".*", OS_LIST_FILES, OS_SORT_NAME, {}},
      {".*", OS_LIST_FILES | OS_LIST_HIDDEN, OS_SORT_NAME, {".hid", ".x"}},
      {"*", OS_LIST_FOLDERS, OS_SORT_NAME, {"..", "..odd", ".d", "other", "Sub"}},
      {"*",
       OS_LIST_FOLDERS | OS_LIST_HIDDEN,
       OS_SORT_NAME,
       {"..", "..odd", ".d", ".hidden", "other", "Sub"}},
      {"*",
       kBoth | OS_LIST_SELF,
       OS_SORT_NAME,
       {".", "..", "..odd", ".d", ".x", "A.h", "B.C", "b.h", "c.c", "other", "Sub"}},
      {"nothing", OS_LIST_FOLDERS, 0, {".."}},
      {"", OS_LIST_FILES, 0, {}},
      {nullptr, OS_LIST_FILES, OS_SORT_NAME, {"A.h", "B.C", "b.h", "c.c"}},
  };
  for (const auto& row : rows) {
    const Listed listed = List(scratch.path(), row.patterns, row.types, row.sort);
    EXPECT_EQ(listed.count, static_cast<int>(row.expected.size()));
    EXPECT_EQ(listed.names, row.expected)
        << (row.patterns ? row.patterns : "null") << " sort " << row.sort;
  }
}

TEST(ListDir, FiguresAndTotals) {
  Scratch scratch;
  Populate(scratch);
  Listed listed = List(scratch.path(), "A.h", OS_LIST_FILES, 0);
  ASSERT_EQ(listed.count, 1);
  EXPECT_EQ(listed.entries[0].size, 3000u);
  EXPECT_EQ(listed.entries[0].time, 200u);
  // Only files that match count, hidden ones and ones of unwanted types too.
  listed = List(scratch.path(), "*", OS_LIST_FOLDERS | OS_LIST_SELF, OS_SORT_NAME);
  ASSERT_GE(listed.count, 2);
  EXPECT_EQ(listed.entries[0].size, (10u + 3000 + 2000 + 1 + 5 + 6) / 1024);
  EXPECT_EQ(listed.entries[0].time, 0u);
  EXPECT_EQ(listed.entries[1].size, 0u);
  listed = List(scratch.path(), "*.h", OS_LIST_FOLDERS | OS_LIST_SELF, 0);
  EXPECT_EQ(listed.entries[0].size, 3010u / 1024);
  EXPECT_EQ(listed.count, 2);
}

TEST(ListDir, BitsOfLinksSocketsAndPipes) {
  Scratch scratch;
  scratch.Link("dead", "nowhere");
  mkfifo(scratch.At("pipe").c_str(), 0600);
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  scratch.At("sock").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  close(fd);
  EXPECT_EQ(List(scratch.path(), "*", OS_LIST_FILES, OS_SORT_NAME).names, (Names{"dead", "sock"}));
  EXPECT_EQ(List(scratch.path(), "*", OS_LIST_FOLDERS, OS_SORT_NAME).names, (Names{"..", "sock"}));
  EXPECT_EQ(List(scratch.path(), "*", 0x1000, 0).names, Names{});
}

TEST(ListDir, LongNamesAreCutAndManyFilesFit) {
  Scratch scratch;
  const std::string name(200, 'n');
  scratch.File(name);
  EXPECT_EQ(List(scratch.path(), "*", OS_LIST_FILES, 0).names, Names{name.substr(0, 39)});
  for (int i = 0; i < 250; ++i) scratch.File("f" + std::to_string(i) + ".txt");
  EXPECT_EQ(List(scratch.path(), "f*", OS_LIST_FILES, 0).count, 250);
  EXPECT_EQ(List(scratch.path(), "f*,*.txt", OS_LIST_FILES, OS_SORT_NAME).count, 500);
  // Just full: the two entries in front need new room.
  for (int i = 250; i < 400; ++i) scratch.File("f" + std::to_string(i) + ".txt");
  EXPECT_EQ(List(scratch.path(), "f*", kBoth | OS_LIST_SELF, OS_SORT_NAME).count, 402);
}

TEST(ListDir, PathsAndVolumes) {
  Scratch scratch;
  scratch.File("one");
  EXPECT_EQ(List("vol:" + scratch.path(), "*", OS_LIST_FILES, 0).names, Names{"one"});
  const Listed root = List("/", "*", OS_LIST_FOLDERS, OS_SORT_NAME);
  EXPECT_GT(root.count, 1);
  EXPECT_EQ(List("vol:", "*", OS_LIST_FOLDERS, OS_SORT_NAME).names, root.names);
  ASSERT_EQ(chdir(scratch.path().c_str()), 0);
  EXPECT_EQ(List("", "*", OS_LIST_FILES, 0).names, Names{"one"});
  int count = -7;
  OS_ListEntry* list = OS_ListDir(nullptr, "*", &count, OS_LIST_FILES, 0);
  EXPECT_EQ(count, 1);
  OS_ListFree(list);
  OS_ListFree(OS_ListDir(nullptr, "*", nullptr, OS_LIST_FILES, 0));
  for (const char* path : {"missing", "one", "a/b/c"}) {
    EXPECT_EQ(List(path, "*", kBoth, 0).count, 0) << path;
  }
  ASSERT_EQ(chdir("/"), 0);
}

TEST(ListDir, CompareFollowsTheLastSort) {
  const OS_ListEntry small = {"b", 1, 0x90000000};
  const OS_ListEntry large = {"A", 0x80000000, 5};
  const struct {
    int sort;
    int expected;
  } rows[] = {{0, 0},
              {OS_SORT_NAME, 1},
              {OS_SORT_TIME, 1},
              {OS_SORT_SIZE, -1},
              {OS_SORT_SIZE | OS_SORT_DESCENDING, 1},
              {OS_SORT_DESCENDING, 0}};
  for (const auto& row : rows) {
    List("/", "none", 0, row.sort);
    const int result = sort_func(&small, &large);
    EXPECT_EQ((result > 0) - (result < 0), row.expected) << row.sort;
  }
  EXPECT_EQ(sort_func(nullptr, &large), 0);
}

TEST(ListDirN, PatternsTypesAndSorts) {
  Scratch scratch;
  Populate(scratch);
  const struct {
    const char* patterns;
    int types;
    int sort;
    Names expected;
  } rows[] = {
      {"*.h,*.c", OS_LIST_FILES, OS_SORT_NAME, {"A.h", "B.C", "b.h", "c.c"}},
      {"*.C,*,*", OS_LIST_FILES, OS_SORT_NAME, {"A.h", "B.C", "b.h", "c.c"}},
      {"*", OS_LIST_FILES, OS_SORT_TIME, {"c.c", "A.h", "b.h", "B.C"}},
      {"*", OS_LIST_FILES, OS_SORT_SIZE | OS_SORT_DESCENDING, {"A.h", "c.c", "b.h", "B.C"}},
      {".*", OS_LIST_FILES | OS_LIST_HIDDEN, OS_SORT_NAME, {".hid", ".x"}},
      {"*", OS_LIST_FOLDERS, OS_SORT_NAME, {"..", "other", "Sub"}},
      {"*",
       kBoth | OS_LIST_SELF,
       OS_SORT_NAME | OS_SORT_FOLDERS_FIRST,
       {".", "..", "other", "Sub", "A.h", "B.C", "b.h", "c.c"}},
      {"*",
       kBoth,
       OS_SORT_NAME | OS_SORT_FOLDERS_FIRST | OS_SORT_DESCENDING,
       {"..", "Sub", "other", "c.c", "b.h", "B.C", "A.h"}},
      {"*.h", kBoth | OS_LIST_ALL_FOLDERS, OS_SORT_NAME, {"..", "A.h", "b.h", "other", "Sub"}},
      {"*.h", kBoth, OS_SORT_NAME, {"..", "A.h", "b.h"}},
      {"none", OS_LIST_FILES, 0, {}},
  };
  for (const auto& row : rows) {
    const Whole listed = ListN(scratch.path(), row.patterns, row.types, row.sort);
    EXPECT_EQ(listed.names, row.expected) << row.patterns << " sort " << row.sort;
    EXPECT_EQ(listed.count, static_cast<int>(row.expected.size()));
  }
}

TEST(ListDirN, ASortOfTheListIsASortOfTheFolder) {
  Scratch scratch;
  Populate(scratch);
  const int types = kBoth | OS_LIST_SELF;
  int count = 0;
  OS_ListEntryN* list = OS_ListDirN(scratch.path().c_str(), "*", &count, types, 0);
  for (int sort : {OS_SORT_NAME, OS_SORT_SIZE, OS_SORT_TIME | OS_SORT_DESCENDING,
                   OS_SORT_NAME | OS_SORT_DESCENDING | OS_SORT_FOLDERS_FIRST, 0}) {
    OS_ListSortN(list, count, sort);
    Names names;
    for (int i = 0; i < count; ++i) names.push_back(list[i].name);
    if (sort) {
      EXPECT_EQ(names, ListN(scratch.path(), "*", types, sort).names) << sort;
    }
    EXPECT_EQ(names[1], "..");
  }
  OS_ListSortN(list, 0, OS_SORT_NAME);
  OS_ListFreeN(list);
  OS_ListSortN(nullptr, 5, OS_SORT_NAME);
}

TEST(ListDirN, WholeNamesAndFigures) {
  Scratch scratch;
  const std::string name(255, 'n');
  SetTime(scratch.File(name, "12345"), 0x123456789);
  const std::string large = scratch.File("large");
  ASSERT_EQ(truncate(large.c_str(), 0x300000001), 0);
  scratch.Folder("a:b");
  scratch.File("a:b/in");
  scratch.File(".hidden", "123");  // counts, and is not listed
  const Whole listed = ListN(scratch.path(), "*", kBoth | OS_LIST_SELF, OS_SORT_NAME);
  ASSERT_EQ(listed.names, (Names{".", "..", "a:b", "large", name}));
  EXPECT_EQ(listed.entries[0].size, 0x300000001 + 5u + 3u);
  EXPECT_TRUE(S_ISDIR(listed.entries[1].mode));
  EXPECT_EQ(listed.entries[3].size, 0x300000001u);
  EXPECT_EQ(listed.entries[4].time, 0x123456789);
  EXPECT_TRUE(S_ISREG(listed.entries[4].mode));
  EXPECT_EQ(ListN(scratch.At("a:b"), "*", OS_LIST_FILES, 0).names, Names{"in"});
}

TEST(ListDirN, LinksCountAsWhatTheyLeadTo) {
  Scratch scratch;
  scratch.Folder("folder");
  scratch.File("file", "1234");
  scratch.Link("to-folder", "folder");
  scratch.Link("to-file", "file");
  scratch.Link("to-nothing", "nothing");
  EXPECT_EQ(ListN(scratch.path(), "*", OS_LIST_FOLDERS, OS_SORT_NAME).names,
            (Names{"..", "folder", "to-folder"}));
  EXPECT_EQ(ListN(scratch.path(), "t*", OS_LIST_FOLDERS | OS_LIST_ALL_FOLDERS, OS_SORT_NAME).names,
            (Names{"..", "folder", "to-folder"}));
  const Whole files = ListN(scratch.path(), "*", OS_LIST_FILES, OS_SORT_NAME);
  ASSERT_EQ(files.names, (Names{"file", "to-file"}));
  EXPECT_EQ(files.entries[1].size, 4u);
  EXPECT_TRUE(S_ISLNK(files.entries[1].mode));
  EXPECT_TRUE(S_ISREG(files.entries[1].target));
  const Whole others = ListN(scratch.path(), "*", OS_LIST_OTHERS, 0);
  ASSERT_EQ(others.names, Names{"to-nothing"});
  EXPECT_EQ(others.entries[0].target, 0u);
}

TEST(ListDirN, UnreadableIsNotEmpty) {
  Scratch scratch;
  EXPECT_EQ(ListN(scratch.path(), "*", OS_LIST_FILES, 0).count, 0);
  EXPECT_EQ(ListN(scratch.At("missing"), "*", kBoth, 0).count, -1);
  EXPECT_EQ(OS_ListDirN("missing", "*", nullptr, kBoth, 0), nullptr);
  OS_ListFreeN(nullptr);
}

// Listings of both kinds side by side, each thread with an order of its own.
TEST(ListThreads, SideBySide) {
  Scratch scratch;
  for (int i = 0; i < 60; ++i) scratch.File("f" + std::to_string(100 + i), std::string(i, 'x'));
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&scratch, t] {
      const int sort = OS_SORT_NAME | (t & 1);
      for (int round = 0; round < 20; ++round) {
        const Names plain = List(scratch.path(), "f*", OS_LIST_FILES, sort).names;
        EXPECT_EQ(plain.front(), t & 1 ? "f159" : "f100");
        EXPECT_EQ(plain, ListN(scratch.path(), "f*", OS_LIST_FILES, sort).names);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
