// How fast a document goes from a file into the spool, against a bare copy through a socket into a
// file that is synced. Both read the same file, send it over loopback TCP to another process, and
// end with one byte that says: on the disk. Rounds alternate; the ratio is of the medians.
#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>

#include "bench/daemon.h"

namespace {

constexpr int64_t kSize = 64 << 20;
constexpr size_t kPiece = 256 << 10;
constexpr int kRounds = 9;

void WriteWhole(int fd, const char* data, size_t size) {
  while (size > 0) {
    const ssize_t n = write(fd, data, size);
    if (n <= 0) Die("write");
    data += n;
    size -= static_cast<size_t>(n);
  }
}

// The bare receiver: socket to file, sync of the file and of its folder, one byte back.
[[noreturn]] void ReceiveFiles(int listener, const std::string& folder) {
  static char buffer[kPiece];
  const int directory = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
  while (true) {
    const int peer = accept(listener, nullptr, nullptr);
    if (peer < 0) Die("accept");
    const std::string path = folder + "/bare";
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (file < 0) Die("open");
    for (int64_t left = kSize; left > 0;) {
      const ssize_t n = recv(peer, buffer, sizeof buffer, 0);
      if (n <= 0) Die("recv");
      WriteWhole(file, buffer, static_cast<size_t>(n));
      left -= n;
    }
    if (fdatasync(file) != 0 || fsync(directory) != 0) Die("sync");
    WriteWhole(peer, "\1", 1);
    close(file);
    unlink(path.c_str());
    close(peer);
  }
}

double SendBare(const sockaddr_in& address, const std::string& source) {
  static char buffer[kPiece];
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  if (connect(fd, generic, sizeof address) != 0) Die("connect");
  const int file = open(source.c_str(), O_RDONLY);
  const double start = Seconds();
  while (true) {
    const ssize_t n = read(file, buffer, sizeof buffer);
    if (n < 0) Die("read");
    if (n == 0) break;
    WriteWhole(fd, buffer, static_cast<size_t>(n));
  }
  char done;
  if (recv(fd, &done, 1, 0) != 1) Die("recv");
  const double seconds = Seconds() - start;
  close(file);
  close(fd);
  return seconds;
}

double SendRequest(int fd, const std::string& source) {
  const int file = open(source.c_str(), O_RDONLY);
  uint8_t id[NC_ID_SIZE];
  const double start = Seconds();
  if (NC_CreateRequestID(fd, id) != 1) Die("request id");
  const char* ticket = "document=bench\nhold=1";
  if (NC_WritePrintRequestN(fd, id, ticket, file, kSize, nullptr, nullptr) != 1) Die("request");
  const double seconds = Seconds() - start;
  if (NC_RemovePrintRequest(fd, id) != 1) Die("remove");
  close(file);
  return seconds;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main() {
  std::string folder = "print-path-XXXXXX";  // here: the disk that is built on, not a memory disk
  if (!mkdtemp(folder.data())) Die("mkdtemp");
  const std::string source = folder + "/source";
  {
    const int file = open(source.c_str(), O_WRONLY | O_CREAT, 0600);
    std::string block(1 << 20, '\0');
    for (size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i * 2654435761U >> 13);
    for (int64_t i = 0; i < kSize; i += 1 << 20) WriteWhole(file, block.data(), block.size());
    close(file);
  }
  const std::string host = AddressOfBench(126);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  inet_pton(AF_INET, host.c_str(), &address.sin_addr);
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  socklen_t size = sizeof address;
  if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      listen(listener, 4) != 0 ||
      getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    Die("listen");
  }
  const pid_t bare = fork();
  if (bare == 0) ReceiveFiles(listener, folder);
  const BenchDaemon daemon = StartDaemon(host, folder + "/spool");
  const int fd = daemon.fd;

  std::vector<double> bare_times, request_times;
  SendBare(address, source);
  SendRequest(fd, source);
  for (int round = 0; round < kRounds; ++round) {
    bare_times.push_back(SendBare(address, source));
    request_times.push_back(SendRequest(fd, source));
  }
  EndDaemon(daemon);
  kill(bare, SIGTERM);
  waitpid(bare, nullptr, 0);
  const double bare_rate = static_cast<double>(kSize) / Median(bare_times) / 1e6;
  const double rate = static_cast<double>(kSize) / Median(request_times) / 1e6;
  const std::string remove = "rm -rf " + folder;
  if (system(remove.c_str()) != 0) return 1;
  printf("bare copy to a synced file %.0f MB/s, print request %.0f MB/s\n", bare_rate, rate);
  printf("print_path rate_ratio=%.3f\n", rate / bare_rate);
  return 0;
}
