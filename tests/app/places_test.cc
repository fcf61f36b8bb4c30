// The tree of places, read and read again; and what is remembered between two runs.
#include "app/model/places.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "app/model/preferences.h"
#include "app/work/places_reader.h"
#include "app/work/preferences_file.h"
#include "os/system_paths.h"
#include "printserver/nc.h"
#include "tests/os/scratch.h"

namespace console {
namespace {

class PlacesTest : public testing::Test {
 protected:
  // Reads what the tree needs, and shows it.
  bool Read() {
    PlacesReader reader;
    reader.Ask(places_.Request());
    EXPECT_TRUE(reader.WaitFor(30000));
    return places_.Show(reader.Take());
  }
  // "+a -b  c": names by depth; + open, - closed with folders in it, ! cannot be read, * selected.
  std::string Rows() {
    std::string text;
    for (const Places::Row& row : places_.rows(files_.path()))
      text += (text.empty() ? "" : " ") + std::string(size_t(row.depth - 1), '/') +
              (row.unreadable    ? "!"
               : row.open        ? "+"
               : row.has_folders ? "-"
                                 : "") +
              row.name + (row.selected ? "*" : "");
    return text;
  }

  Scratch files_;
  Places places_;
};

TEST_F(PlacesTest, AnotherTreeKeepsWhatIsOpenAndSelected) {
  files_.Folder("a/b/c/d");
  files_.Folder("e");
  EXPECT_TRUE(places_.Use(files_.path() + "/"));
  EXPECT_FALSE(places_.known(files_.path()));
  EXPECT_TRUE(Read());
  EXPECT_EQ(Rows(), "-a e");
  EXPECT_TRUE(places_.SetOpen(files_.path(), files_.At("a"), true));
  EXPECT_FALSE(places_.SetOpen(files_.path(), files_.At("a"), true));
  EXPECT_EQ(Rows(), "+a /b e");  // at once; whether there is something in b is not known yet
  EXPECT_TRUE(Read());
  EXPECT_EQ(Rows(), "+a /-b e");
  // What is chosen is shown, with the folders around it opened.
  EXPECT_TRUE(places_.Select(files_.At("a/b/c")));
  EXPECT_TRUE(Read());
  EXPECT_EQ(Rows(), "+a /+b //-c* e");
  // A folder that was opened while a reading was under way stays open.
  const PlacesRequest early = places_.Request();
  places_.SetOpen(files_.path(), files_.At("a/b/c"), true);
  PlacesListing late;
  late.request = early;
  PlacesReader::read(&late);
  EXPECT_FALSE(places_.Show(std::move(late)));
  EXPECT_TRUE(Read());
  EXPECT_EQ(Rows(), "+a /+b //+c* ///d e");
  // What is closed remembers what is open in it.
  places_.SetOpen(files_.path(), files_.At("a"), false);
  EXPECT_EQ(Rows(), "-a e");
  EXPECT_TRUE(Read());
  places_.SetOpen(files_.path(), files_.At("a"), true);
  EXPECT_TRUE(Read());
  EXPECT_EQ(Rows(), "+a /+b //+c* ///d e");
  std::filesystem::remove_all(files_.At("a/b/c"));
  files_.Folder("a/new");
  EXPECT_TRUE(Read());
  EXPECT_EQ(Rows(), "+a /b /new e");
  // An open folder that turns into something else cannot be read.
  std::filesystem::remove_all(files_.path());
  EXPECT_TRUE(Read());
  EXPECT_EQ(Rows(), "");
  EXPECT_EQ(places_.error(files_.path()), ENOENT);
  // One that lies in another volume is marked there, and a reading without that is not enough.
  late = {};
  late.request = places_.Request();
  late.volumes = places_.volumes();
  EXPECT_TRUE(places_.Select("/elsewhere"));
  EXPECT_EQ(places_.used(), "/");
  EXPECT_FALSE(places_.Show(std::move(late)));
}

TEST_F(PlacesTest, VolumesHaveNamesForPersons) {
  setenv("HOME", files_.path().c_str(), 1);
  files_.Folder("Desktop");
  files_.Folder("etc");
  files_.Folder("Volumes/ROOT");
  files_.File("etc/mtab", "server:/share /net/share nfs rw 0 0\n");
  os::SetSystemRoot(files_.path().c_str());
  PlacesListing listing;
  for (const Volume& v : ListVolumes()) listing.volumes.push_back(v);
  os::SetSystemRoot(nullptr);
  std::string names;
  for (const Volume& v : listing.volumes)
    names += v.name + (v.host.empty() ? "" : "@" + v.host) + " ";
  EXPECT_EQ(names.find("Root Home Desktop "), 0u) << names;
  EXPECT_NE(names.find("@server "), std::string::npos) << names;
  EXPECT_EQ(names.substr(names.size() - 5), "ROOT ") << names;  // a disk may be called that
  listing.volumes = {{"Root", "/", ""}, {"Home", "/home/mia", ""}, {"Other", "/home", ""}};
  places_.Show(std::move(listing));
  EXPECT_EQ(places_.VolumeOf("/home/mia/Documents"), 1);
  EXPECT_EQ(places_.VolumeOf("/home/mi"), 2);
  EXPECT_EQ(places_.VolumeOf("/homes"), 0);
  EXPECT_EQ(places_.VolumeOf(""), -1);
  OS_TreeNodeN node{};
  node.path = "//usr";
  EXPECT_EQ(PathOfNode(node), "/usr");
}

TEST(Preferences, WhatIsWrittenIsReadAgain) {
  Preferences p;
  p.window_width = 2500, p.window_left = 30, p.window_top = 70;
  p.file_columns = {200, 80, 120};
  p.folder = "/a\nb\\n\r=#\xFF";
  p.queue_filter = "  *.pdf, x=y ";
  p.mine_only = true;
  p.refresh_seconds = 30;
  for (int i = 0; i < 10; ++i) NoteServer("host" + std::to_string(i) + ":9100", &p);
  NoteServer("host5:9100", &p);
  // With its usual port and without it is one.
  for (const auto& port : {":" + std::to_string(NC_PORT), std::string()})
    NoteServer("host5" + port, &p);
  EXPECT_EQ(p.recent_servers.size(), kMostRecentServers);
  EXPECT_EQ(p.recent_servers[0] + " " + p.recent_servers[1], "host5 host5:9100");
  p.unknown = {"of-a-newer-one=1 2 3"};
  EXPECT_EQ(ParsePreferences(FormatPreferences(p)), p);
  EXPECT_EQ(ChooseServer("", p).server, "host5");
  EXPECT_EQ(ChooseServer("other", p).server, "other");
  EXPECT_TRUE(ChooseServer("other", p).fixed);
}

TEST(Preferences, WhatIsNotUnderstoodLeavesTheUsual) {
  const Preferences usual;
  for (const char* text :
       {"window-width=99999999999", "window-width=5", "window-width=900x", "window-width",
        "file-columns=10 x", "mine-only=maybe", "server=a b", "server=host:0", "server=host:65536",
        "server=-x", "recent-server=bad name", "\x00\xFF", "=", "====\n\n\n"}) {
    Preferences read = ParsePreferences(text);
    read.unknown.clear();
    EXPECT_EQ(read, usual) << text;
  }
}

TEST(Preferences, TheFileIsPrivateAndReplacedAsAWhole) {
  const Scratch files;
  setenv("XDG_CONFIG_HOME", files.At("config").c_str(), 1);
  const std::string path = PreferencesPath();
  EXPECT_EQ(path, files.At("config/quorvik/console.conf"));
  EXPECT_EQ(LoadPreferences(path), Preferences());
  Preferences p;
  p.printer = "Größe B";
  umask(0);
  ASSERT_TRUE(StorePreferences(path, p));
  EXPECT_EQ(ModeOf(path), 0600u);
  EXPECT_EQ(ModeOf(files.At("config/quorvik")), 0700u);
  EXPECT_EQ(LoadPreferences(path), p);
  // Who has the old file open keeps it whole.
  std::ifstream old(path);
  PreferencesWriter writer(path);
  for (int i = 1; i <= 50; ++i) {
    p.window_width = 1000 + i;
    writer.Store(p);
  }
  EXPECT_TRUE(writer.Finish(30000));
  EXPECT_EQ(LoadPreferences(path).window_width, 1050);
  const std::string text{std::istreambuf_iterator<char>(old), {}};
  EXPECT_EQ(ParsePreferences(text).window_width, Preferences().window_width);
  files.File("config/quorvik/console.conf", "window-width=999\n" + std::string(300000, '#'));
  EXPECT_EQ(LoadPreferences(path), Preferences()) << "too long";
  // What cannot be stored leaves nothing beside it, and what cannot be read is as good as nothing.
  std::filesystem::remove(path);
  files.Folder("config/quorvik/console.conf/x");
  EXPECT_FALSE(StorePreferences(path, p));
  EXPECT_FALSE(StorePreferences("/dev/null/quorvik/console.conf", p));
  EXPECT_EQ(LoadPreferences(path), Preferences());
  int entries = 0;
  for (const auto& entry : std::filesystem::directory_iterator(files.At("config/quorvik")))
    entries += entry.exists();
  EXPECT_EQ(entries, 1);
}

}  // namespace
}  // namespace console
