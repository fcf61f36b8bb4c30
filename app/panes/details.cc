#include "app/panes/details.h"

#include <algorithm>
#include <ctime>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/look/style.h"
#include "app/panes/document_picture.h"
#include "app/panes/facts.h"
#include "app/panes/job_details.h"
#include "app/panes/queue_cells.h"
#include "app/panes/tools.h"

namespace console {
namespace {

constexpr int kCaption = 32, kPadding = 16, kBelowPrinter = 10;
// Of a picture: below it is a line that says why there is none, and six facts.
constexpr int kLeastPicture = 100, kUsualPicture = 220, kTroubleLine = 22, kFacts = 6 * 20;

std::vector<std::string> NameLines(const FolderEntry& e, const Area& a) {
  return FactLines(Shown(e.name), a.w);
}

// The chosen one, as the list of the printers tells it.
std::vector<Fact> FactsOfPrinter(const DetailsPane* pane) {
  const NC_Printer* p = ChosenPrinter(pane->choice, pane->state);
  const PrinterRow* row = p ? pane->printers.Find(p->name) : nullptr;
  if (!row) return {};
  return {{"Name", row->name},
          {"State", row->state, row->dot},
          {"Jobs", std::to_string(p->jobs)},
          {"Paper", row->paper.empty() ? "enough" : row->paper}};
}

// The height of the printer's part. The list of the printers tells all of them while it shows, and
// a job names its own printer.
int PrinterHeight(const DetailsPane* pane) {
  if (!pane->layout.printers.Empty() || pane->jobs) return 0;
  const int width = pane->layout.details.Inset(kPadding, 0).w;
  return kCaption + std::max(kFactLine, FactsHeight(FactsOfPrinter(pane), width)) + kBelowPrinter;
}

// The document's part of the pane, or that of the jobs, below its caption.
Area DocumentArea(const DetailsPane* pane) {
  Area a = pane->layout.details.Inset(kPadding, 0);
  a.TakeBottom(PrinterHeight(pane));
  a.TakeTop(kCaption + 6);
  return a;
}

std::string KindOfDocument(const Preview* preview, FileKind by_name) {
  const std::string kind = preview ? KindWords(*preview) : "";
  if (kind.empty()) return KindText(by_name);
  const bool tells_pages =
      preview->pages > 1 || (preview->pages == 1 && preview->kind == DocumentKind::kPdf);
  return tells_pages ? kind + ", " + CountText(preview->pages, "page", "pages") : kind;
}

// Where the name says that it is of a kind which is shown, and no reader knows it, it is damaged.
std::string TroubleOf(const Preview& preview, const std::string& name) {
  constexpr std::string_view kShown[] = {"pdf", "png", "jpg", "jpeg", "tif", "tiff"};
  const bool named =
      std::find(std::begin(kShown), std::end(kShown), FileKindKey(name)) != std::end(kShown);
  return named && preview.kind != DocumentKind::kEmpty &&
                 preview.trouble == PreviewTrouble::kNoPreview
             ? "This file is damaged: it cannot be read"
             : TroubleWords(preview);
}

void DrawPicture(const DetailsPane* p, const FolderEntry& e, FileKind kind, Area* a) {
  const Area box = p->PictureArea();
  if (box.Empty()) return;
  const bool shown = p->preview && DrawPreview(*p->preview, p->preview_scale, box);
  if (!shown) DrawKindSheet(box, e.name, kind);
  a->TakeTop(box.h);
  Area line = a->TakeTop(kTroubleLine).Inset(0, 3);
  if (p->preview)
    DrawLabel(TheStyle().small_text, Align::kCenter, line, TroubleOf(*p->preview, e.name),
              TheStyle().second);
}

FileKind KindOfEntry(const FolderEntry& e) {
  return e.folder ? FileKind::kFolder : KindOf(e.name);
}

// Of the selected document, those that are known.
std::vector<Fact> FactsOfDocument(const DetailsPane* p, const FolderEntry& e) {
  const Preview* preview = e.folder ? nullptr : p->preview.get();
  std::vector<Fact> facts = {{"Name", Shown(e.name)},
                             {"Kind", KindOfDocument(preview, KindOfEntry(e))}};
  if (!e.folder) facts.push_back({"Size", SizeText(e.size)});
  facts.push_back({"Modified", DayText(e.time, time(nullptr))});
  if (preview) facts.push_back({"Format", SizeWords(*preview)});
  if (preview) facts.push_back({"Colours", ColourWords(*preview)});
  std::erase_if(facts, [](const Fact& fact) { return fact.value.empty(); });
  return facts;
}

void DrawSelected(const DetailsPane* p, Area a) {
  const Style& l = TheStyle();
  const int row = p->selected;
  if (row < 0) {
    DrawLabel(l.view, Align::kLeft, a.TakeTop(20),
              p->several.empty() ? "Nothing is selected" : p->several, l.second);
    return;
  }
  const FolderEntry e = p->folder.At(row);
  DrawPicture(p, e, KindOfEntry(e), &a);
  for (const Fact& fact : FactsOfDocument(p, e)) DrawFact(&a, fact.name.c_str(), fact.value);
}

void AddDocumentHits(const DetailsPane* p, Area a, Hits* hits) {
  if (p->selected < 0) return;
  const FolderEntry e = p->folder.At(p->selected);
  if (const Area box = p->PictureArea(); !box.Empty()) {
    hits->Cover(a.TakeTop(box.h),
                {XWA_PICTURE, 0, "Preview", p->preview ? TroubleOf(*p->preview, e.name) : ""});
    a.TakeTop(kTroubleLine);
  }
  CoverFacts(FactsOfDocument(p, e), a, hits);
}

void DrawPrinter(const DetailsPane* pane, Area a) {
  const Style& l = TheStyle();
  const std::vector<Fact> facts = FactsOfPrinter(pane);
  if (facts.empty())
    DrawLabel(l.view, Align::kLeft, a.TakeTop(kFactLine),
              pane->state.link == Link::kReady ? "The server has none" : "None is known yet",
              l.second);
  for (const Fact& fact : facts) {
    const int32_t ink = InkOf(fact.tone);
    DrawFact(&a, fact.name.c_str(), fact.value,
             IsAway(pane->state.link) ? Dimmed(ink, l.side) : ink);
  }
}

}  // namespace

Area DetailsPane::PictureArea() const {
  if (selected < 0 || layout.details.Empty()) return {};
  const Area a = DocumentArea(this);
  const FolderEntry e = folder.At(selected);
  const int name = int(NameLines(e, a).size() - 1) * kNextFactLine;
  // In a large pane a larger one: half of its height at most.
  const int most = std::max(kUsualPicture, std::min(a.w * 5 / 4, a.h / 2));
  const int height = std::min(most, a.h - kTroubleLine - kFacts - name);
  if (e.folder || height < kLeastPicture) return {};
  return {a.x, a.y, a.w, height};
}

void DetailsPane::AddHits(Hits* hits) const {
  if (layout.details.Empty()) return;
  if (jobs)
    AddJobFacts(*jobs, DocumentArea(this), hits);
  else
    AddDocumentHits(this, DocumentArea(this), hits);
  const std::vector<Fact> printer = FactsOfPrinter(this);
  Area all = layout.details;
  if (!printer.empty())
    hits->Cover(all.TakeBottom(PrinterHeight(this)),
                {XWA_LABEL, 0, "Chosen Printer", printer[0].value + ": " + printer[1].value});
}

void DetailsPane::Draw() const {
  Area a = layout.details;
  if (a.Empty()) return;
  const Style& l = TheStyle();
  Fill(a, l.side);
  LineAtLeft(a);
  a = a.Inset(kPadding, 0);
  Area printer = a.TakeBottom(PrinterHeight(this));
  DrawCaption(a, jobs ? JobCaption(*jobs).c_str() : "DOCUMENT");
  if (jobs)
    DrawJobFacts(*jobs, DocumentArea(this));
  else
    DrawSelected(this, DocumentArea(this));
  if (printer.Empty()) return;
  DrawCaption(printer, "CHOSEN PRINTER");
  printer.TakeTop(kCaption);
  DrawPrinter(this, printer);
}

}  // namespace console
