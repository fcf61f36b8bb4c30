#include <charconv>
#include <cstdlib>
#include <string_view>

#include "quorvik-print/cli.h"

namespace cli {

namespace {

struct TextOption {
  std::string_view name;
  std::string Options::*field;
};

constexpr TextOption kTexts[] = {
    {"--server", &Options::server},   {"--printer", &Options::printer},
    {"--profile", &Options::profile}, {"--media", &Options::media},
    {"--owner", &Options::owner},     {"--folder", &Options::folder},
    {"--output", &Options::output},
};

struct NumberOption {
  std::string_view name;
  int64_t Options::*field;
  int64_t most;
};

constexpr NumberOption kNumbers[] = {
    {"--copies", &Options::copies, 999},
    {"--priority", &Options::priority, 100},
};

// True when `name` is an option with a value.
bool Apply(std::string_view name, const char* value, Options* options, std::string* error) {
  for (const TextOption& row : kTexts) {
    if (row.name != name) continue;
    if (value) options->*row.field = value;
    return true;
  }
  for (const NumberOption& row : kNumbers) {
    if (row.name != name) continue;
    if (!value) return true;
    const std::string_view text = value;
    int64_t number = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (code != std::errc() || end != text.data() + text.size() || number < 1 ||
        number > row.most) {
      *error = std::string(name) + " wants a number from 1 to " + std::to_string(row.most) +
               ", not \"" + value + "\"";
    }
    options->*row.field = number;
    return true;
  }
  return false;
}

}  // namespace

bool ParseOptions(int argc, char** argv, Options* options, std::string* error) {
  if (const char* server = getenv("QUORVIK_SERVER")) options->server = server;
  bool only_words = false;
  for (int i = 1; i < argc && error->empty(); ++i) {
    const std::string word = argv[i];
    if (only_words || word.size() < 2 || word[0] != '-') {
      if (options->command.empty()) {
        options->command = word;
      } else {
        options->words.push_back(word);
      }
    } else if (word == "--") {
      only_words = true;
    } else if (word == "--help" || word == "-h") {
      options->help = true;
    } else if (word == "--hold") {
      options->hold = true;
    } else {
      const size_t equals = word.find('=');
      const std::string name = word.substr(0, equals);
      const char* value = equals == std::string::npos ? argv[i + 1] : argv[i] + equals + 1;
      if (!Apply(name, value, options, error)) {
        *error = "unknown option \"" + word + "\"; --help tells all";
      } else if (!value) {
        *error = name + " wants a value";
      }
      if (equals == std::string::npos) ++i;
    }
  }
  if (error->empty() && options->command.empty() && !options->help) {
    *error = "which command? --help tells all";
  }
  return error->empty();
}

const char* HelpText() {
  return "usage: quorvik-print [--server HOST] COMMAND [OPTION...] [WORD...]\n"
         "\n"
         "  list                  the printers\n"
         "  queue                 the jobs, in the order in which they print\n"
         "  print FILE...         sends files; tells the id of each job\n"
         "      --printer NAME        (the server's default printer)\n"
         "      --profile NAME        (none)\n"
         "      --media NAME          (none)\n"
         "      --copies N            1 to 999 (1)\n"
         "      --priority N          1 to 100, higher prints first (50)\n"
         "      --hold                holds the jobs until they are released\n"
         "      --owner NAME          (the user's name)\n"
         "  hold ID...            holds jobs\n"
         "  release ID...         releases held and failed jobs; loads paper\n"
         "  remove ID...          takes jobs out of the queue\n"
         "  profiles [PRINTER]    the profiles of a printer, or all\n"
         "  scanners              the scanners\n"
         "  gamut NAME            fetches a gamut file\n"
         "      --folder NAME         the folder that it is in, usually a printer's name (none)\n"
         "      --output PATH         where to write it (NAME, here)\n"
         "\n"
         "HOST is a name or an IPv4 address ($QUORVIK_SERVER, else localhost). An ID may be cut\n"
         "short as long as it names one job. A value may also follow its option after \"=\"; "
         "after\n"
         "\"--\" nothing is an option; -h is --help. Connecting may take 10 s; 30 s without an\n"
         "answer or any progress are a failed connection.\n"
         "\n"
         "Exit codes:\n"
         "  0  done\n"
         "  1  the server refused, or there is no such job, printer or file on it\n"
         "  2  faulty command line\n"
         "  3  no server answers there, or the connection failed\n"
         "  4  a file here cannot be read or written\n"
         "When several files or jobs are named, all are tried, and the code is of the first\n"
         "failure; only a lost connection ends it at once.\n";
}

}  // namespace cli
