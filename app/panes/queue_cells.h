// The cells of the queue's table.
#pragma once
#include "app/model/queue_words.h"
#include "app/server/server.h"
#include "app/table/table.h"

namespace console {

// In the order of the table's columns.
enum class QueueColumn : uint8_t {
  kNumber,
  kDocument,
  kOwner,
  kPrinter,
  kProfile,
  kProgress,
  kSize,
  kSubmitted,
  kPriority
};
std::vector<Column> QueueColumns();
// By which a column's head sorts; nothing for one that does not.
std::optional<QueueOrder> OrderOf(QueueColumn column);
// The column that shows an order; -1 for that in which the queue prints.
int ColumnOf(QueueOrder order);

// A transfer as the queue's rows have it.
Outgoing OutgoingOf(const Transfer& transfer);
// Of what is said in that tone, and of the dot beside it.
int32_t InkOf(Tone tone);
int32_t DotOf(Tone tone);

void DrawJobCell(const NC_Job& job, const RowWords& words, QueueColumn column,
                 const CellLook& cell);
void DrawOutgoingCell(const Outgoing& out, QueueColumn column, const CellLook& cell);
// The whole text of a cell that cuts it in that width; "" where all of it shows.
std::vector<std::string> CutJobTexts(const NC_Job& job, const RowWords& words,
                                     const std::vector<int>& widths);
std::vector<std::string> CutOutgoingTexts(const Outgoing& out, const std::vector<int>& widths);

}  // namespace console
