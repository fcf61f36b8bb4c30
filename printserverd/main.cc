#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "printserverd/log.h"
#include "printserverd/server.h"
#include "printserverd/settings.h"

// A peer's socket must not become the standard output or error of a daemon started without them.
static void OpenStandardFiles() {
  int fd;
  do {
    fd = open("/dev/null", O_RDWR);
  } while (fd >= 0 && fd <= STDERR_FILENO);
  if (fd >= 0) close(fd);
}

int main(int argc, char** argv) {
  using namespace printserverd;
  OpenStandardFiles();
  Options options;
  Settings settings;
  std::string error;
  if (!ParseOptions(argc, argv, &options, &error)) {
    Log(error);
    return 2;
  }
  if (options.help) {
    return fputs(HelpText(), stdout) < 0 || fflush(stdout) != 0 ? 1 : 0;
  }
  if (!LoadSettings(options, false, &settings, &error)) {
    Log(error);
    return 2;
  }
  Server server(options, std::move(settings));
  if (!server.Start(&error)) {
    Log(error);
    return 1;
  }
  if (!server.Run()) _exit(0);  // the disk is still at work, and nothing can end it
  Log("ended");
  return 0;
}
