#include "app/panes/files.h"

#include <algorithm>
#include <ctime>

#include "app/format/texts.h"
#include "app/format/words.h"
#include "app/look/controls.h"
#include "app/look/outline.h"
#include "app/model/crumbs.h"
#include "app/panes/ids.h"

namespace console {
namespace {

enum Cells { kName, kSize, kModified };

constexpr int kCrumbGapWidth = 18;
constexpr int kNamePadding = 12, kIconRoom = 21;

struct ShownCrumb {
  Crumb crumb;  // without a path: some are left out here
  Area area;
};

// What lies right of the crumbs: what is being read, or what there is.
std::string HeadText(const FilesPane* p) {
  if (!p->reading_text.empty()) return Shown(p->reading_text);
  if (!p->folder.known() || !p->folder.trouble().empty()) return "";
  const FolderRows& rows = p->folder.rows();
  const ChosenFiles& chosen = p->Chosen();
  if (const int n = chosen.files + chosen.folders; n > 1)
    return NumberText(n) + " of " + NumberText(rows.count()) + " selected, " +
           SizeText(chosen.bytes);
  return rows.CountText() + ", " + SizeText(rows.bytes());
}

int WidthOfSmall(const std::string& text) {
  return XwTextWidthUtf8(TheStyle().small_text, text.c_str());
}

Area HeadArea(const FilesPane* p) {
  Area a = p->layout.folder_head.Inset(12, 0);
  a.h -= 1;
  a.w = p->layout.filter_label.x - 12 - a.x;
  return a;
}

// What a text at the right of the head takes, with the gap before it; nothing for "".
int HeadTextRoom(const std::string& text) {
  return text.empty() ? 0 : WidthOfSmall(text) + 17;
}

// The widths of the crumbs, each with what separates it from the next one.
std::vector<int> CrumbWidths(const std::vector<Crumb>& crumbs) {
  const Style& l = TheStyle();
  std::vector<int> widths;
  for (const Crumb& crumb : crumbs) {
    XwFont* font = widths.size() + 1 == crumbs.size() ? l.bold : l.normal;
    widths.push_back(XwTextWidthUtf8(font, crumb.text.c_str()) + 1 + kCrumbGapWidth);
  }
  return widths;
}

int GapWidth() {
  return XwTextWidthUtf8(TheStyle().normal, "…") + 1 + kCrumbGapWidth;
}

// It gives way to the root and the folder itself: first its size, then all but what cannot be
// read. That, and what is said of a reading, has half of the head in any case.
std::string FittingHeadText(const FilesPane* p) {
  std::string text = HeadText(p);
  const int head = HeadArea(p).w;
  if (!p->reading_text.empty()) return CutToWidth(TheStyle().small_text, text, head / 2 - 17);
  const std::vector<int> widths = CrumbWidths(CrumbsOf(p->folder.path()));
  const size_t n = widths.size();
  const int needed =
      widths.back() + (n > 1 ? widths.front() : 0) + (n > 2 ? GapWidth() : 0) - kCrumbGapWidth;
  const int room = head - needed;
  if (HeadTextRoom(text) > room) text.resize(std::min(text.size(), text.rfind(", ")));
  if (HeadTextRoom(text) > room)
    text = CutToWidth(TheStyle().small_text, p->folder.rows().UnreadText(),
                      std::max(room, head / 2) - 17);
  return text;
}

void DrawHeadText(const FilesPane* p) {
  const Style& l = TheStyle();
  const Area a = HeadArea(p);
  DrawLabel(l.small_text, Align::kRight, a, FittingHeadText(p),
            p->reading_text.empty() ? l.second : l.warning);
}

// As many as there is room for; the last one is the folder itself, which is cut where it alone has
// too little.
std::vector<ShownCrumb> LayOutCrumbs(const FilesPane* p) {
  Area bar = HeadArea(p);
  bar.TakeRight(HeadTextRoom(FittingHeadText(p)));
  const std::vector<Crumb> crumbs = CrumbsOf(p->folder.path());
  const std::vector<int> widths = CrumbWidths(crumbs);
  const int gap = GapWidth();
  std::vector<ShownCrumb> shown;
  for (const int i : FitCrumbs(widths, gap, bar.w + kCrumbGapWidth)) {
    const bool left_out = i == kCrumbGap;
    const int width = left_out ? gap : widths[size_t(i)];
    shown.push_back(
        {left_out ? Crumb{"", "…"} : crumbs[size_t(i)], bar.TakeLeft(width - kCrumbGapWidth)});
    bar.TakeLeft(kCrumbGapWidth);
  }
  return shown;
}

// What is cut is whole in its tip.
std::string CutTip(const ShownCrumb& crumb) {
  const std::string& text = crumb.crumb.text;
  return XwTextWidthUtf8(TheStyle().bold, text.c_str()) > crumb.area.w ? text : "";
}

void DrawHead(const FilesPane* p, const Hit& hover) {
  const Style& l = TheStyle();
  const Area head = p->layout.folder_head;
  Fill(head, l.tool_bar);
  LineAtBottom(head);
  const std::vector<ShownCrumb> crumbs = LayOutCrumbs(p);
  for (size_t i = 0; i < crumbs.size(); ++i) {
    const ShownCrumb& crumb = crumbs[i];
    const bool last = i + 1 == crumbs.size(), lit = hover == Hit{kCrumbs, 1, int(i)};
    XwFont* font = last ? l.bold : l.normal;
    DrawLabel(font, Align::kLeft, crumb.area, CutToWidth(font, crumb.crumb.text, crumb.area.w),
              last  ? l.ink
              : lit ? l.accent
                    : l.second);
    if (lit && !last) Fill({crumb.area.x, crumb.area.y + 21, crumb.area.w - 1, 1}, l.accent);
    if (last) break;
    Outline(crumb.area.right() + 6, crumb.area.y + 12)
        .Lines({{0.5f, 0.5f}, {3.5f, 3.5f}, {0.5f, 6.5f}}, false)
        .Stroke(l.line, 1.3f);
  }
  DrawHeadText(p);
  const Area& label = p->layout.filter_label;
  if (label.w > kFilterIcon)
    DrawLabel(l.small_text, Align::kRight, label, "Filter", l.second);
  else
    DrawFilterIcon(label.x, label.y + (label.h - kFilterIcon) / 2, l.second);
}

void DrawCell(const FilesPane* p, int row, int column, const CellLook& cell) {
  const Style& l = TheStyle();
  const FolderEntry e = p->folder.At(row);
  Area a = cell.area;
  switch (column) {
    case kName: {
      const FileKind kind = e.folder ? FileKind::kFolder : KindOf(e.name);
      DrawFileIcon(kind, a.x, a.y + 3, cell.background, 100);
      a.TakeLeft(kIconRoom);
      DrawLabel(l.view, cell.align, a, CutToWidth(l.view, Shown(e.name), a.w), cell.ink);
      break;
    }
    case kSize:
      if (!e.folder) DrawLabel(l.view, cell.align, a, SizeText(e.size), cell.ink);
      break;
    case kModified:
      DrawLabel(l.view, cell.align, a, DayText(e.time, time(nullptr)), cell.ink);
      break;
    default:
      break;
  }
}

// In an empty folder, where there is room: a picture of it, and what can be done.
void DrawAroundNote(const Area& note, const Area& around) {
  constexpr int kAbove = 12, kHint = 20;
  if (note.Empty()) return;
  const int y = note.y - kAbove - kLargeFolderHeight;
  if (y > around.y + 2 * kAbove) DrawLargeFolder(note.x + (note.w - kLargeFolderWidth) / 2, y);
  if (note.bottom() + kHint < around.bottom())
    DrawLabel(TheStyle().small_text, Align::kCenter, {note.x, note.bottom(), note.w, kHint},
              "Drop files here to print them", Mix(TheStyle().second, TheStyle().document, 75));
}

std::vector<Column> Columns() {
  return {{"Name", 150, 10, Align::kLeft, true, 0, kNamePadding, kIconRoom},
          {"Size", 82, 1, Align::kRight, true, 1, 10},
          {"Modified", 110, 2, Align::kLeft, true, 2, 12}};
}

}  // namespace

FilesPane::FilesPane(const Layout& layout_of_all)
    : layout(layout_of_all),
      table(
          kFiles, Columns(),
          [this](int row, int column, const CellLook& cell) { DrawCell(this, row, column, cell); },
          &selection) {}

void FilesPane::MakeControls(XwWindow* window) {
  filter = XwEditBox(window, "", kFilterControl, 0, 0, 9, 9,
                     XWC_ENABLED | XWC_VISIBLE | XWC_DROPS_FOCUS);
  XwDescribeControl(filter, "Filter");
  XwSetTip(filter, 0,
           "Shows names with this text, or that match patterns such as *.pdf,*.tif; "
           "an ending hides no folders");
  table.MakeControls(window, kFilesControls, "Files");
  show_all =
      XwButton(window, "Show All", kShowAllFilesCommand, 0, 0, 9, 9, XWC_ENABLED | XWC_VARIANT, 0);
  XwDescribeControl(show_all, "Show All Files");
}

void FilesPane::Place() {
  PlaceControl(filter, layout.filter);
  table.Place(layout.folder);
}

void FilesPane::Enable(bool on) {
  EnableControl(filter, on);
  table.Enable(on);
}

void FilesPane::Update() {
  const std::string& trouble = folder.trouble();
  table.SetNote(trouble.empty() ? folder.rows().NoteText()
                                : "This folder cannot be shown: " + trouble);
  const bool offers = trouble.empty() && folder.rows().leaves_out();
  PlaceControl(show_all, offers ? table.NoteButton() : Area{});
}

void FilesPane::Draw(const Hit& hover, bool focused, bool silent) {
  table.SetFocused(focused);
  table.SetMuted(silent);
  DrawHead(this, hover);
  table.Draw(hover);
  const FolderRows& rows = folder.rows();
  if (folder.known() && folder.trouble().empty() && rows.count() == 0 && !rows.leaves_out())
    DrawAroundNote(table.NoteArea(), layout.folder);
}

void FilesPane::AddHits(Hits* hits) const {
  const std::vector<ShownCrumb> crumbs = LayOutCrumbs(this);
  for (size_t i = 0; i < crumbs.size(); ++i)
    if (!crumbs[i].crumb.path.empty())
      hits->Add({kCrumbs, 1, int(i)}, crumbs[i].area.Inset(-3, 3),
                {XWA_BUTTON, 0, crumbs[i].crumb.text, "", CutTip(crumbs[i])});
  const int room = table.ColumnArea(kName).w - 2 * kNamePadding - kIconRoom;
  table.AddHits(hits, [this, room](int row) -> Words {
    const FolderEntry e = folder.At(row);
    const std::string name = Shown(e.name);
    const bool whole = XwTextWidthUtf8(TheStyle().view, name.c_str()) <= room;
    return {XWA_ROW, 0, name, e.folder ? "folder" : SizeText(e.size), whole ? "" : name};
  });
}

std::string FilesPane::CrumbPath(int index) const {
  const std::vector<ShownCrumb> crumbs = LayOutCrumbs(this);
  return index >= 0 && size_t(index) < crumbs.size() ? crumbs[size_t(index)].crumb.path : "";
}

const ChosenFiles& FilesPane::Chosen() const {
  if (counted_ == selection.changes()) return chosen_;
  counted_ = selection.changes();
  chosen_ = {};
  for (const std::string& name : selection.Ids()) {
    const FolderEntry e = folder.At(folder.Find(name));
    ++(e.folder ? chosen_.folders : chosen_.files);
    if (!e.folder) chosen_.bytes += e.size;
  }
  return chosen_;
}

std::string FilesPane::FilterText() const {
  char text[1024];
  XwGetTextUtf8(filter, text, sizeof text);
  return text;
}

std::string FilesPane::SelectionText() const {
  const ChosenFiles& all = Chosen();
  const std::string folders = CountText(all.folders, "folder", "folders");
  if (all.files == 0) return all.folders == 0 ? "" : folders + " selected";
  return (all.folders ? folders + ", " : "") + CountText(all.files, "file", "files") +
         " selected, " + SizeText(all.bytes);
}

void FilesPane::Arranged() {
  selection.Renew();
  table.SetRows(folder.count());
  table.SetSort(int(folder.order()), folder.descending());
}

void FilesPane::Find(int character, uint32_t now_ms) {
  if (!typed.Type(uint32_t(character), now_ms)) return;
  const int row = typed.Row(table.focus(), [this](std::string_view text, int from) {
    return folder.rows().FindBeginning(text, from);
  });
  if (row >= 0) table.Select(row);
}

}  // namespace console
