#include "platform/graphics/context.h"

#include "platform/graphics/context_state.h"

namespace platform {
namespace {

constexpr uint32_t kNoPixels = ~0u;  // no surface's generation

ContextRef NewContext(Surface* surface) {
  Context* c = new Context;
  c->surface = surface;
  c->now = surface->generation;
  c->generation = surface->pixels ? *c->now : kNoPixels;
  c->scale = surface->scale;
  c->pen = std::max(1, int(std::floor(surface->scale)));
  c->edges.reserve(64);
  c->crossings.reserve(64);
  return c;
}

void UseClip(ContextRef c) {
  std::span<const pixman_box32_t> boxes = c->clip.boxes();
  c->boxes = boxes.data();
  c->box_count = int(boxes.size());
  c->extents = c->clip.extents();
}

DeviceRect SurfaceBounds(const Context* c) {
  if (*c->now != c->generation) return {};
  return {0, 0, c->surface->width, c->surface->height};
}

}  // namespace

ContextRef CreateContext(Surface* surface, int top) {
  if (!surface) return nullptr;
  ContextRef c = NewContext(surface);
  c->base_y = top;
  SetContextOrigin(c, 0, 0);
  return c;
}

ContextRef CreateSurfaceContext(Surface* surface) {
  if (!surface) return nullptr;
  ContextRef c = NewContext(surface);
  c->clip.Add(SurfaceBounds(c));
  UseClip(c);
  return c;
}

void ReleaseContext(ContextRef c) {
  delete c;
}

void SetContextOrigin(ContextRef c, int x, int y) {
  if (!c) return;
  c->origin_x = x;
  c->origin_y = y + c->base_y;
}

void ClipContextToRegion(ContextRef c, const Region& region) {
  if (!c) return;
  c->outer_clips.clear();
  if (c->scale == 1.0) {
    c->clip = region;
    c->clip.Translate(0, c->base_y);
  } else {
    std::vector<pixman_box32_t> scaled;
    scaled.reserve(region.boxes().size());
    for (const pixman_box32_t& b : region.boxes())
      scaled.push_back(
          {Edge(c, b.x1), Edge(c, b.y1 + c->base_y), Edge(c, b.x2), Edge(c, b.y2 + c->base_y)});
    c->clip.Assign(scaled);
  }
  c->clip.Intersect(SurfaceBounds(c));
  UseClip(c);
}

void ClipContextToRect(ContextRef c, const Rect& r) {
  if (!c) return;
  c->outer_clips.push_back(c->clip);
  c->clip.Intersect({EdgeX(c, r.left), EdgeY(c, r.top), EdgeX(c, r.right), EdgeY(c, r.bottom)});
  UseClip(c);
}

void RestoreContextClip(ContextRef c) {
  if (!c || c->outer_clips.empty()) return;
  c->clip = std::move(c->outer_clips.back());
  c->outer_clips.pop_back();
  UseClip(c);
}

void SetContextColor(ContextRef c, uint32_t rgb) {
  if (c) c->color = 0xFF000000u | rgb;
}

void SetContextDash(ContextRef c, float phase, const float* lengths, int count) {
  if (!c) return;
  Dash& d = c->dash;
  d.count = 0;
  count = std::min(count, 128);
  if (!lengths || count <= 0) return;
  double sum = 0;
  int rounds = count % 2 ? 2 : 1;  // in an odd pattern dashes and gaps swap at each round
  int n = 0;
  for (int round = 0; round < rounds; ++round) {
    for (int i = 0; i < count; ++i) {
      if (lengths[i] > 0) sum += double(std::min(lengths[i], 1e6f));
      d.ends[n++] = sum;
    }
  }
  if (!(sum > 0)) return;
  d.count = n;
  d.total = sum;
  d.phase = std::isfinite(phase) ? std::fmod(double(phase), sum) : 0;
  if (d.phase < 0) d.phase += sum;
}

}  // namespace platform
