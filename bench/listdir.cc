// Listing a folder of 100,000 files, against the system calls that it cannot do without, and
// expanding a tree of 100 x 100 folders, against listing the same folders.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "os/os.h"

namespace {

constexpr int kFiles = 100000;
constexpr int kRounds = 9;
constexpr int kWidth = 100;  // of the tree

std::string MakeFolder(int files) {
  std::string folder = std::filesystem::temp_directory_path() / "quorvik-bench-XXXXXX";
  if (!mkdtemp(folder.data())) {
    fprintf(stderr, "listdir: no folder for the files: %s\n", strerror(errno));
    exit(1);
  }
  unsigned order = 1;
  for (int i = 0; i < files; ++i) {
    order = order * 1664525u + 1013904223u;
    const std::string name = folder + "/" + std::to_string(order) + (i % 2 ? ".TXT" : ".txt");
    const int fd = open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
      fprintf(stderr, "listdir: %s: %s\n", name.c_str(), strerror(errno));
      std::filesystem::remove_all(folder);
      exit(1);
    }
    close(fd);
  }
  return folder;
}

int CompareNames(const void* a, const void* b) {
  return strcasecmp(static_cast<const OS_ListEntry*>(a)->name,
                    static_cast<const OS_ListEntry*>(b)->name);
}

// The bare loop: read each name, look at the file. With `records`, keep what a list holds.
size_t BareLoop(const std::string& folder, std::vector<OS_ListEntry>* records) {
  size_t count = 0;
  char path[512];
  DIR* dir = opendir(folder.c_str());
  while (const dirent* file = readdir(dir)) {
    struct stat state;
    snprintf(path, sizeof path, "%s/%s", folder.c_str(), file->d_name);
    if (lstat(path, &state) != 0 || !S_ISREG(state.st_mode)) continue;
    if (records) {
      OS_ListEntry entry = {};
      memcpy(entry.name, file->d_name, strnlen(file->d_name, 39));
      entry.size = static_cast<uint32_t>(state.st_size);
      entry.time = static_cast<uint32_t>(state.st_mtime);
      records->push_back(entry);
    }
    ++count;
  }
  closedir(dir);
  return count;
}

size_t BareSorted(const std::string& folder) {
  std::vector<OS_ListEntry> records;
  BareLoop(folder, &records);
  qsort(records.data(), records.size(), sizeof records[0], CompareNames);
  return records.size();
}

size_t Listed(const std::string& folder, int sort) {
  int count = 0;
  OS_ListFree(OS_ListDir(folder.c_str(), "*", &count, OS_LIST_FILES, sort));
  return static_cast<size_t>(count);
}

size_t ListedWhole(const std::string& folder, int sort) {
  int count = 0;
  OS_ListFreeN(OS_ListDirN(folder.c_str(), "*", &count, OS_LIST_FILES, sort));
  return static_cast<size_t>(count);
}

template <typename Work>
double Seconds(Work work, int expected = kFiles) {
  const auto start = std::chrono::steady_clock::now();
  if (work() != static_cast<size_t>(expected)) {
    fprintf(stderr, "listdir: files are missing\n");
    exit(1);
  }
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
  return values[values.size() / 2];
}

void MakeTree(const std::string& folder) {
  for (int i = 0; i < kWidth * kWidth; ++i) {
    const std::string first = folder + "/folder " + std::to_string(i % kWidth);
    std::filesystem::create_directories(first + "/folder " + std::to_string(i / kWidth));
  }
}

// The two levels that a new tree has, listed and freed.
size_t TreeListed(const std::string& folder) {
  const auto list = [](const std::string& path, int* count) {
    return OS_ListDir(path.c_str(), "*", count, OS_LIST_FOLDERS, OS_SORT_NAME);
  };
  int first = 0;
  size_t all = 0;
  OS_ListEntry* entries = list(folder, &first);
  for (int i = 1; i < first; ++i) {
    int second = 0;
    OS_ListFree(list(folder + "/" + entries[i].name, &second));
    all += second - 1;
  }
  OS_ListFree(entries);
  return all;
}

size_t TreeExpanded(const std::string& folder) {
  OS_TreeNode* root = OS_TreeCreate(folder.c_str());
  size_t all = 0;
  for (int i = 0; i < root->child_count; ++i) all += root->children[i].child_count;
  OS_TreeDestroy(root);
  return all;
}

// How much longer it takes to expand a tree than to list its folders.
double TreeRatio() {
  const std::string folder = MakeFolder(0);
  std::vector<double> listed, expanded;
  MakeTree(folder);
  for (int round = 0; round <= kRounds; ++round) {
    const double list = Seconds([&] { return TreeListed(folder); }, kWidth * kWidth);
    const double expand = Seconds([&] { return TreeExpanded(folder); }, kWidth * kWidth);
    if (round == 0) continue;
    listed.push_back(list);
    expanded.push_back(expand);
  }
  std::filesystem::remove_all(folder);
  printf("%d x %d folders: listed %.1f, tree %.1f\n", kWidth, kWidth, Median(listed) * 1e3,
         Median(expanded) * 1e3);
  return Median(expanded) / Median(listed);
}

}  // namespace

int main() {
  const std::string folder = MakeFolder(kFiles);
  std::vector<double> times[6];
  for (int round = 0; round <= kRounds; ++round) {
    const double now[6] = {
        Seconds([&] { return BareLoop(folder, nullptr); }),
        Seconds([&] { return BareSorted(folder); }),
        Seconds([&] { return Listed(folder, 0); }),
        Seconds([&] { return Listed(folder, OS_SORT_NAME); }),
        Seconds([&] { return ListedWhole(folder, 0); }),
        Seconds([&] { return ListedWhole(folder, OS_SORT_NAME); }),
    };
    for (int i = 0; round > 0 && i < 6; ++i) times[i].push_back(now[i]);
  }
  std::filesystem::remove_all(folder);
  const double loop = Median(times[0]);
  const double sorted = Median(times[1]);
  printf("%d files, milliseconds: loop %.1f, loop and qsort %.1f\n", kFiles, loop * 1e3,
         sorted * 1e3);
  printf("OS_ListDir %.1f, sorted %.1f; OS_ListDirN %.1f, sorted %.1f\n", Median(times[2]) * 1e3,
         Median(times[3]) * 1e3, Median(times[4]) * 1e3, Median(times[5]) * 1e3);
  const double tree = TreeRatio();
  printf(
      "listdir unsorted_ratio=%.2f sorted_ratio=%.2f whole_ratio=%.2f whole_sorted_ratio=%.2f "
      "tree_ratio=%.2f\n",
      Median(times[2]) / loop, Median(times[3]) / sorted, Median(times[4]) / loop,
      Median(times[5]) / sorted, tree);
  return 0;
}
