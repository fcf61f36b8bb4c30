#include <gtest/gtest.h>

#include <vector>

#include "os/os.h"
#include "os/system_paths.h"
#include "tests/os/scratch.h"

namespace {

using Places = std::vector<std::string>;

class Volumes : public testing::Test {
 protected:
  Volumes() {
    scratch.Folder("etc");
    setenv("HOME", "/home/somebody", 1);
    setenv("USER", "somebody", 1);
    os::SetSystemRoot(scratch.path().c_str());
  }
  ~Volumes() override { os::SetSystemRoot(nullptr); }

  template <typename Device>
  static Places Take(const Device* list, int count) {
    Places places;
    for (int i = 0; i < count; ++i) {
      places.push_back(std::string(list[i].name) + "|" + list[i].path + "|" + list[i].host);
    }
    return places;
  }

  // The places behind the four fixed ones.
  static Places Plain() {
    int count = -7;
    const OS_Device* list = OS_ListDev(&count);
    for (int i = 0; i < count; ++i) EXPECT_EQ(list[i].index, i * 4);
    EXPECT_EQ(list[3].path, std::string("/home/somebody/Desktop"));
    const Places all = Take(list, count);
    return {all.begin() + 4, all.end()};
  }
  static Places Whole() {
    int count = -7;
    OS_DeviceN* list = OS_ListDevN(&count);
    const Places all = Take(list, count);
    OS_ListDevFreeN(list);
    EXPECT_EQ(Places(all.begin(), all.begin() + 4),
              (Places{"ROOT|/|", "LOCAL|/home/somebody|", "DOCUMENTS|/home/somebody/Documents|",
                      "DESKTOP|/home/somebody/Desktop|"}));
    return {all.begin() + 4, all.end()};
  }

  Scratch scratch;
};

TEST_F(Volumes, Tables) {
  const std::string deep(115, 'd');
  const struct {
    std::string mtab, rfstab;
    Places plain, whole;
  } rows[] = {
      {"", "", {}, {}},
      {"/dev/sda1 / ext4 rw 0 0\nb:/x /mnt/z nfs rw\nc:/y:z /mnt/Data nfs4 rw\n//s/t /a\xE4 cifs\n",
       "",
       {"A\xE4:|/a\xE4|", "MNT/DATA:|/mnt/Data|c", "MNT/Z:|/mnt/z|b"},
       {"A\xE4:|/a\xE4|", "MNT/DATA:|/mnt/Data|c", "MNT/Z:|/mnt/z|b"}},
      {"x /b smb3\ny /a smbfs\nz /c nfsd\nshort /d\n\n \n",
       "",
       {"A:|/a|", "B:|/b|"},
       {"A:|/a|", "B:|/b|"}},
      {"h\\040o:/ /a\\040b\\134\\011\\08\\777\\000 nfs",
       "",
       {"A B\\\t\\08\\777\\000:|/a b\\\t\\08\\777\\000|h o"},
       {"A B\\\t\\08\\777\\000:|/a b\\\t\\08\\777\\000|h o"}},
      {"",
       "#no|\nz  /z more\n\nword\n #\t/odd\n",
       {"z|/z|", "word|word|", "#|/odd|"},
       {"z|/z|", "word|word|", "#|/odd|"}},
      // The type lies past the 120th byte; the rest of a long line is no line of its own.
      {"h:/ /" + deep + " nfs\n",
       "n " + deep + "12345\nlast\n",
       {"n|" + deep.substr(0, 86) + "|", "last|last|"},
       {std::string(115, 'D') + ":|/" + deep + "|h", "n|" + deep + "12345|", "last|last|"}},
      {std::string("a:/ /m nfs\0x\nb:/ /n\0 nfs", 24), "", {"M:|/m|a"}, {"M:|/m|a"}},
      {std::string(70, 'h') + ":/ /" + std::string(39, 'n') + " nfs",
       "",
       {std::string(39, 'N') + "|/" + std::string(39, 'n') + "|" + std::string(63, 'h')},
       {std::string(39, 'N') + ":|/" + std::string(39, 'n') + "|" + std::string(70, 'h')}},
  };
  EXPECT_EQ(Plain(), Places{});  // no table at all
  for (const auto& row : rows) {
    scratch.File("etc/mtab", row.mtab);
    scratch.File("etc/rfstab", row.rfstab);
    EXPECT_EQ(Plain(), row.plain) << row.mtab;
    EXPECT_EQ(Whole(), row.whole) << row.mtab;
  }
}

TEST_F(Volumes, MountedFolders) {
  const auto at = [this](const std::string& path) { return scratch.At(path); };
  EXPECT_EQ(Plain(), Places{});
  scratch.Folder("media/somebody/Stick");
  EXPECT_EQ(Plain(), Places{"Stick|" + at("media/somebody/Stick") + "|"});
  scratch.Folder("run/media/somebody/b");
  scratch.Folder("run/media/somebody/A");
  EXPECT_EQ(Whole(), (Places{"A|" + at("run/media/somebody/A") + "|",
                             "b|" + at("run/media/somebody/b") + "|"}));
  scratch.Folder("Volumes");
  EXPECT_EQ(Plain(), Places{});
  const std::string name(200, 'v');
  for (const char* folder : {"Volumes/Data", "Volumes/.ab", "Volumes/.a"}) scratch.Folder(folder);
  scratch.Folder("Volumes/" + name);
  scratch.Link("Volumes/System", "/");
  scratch.File("Volumes/file");
  const Places first = {".a|" + at("Volumes/.a") + "|", "Data|" + at("Volumes/Data") + "|"};
  Places expected = first;
  expected.push_back(name.substr(0, 39) + "|" + at("Volumes/" + name).substr(0, 86) + "|");
  EXPECT_EQ(Plain(), expected);
  expected.back() = name + "|" + at("Volumes/" + name) + "|";
  EXPECT_EQ(Whole(), expected);
}

TEST_F(Volumes, FiftyAtMostAndTheTwinHasAll) {
  std::string mounts;
  for (int i = 0; i < 70; ++i) mounts += "h:/ /m" + std::to_string(99 - i) + " nfs\n";
  scratch.File("etc/mtab", mounts);
  scratch.File("etc/rfstab", "more\n");
  EXPECT_EQ(Plain().size(), 46u);
  EXPECT_EQ(Plain().front(), "M54:|/m54|h");
  EXPECT_EQ(Whole().size(), 71u);
  EXPECT_EQ(Whole().back(), "more|more|");
  const OS_Device a = {"a", "", "", 0};
  const OS_Device b = {"b", "", "", 0};
  EXPECT_LT(lsdev_sort(&a, &b), 0);
  EXPECT_EQ(lsdev_sort(nullptr, &b), 0);
}

}  // namespace
