// A part of a pane that scrolls: what stands in it is higher than the part itself, or may be. The
// bar is a control, which shows only then. All numbers are logical pixels.
#pragma once
#include "app/look/area.h"
#include "toolkit/xw.h"

namespace console {

class ScrolledArea {
 public:
  // `step`: how far one press of an arrow goes.
  explicit ScrolledArea(int step) : step_(step) {}
  // Its bar gets the id and the name. It ends with the window.
  void MakeControls(XwWindow* window, int id, const char* name);
  // A report of the bar: false when the id is another's.
  bool Scrolled(int id, int value);
  void Enable(bool on);

  // Empty: nothing shows.
  void Place(const Area& a);
  // Of what stands in it. Nothing scrolls but for what has gone.
  void SetHeight(int height);
  void ScrollTo(int top);
  // As little as brings that part of the content into sight; the beginning of a higher one.
  void Reveal(int top, int height);
  // Arrows, Home, End, Page Up, Page Down: true when the key was one of them.
  bool Key(int type);
  // Positive down. True when something moved.
  bool Wheel(float dy);

  const Area& area() const { return area_; }
  bool Scrolls() const { return height_ > area_.h; }
  // What the bar leaves.
  Area Body() const;
  // What of the content is at the upper edge of the body.
  int top() const { return top_; }
  // What shows of a part of the window; empty when nothing does.
  Area Visible(const Area& a) const;

 private:
  int MostTop() const { return height_ > area_.h ? height_ - area_.h : 0; }
  void UpdateBar();

  int step_;
  Area area_;
  int height_ = 0, top_ = 0;
  float wheel_ = 0;  // of a pixel not yet moved
  int id_ = 0;
  XwWindow* bar_ = nullptr;
};

}  // namespace console
