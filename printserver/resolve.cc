#include "printserver/resolve.h"

#include <arpa/inet.h>
#include <errno.h>
#include <netdb.h>
#include <poll.h>
#include <pthread.h>
#include <string.h>
#include <sys/eventfd.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "os/final_path.h"

namespace nc {

namespace {

constexpr size_t kMostScratch = 1 << 20;

bool LookUp(const char* host, in_addr* address) {
  for (std::vector<char> scratch(1024); scratch.size() <= kMostScratch;
       scratch.resize(scratch.size() * 4)) {
    hostent storage;
    hostent* entry = nullptr;
    int error = 0;
    const int result =
        gethostbyname_r(host, &storage, scratch.data(), scratch.size(), &entry, &error);
    if (result == ERANGE) continue;
    if (result != 0 || !entry || entry->h_addrtype != AF_INET || !entry->h_addr_list[0]) break;
    memcpy(address, entry->h_addr_list[0], sizeof *address);
    return true;
  }
  return false;
}

// One look-up on a thread of its own; both sides hold it, so that the one who waits may leave.
struct Search {
  std::string host;
  os::Handle ended{eventfd(0, EFD_CLOEXEC)};  // readable when it has ended
  std::mutex lock;
  bool found = false;
  in_addr address = {};
};

void* RunSearch(void* argument) {
  const std::unique_ptr<std::shared_ptr<Search>> mine(
      static_cast<std::shared_ptr<Search>*>(argument));
  Search& search = **mine;
  in_addr address = {};
  const bool found = LookUp(search.host.c_str(), &address);
  const std::lock_guard<std::mutex> guard(search.lock);
  search.found = found;
  search.address = address;
  eventfd_write(search.ended.get(), 1);
  return nullptr;
}

bool StartSearch(const std::shared_ptr<Search>& search) {
  auto* theirs = new std::shared_ptr<Search>(search);
  pthread_t thread;
  if (pthread_create(&thread, nullptr, RunSearch, theirs) != 0) {
    delete theirs;
    return false;
  }
  pthread_detach(thread);
  return true;
}

}  // namespace

bool Resolve(const char* host, in_addr* address, Deadline deadline) {
  if (!host || !host[0]) host = "localhost";
  if (inet_pton(AF_INET, host, address) == 1) return true;
  if (deadline.none()) return LookUp(host, address) || (errno = ENOENT, false);
  const auto search = std::make_shared<Search>();
  search->host = host;
  if (!search->ended || !StartSearch(search)) return false;
  const int ready = WaitFor(search->ended.get(), POLLIN, deadline);
  if (ready == 0) errno = ETIMEDOUT;
  if (ready <= 0) return false;
  const std::lock_guard<std::mutex> guard(search->lock);
  *address = search->address;
  if (!search->found) errno = ENOENT;
  return search->found;
}

}  // namespace nc
