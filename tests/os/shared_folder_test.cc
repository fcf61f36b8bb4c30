// Folders that other users can write: links, second names and swaps between check and use.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "os/final_path.h"
#include "os/os.h"
#include "os/system_paths.h"
#include "tests/os/scratch.h"

namespace {

constexpr uid_t kStranger = 12345;
constexpr uid_t kVictim = 23456;

class SharedFolder : public testing::Test {
 protected:
  SharedFolder() {
    scratch.Folder("var/tmp");
    scratch.Folder("Users/Shared/Quorvik");
    os::SetSystemRoot(scratch.path().c_str());
    os::SetExecutablePath("/opt/tool/bin/tool");
    chmod(scratch.File("victim", "/precious").c_str(), 0600);
  }
  ~SharedFolder() override {
    os::SetSystemRoot(nullptr);
    os::SetExecutablePath(nullptr);
  }

  void ExpectVictimUntouched() const {
    EXPECT_EQ(ReadFile(scratch.At("victim")), "/precious");
    EXPECT_EQ(ModeOf(scratch.At("victim")), 0600u);
  }

  Scratch scratch;
  const std::string entry = scratch.At("Users/Shared/Quorvik/key");
};

TEST_F(SharedFolder, RegistryIsNeverReachedThroughALink) {
  const auto expect_replaced = [this] {
    EXPECT_EQ(OS_GetAppPath("key"), entry);
    EXPECT_EQ(OS_SetAppPath("key"), 0);
    EXPECT_STREQ(OS_GetAppPath("key"), "/opt/tool/bin");
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(entry)));
    ExpectVictimUntouched();
    unlink(entry.c_str());
  };
  scratch.Link("Users/Shared/Quorvik/key", scratch.At("victim"));
  expect_replaced();
  scratch.Link("Users/Shared/Quorvik/key", scratch.At("not-there"));
  expect_replaced();
  EXPECT_FALSE(std::filesystem::exists(scratch.At("not-there")));
  ASSERT_EQ(link(scratch.At("victim").c_str(), entry.c_str()), 0);
  expect_replaced();
}

TEST_F(SharedFolder, RegistryThatIsALinkIsNone) {
  std::filesystem::remove_all(scratch.At("Users/Shared/Quorvik"));
  chmod(scratch.Folder("elsewhere").c_str(), 0700);
  scratch.File("elsewhere/key", "/precious");
  scratch.Link("Users/Shared/Quorvik", scratch.At("elsewhere"));
  EXPECT_EQ(OS_SetAppPath("key"), -1);
  EXPECT_EQ(OS_GetAppPath("key"), entry);
  EXPECT_EQ(ReadFile(scratch.At("elsewhere/key")), "/precious");
  EXPECT_EQ(ModeOf(scratch.At("elsewhere")), 0700u);
}

TEST_F(SharedFolder, LinksAreFollowedForTheirOwnerAndTheTargetsOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "needs to give files away";
  const struct {
    uid_t link, target;
    bool followed;
  } rows[] = {
      {0, 0, true},          {0, kVictim, true},          {kStranger, kStranger, true},
      {kStranger, 0, false}, {kStranger, kVictim, false},
  };
  for (const auto& row : rows) {
    const std::string target = scratch.File("target", "content");
    const std::string link = scratch.Link("link", "target");
    const std::string link2 = scratch.Link("link2", link);
    chmod(target.c_str(), 0600);
    ASSERT_EQ(chown(target.c_str(), row.target, 0), 0);
    ASSERT_EQ(lchown(link.c_str(), row.link, 0), 0);
    EXPECT_EQ(OS_SetFileShared(link2.c_str()), row.followed ? 0 : -1);
    EXPECT_EQ(ModeOf(target), row.followed ? 0666u : 0600u);
    OS_SetFileTime(link.c_str(), 7, 7);
    struct stat state;
    ASSERT_EQ(stat(target.c_str(), &state), 0);
    EXPECT_EQ(state.st_mtime == 7, row.followed);
    EXPECT_EQ(static_cast<bool>(os::OpenForWriting(link2.c_str())), row.followed);
    EXPECT_EQ(ReadFile(target), row.followed ? "" : "content");
    for (const auto& path : {link2, link, target}) unlink(path.c_str());
  }
}

TEST_F(SharedFolder, TemporaryFolderOfAStrangersLink) {
  if (geteuid() != 0) GTEST_SKIP() << "needs to give files away";
  const std::string home = scratch.Folder("home");
  chmod(home.c_str(), 0700);
  const std::string link = scratch.Link("var/tmp/Quorvik", home);
  ASSERT_EQ(lchown(link.c_str(), kStranger, 0), 0);
  char path[256];
  EXPECT_EQ(OS_TempFileN("x", path, sizeof path), -1);
  OS_GetPathName(OS_FOLDER_TEMPORARY);
  EXPECT_EQ(ModeOf(home), 0700u);
  EXPECT_TRUE(std::filesystem::is_empty(home));
}

TEST_F(SharedFolder, LinksInARingAndDeadOnes) {
  scratch.Link("a", "b");
  scratch.Link("b", "a");
  scratch.Link("dead", "sub/new");
  EXPECT_EQ(OS_SetFileShared(scratch.At("a").c_str()), -1);
  EXPECT_FALSE(os::OpenForWriting(scratch.At("a").c_str()));
  EXPECT_EQ(OS_SetFileShared(scratch.At("dead").c_str()), -1);
  EXPECT_FALSE(os::OpenForWriting(scratch.At("dead").c_str()));
  scratch.Folder("sub");
  EXPECT_TRUE(os::OpenForWriting(scratch.At("dead").c_str()));
  EXPECT_TRUE(std::filesystem::is_regular_file(scratch.At("sub/new")));
}

TEST_F(SharedFolder, WritingNeverWaitsForAPipe) {
  mkfifo(scratch.At("pipe").c_str(), 0600);
  EXPECT_FALSE(os::OpenForWriting(scratch.At("pipe").c_str()));
  EXPECT_FALSE(os::OpenForWriting(scratch.path().c_str()));
}

// A thread keeps putting other things in the entry's place while this one records and shares.
TEST_F(SharedFolder, SwapsBetweenCheckAndUse) {
  std::atomic<bool> stop{false};
  const std::string spare = scratch.At("Users/Shared/Quorvik/spare");
  const std::string victim = scratch.At("victim");
  std::thread swapper([&] {
    for (unsigned round = 0; !stop; ++round) {
      std::error_code ignored;
      std::filesystem::remove_all(spare, ignored);
      switch (round % 5) {
        case 0:
          static_cast<void>(symlink(victim.c_str(), spare.c_str()) + 1);
          break;
        case 1:
          static_cast<void>(link(victim.c_str(), spare.c_str()) + 1);
          break;
        case 2:
          mkfifo(spare.c_str(), 0666);
          break;
        case 3:
          mkdir(spare.c_str(), 0777);
          break;
        case 4:
          std::ofstream(spare) << "/other";
          break;
      }
      std::filesystem::remove_all(entry, ignored);
      rename(spare.c_str(), entry.c_str());
    }
  });
  for (int i = 0; i < 2000; ++i) {
    OS_SetAppPath("key");
    OS_GetAppPath("key");
  }
  stop = true;
  swapper.join();
  ExpectVictimUntouched();
}

}  // namespace
