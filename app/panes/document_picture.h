// The picture of a document: its preview, or a sheet in its place.
#pragma once
#include <string>

#include "app/look/area.h"
#include "app/look/style.h"
#include "app/work/preview.h"

namespace console {

// A sheet with the ending of the name where a page has its title.
void DrawKindSheet(const Area& box, const std::string& name, FileKind kind);
// The picture at the device's resolution, or the beginning of the text, in the middle of the box.
// `scale` is that of the screen for which it was made. False, and nothing is drawn, where the
// preview has neither.
bool DrawPreview(const Preview& preview, double scale, const Area& box);

}  // namespace console
