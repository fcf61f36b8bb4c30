#include "printserver/words.h"

#include <errno.h>
#include <string.h>

#include <algorithm>
#include <string_view>

#include "printserver/nc.h"

namespace nc {

namespace {

constexpr const char* kJobStates[] = {"waiting",      "held",    "printing",
                                      "out of paper", "printed", "failed"};
constexpr const char* kPrinterStates[] = {"idle", "printing", "out of paper"};

template <size_t n>
const char* WordOf(int place, const char* const (&words)[n]) {
  return words[place >= 0 && place < static_cast<int>(n) ? place : 0];
}

struct Reason {
  std::string_view keyword;
  const char* text;
};
constexpr Reason kReasons[] = {
    {"printer-unknown", "there is no such printer"},
    {"printer-paused", "the printer is paused"},
    {"printer-refuses", "the printer takes no jobs"},
    {"output-error", "the output cannot be written"},
    {"disk-full", "the disk is full"},
    {"document-lost", "its document is lost"},
    {"document-unreadable", "its document cannot be read"},
    {"document-rejected", "the printer cannot print this document"},
    {"not-removed", "it could not be deleted"},
};

std::string ReasonText(std::string_view keyword) {
  for (const Reason& reason : kReasons) {
    if (reason.keyword == keyword) return reason.text;
  }
  std::string text(keyword);
  std::replace(text.begin(), text.end(), '-', ' ');
  return text;
}

}  // namespace

const char* JobStateText(NC_JobState state) {
  return WordOf(state, kJobStates);
}

const char* PrinterStateText(NC_PrinterState state) {
  return WordOf(state, kPrinterStates);
}

std::string ReasonsText(const char* reasons) {
  std::string text;
  std::string_view left = reasons ? reasons : "";
  while (!left.empty()) {
    const std::string_view keyword = left.substr(0, left.find(','));
    left.remove_prefix(std::min(keyword.size() + 1, left.size()));
    if (keyword.empty()) continue;
    if (!text.empty()) text += ", ";
    text += ReasonText(keyword);
  }
  return text;
}

const char* RefusalText(int status, Asked asked) {
  if (status == NC_STATUS_WRONG_STATE && asked == Asked::kPrint) {
    return "the printer takes no new jobs";
  }
  if (status == NC_STATUS_WRONG_STATE && asked == Asked::kPrinter) {
    return "not possible for a printer";
  }
  if (status == NC_STATUS_UNKNOWN_ID && asked == Asked::kPrinter) return "no such printer";
  return NC_StatusText(status);
}

std::string ConnectText(int code, int error) {
  switch (code) {
    case NC_NO_HOST:
      if (error == EINVAL) return "its port is not a number from 1 to 65535";
      return error == ETIMEDOUT ? "nobody says in time where this host is"
                                : "this host is not known";
    case NC_REFUSED:
      return "it refuses connections";
    case NC_NO_SERVER:
      return error == ETIMEDOUT ? "it does not answer" : "no server there";
    default:
      return "the system has no connection left";
  }
}

std::string FailureText(int error) {
  switch (error) {
    case ETIMEDOUT:
      return "it does not answer";
    case ECONNRESET:
    case EPIPE:
      return "it closed the connection";
    case EMSGSIZE:
      return "it announces more than can be taken";
    default:
      return strerror(error);
  }
}

}  // namespace nc
