// The least work that shows the example's window: one connection, one window, one shared segment,
// two font files opened by their paths. No event is looked at, nothing is laid out. With a number
// of rows, it first makes as many texts and keeps a copy of each in a bare array, as for a list.
//   first_frame_floor <regular.ttf> <bold.ttf> <width> <height> <rows>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/frame_done.h"

namespace {

constexpr int kBar = 24;
int width, height;
uint32_t* pixels;
char** volatile kept;  // so that the copies are made

void Fill(int left, int top, int right, int bottom, uint32_t color) {
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) pixels[y * width + x] = color;
  }
}

uint32_t Blend(uint32_t under, uint32_t ink, uint32_t a) {
  uint32_t out = 0xFF000000;
  for (int shift = 0; shift < 24; shift += 8) {
    const uint32_t u = under >> shift & 255, i = ink >> shift & 255;
    out |= (u + (i * a + 127 - u * a) / 255) << shift & 255u << shift;
  }
  return out;
}

void Glyph(const FT_Bitmap& b, int left, int top, uint32_t ink) {
  for (int row = 0; row < int(b.rows); ++row) {
    for (int col = 0; col < int(b.width); ++col) {
      const int x = left + col, y = top + row;
      if (x < 0 || y < 0 || x >= width || y >= height) continue;
      uint32_t& p = pixels[y * width + x];
      p = Blend(p, ink, b.buffer[row * b.pitch + col]);
    }
  }
}

void Text(FT_Face face, const char* text, int left, int center, int baseline, uint32_t ink) {
  double length = 0;
  for (const char* s = text; *s != 0; ++s) {
    FT_Load_Char(face, FT_ULong(*s), FT_LOAD_NO_HINTING);
    length += double(face->glyph->linearHoriAdvance) / 65536;
  }
  double pen = center != 0 ? center - length / 2 : left;
  for (const char* s = text; *s != 0; ++s) {
    FT_Load_Char(face, FT_ULong(*s), FT_LOAD_NO_HINTING | FT_LOAD_RENDER);
    Glyph(face->glyph->bitmap, int(pen + 0.5) + face->glyph->bitmap_left,
          baseline - face->glyph->bitmap_top, ink);
    pen += double(face->glyph->linearHoriAdvance) / 65536;
  }
}

void Paint(const char* regular_path, const char* bold_path) {
  FT_Library library;
  FT_Face regular, bold;
  if (FT_Init_FreeType(&library) || FT_New_Face(library, regular_path, 0, &regular) ||
      FT_New_Face(library, bold_path, 0, &bold)) {
    exit(2);
  }
  FT_Set_Pixel_Sizes(regular, 0, 13);
  FT_Set_Pixel_Sizes(bold, 0, 13);
  Fill(0, 0, width, kBar, 0xFFF5F5F4);
  Fill(0, kBar, width, height, 0xFFFFFFFF);
  Text(bold, "Hello", 12, 0, 17, 0xFF1D2022);
  Text(bold, "Hello, world", 0, width / 2, kBar + 75, 0xFF1D2022);
  Text(regular, "drawn with xw.h", 0, width / 2, kBar + 95, 0xFF646A6E);
  Fill(100, kBar + 106, 221, kBar + 107, 0xFF3875D7);
}

// As lists_window.c makes them.
void KeepRows(int count) {
  auto* texts = static_cast<char(*)[16]>(malloc(size_t(count) * 16));
  auto** copies = static_cast<char**>(malloc(size_t(count) * sizeof(char*)));
  for (int i = 0; i < count; ++i) snprintf(texts[i], sizeof texts[i], "Job %d", i + 1);
  for (int i = 0; i < count; ++i) copies[i] = strdup(texts[i]);
  kept = copies;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) return 2;
  width = atoi(argv[3]);
  height = atoi(argv[4]);
  if (width < 320 || height < 184) return 2;
  xcb_connection_t* c = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(c)) return 1;
  xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
  const xcb_window_t window = xcb_generate_id(c);
  const uint32_t events[] = {XCB_EVENT_MASK_EXPOSURE};
  xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screen->root, 200, 176, uint16_t(width),
                    uint16_t(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                    XCB_CW_EVENT_MASK, events);
  xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 5,
                      "Hello");
  const xcb_gcontext_t gc = xcb_generate_id(c);
  xcb_create_gc(c, gc, window, 0, nullptr);
  xcb_map_window(c, window);
  xcb_flush(c);
  const int id = shmget(IPC_PRIVATE, size_t(width) * size_t(height) * 4, IPC_CREAT | 0600);
  pixels = static_cast<uint32_t*>(shmat(id, nullptr, 0));
  const xcb_shm_seg_t segment = xcb_generate_id(c);
  xcb_shm_attach(c, segment, uint32_t(id), 1);
  KeepRows(atoi(argv[5]));
  Paint(argv[1], argv[2]);
  xcb_shm_put_image(c, window, gc, uint16_t(width), uint16_t(height), 0, 0, uint16_t(width),
                    uint16_t(height), 0, 0, screen->root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0,
                    segment, 0);
  free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
  shmctl(id, IPC_RMID, nullptr);
  FrameIsThere();
}
