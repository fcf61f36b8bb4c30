// Smooth paths of the program's own.
#include <vector>

#include "platform/graphics/outline.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;

static_assert(XWP_MOVE == int(PathVerb::kMove) && XWP_LINE == int(PathVerb::kLine) &&
                  XWP_QUAD == int(PathVerb::kQuad) && XWP_CUBIC == int(PathVerb::kCubic) &&
                  XWP_CLOSE == int(PathVerb::kClose),
              "verbs as the platform numbers them");

namespace {

// The parts for the platform, in memory that the next path uses again; empty when there are too
// many.
const std::vector<PathPart>& Parts(const XwPathPart* parts, int count) {
  static auto* copy = new std::vector<PathPart>;
  copy->clear();
  for (int i = 0; parts && count <= kMostDrawnParts && i < count; ++i) {
    const XwPathPart& p = parts[i];
    copy->push_back({PathVerb(p.verb), p.x, p.y, p.x1, p.y1, p.x2, p.y2});
  }
  return *copy;
}

}  // namespace

void XwFillPath(const XwPathPart* parts, int count, int32_t colour) {
  TraceDrawing("XwFillPath", count, colour);
  if (!XW || !IsRealColor(colour)) return;
  const std::vector<PathPart>& path = Parts(parts, count);
  FillPath(TargetContext(), path.data(), int(path.size()), ColorToRgb(colour));
}

void XwStrokePath(const XwPathPart* parts, int count, float width, int32_t colour) {
  TraceDrawing("XwStrokePath", count, colour);
  if (!XW || !IsRealColor(colour)) return;
  const std::vector<PathPart>& path = Parts(parts, count);
  StrokePath(TargetContext(), path.data(), int(path.size()), width, ColorToRgb(colour));
}
