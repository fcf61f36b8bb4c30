#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "printserver/nc.h"
#include "printserver/visible.h"
#include "printserver/words.h"
#include "quorvik-print/options.h"

namespace cli {

namespace {

constexpr int kConnectMs = 10000;
constexpr int kAnswerMs = 30000;  // storing a document may take the server a while

int output_error = 0;  // the first errno of standard output

// A descriptor of the three that is closed would become a connection's or a document's.
void OpenStandard() {
  for (int fd = 0; fd < 3; ++fd) {
    if (fcntl(fd, F_GETFD) < 0) open(fd == 0 ? "/dev/null" : "/dev/full", O_RDWR);
  }
}

int Run(int argc, char** argv) {
  Options options;
  const Command* command;
  std::string error;
  if (!ParseOptions(argc, argv, &options, &command, &error)) return Fail(kUsage, error);
  if (options.Has(kHelpOption)) {
    Print(HelpText());
  } else if (!command) {
    Print("quorvik-print " QUORVIK_VERSION "\n");
  } else if (!command->run) {
    Print(CompletionText());
  } else {
    Session session(options.server);
    const int code = session.Connect();
    return code == kGood ? command->run(session, options) : code;
  }
  return kGood;
}

}  // namespace

Session::~Session() {
  if (fd_ >= 0) NC_Disconnect(fd_);
}

int Session::Connect(bool quiet) {
  if (fd_ >= 0) NC_Disconnect(fd_);
  fd_ = NC_ConnectN(server_.c_str(), kConnectMs);
  if (fd_ >= 0) {
    NC_SetDeadline(fd_, kAnswerMs);
    return kGood;
  }
  if (quiet) return kNoServer;
  const std::string why = nc::ConnectText(fd_, errno);
  return Fail(kNoServer, (server_.empty() ? "localhost" : server_) + ": " + why);
}

int Fail(int code, const std::string& text) {
  fprintf(stderr, "quorvik-print: %s\n", nc::VisibleName(text).c_str());
  return code;
}

int Lost(const std::string& after) {
  return Fail(kNoServer, "the connection to the server failed: " + nc::FailureText(errno) + after);
}

void Note(int code, int* first) {
  if (*first == kGood) *first = code;
}

void Print(const std::string& text) {
  if (output_error == 0 && fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
    output_error = errno;
  }
}

void PrintLine(const std::string& line) {
  Print(nc::VisibleName(line) + "\n");
  if (output_error == 0 && fflush(stdout) != 0) output_error = errno;
}

int FinishOutput() {
  if (output_error == 0 && fflush(stdout) != 0) output_error = errno;
  if (output_error == 0 || output_error == EPIPE) return kGood;
  return Fail(kNoFile, std::string("standard output cannot be written: ") + strerror(output_error));
}

}  // namespace cli

int main(int argc, char** argv) {
  cli::OpenStandard();
  signal(SIGPIPE, SIG_IGN);  // a reader that ends is told by errno
  int code = cli::Run(argc, argv);
  const int written = cli::FinishOutput();
  cli::Note(written, &code);
  return code;
}
