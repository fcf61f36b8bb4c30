#include "quorvik-print/options.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "os/os.h"
#include "quorvik-print/jobs.h"

namespace cli {

namespace {

constexpr size_t kMany = 1 << 20;
constexpr uint32_t kForms = kJsonOption | kTsvOption;
constexpr uint32_t kOfAJob = kTitleOption | kOwnerOption | kPrinterOption | kProfileOption |
                             kMediaOption | kCopiesOption | kPriorityOption | kColourOption;
constexpr std::string_view kStates[] = {"waiting",   "held", "printing",
                                        "paper-out", "done", "failed"};

// The options that this command does not take, by name; "" when there are none.
std::string Foreign(const Command& command, uint32_t given) {
  for (const OptionRow& row : OptionRows()) {
    if (given & row.option & ~(command.options | kEveryCommand)) return std::string(row.name);
  }
  return "";
}

bool ParseNumber(const OptionRow& row, const std::string& value, Options* options,
                 std::string* error) {
  int64_t number = 0;
  const auto [end, code] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (code != std::errc() || end != value.data() + value.size() || number < 1 ||
      number > row.most) {
    *error = std::string(row.name) + " wants a number from 1 to " + std::to_string(row.most) +
             ", not \"" + value + "\"";
    return false;
  }
  options->*row.number = number;
  return true;
}

bool ParseColour(const std::string& value, Options* options, std::string* error) {
  options->colour = -1;
  if (value == "none") return true;
  const char* end = value.data() + value.size();
  const bool good = value.size() == 6 && value[0] != '-' &&
                    std::from_chars(value.data(), end, options->colour, 16).ptr == end;
  if (!good) *error = "--colour wants six hexadecimal digits, red first, or \"none\"";
  return good;
}

// Takes in the option at argv[*at], and moves on to its value if that is a word of its own.
bool TakeOption(char** argv, int* at, Options* options, std::string* error) {
  const std::string word = argv[*at];
  const size_t equals = word.find('=');
  const std::string name = word.substr(0, equals) == "-h" ? "--help" : word.substr(0, equals);
  const auto& rows = OptionRows();
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [&name](const OptionRow& one) { return one.name == name; });
  if (row == rows.end()) {
    *error = "unknown option \"" + word + "\"; --help tells all";
    return false;
  }
  options->given |= row->option;
  const bool is_flag = !row->text && !row->number && row->option != kColourOption;
  if (is_flag) {
    if (equals != std::string::npos) *error = name + " takes no value";
    return error->empty();
  }
  if (equals == std::string::npos && !argv[*at + 1]) {
    *error = name + " wants a value";
    return false;
  }
  const std::string value = equals == std::string::npos ? argv[++*at] : word.substr(equals + 1);
  if (row->number) return ParseNumber(*row, value, options, error);
  if (row->option == kColourOption) return ParseColour(value, options, error);
  options->*row->text = value;
  return true;
}

// What is wrong with the words and options of one command; "" when nothing is.
std::string FaultOf(const Command& command, const Options& options) {
  const std::string foreign = Foreign(command, options.given);
  if (!foreign.empty()) return foreign + " is no option of \"" + command.name + "\"";
  const bool many = (options.given & (kMineOption | kAllOption)) && options.command == "remove";
  if (options.words.size() < command.least && !many) return "of what? --help tells all";
  if (options.words.size() > command.most || (many && !options.words.empty())) {
    return "too many words; --help tells all";
  }
  if ((options.given & kForms) == kForms) return "--json or --tsv, not both";
  for (const std::string& word : options.words) {
    if (command.words == Command::kJobs && !NamesJob(word)) {
      return "\"" + word + "\" names no job: give its number, or 8 digits of its id or more";
    }
  }
  if (options.Has(kStateOption) &&
      std::find(std::begin(kStates), std::end(kStates), options.state) == std::end(kStates)) {
    return "--state wants waiting, held, printing, paper-out, done or failed";
  }
  if (options.Has(kBeforeOption) && !NamesJob(options.before)) return "--before wants a job";
  return "";
}

std::string FaultOfCommand(const Options& options) {
  const uint32_t given = options.given;
  if (options.command == "change") {
    if (!(given & ~kEveryCommand)) return "to what? --help tells all";
    if (options.Has(kBeforeOption) && options.Has(kPriorityOption)) {
      return "--before or --priority, not both";
    }
  }
  if (options.command == "move" && options.words[0] == options.words[1]) {
    return "the printers are the same";
  }
  if (options.command == "print" && options.words.empty() && isatty(STDIN_FILENO)) {
    return "of what? --help tells all";
  }
  if (options.command != "remove") return "";
  if (options.Has(kMineOption) && options.Has(kAllOption)) return "--mine or --all, not both";
  const bool many = (given & (kMineOption | kAllOption)) != 0;
  if (options.Has(kYesOption) && !many) return "--yes goes with --mine or --all";
  if (many && !options.Has(kYesOption) && !(isatty(STDIN_FILENO) && isatty(STDERR_FILENO))) {
    return "nobody can be asked here: add --yes";
  }
  return "";
}

}  // namespace

std::string Options::Owner() const {
  return owner.empty() ? OS_GetUserName() : owner;
}

const std::vector<Command>& Commands() {
  static const std::vector<Command> commands = {
      {"list", 0, 0, kForms, Command::kNone, List},
      {"queue", 0, kMany, kForms | kPrinterOption | kOwnerOption | kMineOption | kStateOption,
       Command::kJobs, ShowQueue},
      {"print", 0, kMany, kOfAJob | kHoldOption | kWaitOption, Command::kFiles, PrintFiles},
      {"hold", 1, kMany, 0, Command::kJobs, HoldOrRelease},
      {"release", 1, kMany, 0, Command::kJobs, HoldOrRelease},
      {"change", 1, kMany, kOfAJob | kHoldOption | kBeforeOption, Command::kJobs, Change},
      {"again", 1, kMany, kOfAJob, Command::kJobs, Again},
      {"remove", 1, kMany, kMineOption | kAllOption | kYesOption, Command::kJobs, Remove},
      {"move", 2, 2, 0, Command::kPrinters, Move},
      {"pause", 1, kMany, 0, Command::kPrinters, ChangePrinters},
      {"resume", 1, kMany, 0, Command::kPrinters, ChangePrinters},
      {"accept", 1, kMany, 0, Command::kPrinters, ChangePrinters},
      {"refuse", 1, kMany, 0, Command::kPrinters, ChangePrinters},
      {"load", 1, kMany, 0, Command::kPrinters, ChangePrinters},
      {"profiles", 0, 1, kForms, Command::kPrinters, Profiles},
      {"scanners", 0, 0, kForms, Command::kNone, Scanners},
      {"gamut", 1, 1, kFolderOption | kOutputOption, Command::kNone, Gamut},
      {"completion", 0, 0, 0, Command::kNone, nullptr},
  };
  return commands;
}

const std::vector<OptionRow>& OptionRows() {
  static const std::vector<OptionRow> rows = {
      {"--server", kServerOption, &Options::server, nullptr, 0},
      {"--printer", kPrinterOption, &Options::printer, nullptr, 0},
      {"--profile", kProfileOption, &Options::profile, nullptr, 0},
      {"--media", kMediaOption, &Options::media, nullptr, 0},
      {"--owner", kOwnerOption, &Options::owner, nullptr, 0},
      {"--title", kTitleOption, &Options::title, nullptr, 0},
      {"--colour", kColourOption, nullptr, nullptr, 0},
      {"--copies", kCopiesOption, nullptr, &Options::copies, 999},
      {"--priority", kPriorityOption, nullptr, &Options::priority, 100},
      {"--hold", kHoldOption, nullptr, nullptr, 0},
      {"--wait", kWaitOption, nullptr, nullptr, 0},
      {"--before", kBeforeOption, &Options::before, nullptr, 0},
      {"--state", kStateOption, &Options::state, nullptr, 0},
      {"--mine", kMineOption, nullptr, nullptr, 0},
      {"--all", kAllOption, nullptr, nullptr, 0},
      {"--yes", kYesOption, nullptr, nullptr, 0},
      {"--folder", kFolderOption, &Options::folder, nullptr, 0},
      {"--output", kOutputOption, &Options::output, nullptr, 0},
      {"--json", kJsonOption, nullptr, nullptr, 0},
      {"--tsv", kTsvOption, nullptr, nullptr, 0},
      {"--help", kHelpOption, nullptr, nullptr, 0},
      {"--version", kVersionOption, nullptr, nullptr, 0},
  };
  return rows;
}

bool ParseOptions(int argc, char** argv, Options* options, const Command** command,
                  std::string* error) {
  *command = nullptr;
  if (const char* server = getenv("QUORVIK_SERVER")) options->server = server;
  bool only_words = false;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (only_words || word.size() < 2 || word[0] != '-') {
      if (options->command.empty()) {
        options->command = word;
      } else {
        options->words.push_back(word);
      }
    } else if (word == "--") {
      only_words = true;
    } else if (!TakeOption(argv, &i, options, error)) {
      return false;
    }
  }
  if (options->given & (kHelpOption | kVersionOption)) return true;
  for (const Command& one : Commands()) {
    if (options->command == one.name) *command = &one;
  }
  if (!*command) {
    *error = options->command.empty()
                 ? "which command? --help tells all"
                 : "unknown command \"" + options->command + "\"; --help tells all";
    return false;
  }
  *error = FaultOf(**command, *options);
  if (error->empty()) *error = FaultOfCommand(*options);
  if (!error->empty()) *error = options->command + ": " + *error;
  return error->empty();
}

}  // namespace cli
