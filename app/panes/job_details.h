// What is known of the selected jobs: in place of the selected document while the queue has the
// keyboard.
#pragma once
#include <string>
#include <vector>

#include "app/model/queue_words.h"
#include "app/panes/queue.h"
#include "app/panes/scrolled_area.h"

namespace console {

// "JOB 1187".
std::string JobCaption(const QueuePane& queue);
// What all of it takes at that width.
int JobFactsHeight(const QueuePane& queue, int width);
void DrawJobFacts(const QueuePane& queue, Area a);
// For those who cannot see them, as far as they show.
void AddJobFacts(const QueuePane& queue, const Area& a, const ScrolledArea& scroll, Hits* hits);

}  // namespace console
