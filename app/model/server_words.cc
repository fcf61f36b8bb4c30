#include "app/model/server_words.h"

#include "app/format/cut.h"
#include "app/format/texts.h"
#include "app/format/words.h"

namespace console {
namespace {

constexpr int kMostHost = 40;  // characters

}  // namespace

std::string AwayText(const std::string& host, const std::string& trouble, int left_s) {
  const std::string what = CutMiddle(Shown(host), kMostHost) + " " + trouble + ". ";
  if (left_s <= 0) return what + "Trying again…";
  return what + "Next try in " + NumberText(left_s) + " s.";
}

std::string OldListText(int64_t seen, int64_t now) {
  if (seen == 0) return "";
  const std::string when = HourText(seen, now);
  const bool today = when.find(':') != std::string::npos;
  return std::string("The list is as it was ") + (today ? "at " : "on ") + when + ".";
}

}  // namespace console
