// quorvik-print: the print console on the command line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace cli {

// Exit codes, as --help tells them.
constexpr int kGood = 0;
constexpr int kRefused = 1;
constexpr int kUsage = 2;
constexpr int kNoServer = 3;
constexpr int kNoFile = 4;

struct Options {
  std::string command;
  std::vector<std::string> words;  // what follows the command
  std::string server;              // empty: localhost
  std::string printer, profile, media, owner;
  std::string folder, output;
  int64_t copies = 1;
  int64_t priority = 50;
  bool hold = false;
  bool help = false;
};

// False with `error` when the command line is faulty.
bool ParseOptions(int argc, char** argv, Options* options, std::string* error);

// The text of --help.
const char* HelpText();

// Tells a failure on standard error; returns `code`.
int Fail(int code, const std::string& text);

// `text` as a terminal may get it: control characters become `?`.
std::string Shown(const std::string& text);

// Each runs one command on a greeted connection and returns an exit code.
int List(int fd, const Options& options);
int ShowQueue(int fd, const Options& options);
int Profiles(int fd, const Options& options);
int Scanners(int fd, const Options& options);
int Print(int fd, const Options& options);
int HoldOrRelease(int fd, const Options& options);
int Remove(int fd, const Options& options);
int Gamut(int fd, const Options& options);

}  // namespace cli
