// Lists: controls that show one column of rows of text, of which one may be selected.
//
// Rows count from 0. Texts are UTF-8, copied. Null and stale controls, those that are no lists, and
// rows that are not there are ignored. What changes rows or the selection draws nothing:
// Draw1Control shows it.
#pragma once
#include <string_view>
#include <vector>

#include "platform/access/access.h"
#include "platform/controls/controls.h"

namespace platform {

// The part of its hits.
constexpr int kControlListBoxPart = 24;

// Empty, hidden and inactive. The pointer and the keyboard select rows; each row that is chosen so
// becomes the last click, and the hit is sent.
ControlRef CreateListBoxControl(PaneRef pane, const Rect& bounds);
int ListRowCount(ControlRef c);
// After rows were added, set or deleted: shows them, and how far there is to scroll.
void ListShowRows(ControlRef c);
// "" for a row that is not there. Valid until the next change.
std::string_view ListRowText(ControlRef c, int row);
void ListAddRow(ControlRef c, std::string_view utf8);
void ListSetRow(ControlRef c, int row, std::string_view utf8);
// From `row` to the end. The selection goes with its row.
void ListDeleteRows(ControlRef c, int row);
// -1, or a row that is not there: none. Draws nothing: Draw1Control shows it.
void ListSelectRow(ControlRef c, int row);
int ListSelectedRow(ControlRef c);
// Scrolls as little as it takes to bring the selected row into view.
void ListAutoScroll(ControlRef c);
// The row that was chosen last, -1 after it has been taken back.
int ListLastClick(ControlRef c);
void SetListLastClick(ControlRef c, int row);

// The rows in view.
void DescribeListRows(ControlRef c, std::vector<DescribedNode>* rows);
// Chooses the described row with this serial as the pointer does; false when there is none.
bool PressListRow(ControlRef c, uint64_t serial);

}  // namespace platform
