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

// Beside the seeds of fuzz/mount_table.cc, which reads the tables a second time.
TEST_F(Volumes, Tables) {
  EXPECT_EQ(Plain(), "");  // no table at all
  scratch.File(
      "etc/mtab",
      "/dev/sda1 / ext4 rw\nb:/x /mnt/z nfs rw\nc:/y:z /a\\040b nfs4 0\n//s/t /\\077\xE4 cifs\n");
  scratch.File("etc/rfstab", "#no|\nz  /z more\nword\n");
  const std::string places = "?\xE4:|/?\xE4|\nA B:|/a b|c\nMNT/Z:|/mnt/z|b\nz|/z|\nword|word|\n";
  EXPECT_EQ(Plain(), places);
  EXPECT_EQ(Whole(), places);
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
