// An X server of the test's own, with a window manager if one is wanted, and a second connection
// that plays the user: it moves the pointer, types, and looks at the screen.
#pragma once
#include <sys/types.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace support {

// Waits until `done` is true, at most 25 seconds; asks every few milliseconds. What it returns is
// what `done` said last.
bool Eventually(const std::function<bool()>& done);

class XUser;

class XServer {
 public:
  // Starts Xvfb on a free display and names it in DISPLAY; XW_DISPLAY becomes x11.
  explicit XServer(const std::vector<std::string>& arguments = {});
  // Starts Xorg with this configuration in the same way. Not running where there is no Xorg or it
  // cannot do with the configuration.
  static std::unique_ptr<XServer> WithConfiguration(const std::string& file);
  ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;
  bool running() const { return pid_ > 0; }
  pid_t pid() const { return pid_; }
  const std::string& display() const { return display_; }
  // Starts "openbox" or "icewm" and waits until it manages windows.
  bool StartManager(const std::string& name);
  // Ends the server at once, as a crash would.
  void Kill();

 private:
  struct Unstarted {};
  explicit XServer(Unstarted) {}
  // `arguments` follow what every server is told. False when it does not come up.
  bool Run(const std::string& program, const std::vector<std::string>& arguments);
  pid_t pid_ = 0, manager_ = 0;
  std::string display_;
  // Has tried out the manager. The server would give the numbers of its windows, of which the
  // manager may still read, to the next connection.
  std::unique_ptr<XUser> prober_;
};

// Sends a message of five words about a window to those that listen at `to` for `mask`, or, with
// mask 0, to the program that made `to`.
void SendMessage(xcb_connection_t* c, xcb_window_t to, uint32_t mask, xcb_window_t about,
                 xcb_atom_t type, const std::vector<uint32_t>& data);

// What a pixel of the screen looks like, 0xRRGGBB, rows from the top.
struct Screenshot {
  int width = 0, height = 0;
  std::vector<uint32_t> pixels;
  uint32_t at(int x, int y) const { return pixels[size_t(y) * size_t(width) + size_t(x)]; }
};

class XUser {
 public:
  XUser();
  ~XUser();
  XUser(const XUser&) = delete;
  XUser& operator=(const XUser&) = delete;
  xcb_connection_t* connection() const { return c_; }
  xcb_window_t root() const { return screen_->root; }
  // Positions on the screen; buttons as the server counts them.
  void Move(int x, int y);
  void Button(int button, bool down);
  void Click(int button);
  // Keys by symbol (as in keysymdef): the key that has it without modifiers.
  void Key(uint32_t keysym, bool down);
  void Type(uint32_t keysym);
  // Latin characters that the keyboard has, with Shift for those that need it.
  void Write(const std::string& text);
  // A key by the server's number of it.
  void Code(int keycode, bool down);
  // The window whose title is `title`, null (0) when there is none. Waits for it to come.
  xcb_window_t Find(const std::string& title);
  // The outermost window around `window`: the frame where there is one.
  xcb_window_t Frame(xcb_window_t window);
  // Position of the window's corner on the screen, and its size.
  struct Geometry {
    int x, y, width, height;
  };
  Geometry Where(xcb_window_t window);
  // A window manager takes care of a window that is made now.
  bool IsManaged();
  bool Viewable(xcb_window_t window);
  xcb_window_t Focus();
  // 32-bit words of a property; text of one.
  std::vector<uint32_t> Words(xcb_window_t window, const char* property, uint32_t most = 1024);
  std::string Text(xcb_window_t window, const char* property);
  xcb_atom_t Atom(const char* name);
  // A request to the window manager, as pagers and menus make it.
  void Ask(xcb_window_t window, const char* type, const std::vector<uint32_t>& data);
  // A message to a window, as a window manager sends it.
  void Tell(xcb_window_t window, const char* type, const std::vector<uint32_t>& data);
  Screenshot Look();
  // Waits until the server has carried out what was sent.
  void Sync();
  // Waits until a question has gone through the server and the window manager, if there is one, and
  // has been answered: what was on its way to either before it has been dealt with.
  void PassMarker();

 private:
  xcb_window_t Search(xcb_window_t in, const std::string& title);
  // The key that has the symbol, without Shift (column 0) or with it; 0 when there is none.
  int CodeOf(uint32_t keysym, int column);
  xcb_connection_t* c_ = nullptr;
  xcb_screen_t* screen_ = nullptr;
  xcb_window_t marker_ = 0;  // whose frame the manager is asked about
};

}  // namespace support
