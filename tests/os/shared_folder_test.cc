// Folders that other users can write: links, second names and swaps between check and use.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <functional>
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
  for (const char* what : {"victim", "not-there", ""}) {
    if (*what) scratch.Link("Users/Shared/Quorvik/key", scratch.At(what));
    if (!*what) {
      ASSERT_EQ(link(scratch.At("victim").c_str(), entry.c_str()), 0);
    }
    EXPECT_EQ(OS_GetAppPath("key"), entry);
    EXPECT_EQ(OS_SetAppPath("key"), 0);
    EXPECT_STREQ(OS_GetAppPath("key"), "/opt/tool/bin");
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(entry)));
    ExpectVictimUntouched();
    unlink(entry.c_str());
  }
  EXPECT_FALSE(std::filesystem::exists(scratch.At("not-there")));
  // A registry that is a link is none.
  std::filesystem::remove_all(scratch.At("Users/Shared/Quorvik"));
  chmod(scratch.Folder("elsewhere").c_str(), 0700);
  scratch.File("elsewhere/key", "/precious");
  scratch.Link("Users/Shared/Quorvik", scratch.At("elsewhere"));
  EXPECT_EQ(OS_SetAppPath("key"), -1);
  EXPECT_EQ(OS_GetAppPath("key"), entry);
  EXPECT_EQ(ReadFile(scratch.At("elsewhere/key")), "/precious");
  EXPECT_EQ(ModeOf(scratch.At("elsewhere")), 0700u);
}

// A chain of two links; every one of them needs an owner who may lead us.
TEST_F(SharedFolder, LinksAreFollowedForTheirOwnerAndTheTargetsOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "needs to give files away";
  constexpr uid_t kNobody = UINT_MAX;  // there is no target
  const struct {
    uid_t first, second, target;
    bool followed;
  } rows[] = {
      {0, 0, 0, true},
      {0, 0, kVictim, true},
      {0, kStranger, kStranger, true},
      {kStranger, kStranger, kStranger, true},
      {0, kStranger, 0, false},
      {0, kStranger, kVictim, false},
      {kStranger, 0, 0, false},
      {kStranger, 0, kVictim, false},
      {0, 0, kNobody, true},
      {0, kStranger, kNobody, false},
      {kStranger, 0, kNobody, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.first << " " << row.second << " " << row.target);
    const bool dead = row.target == kNobody;
    const std::string target = dead ? scratch.At("target") : scratch.File("target", "content");
    const std::string second = scratch.Link("second", "target");
    const std::string first = scratch.Link("first", second);
    chmod(target.c_str(), 0600);
    ASSERT_EQ(dead ? 0 : chown(target.c_str(), row.target, 0), 0);
    ASSERT_EQ(lchown(second.c_str(), row.second, 0) + lchown(first.c_str(), row.first, 0), 0);
    EXPECT_EQ(OS_SetFileShared(first.c_str()), row.followed && !dead ? 0 : -1);
    OS_SetFileTime(first.c_str(), 7, 7);
    struct stat state = {};
    EXPECT_EQ(stat(target.c_str(), &state), dead ? -1 : 0);
    EXPECT_EQ(state.st_mtime == 7, row.followed && !dead);
    EXPECT_EQ(state.st_mode & 07777u, dead ? 0u : row.followed ? 0666u : 0600u);
    EXPECT_EQ(static_cast<bool>(os::OpenForWriting(first.c_str())), row.followed);
    EXPECT_EQ(std::filesystem::exists(target), !dead || row.followed);
    EXPECT_EQ(ReadFile(target), row.followed || dead ? "" : "content");
    for (const auto& path : {first, second, target}) unlink(path.c_str());
  }
}

// Dead links, rings, and what a write would wait for.
TEST_F(SharedFolder, WhatIsNoFileIsNotWritten) {
  scratch.Link("a", "b");
  scratch.Link("b", "a");
  scratch.Link("dead", "sub/new");
  mkfifo(scratch.At("pipe").c_str(), 0600);
  for (const char* name : {"a", "dead", "pipe", ""}) {
    EXPECT_FALSE(os::OpenForWriting(scratch.At(name).c_str())) << name;
  }
  for (const char* name : {"a", "dead"}) {
    EXPECT_EQ(OS_SetFileShared(scratch.At(name).c_str()), -1) << name;
  }
  scratch.Folder("sub");
  EXPECT_TRUE(os::OpenForWriting(scratch.At("dead").c_str()));
  EXPECT_TRUE(std::filesystem::is_regular_file(scratch.At("sub/new")));
}

// A thread that keeps putting other things in the place of `path`: a stranger's link to the target,
// a second name of it (where there may be one), a pipe, a folder, a file, nothing.
class Swapper {
 public:
  Swapper(const std::string& path, const std::string& target, bool second_names)
      : thread_([this, path, target, second_names] {
          const std::string spare = path + ".spare";
          std::error_code ignored;
          for (unsigned round = 0; !stop_; ++round) {
            std::filesystem::remove_all(spare, ignored);  // where the rename has failed
            Make(round % 6, spare, target, second_names);
            std::filesystem::remove_all(path, ignored);
            rename(spare.c_str(), path.c_str());
          }
          std::filesystem::remove_all(path, ignored);
        }) {}
  ~Swapper() {
    stop_ = true;
    thread_.join();
  }

 private:
  static void Make(unsigned what, const std::string& spare, const std::string& target,
                   bool second_names) {
    if (what == 0 && symlink(target.c_str(), spare.c_str()) == 0) {
      static_cast<void>(lchown(spare.c_str(), kStranger, kStranger) + 1);
    }
    if (what == 1 && second_names) static_cast<void>(link(target.c_str(), spare.c_str()) + 1);
    if (what == 2) mkfifo(spare.c_str(), 0666);
    if (what == 3) mkdir(spare.c_str(), 0777);
    if (what == 4) std::ofstream(spare) << "/other";
  }

  std::atomic<bool> stop_{false};
  std::thread thread_;
};

// Whatever is swapped in between a check and its use, the victim stays as it is, and nothing waits.
TEST_F(SharedFolder, SwapsBetweenCheckAndUse) {
  if (geteuid() != 0) GTEST_SKIP() << "needs to give links away";
  const std::string registry = scratch.At("Users/Shared/Quorvik");
  const std::string temporary = scratch.At("var/tmp/Quorvik");
  const std::string file = scratch.At("file");
  chmod(scratch.Folder("private").c_str(), 0700);
  scratch.File("private/key", "/precious");
  const auto record = [] {
    OS_SetAppPath("key");
    OS_GetAppPath("key");
  };
  const struct {
    std::string path, target;
    bool second_names;
    std::function<void()> use;
  } rows[] = {
      {entry, scratch.At("victim"), true, record},
      {registry, scratch.At("private"), false, record},
      {temporary, scratch.At("private"), false,
       [] {
         char path[256];
         const int fd = OS_TempFileN("x", path, sizeof path);
         if (fd >= 0) close(fd);
       }},
      {file, scratch.At("victim"), false, [&file] { OS_SetFileShared(file.c_str()); }},
      {file, scratch.At("victim"), false, [&file] { OS_SetFileTime(file.c_str(), 7, 7); }},
      {file, scratch.At("victim"), false,
       [&file] {
         const os::Handle opened = os::OpenForWriting(file.c_str());
         if (opened) os::WriteAll(opened.get(), "mine", 4);
       }},
  };
  SetTime(scratch.At("victim"), 5);
  for (const auto& row : rows) {
    std::filesystem::remove_all(registry);
    scratch.Folder("Users/Shared/Quorvik");
    {
      const Swapper swapper(row.path, row.target, row.second_names);
      for (int i = 0; i < 1000; ++i) row.use();
    }
    ExpectVictimUntouched();
    struct stat state;
    ASSERT_EQ(stat(scratch.At("victim").c_str(), &state), 0);
    EXPECT_EQ(state.st_mtime, 5);
    EXPECT_EQ(ModeOf(scratch.At("private")), 0700u);
    EXPECT_EQ(ReadFile(scratch.At("private/key")), "/precious");
    std::filesystem::directory_iterator held(scratch.At("private"));
    EXPECT_EQ(std::distance(begin(held), end(held)), 1);
  }
}

}  // namespace
