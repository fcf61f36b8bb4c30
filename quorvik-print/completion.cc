// The script that completes command lines, made of the tables of commands and options.
#include "quorvik-print/options.h"

namespace cli {

namespace {

constexpr char kHead[] =
    R"(# Completes command lines of quorvik-print in bash: source <(quorvik-print completion)
_quorvik_print() {
  local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
  local command= options= words= i
  local -a server=()
  COMPREPLY=()
  # Adds the lines of standard input that begin with the word.
  _quorvik_print_offer() {
    local line quoted
    while IFS= read -r line; do
      printf -v quoted %q "$line"
      [[ -n $line && ($line == "$word"* || $quoted == "$word"*) ]] && COMPREPLY+=("$quoted")
    done
  }
  # The first column of a list.
  _quorvik_print_names() {
    _quorvik_print_offer < <("$program" "${server[@]}" "$1" --tsv 2>/dev/null |
      tail -n +2 | cut -f1)
  }
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      --server) server=(--server "${COMP_WORDS[++i]}") ;;
      VALUES) ((++i)) ;;
      -*) ;;
      *) command=${COMP_WORDS[i]}; break ;;
    esac
  done
  case $before in
    --printer) _quorvik_print_names list; return ;;
    --profile) _quorvik_print_names profiles; return ;;
    --before) _quorvik_print_names queue; return ;;
    --state) words="waiting held printing paper-out done failed" ;;
    --output) compopt -o default 2>/dev/null; return ;;
    --server|VALUES) return ;;
  esac
  if [[ -n $words ]]; then
    _quorvik_print_offer < <(printf '%s\n' $words)
    return
  fi
  case $command in
    "") words="COMMANDS" options="--server --help --version" ;;
)";

constexpr char kTail[] = R"(  esac
  if [[ $word == -* ]]; then
    _quorvik_print_offer < <(printf '%s\n' $options)
  elif [[ $words == FILES ]]; then
    compopt -o default 2>/dev/null
  elif [[ $words == JOBS ]]; then
    _quorvik_print_names queue
  elif [[ $words == PRINTERS ]]; then
    _quorvik_print_names list
  else
    _quorvik_print_offer < <(printf '%s\n' $words)
  fi
}
complete -F _quorvik_print quorvik-print
)";

void Replace(std::string* text, const std::string& what, const std::string& with) {
  for (size_t at = 0; (at = text->find(what, at)) != std::string::npos; at += with.size()) {
    text->replace(at, what.size(), with);
  }
}

// Names between `separator`.
template <typename Rows, typename Take>
std::string Names(const Rows& rows, const char* separator, Take take) {
  std::string names;
  for (const auto& row : rows) {
    if (take(row)) names += (names.empty() ? "" : separator) + std::string(row.name);
  }
  return names;
}

}  // namespace

std::string CompletionText() {
  constexpr const char* kWords[] = {"", "FILES", "JOBS", "PRINTERS"};
  std::string text = kHead;
  Replace(&text, "VALUES", Names(OptionRows(), "|", [](const OptionRow& row) {
    const bool has_value = row.text || row.number || row.option == kColourOption;
    return has_value && row.option != kServerOption;
  }));
  Replace(&text, "COMMANDS", Names(Commands(), " ", [](const Command&) { return true; }));
  for (const Command& command : Commands()) {
    const std::string options = Names(OptionRows(), " ", [&command](const OptionRow& row) {
      return (row.option & (command.options | kEveryCommand)) != 0;
    });
    text += std::string("    ") + command.name + ") words=\"" + kWords[command.words] +
            "\" options=\"" + options + "\" ;;\n";
  }
  return text + kTail;
}

}  // namespace cli
