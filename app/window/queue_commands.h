// The queue's commands, for the table of commands and for what is done to the queue by the pointer.
#pragma once
#include <string>
#include <vector>

#include "app/model/queue_verbs.h"
#include "app/window/command_table.h"

namespace console {

// --- Verbs: of all jobs that are selected and allow it.
// Why none of them does: a sentence without its full stop, "" when one does.
std::string WhyNotChange(const Console* c, Verb verb);
// Asks first where a removal concerns others. The rows show at once what is being done.
void ChangeJobs(Console* c, const JobChange& change);
// The same of these jobs, of which some may have gone or changed: where none allows it, the status
// line says why.
void ChangeThese(Console* c, const std::vector<QueueId>& jobs, const JobChange& change);
// Opens a window with a box for any number, kPriority or kCopies, of the selected jobs
// (number_window.cc).
void AskNumber(Console* c, Verb verb);
void CloseNumberWindow();
// What they are set to, as items of a menu.
std::vector<CommandChoice> PriorityChoices(const Console* c);
void ChoosePriority(Console* c, int choice);
std::vector<CommandChoice> CopiesChoices(const Console* c);
void ChooseCopies(Console* c, int choice);
std::vector<CommandChoice> MediaChoices(const Console* c);
std::vector<CommandChoice> ProfileChoices(const Console* c);
std::vector<CommandChoice> PrinterChoices(const Console* c);
// One place up (-1) or down (1) among the jobs of their printer.
void MoveJobs(Console* c, int by);
// Before that row, or to that printer, by a drag; says why not.
void DropJobs(Console* c, int gap);
// For which of the selected jobs a move to that printer is possible, or why for none of them.
VerbCheck CheckMoveTo(const Console* c, const std::string& printer);
void MoveJobsTo(Console* c, const std::string& printer);

// Opens the pane of details where it is hidden.
void ShowJobDetails(Console* c);
std::string WhyNotShowJob(const Console* c);

// --- What the queue shows
std::vector<CommandChoice> SortChoices(const Console* c);
void ChooseSort(Console* c, int choice);
std::vector<CommandChoice> PartChoices(const Console* c);
void ChoosePart(Console* c, int choice);
bool ShowsMine(const Console* c);
void ToggleMine(Console* c);
void GoToQueueFilter(Console* c);
bool FilterHidesJobs(const Console* c);
void ShowAllJobs(Console* c);
void FilterQueue(Console* c, const QueueFilter& filter);
// A report of the box with the filter: 788 (gained or lost), 789, 790.
void UseQueueFilter(Console* c, int type, bool gained);
// Of the queue's other controls; those with another's id are ignored.
void UseQueueControl(Console* c, int id, int value);

}  // namespace console
