/* A clock with hands: a face of smooth paths that moves sixty times a second. With a time as its
 * argument (10-clock 10:08:36) it shows that time and stands. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/time.h>
#include <time.h>

#include "toolkit/xw.h"

enum { INK = 0x26211D, FACE = 0xFFFFFF, RIM = 0xC9C2BC, RED = 0x2B39C0, BACKGROUND = 0xF4F1EE };
enum { FRAME = 16, SIDE = 300, LEAST = 120 }; /* milliseconds; logical pixels */
#define TURN 6.28318530717958648

static XwWindow* window;
static double fixed = -1; /* seconds since midnight that it stands at */

/* Seconds since midnight. */
static double Now(void) {
  struct timeval now;
  struct tm* local;
  if (fixed >= 0) return fixed;
  gettimeofday(&now, NULL);
  local = localtime(&now.tv_sec);
  return local->tm_hour * 3600 + local->tm_min * 60 + local->tm_sec + now.tv_usec / 1e6;
}

/* --- The face: its middle and radius in the window. */
static float middle_x, middle_y, radius;

static void Place(void) {
  middle_x = XW->width / 2.0f;
  middle_y = XW->height / 2.0f;
  radius = (XW->width < XW->height ? XW->width : XW->height) / 2.0f - 10;
}

/* At a part of the way around, from the top, and a part of the radius. */
static XwPathPart At(int verb, double turn, double part) {
  XwPathPart p = {(uint8_t)verb, 0, 0, 0, 0, 0, 0};
  p.x = middle_x + (float)(sin(turn * TURN) * part) * radius;
  p.y = middle_y - (float)(cos(turn * TURN) * part) * radius;
  return p;
}

static void Disc(float r, int32_t colour) {
  const float k = r * 0.5522848f, x = middle_x, y = middle_y;
  const XwPathPart parts[] = {{XWP_MOVE, x, y - r, 0, 0, 0, 0},
                              {XWP_CUBIC, x + r, y, x + k, y - r, x + r, y - k},
                              {XWP_CUBIC, x, y + r, x + r, y + k, x + k, y + r},
                              {XWP_CUBIC, x - r, y, x - k, y + r, x - r, y + k},
                              {XWP_CUBIC, x, y - r, x - r, y - k, x - k, y - r}};
  XwFillPath(parts, 5, colour);
}

static void Marks(void) {
  XwPathPart hours[24], minutes[96];
  int i, h = 0, m = 0;
  for (i = 0; i < 60; ++i) {
    const double turn = i / 60.0;
    XwPathPart* to = i % 5 ? minutes + m : hours + h;
    to[0] = At(XWP_MOVE, turn, i % 5 ? 0.92 : 0.84);
    to[1] = At(XWP_LINE, turn, 0.95);
    if (i % 5)
      m += 2;
    else
      h += 2;
  }
  XwStrokePath(minutes, m, radius * 0.012f, RIM);
  XwStrokePath(hours, h, radius * 0.03f, INK);
}

/* `turn` is what it has gone of its way around. */
static void Hand(double turn, double length, double width, int32_t colour) {
  XwPathPart parts[2];
  parts[0] = At(XWP_MOVE, turn, -0.14);
  parts[1] = At(XWP_LINE, turn, length);
  XwStrokePath(parts, 2, (float)width * radius, colour);
}

/* The ends of the second hand at a time, as a rectangle that grows. */
typedef struct {
  float left, top, right, bottom;
} Area;
static void Extend(Area* a, double seconds) {
  const double ends[] = {-0.16, 0.88};
  int i;
  for (i = 0; i < 2; ++i) {
    const XwPathPart p = At(XWP_LINE, seconds / 60, ends[i]);
    a->left = fminf(a->left, p.x - 3);
    a->top = fminf(a->top, p.y - 3);
    a->right = fmaxf(a->right, p.x + 3);
    a->bottom = fmaxf(a->bottom, p.y + 3);
  }
}

/* The other hands go with each second, so that between two of them only the place of the second
 * hand is drawn again. */
static void Draw(int all) {
  static double before;
  const double now = Now(), second = floor(now);
  char text[16];
  XwSet(window);
  Place();
  if (!all && second == floor(before)) {
    Area area = {32767, 32767, 0, 0};
    Extend(&area, before);
    Extend(&area, now);
    XwClip((uint16_t)area.left, (uint16_t)area.top, (uint16_t)(area.right - area.left + 2),
           (uint16_t)(area.bottom - area.top + 2));
  }
  before = now;
  Disc(radius, RIM);
  Disc(radius * 0.975f, FACE);
  Marks();
  Hand(second / 43200, 0.52, 0.055, INK);
  Hand(second / 3600, 0.78, 0.04, INK);
  Hand(now / 60, 0.86, 0.015, RED);
  Disc(radius * 0.045f, RED);
  XwClip(0, 0, 0, 0);
  snprintf(text, sizeof text, "%02d:%02d", (int)now / 3600, (int)now / 60 % 60);
  XwDescribe(0, XWA_PICTURE, 0, "Clock", text);
}

static int Handle(int type) {
  if (type == XWE_CLOSE || type == XWE_QUIT) {
    XwEndSession();
    exit(0);
  }
  if (type == XWE_EXPOSE || type == XWE_TIMER) Draw(type == XWE_EXPOSE);
  return 0;
}

int main(int count, char** words) {
  static const int32_t background = BACKGROUND;
  int hour, minute, second;
  if (count > 1 && sscanf(words[1], "%d:%d:%d", &hour, &minute, &second) == 3)
    fixed = hour * 3600 + minute * 60 + second;
  XwSession("clock", "Clock", 7);
  window = XwCreate(0, 120, 120, SIDE, SIDE, Handle);
  XwSetGround(window, &background, 0);
  XwSetSizes(window, LEAST, LEAST, 0, 0, 0, 0);
  XwShow(window, 1);
  if (fixed < 0) XwTimer(window, 1, FRAME);
  XwRunEventLoop();
}
