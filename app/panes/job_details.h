// What is known of the selected jobs: in place of the selected document while the queue has the
// keyboard.
#pragma once
#include <string>
#include <vector>

#include "app/model/queue_words.h"
#include "app/panes/queue.h"

namespace console {

// "JOB 1187".
std::string JobCaption(const QueuePane& queue);
// Where all of it has room, at that width.
int JobFactsHeight(const QueuePane& queue, int width);
// In an area that is lower than that the lines stand closer, and values are cut to one.
void DrawJobFacts(const QueuePane& queue, Area a);
// For those who cannot see them.
void AddJobFacts(const QueuePane& queue, Area a, Hits* hits);

}  // namespace console
