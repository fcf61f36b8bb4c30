// The command line: which commands and options there are, and what was given.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "quorvik-print/cli.h"

namespace cli {

struct Command {
  const char* name;
  size_t least, most;  // words after it
  uint32_t options;    // that it takes, beside those of every command
  enum Words { kNone, kFiles, kJobs, kPrinters } words;
  int (*run)(Session& session, const Options& options);  // null: needs no server
};
const std::vector<Command>& Commands();

struct OptionRow {
  std::string_view name;
  Option option;
  std::string Options::*text;  // where its value goes; a flag has neither this
  int64_t Options::*number;    // nor this, for values from 1
  int64_t most;                // to this
};
const std::vector<OptionRow>& OptionRows();
// Those that each command takes.
constexpr uint32_t kEveryCommand = kServerOption | kHelpOption | kVersionOption;

// Takes the command line apart and checks it, as far as that can be done without the server. False
// with `error` when it is faulty. *command is null when --help or --version was asked for.
bool ParseOptions(int argc, char** argv, Options* options, const Command** command,
                  std::string* error);

// The texts of --help and of the command `completion`.
const char* HelpText();
std::string CompletionText();

}  // namespace cli
