// The preview of the selected document: when it is asked for, and what becomes of it.
#include <algorithm>

#include "app/window/console.h"

namespace console {
namespace {

// What the selection needs; nothing when it is no document, or nobody would see it.
PreviewSubject SubjectOf(const Console* c) {
  const DetailsPane& pane = c->details;
  if (pane.selected < 0 || pane.layout.details.Empty()) return {};
  const FolderEntry e = c->files.folder.At(pane.selected);
  if (e.folder) return {};
  PreviewSubject subject;
  subject.request.path = c->files.folder.PathOf(pane.selected);
  // A thread more would hang, too.
  if (FolderIsSilent(c))
    return subject.request.path == c->previewed.request.path ? c->previewed : PreviewSubject();
  // Where there is no room for the picture, the facts are still of use.
  const Area box = pane.PictureArea();
  subject.scale = XwGetScale(c->window);
  subject.request.width = std::max(1, int(box.w * subject.scale));
  subject.request.height = std::max(1, int(box.h * subject.scale));
  subject.size = e.size;
  subject.time = e.time;
  return subject;
}

}  // namespace

void UpdatePreview(Console* c) {
  PreviewSubject subject = SubjectOf(c);
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
  c->details.preview_scale = c->previewed.scale;
  c->damage |= kDetailsPane;
  DrawConsole(c);
}

}  // namespace console
