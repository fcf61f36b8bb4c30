#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "printserverd/fields.h"
#include "printserverd/folder.h"
#include "printserverd/settings.h"
#include "printserverd/wire.h"

namespace printserverd {

namespace {

bool ParseAddress(std::string_view text, sockaddr_in* out) {
  const size_t colon = text.find(':');
  int64_t port = kPort;
  if (colon != std::string_view::npos) {
    const auto number = ParseNumber(text.substr(colon + 1), 0, 65535);
    if (!number) return false;
    port = *number;
  }
  std::string address(text.substr(0, colon));
  if (address == "localhost") address = "127.0.0.1";
  out->sin_family = AF_INET;
  out->sin_port = htons(static_cast<uint16_t>(port));
  return inet_pton(AF_INET, address.c_str(), &out->sin_addr) == 1;
}

bool ParseFault(std::string_view fault, Faults* faults) {
  const size_t equals = fault.find('=');
  const std::string_view name = fault.substr(0, equals);
  if (equals == std::string_view::npos) {
    if (name == "refuse") return faults->refuse = true;
    if (name == "paper-out") return faults->paper_out = true;
    return false;
  }
  const auto number = ParseNumber(fault.substr(equals + 1), 0, UINT32_MAX);
  if (!number) return false;
  const auto value = static_cast<uint32_t>(*number);
  if (name == "cut") return faults->cut = value, true;
  if (name == "stall") return faults->stall = value, true;
  if (name == "length") return faults->length = value, true;
  if (name == "slow-disk" && value <= 60000) return faults->slow_disk = value, true;
  if (name == "sync-error") return faults->sync_error = value, true;
  if (name == "disk-full") return faults->disk_full = value, true;
  if (name == "output-error") return faults->output_error = value, true;
  return false;
}

bool ParseFaults(std::string_view text, Faults* faults, std::string* error) {
  while (true) {
    const size_t comma = text.find(',');
    if (!ParseFault(text.substr(0, comma), faults)) {
      *error =
          "--simulate wants refuse, cut=N, stall=N, length=N, slow-disk=N, sync-error=N, "
          "disk-full=N, output-error=N or paper-out, not \"" +
          std::string(text.substr(0, comma)) + "\"";
      return false;
    }
    if (comma == std::string_view::npos) return true;
    text.remove_prefix(comma + 1);
  }
}

bool ApplyOption(const std::string& name, const std::string& value, Options* options,
                 std::string* error) {
  if (name == "--listen") {
    if (ParseAddress(value, &options->listen)) return true;
    *error = "--listen wants an IPv4 address, perhaps with :PORT, not \"" + value + "\"";
  } else if (name == "--spool") {
    options->spool = value;
    if (!value.empty()) return true;
    *error = "--spool wants a folder";
  } else if (name == "--config") {
    options->config = value;
    if (!value.empty()) return true;
    *error = "--config wants a file";
  } else if (name == "--rate") {
    options->rate = ParseScaledNumber(value, 0, int64_t{1} << 40);
    if (options->rate) return true;
    *error = "--rate wants bytes a second, not \"" + value + "\"";
  } else {
    return ParseFaults(value, &options->faults, error);
  }
  return false;
}

bool TakesValue(std::string_view name) {
  return name == "--listen" || name == "--spool" || name == "--config" || name == "--rate" ||
         name == "--simulate";
}

bool DefaultSpool(std::string* spool) {
  const char* state = getenv("XDG_STATE_HOME");
  const char* home = getenv("HOME");
  if (state && state[0] == '/') {
    *spool = std::string(state) + "/quorvik/spool";
  } else if (home && home[0] == '/') {
    *spool = std::string(home) + "/.local/state/quorvik/spool";
  }
  return !spool->empty();
}

// The configuration's text, from a file or, at the start, from anything that can be read to its
// end. False with `error`.
bool ReadConfig(const std::string& path, bool again, std::string* text, std::string* error) {
  constexpr size_t kMaxConfig = 1 << 20;
  // Once it serves, the daemon waits for no other end of a pipe.
  const Fd fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | (again ? O_NONBLOCK : 0)));
  struct stat info;
  if (!fd || fstat(fd.get(), &info) != 0) {
    *error = strerror(errno);
    return false;
  }
  if (again && !S_ISREG(info.st_mode)) {
    *error = "what is no regular file cannot be read again";
    return false;
  }
  if (!ReadAll(fd.get(), kMaxConfig, text)) {
    *error = errno == EFBIG ? "larger than 1 MiB" : strerror(errno);
    return false;
  }
  return true;
}

}  // namespace

bool ParseOptions(int argc, char** argv, Options* options, std::string* error) {
  ParseAddress("127.0.0.1", &options->listen);
  for (int i = 1; i < argc; ++i) {
    std::string name = argv[i];
    if (name == "--help" || name == "-h") {
      options->help = true;
      return true;
    }
    std::string value;
    const size_t equals = name.find('=');
    if (equals != std::string::npos) {
      value = name.substr(equals + 1);
      name.resize(equals);
    }
    if (!TakesValue(name)) {
      *error = "unknown argument \"" + std::string(argv[i]) + "\"; --help tells all";
      return false;
    }
    if (equals == std::string::npos) {
      if (++i == argc) {
        *error = name + " wants a value";
        return false;
      }
      value = argv[i];
    }
    if (!ApplyOption(name, value, options, error)) return false;
  }
  if (options->spool.empty() && !DefaultSpool(&options->spool)) {
    *error = "neither XDG_STATE_HOME nor HOME is set: --spool must name the spool folder";
    return false;
  }
  return true;
}

bool LoadSettings(const Options& options, bool again, Settings* settings, std::string* error) {
  std::string text;
  if (!options.config.empty() && !ReadConfig(options.config, again, &text, error)) {
    *error = options.config + ": " + *error;
    return false;
  }
  if (!ParseSettings(text, settings, error)) {
    *error = options.config + ": " + *error;
    return false;
  }
  for (PrinterSettings& printer : settings->printers) {
    if (options.rate) printer.rate = *options.rate;
  }
  return true;
}

const char* HelpText() {
  return "usage: printserverd [OPTION...]\n"
         "\n"
         "Serves a print queue over its spool folder to consoles and to quorvik-print.\n"
         "\n"
         "  --listen ADDRESS[:PORT]  IPv4 address or localhost to listen on (127.0.0.1), port\n"
         "                           (51470; 0: any)\n"
         "  --spool DIR              spool folder, created when missing, readable by its user "
         "only\n"
         "                           ($XDG_STATE_HOME/quorvik/spool, else\n"
         "                           ~/.local/state/quorvik/spool)\n"
         "  --config FILE            printers, profiles, scanners, commands; at most 1 MiB, a "
         "pipe\n"
         "                           is read to its end (none: a proof printer that prints to a\n"
         "                           folder of the spool)\n"
         "  --rate BYTES             bytes a second that every printer prints, K, M or G after "
         "the\n"
         "                           number; 0: without delay\n"
         "  --simulate FAULTS        for testing clients, separated by commas:\n"
         "      refuse               answer every greeting with a refusal\n"
         "      cut=N                end every reply and its connection after N bytes\n"
         "      stall=N              stop every reply after N bytes\n"
         "      length=N             announce N as every length, size and count\n"
         "      slow-disk=N          each sync to the disk takes N milliseconds longer\n"
         "      sync-error=N         the Nth sync to the disk fails\n"
         "      disk-full=N, output-error=N\n"
         "                           the first N outputs of each printer cannot be written\n"
         "      paper-out            printers have no paper at first and for each new job\n"
         "  --help, -h               this text\n"
         "\n"
         "A value may also follow its option after \"=\". SIGTERM and SIGINT end it, SIGHUP reads\n"
         "the configuration again, if it is a regular file.\n"
         "Exit codes: 0 ended by a signal, 1 could not start, 2 faulty command line or\n"
         "configuration. The protocol and the configuration file: docs/protocol.md.\n";
}

}  // namespace printserverd
