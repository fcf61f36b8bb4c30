// A list in one of its three forms: columns for a person, lines with tabs between, JSON.
#pragma once

#include <string>
#include <vector>

#include "quorvik-print/cli.h"

namespace cli {

// How a value stands in JSON. An empty number is null.
enum class Kind { kText, kNumber, kFlag, kWords };

struct Column {
  const char* key;    // in the forms for scripts; null: for a person alone
  const char* title;  // for a person; null: for scripts alone
  Kind kind = Kind::kText;
};

// Values of cells: a number, empty where it is not known (negative); why something stands as it
// does, and what the server says of it.
std::string NumberCell(int64_t number);
std::string RemarkCell(const char* reasons, const char* text);

// Prints rows of as many values as there are columns. For a person a list without rows is `empty`,
// flags are "yes" or nothing, and a column in which no row has anything is left out.
void ShowTable(const Options& options, const std::vector<Column>& columns,
               const std::vector<std::vector<std::string>>& rows, const char* empty);

}  // namespace cli
