#include "quorvik-print/table.h"

#include <algorithm>
#include <string_view>

#include "printserver/visible.h"
#include "printserver/words.h"
#include "quorvik-print/text.h"

namespace cli {

namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string Words(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(','));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    out += (out.empty() ? "" : ", ") + Quoted(word);
  }
  return "[" + out + "]";
}

std::string JsonValue(const std::string& value, Kind kind) {
  switch (kind) {
    case Kind::kNumber:
      return value.empty() ? "null" : value;
    case Kind::kFlag:
      return value == "1" ? "true" : "false";
    case Kind::kWords:
      return Words(value);
    default:
      return Quoted(value);
  }
}

void ShowJson(const std::vector<Column>& columns, const Rows& rows) {
  Print("[");
  for (size_t at = 0; at < rows.size(); ++at) {
    std::string line = at == 0 ? "\n  {" : ",\n  {";
    for (size_t i = 0; i < columns.size(); ++i) {
      if (!columns[i].key) continue;
      if (line.back() != '{') line += ", ";
      line += Quoted(columns[i].key) + ": " + JsonValue(rows[at][i], columns[i].kind);
    }
    Print(line + "}");
  }
  Print(rows.empty() ? "]\n" : "\n]\n");
}

// Values hold no tab and no line feed once they are fit for a terminal.
void ShowTabs(const std::vector<Column>& columns, const Rows& rows) {
  std::string line;
  for (const Column& column : columns) {
    if (column.key) line += (line.empty() ? "" : "\t") + std::string(column.key);
  }
  Print(line + "\n");
  for (const auto& row : rows) {
    line.clear();
    bool first = true;
    for (size_t i = 0; i < columns.size(); ++i) {
      if (!columns[i].key) continue;
      if (!first) line += '\t';
      first = false;
      line += nc::VisibleName(row[i]);
    }
    Print(line + "\n");
  }
}

std::string Cell(const std::string& value, Kind kind) {
  if (kind == Kind::kFlag) return value == "1" ? "yes" : "";
  return nc::VisibleName(value);
}

// Two places between columns.
void ShowColumns(const std::vector<Column>& columns, const Rows& rows) {
  std::vector<size_t> widths(columns.size());
  for (size_t i = 0; i < columns.size(); ++i) {
    for (const auto& row : rows) {
      widths[i] = std::max(widths[i], Width(Cell(row[i], columns[i].kind)));
    }
    if (columns[i].title && widths[i] > 0) {
      widths[i] = std::max(widths[i], Width(columns[i].title));
    }
  }
  const auto show = [&](auto value) {
    std::string line;
    for (size_t i = 0; i < columns.size(); ++i) {
      if (!columns[i].title || widths[i] == 0) continue;
      const std::string text = value(i);
      line += text + std::string(widths[i] - Width(text) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    Print(line + "\n");
  };
  show([&](size_t i) { return std::string(columns[i].title); });
  for (const auto& row : rows) {
    show([&](size_t i) { return Cell(row[i], columns[i].kind); });
  }
}

}  // namespace

std::string NumberCell(int64_t number) {
  return number < 0 ? "" : std::to_string(number);
}

std::string RemarkCell(const char* reasons, const char* text) {
  std::string remark = nc::ReasonsText(reasons);
  if (!remark.empty() && text[0]) remark += ": ";
  return remark + text;
}

void ShowTable(const Options& options, const std::vector<Column>& columns, const Rows& rows,
               const char* empty) {
  if (options.Has(kJsonOption)) {
    ShowJson(columns, rows);
  } else if (options.Has(kTsvOption)) {
    ShowTabs(columns, rows);
  } else if (rows.empty()) {
    Print(std::string(empty) + "\n");
  } else {
    ShowColumns(columns, rows);
  }
}

}  // namespace cli
