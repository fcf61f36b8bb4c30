// The icons of files.
#include <strings.h>

#include "app/look/outline.h"
#include "app/look/style.h"

namespace console {
namespace {

struct KindRow {
  const char* ending;
  FileKind kind;
};
constexpr KindRow kKinds[] = {
    {"pdf", FileKind::kPages},    {"ps", FileKind::kPages},     {"eps", FileKind::kPages},
    {"odt", FileKind::kPages},    {"doc", FileKind::kPages},    {"docx", FileKind::kPages},
    {"tif", FileKind::kPicture},  {"tiff", FileKind::kPicture}, {"png", FileKind::kPicture},
    {"jpg", FileKind::kPicture},  {"jpeg", FileKind::kPicture}, {"gif", FileKind::kPicture},
    {"webp", FileKind::kPicture}, {"svg", FileKind::kPicture},  {"txt", FileKind::kText},
    {"md", FileKind::kText},      {"log", FileKind::kText},     {"csv", FileKind::kText},
    {"c", FileKind::kText},       {"cc", FileKind::kText},      {"h", FileKind::kText},
};
constexpr const char* kKindTexts[] = {"Folder", "Pages", "Picture", "Text", "File"};

// A sheet with its corner turned down.
void DrawSheet(int x, int y, int32_t paper, int32_t edge) {
  Outline(x, y)
      .Lines({{3.5f, 1.5f}, {9.5f, 1.5f}, {12.5f, 4.5f}, {12.5f, 14.5f}, {3.5f, 14.5f}})
      .Fill(paper)
      .Stroke(edge);
  Outline(x, y).Lines({{9.5f, 2}, {9.5f, 4.5f}, {12, 4.5f}}, false).Stroke(edge);
}

void DrawFolder(int x, int y, int32_t face, int32_t edge) {
  Outline(x, y)
      .Lines(
          {{1.5f, 3.5f}, {5.8f, 3.5f}, {7.5f, 5.5f}, {14.5f, 5.5f}, {14.5f, 13.5f}, {1.5f, 13.5f}})
      .Fill(face)
      .Stroke(edge);
}

struct Landscape {
  int32_t paper, edge, near, far, sun;
};
void DrawLandscape(int x, int y, const Landscape& l) {
  Outline frame(x, y);
  frame.Lines({{1.5f, 2.5f}, {14.5f, 2.5f}, {14.5f, 13.5f}, {1.5f, 13.5f}}).Fill(l.paper);
  Outline(x, y).Circle({11, 5.8f}, 1.4f).Fill(l.sun);
  Outline(x, y).Lines({{7, 13}, {10.8f, 8.2f}, {14, 12}, {14, 13}}).Fill(l.far);
  Outline(x, y).Lines({{2, 13}, {2, 12}, {6, 6.6f}, {11, 13}}).Fill(l.near);
  frame.Stroke(l.edge);
}

}  // namespace

FileKind KindOf(const std::string& name) {
  size_t dot = name.rfind('.');
  if (dot == std::string::npos || dot == 0) return FileKind::kOther;
  for (const KindRow& row : kKinds)
    if (strcasecmp(name.c_str() + dot + 1, row.ending) == 0) return row.kind;
  return FileKind::kOther;
}

const char* KindText(FileKind kind) {
  return kKindTexts[int(kind)];
}

void DrawFileIcon(FileKind kind, int x, int y, int32_t background, int percent) {
  const Style& l = TheStyle();
  auto shade = [&](int32_t colour) { return Mix(colour, background, percent); };
  const int32_t edge = shade(Mix(l.second, l.line, 50)), paper = shade(l.document);
  switch (kind) {
    case FileKind::kFolder: {
      const bool selected = background == l.accent;
      DrawFolder(x, y, shade(Mix(l.accent, selected ? l.on_accent : l.document, 42)),
                 selected ? l.on_accent : shade(Mix(l.accent, l.second, 62)));
      break;
    }
    case FileKind::kPicture:
      DrawLandscape(x, y,
                    {paper, edge, shade(l.good), shade(Mix(l.good, l.ink, 75)), shade(l.warning)});
      break;
    case FileKind::kPages:
      DrawSheet(x, y, paper, edge);
      Outline(x, y).Rectangle({4, 9}, 8, 3).Fill(shade(l.bad));
      break;
    case FileKind::kText:
      DrawSheet(x, y, paper, edge);
      for (int i = 0; i < 3; ++i) Outline(x, y).Rectangle({5, 7 + 2 * float(i)}, 6, 1).Fill(edge);
      break;
    case FileKind::kOther:
      DrawSheet(x, y, paper, edge);
      break;
  }
}

void DrawFilterIcon(int x, int y, int32_t ink) {
  Outline(x, y)
      .Lines(
          {{1.5f, 2.5f}, {12.5f, 2.5f}, {8.5f, 7.5f}, {8.5f, 11.5f}, {5.5f, 12.5f}, {5.5f, 7.5f}})
      .Stroke(ink);
}

void DrawLargeFolder(int x, int y) {
  const Style& l = TheStyle();
  Outline(x, y)
      .Lines({{1, 1}, {15, 1}, {20, 6}, {43, 6}, {43, 31}, {1, 31}})
      .Fill(Mix(l.accent, l.document, 7))
      .Stroke(Mix(l.accent, l.document, 45), 1.5f);
}

}  // namespace console
