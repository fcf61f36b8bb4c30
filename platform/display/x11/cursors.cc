// Cursors: the desktop theme's, and those that the program draws. Nothing of it is opened before
// the first picture is out.
#include <xcb/render.h>
#include <xcb/xcb_cursor.h>

#include <algorithm>
#include <initializer_list>

#include "platform/display/cursor.h"
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr int kMaxSide = 256;  // device pixels of a picture

xcb_cursor_context_t* theme = nullptr;
xcb_cursor_t shapes[5] = {};  // by Cursor::Shape
xcb_render_pictformat_t argb = 0;

// The server's cursors of the program's pictures, for one scale each.
struct Picture {
  xcb_cursor_t id = XCB_NONE;
  double scale = 0;
};
std::unordered_map<const Cursor*, Picture> pictures;

// Names differ from theme to theme: the first that it has.
xcb_cursor_t LoadShape(std::initializer_list<const char*> names) {
  if (theme == nullptr && xcb_cursor_context_new(x.c, x.screen, &theme) < 0) return XCB_NONE;
  for (const char* name : names) {
    if (xcb_cursor_t cursor = xcb_cursor_load_cursor(theme, name)) return cursor;
  }
  return XCB_NONE;
}

xcb_cursor_t ShapeCursor(Cursor::Shape shape) {
  xcb_cursor_t& cursor = shapes[shape];
  if (cursor != XCB_NONE) return cursor;
  switch (shape) {
    case Cursor::kCrosshair:
      cursor = LoadShape({"crosshair", "cross", "tcross"});
      break;
    case Cursor::kOpenHand:
      cursor = LoadShape({"openhand", "grab", "hand1", "fleur"});
      break;
    case Cursor::kText:
      cursor = LoadShape({"text", "xterm", "ibeam"});
      break;
    default:
      cursor = LoadShape({"left_ptr", "default"});
      break;
  }
  return cursor;
}

// The format with eight bits each of alpha, red, green, blue; 0 where pictures have none.
xcb_render_pictformat_t FindFormat() {
  const xcb_query_extension_reply_t* ext = xcb_get_extension_data(x.c, &xcb_render_id);
  if (ext == nullptr || !ext->present) return 0;
  xcb_discard_reply(x.c, xcb_render_query_version(x.c, 0, 11).sequence);
  Reply<xcb_render_query_pict_formats_reply_t> formats(
      xcb_render_query_pict_formats_reply(x.c, xcb_render_query_pict_formats(x.c), nullptr));
  if (!formats) return 0;
  for (auto f = xcb_render_query_pict_formats_formats_iterator(formats.p); f.rem != 0;
       xcb_render_pictforminfo_next(&f)) {
    const xcb_render_directformat_t& d = f.data->direct;
    if (f.data->depth == 32 && d.alpha_mask == 0xFF && d.alpha_shift == 24 && d.red_shift == 16 &&
        d.green_shift == 8 && d.blue_shift == 0) {
      return f.data->id;
    }
  }
  return 0;
}

xcb_cursor_t PictureCursor(const Cursor& c) {
  const CursorPicture p = PictureOf(c, x.scale);
  const int width = p.width, height = p.height;
  if (width <= 0 || height <= 0 || width > kMaxSide || height > kMaxSide) return XCB_NONE;
  if (argb == 0) argb = FindFormat();
  if (argb == 0) return XCB_NONE;
  const xcb_pixmap_t pixmap = xcb_generate_id(x.c);
  const xcb_gcontext_t gc = xcb_generate_id(x.c);
  const xcb_render_picture_t picture = xcb_generate_id(x.c);
  const xcb_cursor_t cursor = xcb_generate_id(x.c);
  xcb_create_pixmap(x.c, 32, pixmap, x.screen->root, uint16_t(width), uint16_t(height));
  xcb_create_gc(x.c, gc, pixmap, 0, nullptr);
  const int rows = std::max(1, 200 * 1024 / (width * 4));
  for (int top = 0; top < height; top += rows) {
    const int lines = std::min(rows, height - top);
    xcb_put_image(x.c, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, uint16_t(width), uint16_t(lines), 0,
                  int16_t(top), 0, 32, uint32_t(width * lines * 4),
                  reinterpret_cast<const uint8_t*>(p.pixels.data() + long(top) * width));
  }
  xcb_render_create_picture(x.c, picture, pixmap, argb, 0, nullptr);
  xcb_render_create_cursor(x.c, cursor, picture, uint16_t(p.hot_x), uint16_t(p.hot_y));
  xcb_render_free_picture(x.c, picture);
  xcb_free_gc(x.c, gc);
  xcb_free_pixmap(x.c, pixmap);
  return cursor;
}

// What the server has of it.
void FreeNative(const Cursor* cursor) {
  const auto made = pictures.find(cursor);
  if (made == pictures.end()) return;
  const xcb_cursor_t gone = made->second.id;
  pictures.erase(made);
  if (gone == XCB_NONE) return;
  // Windows go on showing it until they are given another one.
  for (auto& [id, n] : x.windows) {
    if (n->cursor == gone) n->cursor = XCB_NONE;
  }
  xcb_free_cursor(x.c, gone);
}

}  // namespace

xcb_cursor_t NativeCursor(const Cursor* c) {
  if (c == nullptr || c->shape != Cursor::kPicture) {
    return ShapeCursor(c == nullptr ? Cursor::kArrow : c->shape);
  }
  const auto made = pictures.find(c);
  if (made != pictures.end() && made->second.scale != x.scale) FreeNative(c);
  Picture& picture = pictures[c];
  if (picture.id == XCB_NONE) picture = {PictureCursor(*c), x.scale};
  return picture.id;
}

void SetCursor(Native* n) {
  // Before the first frame the record's is enough: OpenCursors looks there.
  if (!x.late_done) return;
  const xcb_cursor_t shown = NativeCursor(n->w->cursor);
  if (shown == n->cursor) return;
  n->cursor = shown;
  xcb_change_window_attributes(x.c, n->id, XCB_CW_CURSOR, &shown);
}

void DestroyCursor(const Cursor* cursor) {
  DropGrabCursor(cursor);
  FreeNative(cursor);
}

void OpenCursors() {
  for (auto& [id, n] : x.windows) {
    if (n->cursor == XCB_NONE) SetCursor(n);
  }
}

void CloseCursors() {
  for (xcb_cursor_t& c : shapes) {
    if (c != XCB_NONE) xcb_free_cursor(x.c, c);
    c = XCB_NONE;
  }
  if (theme != nullptr) xcb_cursor_context_free(theme);
  theme = nullptr;
  pictures.clear();
  argb = 0;
}

}  // namespace platform::x11
