#include "app/panes/details.h"

#include <algorithm>
#include <ctime>
#include <optional>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/look/side_marks.h"
#include "app/look/style.h"
#include "app/model/crumbs.h"
#include "app/panes/document_picture.h"
#include "app/panes/facts.h"
#include "app/panes/ids.h"
#include "app/panes/job_details.h"
#include "app/panes/queue_cells.h"
#include "app/panes/tools.h"

namespace console {
namespace {

constexpr int kCaption = 38, kPrinterCaption = 32, kPadding = 16, kBelow = 10;
// Of a picture: what it has at least, where the rest scrolls. Below it is a line that says why
// there is none, and six facts.
constexpr int kLeastPicture = 132, kUsualPicture = 220, kAround = 4, kTroubleLine = 22,
              kTroubleGap = 6, kFacts = 6 * kFactLine;
// Of the buttons for the pages, which stand in the line of the caption.
constexpr int kPagerTop = 6, kPagerHeight = 22;
// Of facts that stand beside the picture.
constexpr int kFactsBeside = 210;

// The chosen one, as the list of the printers tells it.
std::vector<Fact> FactsOfPrinter(const DetailsPane* pane) {
  const NC_Printer* p = ChosenPrinter(pane->choice, pane->state);
  const PrinterRow* row = p ? pane->printers.Find(p->name) : nullptr;
  if (!row) return {};
  return {{"Name", row->name},
          {"State", row->state, row->dot},
          {"Jobs", NumberText(p->jobs)},
          {"Paper", row->paper.empty() ? "enough" : row->paper}};
}

// The list of the printers tells all of them while it shows, and a job names its own printer.
bool ShowsPrinter(const DetailsPane* pane) {
  return pane->layout.printers.Empty() && !pane->jobs;
}

std::string KindOfDocument(const Preview* preview, FileKind by_name) {
  const std::string kind = preview ? KindWords(*preview) : "";
  // Its name says text, and it holds none.
  const bool is_data = preview && preview->trouble == PreviewTrouble::kNoPreview;
  if (kind.empty()) return is_data && by_name == FileKind::kText ? "Data" : KindText(by_name);
  const bool tells_pages =
      preview->pages > 1 || (preview->pages == 1 && preview->kind == DocumentKind::kPdf);
  return tells_pages ? kind + ", " + CountText(preview->pages, "page", "pages") : kind;
}

// Where the name says that it is of a kind which is shown, and no reader knows it, it is damaged.
std::string TroubleOf(const Preview& preview, const std::string& name, int pages) {
  constexpr std::string_view kShown[] = {"pdf", "png", "jpg", "jpeg", "tif", "tiff"};
  const bool named =
      std::find(std::begin(kShown), std::end(kShown), FileKindKey(name)) != std::end(kShown);
  return named && preview.kind != DocumentKind::kEmpty &&
                 preview.trouble == PreviewTrouble::kNoPreview
             ? "This file is damaged: it cannot be read"
             : TroubleWords(preview, pages);
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

bool IsOneJob(const DetailsPane* p) {
  return p->jobs && p->jobs->Selected().size() == 1;
}

// Where all of it stands, in sight or not.
struct Parts {
  Area picture, trouble, facts, printer;
  int height = 0;
};

// What a picture is of.
struct Pictured {
  std::string path, name;
  FileKind kind = FileKind::kOther;
};
std::optional<Pictured> PicturedBy(const DetailsPane* p) {
  if (p->jobs && p->job_file.empty()) return {};
  if (p->jobs) return Pictured{p->job_file, LastName(p->job_file), KindOf(p->job_file)};
  if (p->selected < 0) return {};
  const FolderEntry e = p->folder.At(p->selected);
  if (e.folder) return {};
  return Pictured{p->folder.PathOf(p->selected), e.name, KindOf(e.name)};
}

int FactsHeight(const DetailsPane* p, int width) {
  if (p->jobs) return JobFactsHeight(*p->jobs, width);
  if (p->selected < 0) return kFactLine;
  return FactsHeight(FactsOfDocument(p, p->folder.At(p->selected)), width);
}

// All that the facts leave, up to what a page that is as wide as the pane needs. Where that is
// little, the printer is scrolled to.
int PictureHeight(const DetailsPane* p, int width, int height, int facts, int printer) {
  const std::optional<Pictured> of = PicturedBy(p);
  if (!of) return 0;
  const int name = int(FactLines(Shown(of->name), width).size() - 1) * kNextFactLine;
  const int most = std::max(kUsualPicture, width * 3 / 2);
  const int below = kTroubleLine + std::max(kFacts + name, facts) + kBelow;
  const int room = std::max(height - printer, std::min(height, kUsualPicture + below)) - below;
  return std::clamp(room, kLeastPicture, most);
}

// The height of the picture of a page that has the facts beside it; 0 where it has not. In a wide
// and low pane that is more than with the facts below it.
int HeightBesideFacts(const DetailsPane* p, int width, int height) {
  if (!p->tall || !PicturedBy(p)) return 0;
  return std::min(height - kTroubleLine - kBelow, (width - kFactsBeside - kPadding) * 3 / 2);
}

// The printer stands at the bottom, or behind the rest where that scrolls.
Parts LayOutParts(const DetailsPane* p) {
  const Area view = p->scroll.Body();
  Area a = view.Inset(kPadding, 0);
  const int printer = ShowsPrinter(p) ? kPrinterCaption + kBelow +
                                            std::max(kFactLine, FactsHeight(FactsOfPrinter(p), a.w))
                                      : 0;
  const int below = PictureHeight(p, a.w, view.h, FactsHeight(p, a.w), printer);
  const int beside = HeightBesideFacts(p, a.w, view.h - printer);
  const bool is_beside = beside > below;
  const int picture = std::max(below, beside);
  const int facts = FactsHeight(p, is_beside ? kFactsBeside : a.w);
  Parts parts;
  // That a job has no picture stands a little above the facts.
  const int gap = picture == 0 ? kTroubleGap : 0;
  const int trouble = picture > 0 || IsOneJob(p) ? kTroubleLine + gap : 0;
  const int both = picture + trouble;
  parts.height = (is_beside ? std::max(both, facts) : both + facts) + kBelow + printer;
  a.h = std::max(parts.height, view.h);
  a.y -= p->scroll.top();
  parts.printer = a.TakeBottom(printer);
  Area column = is_beside ? a.TakeRight(kFactsBeside) : Area{};
  if (is_beside) a.TakeRight(kPadding);
  parts.picture = a.TakeTop(picture).Inset(0, kAround);
  parts.trouble = a.TakeTop(trouble);
  parts.facts = (is_beside ? column : a).TakeTop(facts);
  return parts;
}

// What is shown, in a word: while it is the same, it stays where it was scrolled to.
std::string SubjectOf(const DetailsPane* p) {
  if (!p->jobs) return p->selected < 0 ? p->several : p->folder.PathOf(p->selected);
  std::string text = "jobs";
  for (const QueueId& id : p->jobs->Selected()) {
    text += "," + std::to_string(id.outgoing) + ":";
    text.append(id.job.begin(), id.job.end());
  }
  return text;
}

// The line below the picture, or in its place.
std::string TroubleLine(const DetailsPane* p) {
  if (const std::optional<Pictured> of = PicturedBy(p))
    return p->preview ? TroubleOf(*p->preview, of->name, p->pages) : "";
  return IsOneJob(p) ? "No preview: it was not sent from here" : "";
}

// Where one page of several shows: two buttons with the page between them at the right of the
// caption, which has what is left. They stand there for every page, wherever the rest is scrolled.
struct Pager {
  Area caption, previous, text, next;
};

std::string PageText(const DetailsPane* p) {
  return NumberText(p->page) + " of " + NumberText(p->pages);
}

Pager LayOutPager(const DetailsPane* p) {
  constexpr int kButton = 22, kGap = 6;
  Pager pager;
  pager.caption = p->layout.details.Inset(kPadding, 0).TakeTop(kCaption);
  if (!p->HasPages()) return pager;
  // As wide on each page.
  const std::string widest = NumberText(p->pages) + " of " + NumberText(p->pages);
  const int text = XwTextWidthUtf8(TheStyle().small_text, widest.c_str()) + 2 * kGap;
  Area line = pager.caption.TakeRight(text + 2 * kButton);
  line.y += kPagerTop, line.h = kPagerHeight;
  pager.previous = line.TakeLeft(kButton);
  pager.next = line.TakeRight(kButton);
  pager.text = line;
  return pager;
}

void DrawPageButton(const Area& a, bool back, bool enabled, bool lit) {
  const Style& l = TheStyle();
  const int32_t ink = enabled ? l.ink : Dimmed(l.ink, l.side);
  XwRoundBox(a.x, a.y, a.w, a.h, 4, enabled && lit ? l.pressed : l.face, l.line);
  DrawStep(a.x + (a.w - 12) / 2, a.y + (a.h - 12) / 2, back, ink);
}

void DrawPager(const DetailsPane* p, const Pager& pager, const Hit& hover) {
  if (!p->HasPages()) return;
  const Style& l = TheStyle();
  DrawPageButton(pager.previous, true, p->page > 1,
                 hover == Hit{kPages, DetailsPane::kPreviousPage, 0});
  DrawPageButton(pager.next, false, p->page < p->pages,
                 hover == Hit{kPages, DetailsPane::kNextPage, 0});
  DrawLabel(l.small_text, Align::kCenter, pager.text, PageText(p), l.second);
}

void AddPagerHits(const DetailsPane* p, const Pager& pager, Hits* hits) {
  if (!p->HasPages()) return;
  const struct {
    int part;
    const char* name;
    Area area;
    bool enabled;
  } kButtons[] = {
      {DetailsPane::kPreviousPage, "Previous Page", pager.previous, p->page > 1},
      {DetailsPane::kNextPage, "Next Page", pager.next, p->page < p->pages},
  };
  for (const auto& b : kButtons)
    hits->Add({kPages, b.part, 0}, b.area,
              {XWA_BUTTON, b.enabled ? 0 : uint32_t{XWT_DISABLED}, b.name, "", b.name});
  hits->Cover(pager.text, {XWA_LABEL, 0, "Page", PageText(p)});
}

void DrawPicture(const DetailsPane* p, const Parts& parts) {
  const Style& l = TheStyle();
  const std::optional<Pictured> of = PicturedBy(p);
  if (of && !(p->preview && DrawPreview(*p->preview, p->preview_scale, parts.picture)))
    DrawKindSheet(parts.picture, of->name, of->kind);
  DrawLabel(l.small_text, of ? Align::kCenter : Align::kLeft, parts.trouble, TroubleLine(p),
            l.second);
}

// A narrow pane has no room for it beside the buttons.
void DrawDetailsCaption(const DetailsPane* p, const Area& a) {
  const std::string text = p->jobs ? JobCaption(*p->jobs) : "DOCUMENT";
  if (XwTextWidthUtf8(TheStyle().caption, text.c_str()) <= a.w) DrawCaption(a, text.c_str());
}

void DrawSelected(const DetailsPane* p, Area a) {
  const Style& l = TheStyle();
  if (p->selected < 0)
    return DrawLabel(l.view, Align::kLeft, a,
                     p->several.empty() ? "Nothing is selected" : p->several, l.second);
  for (const Fact& fact : FactsOfDocument(p, p->folder.At(p->selected)))
    DrawFact(&a, fact.name.c_str(), fact.value);
}

std::string NoPrinterText(const DetailsPane* pane) {
  if (pane->printers.ChosenIsGone()) return Quoted(pane->printers.chosen()) + " is gone";
  if (pane->state.link != Link::kReady) return "None is known yet";
  return pane->printers.rows().empty() ? "The server has none" : "None is chosen";
}

void DrawPrinter(const DetailsPane* pane, Area a) {
  const Style& l = TheStyle();
  DrawCaption(a, "CHOSEN PRINTER");
  a.TakeTop(kPrinterCaption);
  const std::vector<Fact> facts = FactsOfPrinter(pane);
  if (facts.empty())
    DrawLabel(l.view, Align::kLeft, a.TakeTop(kFactLine),
              CutToWidth(l.view, NoPrinterText(pane), a.w), l.second);
  for (const Fact& fact : facts) {
    const int32_t ink = InkOf(fact.tone);
    DrawFact(&a, fact.name.c_str(), fact.value,
             IsAway(pane->state.link) ? Dimmed(ink, l.side) : ink);
  }
}

}  // namespace

bool DetailsPane::HasPages() const {
  return pages > 1 && PicturedBy(this).has_value();
}

bool DetailsPane::TurnPage(int by) {
  const int to = std::clamp(page + by, 1, std::max(pages, 1));
  if (!HasPages() || to == page) return false;
  page = to;
  return true;
}

bool DetailsPane::PageKey(int type) {
  const struct {
    int key, by;
  } kKeys[] = {{XWE_PAGE_UP, -1}, {XWE_PAGE_DOWN, 1}, {XWE_HOME, -pages}, {XWE_END, pages}};
  for (const auto& [key, by] : kKeys) {
    if (!HasPages() || key != type) continue;
    TurnPage(by);
    return true;
  }
  return false;
}

void DetailsPane::MakeControls(XwWindow* window) {
  scroll.MakeControls(window, kDetailsControl, "Details");
}

void DetailsPane::Update() {
  Area a = layout.details;
  a.TakeTop(kCaption);
  if (a != scroll.area()) scroll.Place(a);
  if (a.Empty()) return;
  if (const std::string now = SubjectOf(this); now != subject) {
    subject = now;
    scroll.ScrollTo(0);
    const std::optional<Pictured> of = PicturedBy(this);
    tall = of && of->kind == FileKind::kPages;
    tall_page = 0;
  }
  // The bar takes some of the width, and so may add a line.
  for (int i = 0; i < 2; ++i) scroll.SetHeight(LayOutParts(this).height);
}

Area DetailsPane::PictureArea() const {
  return layout.details.Empty() ? Area{} : LayOutParts(this).picture;
}

void DetailsPane::AddHits(bool focused, Hits* hits) const {
  if (layout.details.Empty()) return;
  const Parts parts = LayOutParts(this);
  if (TakesKeys())
    hits->Cover(scroll.Body(),
                {XWA_GROUP, XWT_FOCUSABLE | (focused ? uint32_t{XWT_FOCUSED} : 0), "Details", ""});
  const std::string trouble = TroubleLine(this);
  const bool cut = XwTextWidthUtf8(TheStyle().small_text, trouble.c_str()) > parts.trouble.w;
  const Words picture{XWA_PICTURE, 0, "Preview", trouble, cut ? trouble : ""};
  hits->Cover(scroll.Visible(parts.picture.Empty() ? parts.trouble : parts.picture), picture);
  AddPagerHits(this, LayOutPager(this), hits);
  if (jobs)
    AddJobFacts(*jobs, parts.facts, scroll, hits);
  else if (selected >= 0)
    CoverFacts(FactsOfDocument(this, folder.At(selected)), parts.facts, scroll, hits);
  const std::vector<Fact> printer = FactsOfPrinter(this);
  if (!printer.empty())
    hits->Cover(scroll.Visible(parts.printer),
                {XWA_LABEL, 0, "Chosen Printer", printer[0].value + ": " + printer[1].value});
}

void DetailsPane::Draw(const Hit& hover, bool focused) const {
  if (layout.details.Empty()) return;
  const Style& l = TheStyle();
  Fill(layout.details, l.side);
  LineAtLeft(layout.details);
  const Pager pager = LayOutPager(this);
  DrawDetailsCaption(this, pager.caption);
  DrawPager(this, pager, hover);
  const Area view = scroll.Body();
  if (view.Empty()) return;
  const Parts parts = LayOutParts(this);
  XwClip(uint16_t(view.x), uint16_t(view.y), uint16_t(view.w), uint16_t(view.h));
  DrawPicture(this, parts);
  if (jobs)
    DrawJobFacts(*jobs, parts.facts);
  else
    DrawSelected(this, parts.facts);
  if (!parts.printer.Empty()) DrawPrinter(this, parts.printer);
  if (scroll.top() > 0) LineAtTop(view);
  if (focused) DrawFocusRing({view.x + 1, view.y, view.w - 1, view.h}, l.side);
  XwClip(0, 0, 0, 0);
}

}  // namespace console
