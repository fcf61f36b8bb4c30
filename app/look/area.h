// A rectangle in the window's coordinates, and cutting pieces off it.
#pragma once

namespace console {

struct Area {
  int x = 0, y = 0, w = 0, h = 0;

  int right() const { return x + w; }
  int bottom() const { return y + h; }
  bool Empty() const { return w <= 0 || h <= 0; }
  bool Holds(int px, int py) const { return px >= x && px < right() && py >= y && py < bottom(); }
  bool operator==(const Area&) const = default;

  // A piece of that size off one side, which this area loses; never more than there is.
  Area TakeTop(int n) {
    n = Within(n, h);
    Area piece{x, y, w, n};
    y += n;
    h -= n;
    return piece;
  }
  Area TakeBottom(int n) {
    n = Within(n, h);
    h -= n;
    return {x, y + h, w, n};
  }
  Area TakeLeft(int n) {
    n = Within(n, w);
    Area piece{x, y, n, h};
    x += n;
    w -= n;
    return piece;
  }
  Area TakeRight(int n) {
    n = Within(n, w);
    w -= n;
    return {x + w, y, n, h};
  }
  // The same with a border of that many pixels off each side (negative: wider).
  Area Inset(int dx, int dy) const { return {x + dx, y + dy, w - 2 * dx, h - 2 * dy}; }

 private:
  static int Within(int n, int most) { return n < 0 ? 0 : n > most ? (most > 0 ? most : 0) : n; }
};

}  // namespace console
