// Facts in the pane on the right: a name, and its value in as many lines as it needs, up to a few.
#pragma once
#include <string>
#include <vector>

#include "app/look/hits.h"
#include "app/look/style.h"
#include "app/model/queue_words.h"
#include "app/panes/scrolled_area.h"

namespace console {

constexpr int kFactName = 64, kFactLine = 20, kNextFactLine = 16;

// The lines of a value in an area of that width. They are broken after blanks where that leaves
// lines that are more than half full. A value that needs too many is cut in the middle.
std::vector<std::string> FactLines(const std::string& value, int width);
// Of all of them in an area of that width.
int FactsHeight(const std::vector<Fact>& facts, int width);
// Takes what it needs off the top of the area.
void DrawFact(Area* a, const char* name, const std::string& value, int32_t ink = TheStyle().ink);
// Describes those that are drawn from the top of the area, as far as they show. A value that is
// cut has a tip that tells all of it.
void CoverFacts(const std::vector<Fact>& facts, Area a, const ScrolledArea& scroll, Hits* hits);

}  // namespace console
