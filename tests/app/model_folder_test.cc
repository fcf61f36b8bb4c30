// A folder's rows, what is selected in them, and the ways to them.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "app/model/crumbs.h"
#include "app/model/folder_rows.h"
#include "app/model/selection.h"
#include "app/model/type_ahead.h"
#include "app/work/unread_entries.h"

namespace console {
namespace {

struct File {
  std::string name;
  uint64_t size = 0;
  int64_t time = 0;
  bool folder = false;
};

// A listing as OS_ListDirN makes them: one block.
std::shared_ptr<const FolderContent> Content(const std::vector<File>& files,
                                             UnreadEntries unread = {}) {
  size_t names = 3;
  for (const File& f : files) names += f.name.size() + 1;
  const size_t records = sizeof(OS_ListEntryN) * (files.size() + 1);
  FolderListing listing;
  listing.entries.reset(static_cast<OS_ListEntryN*>(malloc(records + names)));
  listing.count = int(files.size()) + 1;
  char* at = reinterpret_cast<char*>(listing.entries.get()) + records;
  OS_ListEntryN* e = listing.entries.get();
  auto add = [&](const File& f) {
    const uint32_t mode = f.folder ? S_IFDIR : S_IFREG;
    *e++ = {strcpy(at, f.name.c_str()), f.size, f.time, mode, mode};
    at += f.name.size() + 1;
  };
  add({"..", 0, 0, true});
  for (const File& f : files) add(f);
  return FolderContent::Of(std::move(listing), unread);
}

std::string Names(const FolderRows& rows) {
  std::string all;
  for (int i = 0; i < rows.count(); ++i) {
    EXPECT_EQ(rows.RowOf(rows.IdAt(i)), i);
    all += (i ? "|" : "") + rows.IdAt(i);
  }
  return all;
}

const std::vector<File> kFiles = {
    {"b 10.pdf", 5, 30}, {"Été.png", 500, 10},   {"b 2.pdf", 5, 20},    {".hidden", 1, 1},
    {"zoo", 0, 5, true}, {"anton", 0, 99, true}, {"eta.txt", 70, 15000}};

TEST(FolderRows, AreSortedBothWaysWithFoldersInFront) {
  FolderRows rows;
  rows.Show(Content(kFiles));
  const struct {
    FileOrder order;
    bool descending;
    const char* names;
  } cases[] = {
      {FileOrder::kName, false, "anton|zoo|b 2.pdf|b 10.pdf|eta.txt|Été.png"},
      {FileOrder::kName, true, "zoo|anton|Été.png|eta.txt|b 10.pdf|b 2.pdf"},
      {FileOrder::kSize, false, "anton|zoo|b 2.pdf|b 10.pdf|eta.txt|Été.png"},
      {FileOrder::kTime, false, "zoo|anton|Été.png|b 2.pdf|b 10.pdf|eta.txt"},
      {FileOrder::kKind, true, "zoo|anton|eta.txt|Été.png|b 10.pdf|b 2.pdf"},
  };
  for (const auto& c : cases) {
    rows.Sort(c.order, c.descending);
    EXPECT_EQ(Names(rows), c.names);
  }
}

TEST(FolderRows, TellWhatIsShownAndWhatIsNot) {
  FolderRows rows;
  EXPECT_EQ(rows.NoteText(), "This folder has not been read yet");
  rows.Show(Content(kFiles, {1, 1}));
  EXPECT_EQ(rows.CountText(), "2 folders, 4 files, 1 entry cannot be read");
  EXPECT_EQ(rows.bytes(), 580);
  rows.ShowHidden(true);
  EXPECT_EQ(rows.CountText(), "2 folders, 5 files, 2 entries cannot be read");
  rows.ShowHidden(false);
  for (const char* ending : {"*.PNG", ".png", "ete;*.png"}) {  // folders are the way on
    rows.Filter(ending);
    EXPECT_EQ(Names(rows), "anton|zoo|Été.png");
  }
  EXPECT_EQ(rows.CountText(), "3 of 6 entries, 1 entry cannot be read");
  for (const char* name : {"ANT", "*nto*", "ant;*."}) {
    rows.Filter(name);
    EXPECT_EQ(Names(rows), "anton");
  }
  rows.Filter("ETE");
  EXPECT_EQ(Names(rows), "Été.png");
  EXPECT_EQ(rows.NoteText(), "The filter hides 5 other entries");
  EXPECT_TRUE(rows.Has("zoo"));
  EXPECT_EQ(rows.RowOf("zoo"), -1);
  rows.Filter("nowhere");
  EXPECT_EQ(rows.NoteText(), "The filter hides all 6 entries");
  rows.Filter("");
  rows.Show(Content({}, {2, 0}));
  EXPECT_EQ(rows.NoteText(), "2 entries cannot be read");
  rows.Show(Content({{".a"}}));
  EXPECT_EQ(rows.NoteText(), "This folder has hidden entries only");
  rows.Show(Content({}));
  EXPECT_EQ(rows.NoteText(), "This folder is empty");
}

TEST(UnreadEntries, AreWhatTheListingLacks) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "xw-unread-entries";
  std::filesystem::create_directories(folder);
  for (const char* name : {"a", "b", ".c"}) std::ofstream(folder / name) << "x";
  std::filesystem::create_directory(folder / "d");
  // Files that were not asked for can be looked at, so they are not unread.
  UnreadEntries unread = CountUnreadEntries(folder.c_str(), nullptr, 0);
  EXPECT_EQ(unread.plain + unread.hidden, 0);
  std::filesystem::create_symlink("nowhere", folder / "link");
  EXPECT_EQ(CountUnreadEntries(folder.c_str(), nullptr, 0).plain, 1);
  std::filesystem::remove(folder / "link");
  chmod(folder.c_str(), 0644);  // it can be read, and not entered
  const bool root = geteuid() == 0;
  ASSERT_TRUE(!root || seteuid(65534) == 0);
  unread = CountUnreadEntries(folder.c_str(), nullptr, 0);
  ASSERT_TRUE(!root || seteuid(0) == 0);
  EXPECT_EQ(unread.plain, 3);
  EXPECT_EQ(unread.hidden, 1);
  chmod(folder.c_str(), 0700);
  std::filesystem::remove_all(folder);
}

// A table of letters.
struct Letters {
  std::string shown, hidden;
  int count() const { return int(shown.size()); }
  std::string IdAt(int row) const { return shown.substr(size_t(row), 1); }
  int RowOf(const std::string& id) const {
    const size_t at = shown.find(id);
    return at == std::string::npos ? -1 : int(at);
  }
  bool Has(const std::string& id) const { return (shown + hidden).find(id) != std::string::npos; }
};

std::string Selected(const Selection<std::string>& s, const Letters& rows) {
  std::string all;
  for (const std::string& id : s.ShownIds(rows)) all += id;
  return all;
}

TEST(Selection, FollowsButtonsAndKeys) {
  Letters rows{"abcdefgh", ""};
  Selection<std::string> s;
  const SelectionKeys none, shift{true, false}, control{false, true}, both{true, true};
  auto is = [&](const char* ids, int focus) {
    EXPECT_EQ(Selected(s, rows), ids);
    EXPECT_EQ(s.FocusRow(rows), focus);
  };
  s.Press(rows, 2, none), is("c", 2);
  s.Press(rows, 5, shift), is("cdef", 5);
  s.Press(rows, 1, shift), is("bc", 1);  // from the same anchor
  s.Press(rows, 6, control), is("bcg", 6);
  s.Press(rows, 7, both), is("bcgh", 7);
  s.Press(rows, 2, none), is("bcgh", 2);  // it may become a drag of all of them
  s.Release(), is("c", 2);
  s.Press(rows, 0, control), s.DragTo(rows, 1), is("abc", 1);
  s.Press(rows, 4, none), s.DragTo(rows, 99), is("efgh", 7);
  s.DragTo(rows, 3), is("de", 3);
  s.MoveTo(rows, 4, shift), is("e", 4);
  s.MoveTo(rows, 0, control), is("e", 0);
  s.ToggleFocus(), is("ae", 0);
  s.MoveTo(rows, -5, none), is("a", 0);
  s.All(rows), is("abcdefgh", 0);
  s.Press(rows, -1, none), s.DragTo(rows, 5), is("fgh", 5);
  s.DragTo(rows, 8), is("", -1);
  s.Press(rows, 2, none), s.Release();
  s.Press(rows, -1, shift), s.DragTo(rows, 6), is("cgh", 6);  // beside what is selected
  s.DragTo(rows, 8), is("c", 2);
}

TEST(Selection, HandsNothingOnWhenRowsChange) {
  Letters rows{"abcdef", ""};
  Selection<std::string> s;
  s.Set({"b", "d"});
  rows = {"fed", "cba"};  // turned over, half of it filtered
  s.Renew(rows, 1);
  EXPECT_EQ(Selected(s, rows), "d");
  EXPECT_EQ(s.size(), 2u);
  rows = {"abcdef", ""};
  EXPECT_EQ(Selected(s, rows), "bd");
  s.MoveTo(rows, 3, {false, true});
  rows = {"acef", ""};  // with the anchor and the keyboard
  s.Renew(rows, 3);
  EXPECT_TRUE(s.empty());
  EXPECT_EQ(s.FocusRow(rows), 3);
  s.Press(rows, 2, {true, false});
  EXPECT_EQ(Selected(s, rows), "ef");
  s.Rename("f", "a");
  EXPECT_EQ(Selected(s, rows), "ae");
  rows = {"", ""};
  s.Renew(rows, 0);
  EXPECT_TRUE(s.empty());
  s.All(rows);
  EXPECT_EQ(s.FocusRow(rows), -1);
}

TEST(TypeAhead, KnowsSpacesAndRepeatedLetters) {
  FolderRows rows;
  rows.Show(Content({{"post"}, {"postcard back"}, {"postcard front"}, {"pröve"}, {"zz"}}));
  TypeAhead keys;
  int row = 0;
  int64_t now = 5000;
  auto type = [&](const char* text) {
    for (; *text; ++text) {
      if (!keys.Type(uint8_t(*text), now += 100)) continue;
      const int found =
          keys.Row(row, [&](std::string_view t, int from) { return rows.FindBeginning(t, from); });
      if (found >= 0) row = found;
    }
    return rows.IdAt(row);
  };
  EXPECT_EQ(type(" postcard f"), "postcard front");
  now += 1000;
  EXPECT_EQ(type("p"), "pröve");
  EXPECT_EQ(type("p"), "post");
  EXPECT_EQ(type("pp"), "postcard front");
  now += 1000;
  EXPECT_EQ(type("PRO"), "pröve");
  now += 1000;
  EXPECT_EQ(type("zz"), "zz");
  EXPECT_TRUE(keys.Running(now) && !keys.Running(now + 1000));
}

TEST(Crumbs, KeepTheRootAndTheFolder) {
  const std::vector<Crumb> crumbs = CrumbsOf("//srv/jobs//old/");
  ASSERT_EQ(crumbs.size(), 4u);
  EXPECT_EQ(crumbs[0].path, "/");
  EXPECT_EQ(crumbs[3].path, "//srv/jobs//old");
  EXPECT_EQ(crumbs[3].text, "old");
  const struct {
    int room;
    std::vector<int> shown;
  } cases[] = {
      {50, {0, 1, 2, 3, 4}},      {49, {0, kCrumbGap, 2, 3, 4}}, {45, {0, kCrumbGap, 2, 3, 4}},
      {44, {0, kCrumbGap, 3, 4}}, {34, {0, kCrumbGap, 4}},       {0, {0, kCrumbGap, 4}},
  };
  for (const auto& c : cases) EXPECT_EQ(FitCrumbs({10, 10, 10, 10, 10}, 5, c.room), c.shown);
  EXPECT_EQ(FitCrumbs({10}, 5, 0), std::vector<int>{0});
}

}  // namespace
}  // namespace console
