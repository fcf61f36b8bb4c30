// The icons of files.
#include <strings.h>

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

// A sheet of 11 x 14 with its corner turned down.
void DrawSheet(int x, int y, int32_t paper, int32_t edge) {
  static const int16_t kOutline[] = {3, 1, 10, 1, 14, 5, 14, 15, 3, 15};
  int16_t points[10];
  for (int i = 0; i < 10; ++i) points[i] = int16_t(kOutline[i] + (i % 2 ? y : x) - 1);
  XwSetColor(edge);
  XwFillPolygon(points, 5);
  XwBox(x + 3, y + 1, 7, 12, paper);
  XwBox(x + 10, y + 5, 2, 8, paper);
  XwBox(x + 9, y + 2, 1, 3, edge);
  XwBox(x + 9, y + 4, 3, 1, edge);
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
      const int32_t border = selected ? l.on_accent : shade(Mix(l.accent, l.second, 62));
      const int32_t face = Mix(l.accent, selected ? l.on_accent : l.document, 42);
      XwRoundBox(x + 1, y + 2, 7, 6, 1, border, -1);
      XwRoundBox(x + 1, y + 4, 14, 10, 1, shade(face), border);
      break;
    }
    case FileKind::kPicture:
      XwRoundBox(x + 1, y + 3, 14, 11, 1, paper, edge);
      for (int i = 0; i < 4; ++i) XwBox(x + 6 - i, y + 8 + i, 1 + 2 * i, 1, shade(l.good));
      for (int i = 0; i < 3; ++i)
        XwBox(x + 11 - i, y + 9 + i, 1 + 2 * i, 1, shade(Mix(l.good, l.ink, 75)));
      XwBox(x + 11, y + 5, 2, 2, shade(l.warning));
      break;
    case FileKind::kPages:
      DrawSheet(x, y, paper, edge);
      XwBox(x + 2, y + 9, 11, 3, shade(l.bad));
      break;
    case FileKind::kText:
      DrawSheet(x, y, paper, edge);
      for (int i = 0; i < 3; ++i) XwBox(x + 4, y + 7 + 2 * i, 7, 1, edge);
      break;
    case FileKind::kOther:
      DrawSheet(x, y, paper, edge);
      break;
  }
}

}  // namespace console
