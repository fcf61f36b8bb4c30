#include <cstdio>

#include "printserverd/log.h"
#include "printserverd/server.h"
#include "printserverd/settings.h"

int main(int argc, char** argv) {
  using namespace printserverd;
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
  if (!LoadSettings(options, &settings, &error)) {
    Log(error);
    return 2;
  }
  Server server(options, std::move(settings));
  if (!server.Start(&error)) {
    Log(error);
    return 1;
  }
  server.Run();
  Log("ended");
  return 0;
}
