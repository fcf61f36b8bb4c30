#include "app/window/print_options.h"

#include "app/format/texts.h"
#include "app/window/commands.h"
#include "app/window/side_commands.h"

namespace console {
namespace {

constexpr int kPriorities[] = {10, 25, 50, 75, 100};
constexpr int kCopies[] = {1, 2, 3, 4, 5, 6, 8, 10, 12, 15, 20, 25, 50, 100};

struct Colour {
  const char* name;
  int rgb;
};
constexpr Colour kColours[] = {{"Red", 0xC0392B},    {"Orange", 0xD9822B}, {"Yellow", 0xE3B505},
                               {"Green", 0x2E8B57},  {"Teal", 0x1F9E9E},   {"Blue", 0x3875D7},
                               {"Violet", 0x7D4FB5}, {"Brown", 0x8A5A3C},  {"Grey", 0x7A7F87}};

CommandChoice Named(const std::string& name, const std::string& chosen) {
  const std::string shown = Shown(name);
  return {shown.empty() ? " " : shown, name == chosen};
}

void Changed(Console* c) {
  c->tools.ShowChoice();
  c->damage |= kToolsPane | kDetailsPane;
}

// The first choice is none of them.
std::vector<CommandChoice> OrNone(const char* none, const std::vector<std::string>& names,
                                  const std::string& chosen) {
  std::vector<CommandChoice> choices{{none, chosen.empty()}};
  for (const std::string& name : names) choices.push_back(Named(name, chosen));
  return choices;
}
std::string NameOf(const std::vector<std::string>& names, int choice) {
  return choice > 0 && size_t(choice) <= names.size() ? names[size_t(choice) - 1] : "";
}

std::vector<std::string> ProfileNames(const Console* c) {
  std::vector<std::string> names;
  for (const NC_Profile& p : *c->state.profiles) names.push_back(p.name);
  return names;
}
std::vector<std::string> MediaNames(const Console* c) {
  return MediaOf(ChosenPrinter(c->choice, c->state));
}

// Where a menu opens that belongs to a control of the tool bar.
void OpenBelow(Console* c, const Area& a) {
  const Area& at = a.Empty() ? c->layout.options : a;
  XwPopupLocation(c->window, at.x, at.bottom() + 2);
}

}  // namespace

std::vector<CommandChoice> NextPrinterChoices(const Console* c) {
  const NC_Printer* chosen = ChosenPrinter(c->choice, c->state);
  std::vector<CommandChoice> choices;
  for (const std::string& name : c->printers.Names())
    choices.push_back(Named(name, chosen ? chosen->name : c->choice.printer));
  return choices;
}
void ChooseNextPrinter(Console* c, int choice) {
  const std::vector<std::string> names = c->printers.Names();
  if (size_t(choice) < names.size()) ChoosePrinter(c, names[size_t(choice)]);
}

std::vector<CommandChoice> NextProfileChoices(const Console* c) {
  return OrNone("Usual", ProfileNames(c), c->choice.profile);
}
void ChooseNextProfile(Console* c, int choice) {
  c->choice.profile = NameOf(ProfileNames(c), choice);
  Changed(c);
}

std::vector<CommandChoice> NextMediaChoices(const Console* c) {
  return OrNone("Usual", MediaNames(c), c->choice.media);
}
void ChooseNextMedia(Console* c, int choice) {
  c->choice.media = NameOf(MediaNames(c), choice);
  Changed(c);
}

std::vector<CommandChoice> NextCopiesChoices(const Console* c) {
  std::vector<CommandChoice> choices;
  for (const int n : kCopies)
    choices.push_back({std::to_string(n), n == c->choice.copies && !c->choice.no_copies});
  choices.push_back({"Other…"});
  return choices;
}
void ChooseNextCopies(Console* c, int choice) {
  if (choice == int(std::size(kCopies))) return AskNextCopies(c);
  if (choice < int(std::size(kCopies))) SetNextCopies(c, kCopies[choice]);
}
void SetNextCopies(Console* c, int copies) {
  c->choice.copies = copies;
  c->choice.no_copies = false;
  Changed(c);
}

std::vector<CommandChoice> NextPriorityChoices(const Console* c) {
  std::vector<CommandChoice> choices;
  for (const int n : kPriorities) {
    const char* word = n == 10 ? " – lowest" : n == 50 ? " – usual" : n == 100 ? " – highest" : "";
    choices.push_back({std::to_string(n) + word, n == c->choice.priority});
  }
  return choices;
}
void ChooseNextPriority(Console* c, int choice) {
  if (size_t(choice) >= std::size(kPriorities)) return;
  c->choice.priority = kPriorities[choice];
  Changed(c);
}

void ChooseColour(Console* c) {
  constexpr int kNone = 1, kBefore = 2;  // items before the colours
  XwMenuItem items[kBefore + std::size(kColours) + 1] = {};
  const int chosen_now = c->choice.colour;
  items[0] = {"No Mark", chosen_now < 0 ? XWM_CHECKED : 0, kNone, nullptr};
  items[1] = {"", 0, 0, nullptr};
  int n = kBefore;
  for (const Colour& colour : kColours) {
    const int rgb = colour.rgb;
    items[n++] = {colour.name, XWM_COLOUR | (rgb == chosen_now ? XWM_CHECKED : 0), FromRgb(rgb),
                  nullptr};
  }
  OpenBelow(c, c->layout.colour);
  const int chosen = XwPopupMenu(items);
  if (!chosen) return;
  // A colour comes as its place in the menu, from 1 on, below 0.
  c->choice.colour = chosen == kNone ? -1 : kColours[-chosen - 1 - kBefore].rgb;
  Changed(c);
}

void HoldNext(Console* c) {
  c->choice.hold = !c->choice.hold;
  Changed(c);
}
bool HoldsNext(const Console* c) {
  return c->choice.hold;
}

void UseUsualOptions(Console* c) {
  const std::string printer = c->choice.printer;
  c->choice = {};
  c->choice.printer = printer;
  Changed(c);
}

void OpenOptions(Console* c) {
  OpenBelow(c, c->layout.options);
  OpenContextMenu(c, kOnOptions);
}

}  // namespace console
