// A scripted server: it takes in what a client sends and answers what the test says, cut into any
// pieces.
#ifndef QUORVIK_TESTS_PRINTSERVER_PEER_H
#define QUORVIK_TESTS_PRINTSERVER_PEER_H

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>

#include "printserver/nc.h"

// Send everything; false if the other side is gone.
inline bool SendText(int fd, const std::string& text) {
  return text.empty() ||
         send(fd, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
}

// Receive `n` bytes, fewer if the other side ends.
inline std::string ReceiveText(int fd, size_t n) {
  std::string text(n, 0);
  size_t done = 0;
  while (done < n) {
    const ssize_t got = recv(fd, text.data() + done, n - done, 0);
    if (got <= 0) break;
    done += got;
  }
  text.resize(done);
  return text;
}

// Wait until the other side has closed.
inline void AwaitEnd(int fd) {
  char ignored[4096];
  while (recv(fd, ignored, sizeof ignored, 0) > 0) {
  }
}

// Take nothing and say nothing until the other side has closed.
inline void Hold(int fd) {
  pollfd one = {fd, 0, 0};
  poll(&one, 1, -1);
}

// Take a client in, and what it sends until it closes.
inline void Greet(int fd) {
  ReceiveText(fd, 4);
  SendText(fd, "\x01");
  AwaitEnd(fd);
}

// Low byte first.
inline std::string Integer(uint32_t value) {
  std::string text;
  for (int i = 0; i < 4; ++i) text += static_cast<char>(value >> (8 * i));
  return text;
}

// Take in what follows the header of command 3: the ticket with the document behind it.
inline std::string ReceiveRequest(int fd, std::string* id) {
  *id = ReceiveText(fd, 16);
  const std::string size = ReceiveText(fd, 4);
  size_t n = 0;
  for (size_t i = 0; i < size.size(); ++i) {
    n |= static_cast<size_t>(static_cast<unsigned char>(size[i])) << (8 * i);
  }
  return ReceiveText(fd, n);
}

// The two ends of a connection that has been greeted: `fd` for the client, the other end for
// `serve`, which runs on a thread of its own and whose return closes it.
class Pair {
 public:
  explicit Pair(std::function<void(int)> serve) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) abort();
    fd = ends[0];
    thread_ = std::thread([serve = std::move(serve), end = ends[1]] {
      serve(end);
      close(end);
    });
  }
  Pair(const Pair&) = delete;
  Pair& operator=(const Pair&) = delete;
  ~Pair() { Finish(); }

  // Close the client's end and wait until the server's has ended.
  void Finish() {
    if (fd >= 0) close(fd);
    fd = -1;
    if (thread_.joinable()) thread_.join();
  }

  int fd = -1;

 private:
  std::thread thread_;
};

// A listening server on a loopback address of its own.
class Listener {
 public:
  Listener() {
    for (unsigned attempt = 0; attempt < 1000; ++attempt) {
      const unsigned pick = static_cast<unsigned>(getpid()) * 251 + attempt * 7919;
      host = "127." + std::to_string(64 + pick % 128) + "." + std::to_string(pick / 128 % 256) +
             "." + std::to_string(1 + pick / 32768 % 254);
      if (Bind(host)) return;
    }
    abort();
  }
  // With port 0 it is any free one.
  explicit Listener(const std::string& address, uint16_t at = NC_PORT) : host(address), port(at) {
    Bind(address);
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() {
    if (fd >= 0) shutdown(fd, SHUT_RDWR);  // accept ends
    if (thread_.joinable()) thread_.join();
    if (fd >= 0) close(fd);
  }

  // Accept `connections` in turn, or fewer, each served by `serve` on one thread.
  void Serve(int connections, std::function<void(int)> serve) {
    thread_ = std::thread([this, connections, serve = std::move(serve)] {
      for (int i = 0; i < connections; ++i) {
        const int end = accept(fd, nullptr, nullptr);
        if (end < 0) return;
        serve(end);
        close(end);
      }
    });
  }

  void Join() {
    if (thread_.joinable()) thread_.join();
  }

  std::string host;
  uint16_t port = NC_PORT;
  int fd = -1;

 private:
  bool Bind(const std::string& address_text) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    inet_pton(AF_INET, address_text.c_str(), &address.sin_addr);
    fd = socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        listen(fd, 8) == 0) {
      socklen_t size = sizeof address;
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
      port = ntohs(address.sin_port);
      return true;
    }
    close(fd);
    fd = -1;
    return false;
  }

  std::thread thread_;
};

#endif
