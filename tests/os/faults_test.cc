// Every call of the services with each of its system calls failing in each way: what they say they
// did is what they did, and nothing stays behind.
#include "tests/support/faults.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

#include "os/final_path.h"
#include "os/os.h"
#include "os/system_paths.h"
#include "tests/os/scratch.h"

namespace {

using support::Fault;
using support::SweepFaults;

class Faults : public testing::Test {
 protected:
  Faults() {
    for (const char* path : {"var/tmp", "Users/Shared", "etc", "run/media/somebody/stick"}) {
      scratch.Folder(path);
    }
    scratch.File("etc/mtab", "h:/ /m nfs\n");
    scratch.File("etc/rfstab", "far /far\n");
    for (const char* path : {"tree/a/deep", "tree/b"}) scratch.Folder(path);
    scratch.File("tree/file", "12345");
    setenv("USER", "somebody", 1);
    os::SetSystemRoot(scratch.path().c_str());
    os::SetExecutablePath("/opt/tool/bin/tool");
  }
  ~Faults() override {
    os::SetSystemRoot(nullptr);
    os::SetExecutablePath(nullptr);
  }

  // What a folder of the test holds.
  std::set<std::string> Files(const std::string& folder) const {
    std::set<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(scratch.At(folder))) {
      names.insert(file.path().filename());
    }
    return names;
  }

  Scratch scratch;
};

// A scenario of one call: what it gives, and what is right to give.
template <typename Act, typename Check>
void Sweep(const char* name, Act act, Check check) {
  SweepFaults(name, 1, [&](Fault& fault) {
    fault.Begin();
    const auto result = act();
    fault.End();
    check(fault, result);
  });
}

// A folder that could not be opened or read to its end has no listing, a file that could not be
// looked at is left out; a table or folder of volumes that could not be read is skipped, and so is
// only itself.
TEST_F(Faults, ListingsAndVolumes) {
  constexpr int kTypes = OS_LIST_FOLDERS | OS_LIST_FILES;
  const std::string path = scratch.At("tree");
  int count = 0;
  int error = 0;
  const auto sweep = [&](const char* name, auto list_dir, auto free_list, int none) {
    Sweep(
        name,
        [&] {
          auto* list = list_dir(path.c_str(), "*", &count, kTypes, OS_SORT_NAME);
          error = errno;
          return list;
        },
        [&](const Fault& fault, auto* list) {
          const bool unread = fault.In({"opendir", "readdir"});
          EXPECT_EQ(list == nullptr, unread);
          EXPECT_LE(count, unread ? none : 4);
          EXPECT_GE(count, unread ? none : fault.In({"fstatat"}) ? 3 : 4);
          EXPECT_TRUE(!unread || error == fault.error());
          free_list(list);
        });
  };
  sweep("OS_ListDir", OS_ListDir, OS_ListFree, 0);
  sweep("OS_ListDirN", OS_ListDirN, OS_ListFreeN, -1);
  Sweep(
      "OS_ListDevN", [&] { return OS_ListDevN(&count); },
      [&](const Fault& fault, OS_DeviceN* list) {
        ASSERT_GE(count, fault.happened() ? 6 : 7);
        EXPECT_LE(count, 7);
        EXPECT_STREQ(list[3].name, "DESKTOP");
        OS_ListDevFreeN(list);
      });
}

// A node whose folder could not be read stays as it is.
TEST_F(Faults, Trees) {
  const std::string path = scratch.At("tree");
  SweepFaults("OS_TreeExpand", 1, [&](Fault& fault) {
    OS_TreeNode* root = OS_TreeCreate(path.c_str());
    root->children[0].open = root->open = 1;
    fault.Begin();
    OS_TreeExpand(root);
    fault.End();
    const bool kept = fault.In({"opendir", "readdir"});
    EXPECT_EQ(root->open, kept);
    EXPECT_EQ(root->children[0].open, kept);
    EXPECT_GE(root->child_count, fault.In({"fstatat"}) ? 1 : 2);
    OS_TreeDestroy(root);
  });
  int result = 0;
  Sweep(
      "OS_TreeCreateN",
      [&] {
        OS_TreeNodeN* root = OS_TreeCreateN(path.c_str());
        result = OS_TreeExpandN(root);
        return root;
      },
      [&](const Fault& fault, OS_TreeNodeN* root) {
        EXPECT_TRUE(result == 0 || fault.In({"opendir", "readdir"}));
        EXPECT_TRUE(root->child_count == 2 || fault.In({"fstatat"}));
        OS_TreeDestroyN(root);
      });
}

// The path that was recorded or none, never a part of it; and the new record or the old one.
TEST_F(Faults, ApplicationPaths) {
  const std::string entry = scratch.At("Users/Shared/Quorvik/key");
  ASSERT_EQ(OS_SetAppPath("key"), 0);
  Sweep(
      "OS_GetAppPath", [] { return std::string(OS_GetAppPath("key")); },
      [&](const Fault& fault, const std::string& got) {
        EXPECT_TRUE(got == "/opt/tool/bin" || (got == entry && fault.happened())) << got;
      });
  SweepFaults("OS_SetAppPath", 1, [&](Fault& fault) {
    scratch.File("Users/Shared/Quorvik/key", "/old/longer/than/the/new");
    chmod(scratch.At("Users/Shared/Quorvik").c_str(), 0700);
    umask(077);
    fault.Begin();
    const int result = OS_SetAppPath("key");
    fault.End();
    umask(022);
    EXPECT_EQ(ReadFile(entry), result == 0 ? "/opt/tool/bin" : "/old/longer/than/the/new");
    EXPECT_TRUE(result == 0 ? ModeOf(entry) == 0666u : fault.happened());
    EXPECT_TRUE(fault.happened() || ModeOf(scratch.At("Users/Shared/Quorvik")) == 0777u);
    EXPECT_EQ(Files("Users/Shared/Quorvik"), std::set<std::string>{"key"});
  });
}

TEST_F(Faults, TemporaryFiles) {
  OS_GetPathName(OS_FOLDER_TEMPORARY);
  char path[256] = "#";
  Sweep(
      "OS_TempFileN", [&] { return OS_TempFileN("x", path, sizeof path); },
      [&](const Fault& fault, int fd) {
        EXPECT_EQ(Files("var/tmp/Quorvik").size(), fd >= 0 ? 1u : 0u);
        EXPECT_EQ(path[0] != 0, fd >= 0);
        EXPECT_TRUE(fd >= 0 ? ModeOf(path) == 0600u : fault.happened());
        if (fd >= 0) close(fd);
        unlink(path);
      });
}

TEST_F(Faults, Files) {
  const std::string file = scratch.File("file", "content");
  const std::string link = scratch.Link("link", "file");
  chmod(file.c_str(), 0600);
  Sweep(
      "OS_SetFileShared", [&] { return OS_SetFileShared(link.c_str()); },
      [&](const Fault& fault, int result) {
        EXPECT_EQ(ModeOf(file), result == 0 ? 0666u : 0600u);
        EXPECT_EQ(result == 0, !fault.happened() || fault.In({"close"}));
        chmod(file.c_str(), 0600);
      });
  SetTime(file, 5);
  Sweep(
      "OS_SetFileTime", [&] { return OS_SetFileTime(link.c_str(), 7, 7); },
      [&](const Fault& fault, int result) {
        struct stat state;
        EXPECT_EQ(result + stat(file.c_str(), &state), 0);
        EXPECT_EQ(state.st_mtime, !fault.happened() || fault.In({"close"}) ? 7 : 5);
        SetTime(file, 5);
      });
  Sweep(
      "OpenForWriting",
      [&] {
        const os::Handle opened = os::OpenForWriting(link.c_str());
        return opened && os::WriteAll(opened.get(), "0123456789", 10);
      },
      [&](const Fault& fault, bool written) {
        // What only interrupts or shortens a write does not end it.
        const bool goes_on = !fault.happened() || fault.In({"close"}) ||
                             (fault.In({"write"}) && (fault.error() == EINTR || !fault.error()));
        // A file that was not there a moment ago is looked for again.
        EXPECT_TRUE(written == goes_on || fault.error() == ENOENT);
        EXPECT_EQ(ReadFile(file) == "0123456789", written);
        scratch.File("file", "content");
      });
}

TEST_F(Faults, Processes) {
  int status = 0;
  Sweep(
      "OS_StartProcess",
      [&] {
        const int pid = OS_StartProcess("sh", "-c", "exit 3", nullptr);
        status = OS_WaitProcess(pid);
        return pid;
      },
      [&](const Fault& fault, int pid) {
        EXPECT_EQ(pid < 0, fault.In({"fork"}));
        EXPECT_EQ(WEXITSTATUS(status), pid < 0 ? 0 : 3);
      });
  // A transfer that did not come to its end says so: a read with 0, a write with what had gone.
  SweepFaults("OS_StartPipe", 1, [&](Fault& fault) {
    const std::string sent(10000, 'x');
    std::string got(sent.size(), 0);
    fault.Begin();
    OS_Pipe* p = OS_StartPipe("cat", nullptr);
    const int written = p ? OS_WritePipe(p, sent.data(), 10000) : 0;
    const int read = written == 10000 ? OS_ReadPipe(p, got.data(), written) : 0;
    fault.End();
    EXPECT_EQ(p == nullptr, fault.In({"pipe2", "fork"}));
    if (!p) return;
    EXPECT_TRUE(written == 10000 || fault.In({"write", "poll"})) << written;
    EXPECT_TRUE(read == 0 ? written != 10000 || fault.In({"read", "poll"}) : got == sent);
    // Only a transfer that is cut short goes on.
    const bool ends = fault.In({"write", "read", "poll"}) && fault.error() != 0;
    EXPECT_EQ(read, ends ? 0 : 10000);
    kill(p->pid, SIGKILL);
    fault.Begin();
    while (OS_WritePipe(p, "x", 1) == 1) OS_Sleep(1);
    OS_ClosePipe(p);
    fault.End();
    EXPECT_EQ(OS_WaitProcess(p->pid), SIGKILL);  // it was looked at, not reaped
    free(p);
  });
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // no child is left
}

TEST_F(Faults, ThreadsAndFigures) {
  Sweep(
      "OS_StartThread", [] { return OS_StartThread([](void* arg) { return arg; }, nullptr); },
      [](const Fault& fault, int thread) {
        EXPECT_EQ(thread, fault.happened() ? -1 : 1);
        OS_WaitThread(thread);
      });
  Sweep(
      "OS_DiskInfo",
      [] {
        uint64_t total = 1;
        OS_DiskInfo(&total, nullptr);
        return total;
      },
      [](const Fault& fault, uint64_t total) {
        EXPECT_EQ(total > 0, !fault.happened() || fault.error() == EINTR);
      });
}

}  // namespace
