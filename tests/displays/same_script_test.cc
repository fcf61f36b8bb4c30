// One script, two displays: the same events in the same order, and the same picture.
//
// The program under test runs in a process of its own and writes a line for each event that its
// handlers get. On X a second connection plays the user; headless, the input is injected. Lines
// carry no time and no place on the screen; neighbouring motions count as one.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdarg>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "platform/display/headless/headless.h"
#include "platform/windows/windows.h"
#include "tests/support/x_server.h"
#include "toolkit/xw.h"

namespace {

namespace headless = platform::headless;

constexpr int kWidth = 300, kHeight = 200;

struct Step {
  enum Op { kMove, kDown, kUp, kKeyDown, kKeyUp, kResize, kClose } op;
  int a = 0, b = 0;
};

// Places are relative to the window's content.
constexpr Step kScript[] = {
    {Step::kMove, 20, 20},   {Step::kDown, 1},
    {Step::kMove, 90, 60},   {Step::kUp, 1},
    {Step::kMove, 150, 100}, {Step::kDown, 1},
    {Step::kMove, 20, 150},  {Step::kUp, 1},
    {Step::kMove, 10, 150},  {Step::kDown, 3},
    {Step::kUp, 3},          {Step::kKeyDown, 'a'},
    {Step::kKeyUp, 'a'},     {Step::kKeyDown, 0xFF0D},
    {Step::kKeyUp, 0xFF0D},  {Step::kKeyDown, 0xFFC1},
    {Step::kKeyUp, 0xFFC1},  {Step::kResize, 360, 240},
    {Step::kMove, 200, 220}, {Step::kResize, 280, 180},
    {Step::kMove, 30, 30},   {Step::kClose},
};

// --- The program under test

int trace_fd = -1;
XwWindow *top, *sub;

void Line(const char* format, ...) {
  char text[160];
  va_list args;
  va_start(args, format);
  int n = vsnprintf(text, sizeof text - 1, format, args);
  va_end(args);
  text[n++] = '\n';
  ASSERT_EQ(write(trace_fd, text, size_t(n)), n);
}

void Draw(XwWindow* w) {
  XwSet(w);
  if (w == sub) {
    XwBox(0, 0, w->width, w->height, 0xDDEEFF);
    XwSetColor(0x203040);
    XwDrawRect(0, 0, w->width, w->height);
    return;
  }
  XwDrawText(XWF_BOLD, 0x400, 0, 4, w->width, 20, "The same everywhere", 0x1D2022, -1);
  XwSetColor(0x3050C0);
  XwDrawLine(0, w->height - 1, w->width - 1, 0);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(10, 5, 5, 40, 40);
  XwBoxList(11, 30, 30, 80, 60);
  XwBoxList(4, 0, 0, 0, 0);
}

int Handle(int type) {
  const char* name = Inp.window == top ? "top" : "sub";
  switch (type) {
    case XWE_EXPOSE:
      Line("%s expose %dx%d", name, Inp.width, Inp.height);
      Draw(Inp.window);
      break;
    case XWE_CONFIGURE:
      Line("%s configure %dx%d", name, Inp.width, Inp.height);
      break;
    case XWE_CLOSE:
      Line("%s close", name);
      XwSync();
      Line("end %d %d", top->x, top->y);
      // The picture is taken before the program goes.
      XwTimer(top, 9, 1);
      break;
    case XWE_TIMER:
      return type;
    default:
      Line("%s %d item %d at %d %d state %x value %d", name, type, Inp.item, Inp.px, Inp.py,
           Inp.state, type == XWE_KEY_UP ? int(Inp.value) : 0);
  }
  return 0;
}

size_t next_step;

bool InjectStep() {
  if (next_step >= std::size(kScript)) return false;
  const Step& s = kScript[next_step++];
  auto w = static_cast<platform::WindowRef>(top->platform);
  switch (s.op) {
    case Step::kMove:
      headless::MovePointer(top->x + s.a, top->y + s.b);
      break;
    case Step::kDown:
      headless::Press(s.a == 3 ? 2 : s.a);
      break;
    case Step::kUp:
      headless::Release(s.a == 3 ? 2 : s.a);
      break;
    case Step::kKeyDown:
      headless::KeyDown(uint32_t(s.a));
      break;
    case Step::kKeyUp:
      headless::KeyUp(uint32_t(s.a));
      break;
    case Step::kResize:
      headless::Configure(w, {top->x, top->y, top->x + s.a, top->y + s.b});
      break;
    case Step::kClose:
      headless::Close(w);
      break;
  }
  return true;
}

// `confirm_fd`: the end of the program waits for a byte there (X: the picture has been taken).
[[noreturn]] void Program(const char* display, int out_fd, int confirm_fd) {
  trace_fd = out_fd;
  setenv("XW_DISPLAY", display, 1);
  bool stepped = !strcmp(display, "headless");
  if (stepped) {
    headless::UseSteppedClock(1000);
    headless::SetIdleHandler(InjectStep);
  }
  XwSession("script", "Script", 7);
  top = XwCreate(0, 200, 200, kWidth, kHeight, Handle);
  XwSetSizes(top, 100, 100, 0, 0, 0, 0);
  sub = XwCreate(top, 120, 80, 100, 60, Handle);
  XwShow(sub, 1);
  XwShow(top, 1);
  XwSetFocus(top);
  while (XwWaitEvent(nullptr) != XWE_TIMER) {
  }
  if (stepped) {
    headless::Picture p = headless::TakePicture(static_cast<platform::WindowRef>(top->platform));
    int header[2] = {p.width, p.height};
    bool written = write(out_fd, "picture\n", 8) == 8 && write(out_fd, header, 8) == 8;
    size_t bytes = p.pixels.size() * 4, done = 0;
    while (written && done < bytes) {
      ssize_t n = write(out_fd, reinterpret_cast<char*>(p.pixels.data()) + done, bytes - done);
      if (n <= 0) break;
      done += size_t(n);
    }
  } else {
    char byte;
    [[maybe_unused]] ssize_t n = read(confirm_fd, &byte, 1);
  }
  XwDestroy(top);
  XwEndSession();
  platform::FinishPlatform();
  _exit(0);
}

// --- The observer

class Child {
 public:
  explicit Child(const char* display) {
    int out[2], confirm[2];
    if (pipe(out) != 0 || pipe(confirm) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      close(out[0]);
      close(confirm[1]);
      Program(display, out[1], confirm[0]);
    }
    close(out[1]);
    close(confirm[0]);
    out_ = out[0];
    confirm_ = confirm[1];
  }
  ~Child() {
    close(out_);
    close(confirm_);
    if (pid_ > 0) waitpid(pid_, nullptr, 0);
  }
  // Reads what has come; false at the end of the output.
  bool Read(int ms) {
    pollfd p{out_, POLLIN, 0};
    if (poll(&p, 1, ms) <= 0) return true;
    char bytes[65536];
    ssize_t n = read(out_, bytes, sizeof bytes);
    if (n <= 0) return false;
    text.append(bytes, size_t(n));
    return true;
  }
  // Waits until nothing has come for a while.
  void Quiet() {
    size_t before;
    do {
      before = text.size();
      for (int i = 0; i < 4 && before == text.size(); ++i) Read(30);
    } while (before != text.size());
  }
  void Confirm() { ASSERT_EQ(write(confirm_, "x", 1), 1); }

  std::string text;

 private:
  pid_t pid_ = -1;
  int out_ = -1, confirm_ = -1;
};

std::vector<std::string> Normalised(const std::string& text) {
  std::vector<std::string> lines;
  size_t from = 0;
  for (size_t to; (to = text.find('\n', from)) != std::string::npos; from = to + 1) {
    std::string line = text.substr(from, to - from);
    if (line == "picture") break;
    if (line.starts_with("end ")) continue;
    auto motion = [](const std::string& l) { return l.find(" 770 item") != std::string::npos; };
    if (!lines.empty() && motion(line) && motion(lines.back()) &&
        line.substr(0, 3) == lines.back().substr(0, 3))
      lines.pop_back();
    lines.push_back(line);
  }
  return lines;
}

using support::Screenshot;

struct Outcome {
  std::vector<std::string> trace;
  Screenshot picture;  // the content
};

Outcome RunHeadless() {
  Child child("headless");
  while (child.Read(5000)) {
  }
  Outcome o;
  o.trace = Normalised(child.text);
  size_t at = child.text.find("picture\n");
  if (at == std::string::npos) return o;
  const char* bytes = child.text.data() + at + 8;
  int header[2];
  memcpy(header, bytes, sizeof header);
  int strip = platform::GetMBarHeight();
  if (child.text.size() - at - 16 < size_t(header[0]) * size_t(header[1]) * 4) return o;
  o.picture.width = header[0];
  o.picture.height = header[1] - strip;
  o.picture.pixels.resize(size_t(o.picture.width) * size_t(o.picture.height));
  memcpy(o.picture.pixels.data(), bytes + 8 + size_t(strip) * size_t(header[0]) * 4,
         o.picture.pixels.size() * 4);
  return o;
}

void PlayStep(support::XUser& user, xcb_window_t window, const Step& s) {
  int strip = platform::GetMBarHeight();
  auto place = user.Where(window);
  switch (s.op) {
    case Step::kMove:
      user.Move(place.x + s.a, place.y + strip + s.b);
      break;
    case Step::kDown:
      user.Button(s.a, true);
      break;
    case Step::kUp:
      user.Button(s.a, false);
      break;
    case Step::kKeyDown:
      user.Key(uint32_t(s.a), true);
      break;
    case Step::kKeyUp:
      user.Key(uint32_t(s.a), false);
      break;
    case Step::kResize: {
      uint32_t size[2] = {uint32_t(s.a), uint32_t(s.b + strip)};
      xcb_configure_window(user.connection(), window,
                           XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
      break;
    }
    case Step::kClose:
      user.Ask(window, "_NET_CLOSE_WINDOW", {0, 0, 0, 0, 0});
      break;
  }
  user.Sync();
}

Outcome RunX() {
  Outcome o;
  support::XServer server;
  if (!server.running() || !server.StartManager("openbox")) return o;
  support::XUser user;
  Child child("x11");
  xcb_window_t window = user.Find("Script");
  if (!window) return o;
  if (!support::Eventually([&] { return user.Focus() == window; })) return o;
  child.Quiet();
  for (const Step& s : kScript) {
    PlayStep(user, window, s);
    child.Quiet();
  }
  o.trace = Normalised(child.text);
  auto place = user.Where(window);
  Screenshot screen = user.Look();
  int strip = platform::GetMBarHeight();
  o.picture.width = place.width;
  o.picture.height = place.height - strip;
  for (int y = 0; y < o.picture.height; ++y)
    for (int x = 0; x < o.picture.width; ++x)
      o.picture.pixels.push_back(screen.at(place.x + x, place.y + strip + y));
  child.Confirm();
  while (child.Read(5000)) {
  }
  return o;
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string all;
  for (const std::string& l : lines) all += l + "\n";
  return all;
}

TEST(SameScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  Outcome on_headless = RunHeadless();
  ASSERT_GT(on_headless.trace.size(), 20u) << Joined(on_headless.trace);
  Outcome on_x = RunX();
  EXPECT_EQ(Joined(on_headless.trace), Joined(on_x.trace));
  ASSERT_EQ(on_headless.picture.width, on_x.picture.width);
  ASSERT_EQ(on_headless.picture.height, on_x.picture.height);
  ASSERT_FALSE(on_x.picture.pixels.empty());
  size_t different = 0;
  for (size_t i = 0; i < on_x.picture.pixels.size(); ++i)
    different += (on_x.picture.pixels[i] & 0xFFFFFF) != (on_headless.picture.pixels[i] & 0xFFFFFF);
  EXPECT_EQ(different, 0u);
}

}  // namespace
