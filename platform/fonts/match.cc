// Exact matching of names, and the families that stand in for well-known ones.
#include <algorithm>
#include <climits>
#include <cstdlib>

#include "platform/fonts/finder.h"

namespace platform {
namespace {

struct StandIn {
  const char* name;  // without spaces
  const char* families[5];
};
// The same advances as the named family where such fonts exist, else the nearest in width.
constexpr StandIn kStandIns[] = {
    {"Helvetica", {"Nimbus Sans", "Liberation Sans", "TeX Gyre Heros", "Arimo", "FreeSans"}},
    {"Times", {"Nimbus Roman", "Liberation Serif", "TeX Gyre Termes", "Tinos", "FreeSerif"}},
    {"Courier", {"Nimbus Mono PS", "Liberation Mono", "TeX Gyre Cursor", "Cousine", "FreeMono"}},
    {"LucidaGrande", {"DejaVu Sans", "Bitstream Vera Sans", "Noto Sans", nullptr, nullptr}},
    {"Geneva", {"DejaVu Sans", "Bitstream Vera Sans", "Noto Sans", nullptr, nullptr}},
    {"Monaco",
     {"DejaVu Sans Mono", "Bitstream Vera Sans Mono", "Liberation Mono", nullptr, nullptr}},
};

bool Has(const std::vector<std::string>& list, const std::string& s) {
  return std::find(list.begin(), list.end(), s) != list.end();
}

bool TakeSuffix(std::string* name, const std::string& suffix) {
  if (!name->ends_with(suffix)) return false;
  name->resize(name->size() - suffix.size());
  return true;
}

// The face of a family that comes nearest to plain.
const FontEntry* RegularOf(const FontCatalogue& catalogue, const std::string& family) {
  const FontEntry* best = nullptr;
  int best_distance = INT_MAX;
  for (const FontEntry& e : catalogue.entries) {
    if (!Has(e.families, family)) continue;
    int distance = std::abs(e.weight - 80) + e.slant * 10 + std::abs(e.width - 100) * 10;
    if (distance < best_distance) {
      best = &e;
      best_distance = distance;
    }
  }
  return best;
}

const FontEntry* StyleOf(const FontCatalogue& catalogue, const std::string& family, bool bold,
                         bool italic, bool narrow) {
  for (const FontEntry& e : catalogue.entries) {
    bool named = Has(e.families, family) || (narrow && Has(e.families, family + " Narrow"));
    if (named && e.bold() == bold && e.italic() == italic && e.narrow() == narrow &&
        (bold || (e.weight >= 70 && e.weight <= 100)))
      return &e;
  }
  return nullptr;
}

const FontEntry* MatchStandIn(const FontCatalogue& catalogue, std::string name) {
  bool italic = TakeSuffix(&name, "-Italic");
  bool bold = TakeSuffix(&name, "-Bold");
  bool narrow = TakeSuffix(&name, "-Narrow");
  std::erase(name, ' ');
  for (const StandIn& s : kStandIns) {
    if (name != s.name) continue;
    for (const char* family : s.families) {
      if (!family) break;
      if (const FontEntry* e = StyleOf(catalogue, family, bold, italic, narrow)) return e;
    }
  }
  return nullptr;
}

}  // namespace

const FontEntry* MatchFont(const FontCatalogue& catalogue, const std::string& name) {
  if (name.empty()) return nullptr;
  for (const FontEntry& e : catalogue.entries)
    if (e.postscript == name) return &e;
  for (const FontEntry& e : catalogue.entries)
    if (Has(e.full_names, name)) return &e;
  if (const FontEntry* e = RegularOf(catalogue, name)) return e;
  return MatchStandIn(catalogue, name);
}

}  // namespace platform
