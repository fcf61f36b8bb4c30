// One connection to a program that is looked into (docs/inspect.md).
#pragma once
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <string>

#include "tests/support/x_server.h"

namespace support {

class InspectClient {
 public:
  // Connects; gives up after ten seconds.
  explicit InspectClient(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    connected_ = Eventually([&] {
      fd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
      if (!connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address)) return true;
      close(fd_);
      return false;
    });
  }
  ~InspectClient() { close(fd_); }
  InspectClient(const InspectClient&) = delete;
  InspectClient& operator=(const InspectClient&) = delete;

  bool connected() const { return connected_; }
  void Send(const std::string& bytes) { send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  void EndSending() { shutdown(fd_, SHUT_WR); }
  // The next line; "" when the connection has ended.
  std::string Line() {
    size_t end;
    while ((end = in_.find('\n')) == std::string::npos) {
      char buffer[65536];
      const ssize_t n = recv(fd_, buffer, sizeof buffer, 0);
      if (n <= 0) return "";
      in_.append(buffer, size_t(n));
    }
    std::string line = in_.substr(0, end);
    in_.erase(0, end + 1);
    return line;
  }
  // What is asked is the inside of the object.
  std::string Ask(const std::string& request) {
    Send("{" + request + "}\n");
    return Line();
  }
  bool Does(const std::string& request) {
    const std::string answer = Ask(request);
    EXPECT_EQ(answer.rfind("{\"ok\":true", 0), 0u) << request << ": " << answer;
    return answer.rfind("{\"ok\":true", 0) == 0;
  }
  // The message of the failure; "" for none.
  std::string Fault(const std::string& request) {
    const std::string answer = Ask(request), start = "{\"ok\":false,\"error\":\"";
    return answer.rfind(start, 0) ? "" : answer.substr(start.size());
  }

 private:
  int fd_ = -1;
  bool connected_ = false;
  std::string in_;
};

}  // namespace support
