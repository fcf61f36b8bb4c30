#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <thread>

#include "os/os.h"
#include "tests/os/scratch.h"

namespace {

constexpr int kFiles = OS_LIST_FILES;
constexpr int kFolders = OS_LIST_FOLDERS;
constexpr int kBoth = kFiles | kFolders;

// The names of a list in one line, or its count where it is null; and some of its entries.
template <typename Entry>
struct Listed {
  std::string names;
  std::vector<Entry> entries;
  std::vector<std::string> texts;
};

template <typename Entry, typename Free>
Listed<Entry> Take(Entry* list, int count, Free free_list) {
  Listed<Entry> result;
  if (!list) result.names = "(" + std::to_string(count) + ")";
  for (int i = 0; list && i < count; ++i) {
    result.names += (i ? " " : "") + std::string(list[i].name);
    result.entries.push_back(list[i]);
    result.texts.push_back(list[i].name);
  }
  free_list(list);
  return result;
}

Listed<OS_ListEntry> Plain(const std::string& path, const char* patterns, int types, int sort) {
  int count = -7;
  OS_ListEntry* list = OS_ListDir(path.c_str(), patterns, &count, types, sort);
  return Take(list, count, OS_ListFree);
}

// Sorted by the listing, or afterwards.
Listed<OS_ListEntryN> Whole(const std::string& path, const char* patterns, int types, int sort,
                            bool afterwards = false) {
  int count = -7;
  OS_ListEntryN* list = OS_ListDirN(path.c_str(), patterns, &count, types, afterwards ? 0 : sort);
  if (afterwards) OS_ListSortN(list, count, sort);
  OS_ListSortN(list, count, 0);
  return Take(list, count, OS_ListFreeN);
}

// What both calls give for the same arguments; null: the twin gives the same.
struct Row {
  const char* patterns;
  int types;
  int sort;
  const char* plain;
  const char* whole;
};

void Expect(const std::string& path, const Row& row) {
  SCOPED_TRACE(testing::Message() << (row.patterns ? row.patterns : "null") << " types " << std::hex
                                  << row.types << " sort " << row.sort);
  const std::string whole = row.whole ? row.whole : row.plain;
  EXPECT_EQ(Plain(path, row.patterns, row.types, row.sort).names, row.plain);
  EXPECT_EQ(Whole(path, row.patterns, row.types, row.sort).names, whole);
  EXPECT_EQ(Whole(path, row.patterns, row.types, row.sort, true).names, whole);
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

TEST(List, PatternsTypesAndSorts) {
  Scratch scratch;
  Populate(scratch);
  constexpr int kName = OS_SORT_NAME;
  constexpr int kFirst = OS_SORT_FOLDERS_FIRST;
  constexpr int kDown = OS_SORT_DESCENDING;
  const Row rows[] = {
      {"*.c", kFiles, kName, "c.c B.C", "B.C c.c"},
      {"*.C", kFiles, kName | OS_SORT_WHOLE, "B.C B.C", "B.C"},
      {"*.h,*.c", kFiles, kName, "A.h b.h c.c B.C", "A.h B.C b.h c.c"},
      {"*.h|*.c", kFiles, kName | OS_SORT_WHOLE, "A.h B.C b.h c.c", nullptr},
      {"*", kFiles, kName | kDown, "c.c b.h B.C A.h", nullptr},
      {"*", kFiles, OS_SORT_TIME, "c.c A.h b.h B.C", nullptr},
      {"*", kFiles, OS_SORT_TIME | OS_SORT_SIZE, "c.c A.h b.h B.C", nullptr},
      {"*", kFiles, OS_SORT_SIZE | kDown, "A.h c.c b.h B.C", nullptr},
      {"*", kFiles, kName | OS_SORT_SIZE, "A.h B.C b.h c.c", nullptr},
      {".*", kFiles, kName, "(0)", nullptr},
      {".*", kFiles | OS_LIST_HIDDEN, kName, ".hid .x", nullptr},
      {"*", kFolders, kName, ".. ..odd .d other Sub", ".. other Sub"},
      {"*", kFolders | OS_LIST_HIDDEN, kName, ".. ..odd .d .hidden other Sub", nullptr},
      {"*", kBoth | OS_LIST_SELF, kName, ". .. ..odd .d .x A.h B.C b.h c.c other Sub",
       ". .. A.h B.C b.h c.c other Sub"},
      {"nothing", kFolders, 0, "..", nullptr},
      {"", kFiles, 0, "(0)", nullptr},
      {nullptr, kFiles, kName, "A.h B.C b.h c.c", nullptr},
      {"[A-z]", kBoth, 0, "..", nullptr},
      {"?.h", kBoth, kName | kFirst, ".. A.h b.h", nullptr},
      {"*", kBoth, kName | kFirst, ".. ..odd .d .x A.h B.C b.h c.c other Sub",
       ".. other Sub A.h B.C b.h c.c"},
      {"*", kBoth, kName | kFirst | kDown, ".. Sub other c.c b.h B.C A.h .x .d ..odd",
       ".. Sub other c.c b.h B.C A.h"},
      {"*.h", kBoth | OS_LIST_ALL_FOLDERS, kName, ".. A.h b.h", ".. A.h b.h other Sub"},
  };
  for (const Row& row : rows) Expect(scratch.path(), row);
}

// Links count by their own type, and as what they lead to.
TEST(List, LinksSocketsPipesAndWhatCannotBeRead) {
  Scratch scratch;
  scratch.Folder("folder");
  scratch.File("file", "1234");
  scratch.Link("to-folder", "folder");
  scratch.Link("to-file", "file");
  scratch.Link("dead", "nowhere");
  mkfifo(scratch.At("pipe").c_str(), 0600);
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  scratch.At("sock").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  close(fd);
  const Row rows[] = {
      {"*", kFiles, OS_SORT_NAME, "dead file sock to-file to-folder", "file to-file"},
      {"*", kFolders, OS_SORT_NAME, ".. folder sock", ".. folder to-folder"},
      {"t*", kFolders | OS_LIST_ALL_FOLDERS, OS_SORT_NAME, "..", ".. folder to-folder"},
      {"*", OS_LIST_OTHERS, OS_SORT_NAME, "(0)", "dead pipe sock"},
      {"*", 0x1000, 0, "(0)", nullptr},
  };
  for (const Row& row : rows) Expect(scratch.path(), row);
  const auto files = Whole(scratch.path(), "*", kFiles | OS_LIST_OTHERS, OS_SORT_NAME).entries;
  ASSERT_EQ(files.size(), 5u);
  EXPECT_EQ(files[0].target, 0u);
  EXPECT_EQ(files[4].size, 4u);
  EXPECT_TRUE(S_ISLNK(files[4].mode) && S_ISREG(files[4].target));
  for (const char* path : {"missing", "file", "a/b/c"}) {
    Expect(scratch.At(path), {"*", kBoth, 0, "(0)", "(-1)"});
  }
  EXPECT_EQ(OS_ListDirN("missing", "*", nullptr, kBoth, 0), nullptr);
}

TEST(List, FiguresAndTotals) {
  Scratch scratch;
  Populate(scratch);
  const auto one = Plain(scratch.path(), "A.h", kFiles, 0).entries;
  ASSERT_EQ(one.size(), 1u);
  EXPECT_EQ(one[0].size, 3000u);
  EXPECT_EQ(one[0].time, 200u);
  // All regular files that match count, hidden ones and ones of unwanted types too: without the
  // hidden bytes the sum would be a kilobyte less.
  scratch.File(".hid", std::string(2000, 'x'));
  auto folders = Plain(scratch.path(), "*", kFolders | OS_LIST_SELF, OS_SORT_NAME).entries;
  EXPECT_EQ(folders[0].size, (10u + 3000 + 2000 + 1 + 2000 + 6) / 1024);
  EXPECT_EQ(folders[0].time + folders[1].size + folders[1].time, 0u);
  folders = Plain(scratch.path(), "*.h", kFolders | OS_LIST_SELF, 0).entries;
  EXPECT_EQ(folders[0].size, 3010u / 1024);

  const std::string name(255, 'n');
  SetTime(scratch.File(name, "12345"), 0x123456789);
  ASSERT_EQ(truncate(scratch.File("large").c_str(), 0x300000001), 0);
  scratch.Link("link", "c.c");  // counts as what it leads to
  const auto whole = Whole(scratch.path(), "*", kBoth | OS_LIST_SELF, OS_SORT_TIME);
  EXPECT_EQ(whole.entries[0].size, 0x300000001 + 7017u + 5u + 2000u);
  EXPECT_TRUE(S_ISDIR(whole.entries[1].mode));
  EXPECT_EQ(whole.texts.back(), name);
  EXPECT_EQ(whole.entries.back().time, 0x123456789);
  EXPECT_TRUE(S_ISREG(whole.entries.back().mode));
  EXPECT_EQ(Whole(scratch.path(), "large", kFiles, 0).entries[0].size, 0x300000001u);
  EXPECT_EQ(Plain(scratch.path(), "n*", kFiles, 0).names, name.substr(0, 39));
}

TEST(List, ManyFilesFit) {
  Scratch scratch;
  for (int i = 0; i < 400; ++i) scratch.File("f" + std::to_string(i) + ".txt");
  EXPECT_EQ(Plain(scratch.path(), "f*,*.txt", kFiles, OS_SORT_NAME).entries.size(), 800u);
  // Just full, and all but one: the two entries in front need new room.
  EXPECT_EQ(Plain(scratch.path(), "f*", kBoth | OS_LIST_SELF, OS_SORT_NAME).entries.size(), 402u);
  unlink(scratch.At("f0.txt").c_str());
  EXPECT_EQ(Plain(scratch.path(), "f*", kBoth | OS_LIST_SELF, OS_SORT_NAME).entries.size(), 401u);
}

TEST(List, PathsAndVolumes) {
  Scratch scratch;
  scratch.File("one");
  scratch.Folder("a:b");
  scratch.File("a:b/in");
  EXPECT_EQ(Plain("vol:" + scratch.path(), "*", kFiles, 0).names, "one");
  EXPECT_EQ(Plain("vol:" + scratch.At("a:b"), "*", kFiles, 0).names, "in");
  EXPECT_EQ(Whole(scratch.At("a:b"), "*", kFiles, 0).names, "in");
  EXPECT_EQ(Plain("vol:", "*", kFolders, OS_SORT_NAME).names,
            Plain("/", "*", kFolders, OS_SORT_NAME).names);
  EXPECT_EQ(Whole("/", "etc", kFolders, 0).names, ".. etc");
  ASSERT_EQ(chdir(scratch.path().c_str()), 0);
  Expect("", {"*", kFiles, 0, "one", nullptr});
  OS_ListEntry* list = OS_ListDir(nullptr, "*", nullptr, kFiles, 0);
  EXPECT_STREQ(list[0].name, "one");
  OS_ListFree(list);
  ASSERT_EQ(chdir("/"), 0);
}

TEST(List, CompareFollowsTheLastSort) {
  const OS_ListEntry small = {"b", 1, 0x90000000};
  const OS_ListEntry large = {"A", 0x80000000, 5};
  for (const auto& [sort, expected] : {std::pair{0, 0},
                                       {OS_SORT_NAME, 1},
                                       {OS_SORT_TIME, 1},
                                       {OS_SORT_SIZE, -1},
                                       {OS_SORT_SIZE | OS_SORT_DESCENDING, 1}}) {
    Plain("/", "none", 0, sort);
    const int result = sort_func(&small, &large);
    EXPECT_EQ((result > 0) - (result < 0), expected) << sort;
  }
  EXPECT_EQ(sort_func(nullptr, &large), 0);
}

// Listings of all kinds side by side, each thread with an order of its own.
TEST(List, SideBySide) {
  Scratch scratch;
  for (int i = 0; i < 60; ++i) scratch.File("f" + std::to_string(100 + i));
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&scratch, t] {
      for (int round = 0; round < 20; ++round) {
        const auto plain = Plain(scratch.path(), "f*", kFiles, OS_SORT_NAME | (t & 1));
        EXPECT_EQ(plain.texts.front(), t & 1 ? "f159" : "f100");
        EXPECT_EQ(plain.names, Whole(scratch.path(), "f*", kFiles, OS_SORT_NAME | (t & 1)).names);
        OS_ListDevFreeN(OS_ListDevN(nullptr));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
