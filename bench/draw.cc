// What each drawing call costs, in memory, beside its floor in the same run: the two take turns,
// and the ratio is that of their fastest rounds. The last line is for scripts.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <random>

#include "bench/draw_floors.h"
#include "platform/fonts/fonts.h"
#include "tests/support/canvas.h"

static long g_allocations;

extern "C" void* __libc_malloc(size_t);
extern "C" void* malloc(size_t n) {
  ++g_allocations;
  return __libc_malloc(n);
}

namespace {

constexpr int kWidth = 800, kHeight = 600, kBatch = 512, kFont = 13;

struct Shape {
  int x, y, x2, y2;
  int32_t colour;
  int16_t points[16];
};

struct World {
  testkit::Canvas canvas{kWidth, kHeight};
  floors::Buffer buffer{canvas.surface().pixels, kWidth, kHeight, canvas.surface().stride};
  std::vector<Shape> shapes, lines, flat, polygons;
  std::string text = "Quick wafting zephyr";
  std::string long_text = "Proof of ISO Coated v2 300% (ECI), 12 July, second version.pdf";
  uint8_t* image = XwAllocImage(256, 256);
  platform::ContextRef context = canvas.context();

  World() {
    std::minstd_rand dice(7);
    auto range = [&](int a, int b) { return std::uniform_int_distribution<int>(a, b)(dice); };
    for (int i = 0; i < kBatch; ++i) {
      Shape s{};
      s.x = range(0, kWidth - 270);
      s.y = range(20, kHeight - 270);
      s.colour = range(0, 0xFFFFFF);
      shapes.push_back(s);
      s.x = range(100, kWidth - 101);
      s.y = range(100, kHeight - 101);
      int length = range(1, 100);
      double angle = range(0, 6283) / 1000.0;
      Shape f = s;
      f.x2 = f.x + (i % 2 ? length : 0);
      f.y2 = f.y + (i % 2 ? 0 : length);
      flat.push_back(f);
      s.x2 = s.x + int(length * std::cos(angle));
      s.y2 = s.y + int(length * std::sin(angle));
      lines.push_back(s);
      for (int k = 0; k < 8; ++k) {
        double radius = k % 2 ? 18 : 40;
        s.points[2 * k] = int16_t(s.x + radius * std::cos(k * 0.7854 + angle));
        s.points[2 * k + 1] = int16_t(s.y + radius * std::sin(k * 0.7854 + angle));
      }
      polygons.push_back(s);
    }
    for (int i = 0; i < 4 * 256 * 256; ++i) image[i] = uint8_t(range(0, 255));
  }
};

World& TheWorld() {
  static World* world = new World;
  return *world;
}

// One row of the table: ours and the floor, each over one batch.
struct Row {
  const char* name;
  int per_batch;
  std::function<void()> ours, floor;
};

template <typename Draw>
std::function<void()> Over(std::vector<Shape>& list, Draw draw, int n = kBatch) {
  return [&list, draw, n] {
    for (int i = 0; i < n; ++i) draw(list[size_t(i)]);
  };
}

constexpr int kCircle = 60;

void FillCircle(const Shape& s) {
  constexpr float r = kCircle / 2.0f, k = r * 0.5522847498f;
  const float x = float(s.x) + r, y = float(s.y) + r;
  const XwPathPart parts[] = {{XWP_MOVE, x, y - r, 0, 0, 0, 0},
                              {XWP_CUBIC, x + r, y, x + k, y - r, x + r, y - k},
                              {XWP_CUBIC, x, y + r, x + r, y + k, x + k, y + r},
                              {XWP_CUBIC, x - r, y, x - k, y + r, x - r, y + k},
                              {XWP_CUBIC, x, y - r, x - r, y - k, x - k, y - r}};
  XwFillPath(parts, 5, s.colour);
}

std::vector<Row> MakeRows() {
  World& w = TheWorld();
  static XwFont* font = LoadFont(platform::GetThemeFont(5).family.c_str(), kFont, 0);
  XWF_NORMAL = font;
  static const platform::FontFace* face = platform::FindFont(font->name);
  static floors::Glyphs glyphs(w.buffer, face, kFont);
  static floors::Copy copy(w.buffer, 256, 256, w.image);
  static floors::Circle circle(w.buffer, kCircle);
  static floors::Mask mask(w.buffer, 16, 14, IC_EXCHANGE->bits);
  static const int32_t* advances =
      platform::GetAdvances(static_cast<platform::SizedFont*>(font->platform), w.text);
  floors::Buffer& b = w.buffer;
  auto line = [](const Shape& s) {
    XwSetColor(s.colour);
    XwDrawLine(s.x, s.y, s.x2, s.y2);
  };
  auto bresenham = [&b](const Shape& s) {
    floors::Bresenham(b, s.x, s.y, s.x2, s.y2, uint32_t(s.colour));
  };
  return {
      {"rect", kBatch, Over(w.shapes, [](const Shape& s) { XwBox(s.x, s.y, 20, 20, s.colour); }),
       Over(w.shapes,
            [&b](const Shape& s) { floors::Fill(b, s.x, s.y, 20, 20, uint32_t(s.colour)); })},
      {"straight", kBatch, Over(w.flat, line), Over(w.flat, bresenham)},
      {"line", kBatch, Over(w.lines, line), Over(w.lines, bresenham)},
      {"dashed", kBatch,
       [&w, line] {
         static const uint8_t dashes[] = {4, 4, 0};
         XwSetDashes(dashes, 0, 0x0000FF, 0xFF0000);
         for (const Shape& s : w.lines) line(s);
         XwSetDashes(nullptr, 0, 0, 0);
       },
       Over(w.lines,
            [&b](const Shape& s) {
              floors::DashedBresenham(b, s.x, s.y, s.x2, s.y2, 4, 0xFF0000, 0x0000FF);
            })},
      {"polygon", kBatch,
       Over(w.polygons,
            [](const Shape& s) {
              XwSetColor(s.colour);
              XwFillPolygon(s.points, 8);
            }),
       Over(w.polygons,
            [&b](const Shape& s) { floors::Polygon(b, s.points, 8, uint32_t(s.colour)); })},
      {"text", kBatch,
       Over(w.shapes,
            [&w](const Shape& s) {
              XwDrawText(font, 0, s.x, s.y, 0, 0, w.text.c_str(), 0x101010, -1);
            }),
       Over(w.shapes, [&w](const Shape& s) { glyphs.Draw(s.x, s.y + 12, w.text); })},
      {"image", 32,
       Over(
           w.shapes, [&w](const Shape& s) { XwPutImage(0, 0, s.x, s.y, 256, 256, w.image); }, 32),
       Over(
           w.shapes, [](const Shape& s) { copy.Draw(s.x, s.y); }, 32)},
      {"path", kBatch, Over(w.shapes, FillCircle),
       Over(w.shapes, [](const Shape& s) { circle.Draw(s.x, s.y, uint32_t(s.colour)); })},
      {"icon", kBatch,
       Over(w.shapes,
            [](const Shape& s) { XwDrawIcon(IC_EXCHANGE, s.x, s.y, 0, 0, 0x101010, -1); }),
       Over(w.shapes, [](const Shape& s) { mask.Draw(s.x, s.y); })},
      {"width", kBatch,
       Over(w.shapes,
            [&w](const Shape&) { benchmark::DoNotOptimize(XwTextWidth(font, w.text.c_str())); }),
       Over(w.shapes,
            [&w](const Shape&) {
              benchmark::DoNotOptimize(floors::Sum(advances, w.text.c_str()));
            })},
      {"fit", kBatch,
       Over(w.shapes,
            [&w](const Shape&) {
              benchmark::DoNotOptimize(XwTextFit(font, w.long_text.c_str(), 120));
            }),
       Over(w.shapes,
            [&w](const Shape&) {
              benchmark::DoNotOptimize(floors::Sum(advances, w.long_text.c_str()));
            })},
  };
}

// Keeps the fastest round of each benchmark.
class Fastest : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, double> seconds;
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.run_type != Run::RT_Iteration) continue;
      double each = r.real_accumulated_time / double(r.iterations);
      auto [at, added] = seconds.emplace(r.run_name.function_name, each);
      if (!added) at->second = std::min(at->second, each);
    }
  }
};

void Register(const std::string& name, const std::function<void()>& run) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [run](benchmark::State& state) {
                                 for (auto _ : state) run();
                               })
      ->Repetitions(9)
      ->MinTime(0.02);
}

}  // namespace

int main(int argc, char** argv) {
  char interleaving[] = "--benchmark_enable_random_interleaving=true";
  std::vector<char*> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, interleaving);
  int count = int(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  std::vector<Row> rows = MakeRows();
  for (const Row& r : rows) {
    Register(std::string(r.name), r.ours);
    Register(std::string(r.name) + "_floor", r.floor);
  }
  Fastest fastest;
  benchmark::RunSpecifiedBenchmarks(&fastest);
  long before = g_allocations;
  for (const Row& r : rows) r.ours();
  long allocations = g_allocations - before;
  printf("%-10s %10s %10s %7s\n", "", "ns each", "floor", "ratio");
  std::map<std::string, double> ratio;
  for (const Row& r : rows) {
    double ours = fastest.seconds[r.name] / r.per_batch * 1e9;
    double floor = fastest.seconds[std::string(r.name) + "_floor"] / r.per_batch * 1e9;
    ratio[r.name] = ours / floor;
    printf("%-10s %10.1f %10.1f %7.2f\n", r.name, ours, floor, ours / floor);
  }
  printf(
      "draw rect_ratio=%.2f line_ratio=%.2f text_ratio=%.2f image_ratio=%.2f path_ratio=%.2f "
      "allocations=%ld\n",
      ratio["rect"], ratio["line"], ratio["text"], ratio["image"], ratio["path"], allocations);
}
