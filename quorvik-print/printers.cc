// The commands that change printers: pause, resume, accept, refuse, load.
#include <string_view>
#include <vector>

#include "printserver/changes.h"
#include "printserver/read_lists.h"
#include "printserver/words.h"
#include "quorvik-print/cli.h"

namespace cli {

namespace {

struct Verb {
  std::string_view command;
  const char* key;
  int value;
  const char* done;
};
constexpr Verb kVerbs[] = {
    {"pause", "paused", 1, "paused"},        {"resume", "paused", 0, "resumed"},
    {"accept", "accepting", 1, "accepting"}, {"refuse", "accepting", 0, "refusing"},
    {"load", "paper-loaded", 1, "loaded"},
};

const NC_Printer* FindPrinter(const std::vector<NC_Printer>& printers, const std::string& name) {
  for (const NC_Printer& printer : printers) {
    if (name == printer.name) return &printer;
  }
  return nullptr;
}

int ChangeOne(Session& session, const Verb& verb, const NC_Printer& printer) {
  if (!printer.has_id) {
    return Fail(kRefused, std::string(printer.name) + ": this server's printers cannot be changed");
  }
  const int32_t status = nc::ChangePrinter(session.fd(), printer, verb.key, verb.value);
  if (status < 0)
    return Lost("; whether " + std::string(printer.name) + " was changed is not known");
  if (status != NC_STATUS_DONE) {
    return Fail(kRefused,
                std::string(printer.name) + ": " + nc::RefusalText(status, nc::Asked::kPrinter));
  }
  PrintLine(std::string(verb.done) + " " + printer.name);
  return kGood;
}

}  // namespace

int ChangePrinters(Session& session, const Options& options) {
  const Verb* verb = kVerbs;
  while (verb->command != options.command) ++verb;
  std::vector<NC_Printer> printers;
  if (!nc::ReadPrinters(session.fd(), &printers)) return Lost();
  int first = kGood;
  for (const std::string& name : options.words) {
    const NC_Printer* printer = FindPrinter(printers, name);
    const int code =
        printer ? ChangeOne(session, *verb, *printer) : Fail(kRefused, name + ": no such printer");
    Note(code, &first);
    if (code == kNoServer) break;
  }
  return first;
}

}  // namespace cli
