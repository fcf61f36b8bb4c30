// A print server of the bench's own.
#pragma once
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "printserver/nc.h"

[[noreturn]] inline void Die(const char* what) {
  perror(what);
  exit(1);
}

inline double Seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// A loopback address of this process, one for each `network` below 128.
inline std::string AddressOfBench(int network) {
  const int pid = getpid();
  return "127." + std::to_string(network) + "." + std::to_string((pid >> 8) & 255) + "." +
         std::to_string(pid & 255);
}

struct BenchDaemon {
  pid_t pid = -1;
  int fd = -1;  // a greeted connection
};

// Starts printserverd with more arguments, its log thrown away, and connects.
inline BenchDaemon StartDaemon(const std::string& host, const std::string& spool,
                               std::vector<std::string> more = {}) {
  more.insert(more.begin(), {PRINTSERVERD, "--listen", host, "--spool", spool});
  std::vector<char*> arguments;
  for (std::string& argument : more) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  BenchDaemon daemon;
  daemon.pid = fork();
  if (daemon.pid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (!freopen("/dev/null", "w", stderr)) _exit(127);
    execv(PRINTSERVERD, arguments.data());
    _exit(127);
  }
  for (int i = 0; i < 500 && daemon.fd < 0; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    daemon.fd = NC_ConnectN(host.c_str(), 60000);
  }
  if (daemon.fd < 0) Die("connect to printserverd");
  return daemon;
}

inline void EndDaemon(const BenchDaemon& daemon) {
  NC_Disconnect(daemon.fd);
  kill(daemon.pid, SIGTERM);
  waitpid(daemon.pid, nullptr, 0);
}
