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

using Names = std::vector<std::string>;

// A folder that could not be opened or read to its end has no listing; a file that could not be
// looked at is left out.
TEST_F(Faults, Listings) {
  constexpr int kTypes = OS_LIST_FOLDERS | OS_LIST_FILES;
  const auto check = [](const Fault& fault, const auto* list, int count, int failed) {
    if (fault.In({"opendir", "readdir"})) {
      EXPECT_EQ(list, nullptr);
      EXPECT_EQ(count, failed);
    } else {
      ASSERT_GE(count, fault.In({"fstatat"}) ? 3 : 4);
      EXPECT_STREQ(list[0].name, "..");
    }
  };
  const std::string path = scratch.At("tree");
  SweepFaults("OS_ListDir", 1, [&](Fault& fault) {
    int count = -7;
    fault.Begin();
    OS_ListEntry* list = OS_ListDir(path.c_str(), "*", &count, kTypes, OS_SORT_NAME);
    fault.End();
    check(fault, list, count, 0);
    OS_ListFree(list);
  });
  SweepFaults("OS_ListDirN", 1, [&](Fault& fault) {
    int count = -7;
    fault.Begin();
    OS_ListEntryN* list = OS_ListDirN(path.c_str(), "*", &count, kTypes, OS_SORT_NAME);
    const int error = errno;
    fault.End();
    check(fault, list, count, -1);
    if (!list) {
      EXPECT_EQ(error, fault.error());
    }
    OS_ListFreeN(list);
  });
}

// A table or folder that could not be read is skipped, and so is only itself.
TEST_F(Faults, Volumes) {
  const auto check = [](const Fault& fault, const auto* list, int count) {
    ASSERT_GE(count, fault.happened() ? 6 : 7);
    EXPECT_LE(count, 7);
    EXPECT_STREQ(list[3].name, "DESKTOP");
  };
  SweepFaults("OS_ListDev", 1, [&](Fault& fault) {
    int count = 0;
    fault.Begin();
    const OS_Device* list = OS_ListDev(&count);
    fault.End();
    check(fault, list, count);
  });
  SweepFaults("OS_ListDevN", 1, [&](Fault& fault) {
    int count = 0;
    fault.Begin();
    OS_DeviceN* list = OS_ListDevN(&count);
    fault.End();
    check(fault, list, count);
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
  SweepFaults("OS_TreeCreateN", 1, [&](Fault& fault) {
    fault.Begin();
    OS_TreeNodeN* root = OS_TreeCreateN(path.c_str());
    const int result = OS_TreeExpandN(root);
    fault.End();
    if (result != 0) {
      EXPECT_TRUE(fault.In({"opendir", "readdir"}));
    }
    if (!fault.In({"fstatat"})) {
      EXPECT_EQ(root->child_count, 2);
    }
    OS_TreeDestroyN(root);
  });
}

TEST_F(Faults, ApplicationPaths) {
  const std::string entry = scratch.At("Users/Shared/Quorvik/key");
  ASSERT_EQ(OS_SetAppPath("key"), 0);
  SweepFaults("OS_GetAppPath", 1, [&](Fault& fault) {
    fault.Begin();
    const std::string got = OS_GetAppPath("key");
    fault.End();
    // The path, or none: never a part of it.
    if (got != entry) {
      EXPECT_EQ(got, "/opt/tool/bin");
    }
    if (!fault.happened()) {
      EXPECT_EQ(got, "/opt/tool/bin");
    }
  });
  SweepFaults("OS_SetAppPath", 1, [&](Fault& fault) {
    scratch.File("Users/Shared/Quorvik/key", "/old");
    fault.Begin();
    const int result = OS_SetAppPath("key");
    fault.End();
    EXPECT_EQ(ReadFile(entry), result == 0 ? "/opt/tool/bin" : "/old");
    if (result == 0) {
      EXPECT_EQ(ModeOf(entry), 0666u);
    }
    if (!fault.happened()) {
      EXPECT_EQ(result, 0);
    }
    EXPECT_EQ(Files("Users/Shared/Quorvik"), std::set<std::string>{"key"});
  });
}

TEST_F(Faults, TemporaryFiles) {
  OS_GetPathName(OS_FOLDER_TEMPORARY);
  SweepFaults("OS_TempFileN", 1, [&](Fault& fault) {
    char path[256] = "#";
    fault.Begin();
    const int fd = OS_TempFileN("x", path, sizeof path);
    fault.End();
    EXPECT_EQ(Files("var/tmp/Quorvik").size(), fd >= 0 ? 1u : 0u);
    EXPECT_EQ(path[0] != 0, fd >= 0);
    if (fd >= 0) {
      EXPECT_EQ(ModeOf(path), 0600u);
    }
    if (!fault.happened()) {
      EXPECT_GE(fd, 0);
    }
    if (fd >= 0) close(fd);
    unlink(path);
  });
  SweepFaults("OS_TempFile", 1, [&](Fault& fault) {
    os::ForgetPathNames();
    fault.Begin();
    const std::string name = OS_TempFile("x");
    fault.End();
    EXPECT_EQ(name.rfind(scratch.At("var/tmp/Quorvik/."), 0), 0u);
  });
}

TEST_F(Faults, Files) {
  const std::string file = scratch.File("file", "content");
  const std::string link = scratch.Link("link", "file");
  SweepFaults("OS_SetFileShared", 1, [&](Fault& fault) {
    chmod(file.c_str(), 0600);
    fault.Begin();
    const int result = OS_SetFileShared(link.c_str());
    fault.End();
    EXPECT_EQ(ModeOf(file), result == 0 ? 0666u : 0600u);
    EXPECT_EQ(result == 0, !fault.happened() || fault.In({"close"}));
  });
  SweepFaults("OS_SetFileTime", 1, [&](Fault& fault) {
    SetTime(file, 5);
    fault.Begin();
    EXPECT_EQ(OS_SetFileTime(link.c_str(), 7, 7), 0);
    fault.End();
    struct stat state;
    ASSERT_EQ(stat(file.c_str(), &state), 0);
    EXPECT_EQ(state.st_mtime, !fault.happened() || fault.In({"close"}) ? 7 : 5);
  });
  SweepFaults("OS_CreateDirectory", 1, [&](Fault& fault) {
    fault.Begin();
    const int result = OS_CreateDirectory(scratch.At("made").c_str());
    fault.End();
    EXPECT_EQ(result, !fault.happened());
    EXPECT_EQ(std::filesystem::remove(scratch.At("made")), result == 1);
  });
  SweepFaults("OpenForWriting", 1, [&](Fault& fault) {
    scratch.File("file", "content");
    fault.Begin();
    os::Handle opened = os::OpenForWriting(link.c_str());
    const bool written = opened && os::WriteAll(opened.get(), "0123456789", 10);
    opened.Reset();
    fault.End();
    if (written) {
      EXPECT_EQ(ReadFile(file), "0123456789");
    }
    if (!written) {
      EXPECT_TRUE(fault.happened() && !fault.In({"close"}));
    }
    // What only interrupts or shortens a write does not end it.
    if (fault.In({"write"}) && (fault.error() == EINTR || fault.error() == 0)) {
      EXPECT_TRUE(written);
    }
  });
}

TEST_F(Faults, Processes) {
  SweepFaults("OS_StartProcess", 1, [&](Fault& fault) {
    fault.Begin();
    const int pid = OS_StartProcess("sh", "-c", "exit 3", nullptr);
    const int status = OS_WaitProcess(pid);
    fault.End();
    EXPECT_EQ(pid < 0, fault.In({"fork"}));
    if (pid > 0) {
      EXPECT_EQ(WEXITSTATUS(status), 3);
    }
  });
  SweepFaults("OS_StartPipe", 1, [&](Fault& fault) {
    fault.Begin();
    OS_Pipe* p = OS_StartPipe("cat", nullptr);
    fault.End();
    EXPECT_EQ(p == nullptr, fault.In({"pipe2", "fork"}));
    if (!p) return;
    char back[2] = "";
    EXPECT_EQ(OS_WritePipe(p, "ab", 2), 2);
    EXPECT_EQ(OS_ReadPipe(p, back, 2), 2);
    kill(p->pid, SIGKILL);
    OS_WaitProcess(p->pid);
    EXPECT_EQ(OS_ReadPipe(p, back, 1), 0);
    OS_ClosePipe(p);
    free(p);
  });
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // no child is left
}

// A transfer that did not come to its end says so: a read with 0, a write with what had gone.
TEST_F(Faults, Pipes) {
  SweepFaults("pipe transfer", 1, [&](Fault& fault) {
    OS_Pipe* p = OS_StartPipe("cat", nullptr);
    ASSERT_NE(p, nullptr);
    const std::string sent(10000, 'x');
    std::string got(sent.size(), 0);
    fault.Begin();
    const int written = OS_WritePipe(p, sent.data(), static_cast<int>(sent.size()));
    const int read = written == 10000 ? OS_ReadPipe(p, got.data(), written) : 0;
    fault.End();
    EXPECT_TRUE(written == -1 || (written > 0 && written <= 10000)) << written;
    EXPECT_TRUE(read == 0 || (read == 10000 && got == sent));
    if (written < 10000) {
      EXPECT_TRUE(fault.In({"write", "poll"}));
    }
    if (written == 10000 && read == 0) {
      EXPECT_TRUE(fault.In({"read", "poll"}));
    }
    // Only a transfer that is cut short goes on.
    if (fault.error() != 0) {
      EXPECT_EQ(read, 0) << "after " << fault.call();
    }
    kill(p->pid, SIGKILL);
    OS_WaitProcess(p->pid);
    fault.Begin();
    EXPECT_EQ(OS_WritePipe(p, "x", 1), -1);
    fault.End();
    fault.Begin();
    OS_ClosePipe(p);
    fault.End();
    free(p);
  });
}

TEST_F(Faults, ThreadsSleepAndFigures) {
  SweepFaults("OS_StartThread", 1, [&](Fault& fault) {
    fault.Begin();
    const int thread = OS_StartThread([](void* arg) { return arg; }, nullptr);
    fault.End();
    EXPECT_EQ(thread, fault.happened() ? -1 : 1);
    OS_WaitThread(thread);
  });
  SweepFaults("OS_Sleep", 1, [&](Fault& fault) {
    fault.Begin();
    OS_Sleep(1);
    fault.End();
  });
  SweepFaults("OS_DiskInfo", 1, [&](Fault& fault) {
    uint64_t total = 1, available = 1;
    fault.Begin();
    OS_DiskInfo(&total, &available);
    fault.End();
    EXPECT_EQ(total > 0, !fault.happened() || fault.error() == EINTR);
    EXPECT_LE(available, total);
  });
}

}  // namespace
