// The program: a print console.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "app/format/texts.h"
#include "app/window/console.h"
#include "app/work/arguments.h"
#include "app/work/preferences_file.h"
#include "app/work/running_console.h"

namespace {

constexpr const char* kHelp =
    R"(usage: quorvik [FILE...]

A print console: files, the queue of a print server, and its printers.

FILE is selected in its folder; a folder is opened. A console that runs already takes the files.

  --version, --help
  --                    nothing behind it is an option

The server is the one in QUORVIK_SERVER, else the one that the console remembers, else localhost.
)";

// The key under which the programs of the suite find each other's folders.
constexpr const char* kSuiteKey = "Tovalle";

// The display that shows nothing is another one than that of the console that runs.
bool SharesItsDisplay() {
  const char* display = getenv("XW_DISPLAY");
  return !display || strcmp(display, "headless") != 0;
}

console::FilesToOpen LookForFiles(const console::Arguments& arguments) {
  console::FilesToOpen files = console::LookForFiles(arguments.files);
  for (const std::string& file : files.missing)
    fprintf(stderr, "quorvik: %s: no such file or folder\n", console::Shown(file).c_str());
  for (const std::string& file : files.devices)
    fprintf(stderr, "quorvik: %s: neither a file nor a folder\n", console::Shown(file).c_str());
  return files;
}

// Those that are there come first: the running console enters the folder of the first.
bool HandOver(const console::FilesToOpen& files) {
  std::vector<std::string> all = files.found;
  all.insert(all.end(), files.missing.begin(), files.missing.end());
  return !all.empty() && SharesItsDisplay() && console::HandOverFiles(all);
}

[[noreturn]] void RunConsole(const console::FilesToOpen& files) {
  XwSession("Quorvik", "Quorvik", 7);
  // A recording begins as a first start does, and a replay changes nothing that is remembered.
  const bool fresh = getenv("XW_RECORD") || getenv("XW_REPLAY");
  console::Remembered remembered = console::Recall(fresh ? "" : console::PreferencesPath());
  const auto server = console::ChooseServer(getenv("QUORVIK_SERVER"), remembered.preferences);
  remembered.server_fixed = server.fixed;
  std::string folder = remembered.preferences.folder;
  if (folder.empty()) folder = OS_GetPathName(OS_FOLDER_HOME);
  console::Console* c =
      console::OpenConsole(server.server, folder[0] == '/' ? folder : "/", std::move(remembered));
  if (!c) exit(1);
  console::OpenFiles(c, files);
  OS_SetAppPath(kSuiteKey);
  XwRunEventLoop();
  exit(0);
}

}  // namespace

int main(int count, char** words) {
  const console::Arguments arguments = console::ReadArguments(count, words);
  switch (arguments.what) {
    case console::Arguments::kHelp:
      return fputs(kHelp, stdout) < 0 || fflush(stdout) != 0;
    case console::Arguments::kVersion:
      return printf("quorvik %s\n", QUORVIK_VERSION) < 0 || fflush(stdout) != 0;
    case console::Arguments::kWrong:
      fprintf(stderr, "quorvik: %s; --help tells all\n", arguments.error.c_str());
      return 2;
    case console::Arguments::kRun:
      break;
  }
  const console::FilesToOpen files = LookForFiles(arguments);
  if (HandOver(files)) return files.missing.empty() && files.devices.empty() ? 0 : 1;
  RunConsole(files);
}
