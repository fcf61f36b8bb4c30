#include <cerrno>
#include <cstdio>
#include <cstring>

#include "printserver/nc.h"
#include "quorvik-print/cli.h"

namespace cli {

namespace {

constexpr int kConnectMs = 10000;
constexpr int kAnswerMs = 30000;  // storing a document may take the server a while

struct Command {
  const char* name;
  size_t least, most;  // words after it
  int (*run)(int fd, const Options& options);
};

constexpr size_t kMany = 1 << 20;

constexpr Command kCommands[] = {
    {"list", 0, 0, List},
    {"queue", 0, 0, ShowQueue},
    {"print", 1, kMany, Print},
    {"hold", 1, kMany, HoldOrRelease},
    {"release", 1, kMany, HoldOrRelease},
    {"remove", 1, kMany, Remove},
    {"profiles", 0, 1, Profiles},
    {"scanners", 0, 0, Scanners},
    {"gamut", 1, 1, Gamut},
};

int Connect(const std::string& server) {
  const int fd = NC_ConnectN(server.c_str(), kConnectMs);
  const int error = errno;
  const std::string host = server.empty() ? "localhost" : server;
  if (fd >= 0) {
    NC_SetDeadline(fd, kAnswerMs);
  } else if (fd == NC_NO_HOST) {
    Fail(kNoServer, host + ": there is no host of this name");
  } else if (fd == NC_REFUSED) {
    Fail(kNoServer, host + ": the server refuses connections");
  } else {
    Fail(kNoServer, host + ": no print server answers: " + strerror(error));
  }
  return fd;
}

int Run(const Options& options) {
  for (const Command& command : kCommands) {
    if (options.command != command.name) continue;
    if (options.words.size() < command.least) {
      return Fail(kUsage, options.command + ": of what? --help tells all");
    }
    if (options.words.size() > command.most) {
      return Fail(kUsage, options.command + ": too many words; --help tells all");
    }
    const int fd = Connect(options.server);
    if (fd < 0) return kNoServer;
    const int code = command.run(fd, options);
    NC_Disconnect(fd);
    return code;
  }
  return Fail(kUsage, "unknown command \"" + options.command + "\"; --help tells all");
}

}  // namespace

int Fail(int code, const std::string& text) {
  fprintf(stderr, "quorvik-print: %s\n", Shown(text).c_str());
  return code;
}

std::string Shown(const std::string& text) {
  std::string out = text;
  for (size_t i = 0; i < out.size(); ++i) {
    const auto c = static_cast<unsigned char>(out[i]);
    const auto next = static_cast<unsigned char>(i + 1 < out.size() ? out[i + 1] : 0);
    if (c < 0x20 || c == 0x7f) out[i] = '?';
    // The control characters above 0x7f, which terminals obey too.
    if (c == 0xc2 && next >= 0x80 && next < 0xa0) out.replace(i, 2, "?");
  }
  return out;
}

}  // namespace cli

int main(int argc, char** argv) {
  cli::Options options;
  std::string error;
  if (!cli::ParseOptions(argc, argv, &options, &error)) return cli::Fail(cli::kUsage, error);
  int code = cli::kGood;
  if (options.help) {
    fputs(cli::HelpText(), stdout);
  } else {
    code = cli::Run(options);
  }
  if (fflush(stdout) != 0 && code == cli::kGood) {
    return cli::Fail(cli::kNoFile, "standard output cannot be written");
  }
  return code;
}
