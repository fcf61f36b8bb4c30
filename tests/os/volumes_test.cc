#include <gtest/gtest.h>

#include <algorithm>

#include "os/os.h"
#include "os/system_paths.h"
#include "tests/os/scratch.h"

namespace {

// Places as "name|path|host" in lines, behind the four fixed ones.
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
  static std::string Take(const Device* list, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
      text += std::string(list[i].name) + "|" + list[i].path + "|" + list[i].host + "\n";
    }
    const std::string fixed =
        "ROOT|/|\nLOCAL|/home/somebody|\nDOCUMENTS|/home/somebody/Documents|\n"
        "DESKTOP|/home/somebody/Desktop|\n";
    EXPECT_EQ(text.substr(0, fixed.size()), fixed);
    return text.substr(fixed.size());
  }

  static std::string Plain() {
    int count = -7;
    const OS_Device* list = OS_ListDev(&count);
    for (int i = 0; i < count; ++i) EXPECT_EQ(list[i].index, i * 4);
    return Take(list, count);
  }
  static std::string Whole() {
    int count = -7;
    OS_DeviceN* list = OS_ListDevN(&count);
    const std::string text = Take(list, count);
    OS_ListDevFreeN(list);
    return text;
  }

  Scratch scratch;
};

TEST_F(Volumes, Tables) {
  const std::string d(115, 'd'), n(39, 'n'), h(70, 'h');
  const struct {
    std::string mtab, rfstab;
    std::string plain, whole;  // no `whole`: the same
  } rows[] = {
      {"/dev/sda1 / ext4 rw\nb:/x /mnt/z nfs rw\nc:/y:z /mnt/Data nfs4 0\n//s/t /a\xE4 cifs\n", "",
       "A\xE4:|/a\xE4|\nMNT/DATA:|/mnt/Data|c\nMNT/Z:|/mnt/z|b\n", ""},
      {"x /b smb3\ny /a smbfs\nz /c nfsd\nshort /d\n\n \n", "", "A:|/a|\nB:|/b|\n", ""},
      {"h\\040o:/ /a\\040b\\134\\011\\08\\777\\000 nfs", "",
       "A B\\\t\\08\\777\\000:|/a b\\\t\\08\\777\\000|h o\n", ""},
      {"", "#no|\nz  /z more\n\nword\n #\t/odd\n", "z|/z|\nword|word|\n#|/odd|\n", ""},
      // The type lies past the 120th byte; the rest of a long line is no line of its own.
      {"h:/ /" + d + " nfs\n", "n " + d + "12345\nlast\n",
       "n|" + d.substr(0, 86) + "|\nlast|last|\n",
       std::string(115, 'D') + ":|/" + d + "|h\nn|" + d + "12345|\nlast|last|\n"},
      {std::string("a:/ /m nfs\0x\nb:/ /n\0 nfs", 24), "", "M:|/m|a\n", ""},
      {h + ":/ /" + n + " nfs", "", std::string(39, 'N') + "|/" + n + "|" + h.substr(0, 63) + "\n",
       std::string(39, 'N') + ":|/" + n + "|" + h + "\n"},
  };
  EXPECT_EQ(Plain(), "");  // no table at all
  for (const auto& row : rows) {
    scratch.File("etc/mtab", row.mtab);
    scratch.File("etc/rfstab", row.rfstab);
    EXPECT_EQ(Plain(), row.plain) << row.mtab;
    EXPECT_EQ(Whole(), row.whole.empty() ? row.plain : row.whole) << row.mtab;
  }
}

TEST_F(Volumes, MountedFolders) {
  const auto place = [this](const std::string& folder, const std::string& name) {
    return name + "|" + scratch.At(folder + "/" + name) + "|\n";
  };
  EXPECT_EQ(Plain(), "");
  scratch.Folder("media/somebody/Stick");
  EXPECT_EQ(Plain(), place("media/somebody", "Stick"));
  scratch.Folder("run/media/somebody/b");
  scratch.Folder("run/media/somebody/A");
  EXPECT_EQ(Whole(), place("run/media/somebody", "A") + place("run/media/somebody", "b"));
  scratch.File("Volumes");  // there, and no folder
  EXPECT_EQ(Plain(), "");
  std::filesystem::remove(scratch.At("Volumes"));
  scratch.Folder("Volumes");
  EXPECT_EQ(Plain(), "");
  const std::string name(200, 'v');
  for (const char* folder : {"Volumes/Data", "Volumes/.ab", "Volumes/.a"}) scratch.Folder(folder);
  scratch.Folder("Volumes/" + name);
  scratch.Link("Volumes/System", "/");
  scratch.File("Volumes/file");
  const std::string first = place("Volumes", ".a") + place("Volumes", "Data");
  EXPECT_EQ(Plain(),
            first + name.substr(0, 39) + "|" + scratch.At("Volumes/" + name).substr(0, 86) + "|\n");
  EXPECT_EQ(Whole(), first + place("Volumes", name));
}

TEST_F(Volumes, FiftyAtMostAndTheTwinHasAll) {
  std::string mounts;
  for (int i = 0; i < 70; ++i) mounts += "h:/ /m" + std::to_string(99 - i) + " nfs\n";
  scratch.File("etc/mtab", mounts);
  scratch.File("etc/rfstab", "more\n");
  const std::string plain = Plain(), whole = Whole();
  EXPECT_EQ(std::count(plain.begin(), plain.end(), '\n'), 46);
  EXPECT_EQ(plain.rfind("M54:|/m54|h\n", 0), 0u);
  EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), 71);
  EXPECT_EQ(whole.substr(whole.size() - 11), "more|more|\n");
  const OS_Device a = {"a", "", "", 0};
  const OS_Device b = {"b", "", "", 0};
  EXPECT_LT(lsdev_sort(&a, &b), 0);
  EXPECT_EQ(lsdev_sort(nullptr, &b), 0);
}

}  // namespace
