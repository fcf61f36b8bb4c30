// The preview of the selected document, or job: when it is asked for, and what becomes of it.
#include <algorithm>

#include "app/window/console.h"

namespace console {
namespace {

constexpr size_t kMostSent = 1000;

// What the selection needs, without its sizes.
PreviewSubject DocumentOf(const Console* c) {
  const DetailsPane& pane = c->details;
  PreviewSubject subject;
  if (pane.jobs) {
    const SentFile file = FileOfJob(c);
    subject.request.path = file.path;
    subject.request.size = file.size;
    subject.request.modified_ns = file.modified_ns;
    return subject;
  }
  if (pane.selected < 0) return {};
  const FolderEntry e = c->files.folder.At(pane.selected);
  if (e.folder) return {};
  subject.request.path = c->files.folder.PathOf(pane.selected);
  subject.size = e.size;
  subject.time = e.time;
  return subject;
}

// Nothing when it is no document, or nobody would see it.
PreviewSubject SubjectOf(const Console* c) {
  const DetailsPane& pane = c->details;
  if (pane.layout.details.Empty()) return {};
  PreviewSubject subject = DocumentOf(c);
  if (subject.request.path.empty()) return {};
  // A thread more would hang, too.
  if (FolderIsSilent(c))
    return subject.request.path == c->previewed.request.path ? c->previewed : PreviewSubject();
  const Area box = pane.PictureArea();
  subject.scale = XwGetScale(c->window);
  subject.request.width = std::max(1, int(box.w * subject.scale));
  subject.request.height = std::max(1, int(box.h * subject.scale));
  return subject;
}

}  // namespace

void NoteSent(Console* c) {
  for (const Arrival& a : c->state.arrivals) {
    const auto same = [&a](const Arrival& known) { return known.number == a.number; };
    if (std::any_of(c->sent.begin(), c->sent.end(), same)) continue;
    if (c->sent.size() >= kMostSent) c->sent.erase(c->sent.begin());
    c->sent.push_back(a);
  }
}

SentFile FileOfJob(const Console* c) {
  const std::vector<QueueId> ids = c->queue.Selected();
  if (ids.size() != 1) return {};
  for (const Transfer& t : c->state.transfers)
    if (ids[0].outgoing && t.number == ids[0].outgoing) return FileOf(t);
  for (const Arrival& a : c->sent)
    if (!ids[0].outgoing && a.id == ids[0].job) return a.file;
  return {};
}

namespace {

// The page counts for one document as it is now.
void KeepPage(DetailsPane* pane, const PreviewSubject& before, PreviewSubject* subject) {
  const PreviewRequest &was = before.request, &is = subject->request;
  const bool same = is.path == was.path && is.size == was.size &&
                    is.modified_ns == was.modified_ns && subject->size == before.size &&
                    subject->time == before.time;
  if (!same) pane->page = 1, pane->pages = 0, pane->tall_page = 0;
  if (!is.path.empty()) subject->request.page = pane->page;
}

// Only the first picture of each page counts: the size of the next one that is asked for depends
// on it.
void NoteShape(DetailsPane* pane) {
  const Preview& preview = *pane->preview;
  if (preview.pixels.empty() || preview.request.page == pane->tall_page) return;
  pane->tall = preview.width < preview.height;
  pane->tall_page = preview.request.page;
}

}  // namespace

void UpdatePreview(Console* c) {
  PreviewSubject subject = SubjectOf(c);
  KeepPage(&c->details, c->previewed, &subject);
  if (subject == c->previewed) return;
  // The same document keeps its picture until there is a new one.
  const bool same = subject.request.path == c->previewed.request.path;
  if (!same && c->details.preview) {
    c->details.preview = nullptr;
    c->damage |= kDetailsPane;
  }
  c->previewed = std::move(subject);
  if (c->previewed.request.path.empty()) return c->previews.Drop();
  // A kind with a dot: how long a preview takes is nothing that a replay should wait for.
  c->previews.Ask(c->previewed.request, [] { XwPost(".preview", nullptr, ShowPreview, nullptr); });
}

void TakePreview(Console* c) {
  auto preview = c->previews.Take();
  if (!preview) return;  // it was asked for again in between
  c->details.preview = std::move(preview);
  NoteShape(&c->details);
  // Without a picture of this page there may be one of another.
  if (c->details.preview->pages > 0) c->details.pages = c->details.preview->pages;
  c->details.page = std::min(c->details.page, std::max(c->details.pages, 1));
  c->details.preview_scale = c->previewed.scale;
  c->damage |= kDetailsPane;
  DrawConsole(c);
}

}  // namespace console
