#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "os/os.h"
#include "os/system_paths.h"
#include "tests/os/scratch.h"

namespace {

// Fixed paths below a folder of the test.
class Paths : public testing::Test {
 protected:
  Paths() {
    scratch.Folder("var/tmp");
    scratch.Folder("Users/Shared");
    os::SetSystemRoot(scratch.path().c_str());
    os::SetExecutablePath("/opt/tool/bin/tool");
  }
  ~Paths() override {
    os::SetSystemRoot(nullptr);
    os::SetExecutablePath(nullptr);
  }

  std::string Entry(const std::string& key) const { return "Users/Shared/Quorvik/" + key; }

  Scratch scratch;
};

TEST_F(Paths, FoldersOfTheExecutable) {
  const std::string deep = "/" + std::string(300, 'd');
  const struct {
    std::string executable;
    std::string application, folder, resources;
  } rows[] = {
      {"/Applications/Tool.app/Contents/MacOS/Tool", "/Applications",
       "/Applications/Tool.app/Contents/MacOS",
       "/Applications/Tool.app/Contents/MacOS/../Resources"},
      {"/usr/local/bin/tool", "/usr/local/bin", "/usr/local/bin", "/usr/local/bin/../Resources"},
      {"/tool", "", "", "/../Resources"},
      {deep + "/tool", deep.substr(0, 255), deep.substr(0, 255), deep.substr(0, 255)},
  };
  for (const auto& row : rows) {
    os::SetExecutablePath(row.executable.c_str());
    EXPECT_EQ(OS_GetPathName(OS_FOLDER_APPLICATION), row.application);
    EXPECT_EQ(OS_GetPathName(OS_FOLDER_EXECUTABLE), row.folder);
    EXPECT_EQ(OS_GetPathName(OS_FOLDER_RESOURCES), row.resources);
    EXPECT_EQ(OS_GetAppPath(nullptr), row.application);
  }
  os::SetExecutablePath(nullptr);
  char real[4096] = {};
  ASSERT_GT(readlink("/proc/self/exe", real, sizeof real - 1), 0);
  EXPECT_EQ(std::filesystem::path(real).parent_path(), OS_GetPathName(OS_FOLDER_EXECUTABLE));
}

TEST_F(Paths, FoldersOfTheUserAreFoundOnce) {
  setenv("HOME", "/home/somebody", 1);
  setenv("USER", std::string(100, 'u').c_str(), 1);
  EXPECT_STREQ(OS_GetPathName(OS_FOLDER_HOME), "/home/somebody");
  EXPECT_STREQ(OS_GetPathName(OS_FOLDER_DOCUMENTS), "/home/somebody/Documents");
  EXPECT_STREQ(OS_GetPathName(OS_FOLDER_DESKTOP), "/home/somebody/Desktop");
  EXPECT_EQ(OS_GetUserName(), std::string(63, 'u'));
  unsetenv("HOME");
  unsetenv("USER");
  EXPECT_STREQ(OS_GetPathName(OS_FOLDER_HOME), "/home/somebody");
  os::ForgetPathNames();
  EXPECT_STREQ(OS_GetPathName(OS_FOLDER_HOME), "/");
  EXPECT_STREQ(OS_GetPathName(OS_FOLDER_DOCUMENTS), "//Documents");
  EXPECT_STREQ(OS_GetUserName(), "nobody");
  for (int folder : {OS_FOLDER_NONE, 9, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_STREQ(OS_GetPathName(folder), "");
  }
}

TEST_F(Paths, TemporaryFolderNamesAndFiles) {
  const std::string folder = scratch.At("var/tmp/Quorvik");
  const std::string first = OS_TempFile("prn");
  EXPECT_NE(first, OS_TempFile("prn"));
  EXPECT_EQ(OS_GetPathName(OS_FOLDER_TEMPORARY), folder);
  EXPECT_EQ(ModeOf(folder), 0777u);
  EXPECT_EQ(first.rfind(folder + "/.", 0), 0u) << first;
  EXPECT_EQ(first.substr(first.size() - 4), ".prn");
  const std::string digits = first.substr(folder.size() + 2);
  EXPECT_EQ(digits.find_first_not_of("0123456789ABCDEF"), digits.find('.'));
  EXPECT_FALSE(std::filesystem::exists(first));
  EXPECT_EQ(std::string(OS_TempFile(nullptr)).back(), '.');
  EXPECT_EQ(std::string(OS_TempFile(std::string(999, 'e').c_str())).size(), 255u);

  chmod(folder.c_str(), 0700);
  char path[256];
  const int fd = OS_TempFileN("prn", path, sizeof path);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(ModeOf(path), 0600u);
  EXPECT_EQ(ModeOf(folder), 0777u);
  EXPECT_EQ(write(fd, "x", 1), 1);
  close(fd);
  EXPECT_EQ(ReadFile(path), "x");
  char small[8] = "unset";
  EXPECT_EQ(OS_TempFileN("prn", small, sizeof small), -1);
  EXPECT_STREQ(small, "");
  EXPECT_EQ(OS_TempFileN("prn", nullptr, 10), -1);
  EXPECT_EQ(OS_TempFileN("no/such/folder", path, sizeof path), -1);
  os::SetSystemRoot(std::string(300, 'r').c_str());
  EXPECT_STREQ(OS_TempFile("e"), "");
}

TEST_F(Paths, UnknownKeysGiveTheNameOfTheFile) {
  scratch.Folder("Users/Shared/Quorvik/folder");
  mkfifo(scratch.At(Entry("pipe")).c_str(), 0666);
  scratch.File("secret", "/secret");
  for (const char* key : {"unknown", "folder", "pipe", "", ".", "..", "../../../secret"}) {
    EXPECT_EQ(OS_GetAppPath(key), scratch.At(Entry(key))) << key;
  }
  const std::string huge(400, 'k');
  EXPECT_EQ(OS_GetAppPath(huge.c_str()), scratch.At(Entry(huge)).substr(0, 255));
  for (const char* key : {"", ".", "..", "../../../secret", "folder"}) {
    EXPECT_EQ(OS_SetAppPath(key), -1) << key;
  }
  // What could not be read back is not recorded.
  const size_t room = 255 - scratch.At(Entry("")).size();
  EXPECT_EQ(OS_SetAppPath(std::string(room + 1, 'k').c_str()), -1);
  const std::string longest(room, 'k');
  EXPECT_EQ(OS_SetAppPath(longest.c_str()), 0);
  EXPECT_TRUE(std::filesystem::remove(scratch.At(Entry(longest))));
  EXPECT_EQ(OS_SetAppPath(nullptr), -1);
  EXPECT_EQ(OS_SetAppPath(huge.c_str()), -1);
  EXPECT_EQ(ReadFile(scratch.At("secret")), "/secret");
  int left = 0;
  for (const auto& file : std::filesystem::directory_iterator(scratch.At(Entry("")))) {
    left += file.path().filename() != "folder" && file.path().filename() != "pipe";
  }
  EXPECT_EQ(left, 0);  // what failed leaves nothing behind
  std::filesystem::remove_all(scratch.At("Users"));
  EXPECT_EQ(OS_SetAppPath("Tovalle"), -1);
}

TEST(Files, FoldersModesAndTimes) {
  Scratch scratch;
  const std::string file = scratch.File("file"), made = scratch.At("made");
  chmod(file.c_str(), 0200);
  EXPECT_EQ(OS_CreateDirectory(made.c_str()), 1);
  EXPECT_EQ(OS_CreateDirectory(made.c_str()) + OS_CreateDirectory(nullptr), 0);
  EXPECT_EQ(OS_SetFileShared((made + "//").c_str()) + OS_SetFileShared(file.c_str()), 0);
  EXPECT_EQ(ModeOf(made), 0777u);
  EXPECT_EQ(ModeOf(file), 0666u);
  for (const char* bad : {"missing", "", "file/", "file/x", "a/b"}) {
    EXPECT_EQ(OS_SetFileShared(*bad ? scratch.At(bad).c_str() : bad), -1) << bad;
  }
  EXPECT_EQ(OS_SetFileShared(nullptr), -1);
  EXPECT_EQ(OS_SetFileTime(file.c_str(), 5, 0xFFFFFFFF), 0);
  struct stat state;
  ASSERT_EQ(stat(file.c_str(), &state), 0);
  EXPECT_EQ(state.st_atim.tv_sec, 5);
  EXPECT_EQ(state.st_mtim.tv_sec, 0xFFFFFFFF);
  EXPECT_EQ(OS_SetFileTime(scratch.At("missing").c_str(), 1, 1) + OS_SetFileTime(nullptr, 1, 1), 0);
  OS_Sync();
}

}  // namespace
