// Facts in the pane on the right: a name, and its value in as many lines as it needs, up to a few.
#pragma once
#include <string>
#include <vector>

#include "app/look/hits.h"
#include "app/look/style.h"
#include "app/model/queue_words.h"

namespace console {

constexpr int kFactName = 64, kFactLine = 20, kNextFactLine = 16;

// The lines of a value in an area of that width. They are broken after blanks where that leaves
// lines that are more than half full; the last one holds all that remains.
std::vector<std::string> FactLines(std::string value, int width);
// Of all of them in an area of that width.
int FactsHeight(const std::vector<Fact>& facts, int width);
// Takes what it needs off the top of the area. On a lower line than kFactLine the value is cut in
// the middle.
void DrawFact(Area* a, const char* name, const std::string& value, int32_t ink = TheStyle().ink,
              int line = kFactLine);
// Describes facts that are drawn from the top of the area.
void CoverFacts(const std::vector<Fact>& facts, Area a, Hits* hits, int line = kFactLine);

}  // namespace console
