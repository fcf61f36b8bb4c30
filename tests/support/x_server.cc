#include "tests/support/x_server.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#ifndef XW_SOURCE_DIR
#error "XW_SOURCE_DIR names the folder of the sources"
#endif

namespace support {

namespace {

// Starts a program that ends with this one. `pass` is a descriptor that it keeps, or -1.
pid_t Start(const std::vector<std::string>& command, int pass) {
  std::vector<char*> argv;
  for (const std::string& a : command) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  const pid_t pid = fork();
  if (pid != 0) return pid;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const int null = open("/dev/null", O_RDWR);
  for (int fd = 0; fd < 3; ++fd) dup2(null, fd);
  if (pass >= 0) fcntl(pass, F_SETFD, 0);
  execvp(argv[0], argv.data());
  _exit(127);
}

// Asks again and again: a program that looks for signals between two waits only may sleep through
// the first.
void Stop(pid_t* pid, int signal) {
  for (int tries = 0; *pid > 0; ++tries) {
    kill(*pid, tries < 50 ? signal : SIGKILL);
    for (int looks = 0; looks < 100 && *pid > 0; ++looks) {
      if (waitpid(*pid, nullptr, WNOHANG) != 0)
        *pid = 0;
      else
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
}

// The display's number, which the server writes once it listens.
std::string ReadNumber(int fd) {
  std::string text;
  pollfd p{fd, POLLIN, 0};
  while (text.find('\n') == std::string::npos && poll(&p, 1, 10000) == 1) {
    char c[16];
    const ssize_t n = read(fd, c, sizeof c);
    if (n <= 0) return {};
    text.append(c, size_t(n));
  }
  return text.substr(0, text.find('\n'));
}

template <class T>
struct Reply {
  explicit Reply(T* r) : p(r) {}
  ~Reply() { free(p); }
  Reply(const Reply&) = delete;
  Reply& operator=(const Reply&) = delete;
  T* operator->() const { return p; }
  T* p;
};

}  // namespace

bool Eventually(const std::function<bool()>& done) {
  // By the clock: where a look takes long, a number of them would take longer than the test may.
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(25);
  while (std::chrono::steady_clock::now() < end) {
    if (done()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return done();
}

XServer::XServer(const std::vector<std::string>& arguments) {
  std::vector<std::string> all = {"-screen", "0", "1024x768x24"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Run("Xvfb", all);
}

std::unique_ptr<XServer> XServer::WithConfiguration(const std::string& file) {
  std::unique_ptr<XServer> server(new XServer(Unstarted{}));
  // The program itself: a wrapper on the path may ask for a console.
  for (const char* program : {"/usr/lib/xorg/Xorg", "/usr/libexec/Xorg"}) {
    if (access(program, X_OK) != 0) continue;
    server->Run(program, {"-config", file, "-logfile", file + ".log", "-novtswitch", "-sharevts"});
    break;
  }
  return server;
}

bool XServer::Run(const std::string& program, const std::vector<std::string>& arguments) {
  int pipe_ends[2];
  if (pipe2(pipe_ends, O_CLOEXEC) != 0) return false;
  std::vector<std::string> command = {program,    "-displayfd", std::to_string(pipe_ends[1]),
                                      "-noreset", "-nolisten",  "tcp"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  pid_ = Start(command, pipe_ends[1]);
  close(pipe_ends[1]);
  const std::string number = ReadNumber(pipe_ends[0]);
  close(pipe_ends[0]);
  if (number.empty()) {
    Stop(&pid_, SIGKILL);
    return false;
  }
  display_ = ":" + number;
  setenv("DISPLAY", display_.c_str(), 1);
  setenv("XW_DISPLAY", "x11", 1);
  return true;
}

XServer::~XServer() {
  Stop(&manager_, SIGKILL);
  Stop(&pid_, SIGTERM);
}

void XServer::Kill() {
  Stop(&pid_, SIGKILL);
}

bool XServer::StartManager(const std::string& name) {
  if (name == "openbox") {
    manager_ = Start(
        {"openbox", "--sm-disable", "--config-file", XW_SOURCE_DIR "/tests/support/openbox-rc.xml"},
        -1);
  } else {
    manager_ = Start({name}, -1);
  }
  prober_ = std::make_unique<XUser>();
  return manager_ > 0 && Eventually([&] { return prober_->IsManaged(); });
}

XUser::XUser() {
  c_ = xcb_connect(nullptr, nullptr);
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(c_)).data;
}

XUser::~XUser() {
  xcb_disconnect(c_);
}

// A manager that has only just started may have read a request and wait for the next event before
// it looks at it: a first window of our own is brought up with such events, and taken away again.
void XUser::Sync() {
  Reply r(xcb_get_input_focus_reply(c_, xcb_get_input_focus(c_), nullptr));
}

void XUser::PassMarker() {
  const auto supported = Words(root(), "_NET_SUPPORTED");
  if (std::find(supported.begin(), supported.end(), Atom("_NET_REQUEST_FRAME_EXTENTS")) ==
      supported.end()) {
    return Sync();
  }
  if (marker_ == 0) {
    marker_ = xcb_generate_id(c_);
    xcb_create_window(c_, XCB_COPY_FROM_PARENT, marker_, root(), 0, 0, 20, 20, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  }
  xcb_delete_property(c_, marker_, Atom("_NET_FRAME_EXTENTS"));
  Ask(marker_, "_NET_REQUEST_FRAME_EXTENTS", {});
  Eventually([&] { return !Words(marker_, "_NET_FRAME_EXTENTS").empty(); });
}

void XUser::Move(int x, int y) {
  xcb_test_fake_input(c_, XCB_MOTION_NOTIFY, 0, 0, root(), int16_t(x), int16_t(y), 0);
  Sync();
}

void XUser::Button(int button, bool down) {
  xcb_test_fake_input(c_, down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, uint8_t(button), 0, 0, 0, 0,
                      0);
  Sync();
}

void XUser::Click(int button) {
  Button(button, true);
  Button(button, false);
}

int XUser::CodeOf(uint32_t keysym, int column) {
  const xcb_setup_t* setup = xcb_get_setup(c_);
  const int first = setup->min_keycode, count = setup->max_keycode - first + 1;
  Reply map(xcb_get_keyboard_mapping_reply(
      c_, xcb_get_keyboard_mapping(c_, uint8_t(first), uint8_t(count)), nullptr));
  const xcb_keysym_t* syms = xcb_get_keyboard_mapping_keysyms(map.p);
  for (int i = 0; i < count; ++i)
    if (syms[i * map->keysyms_per_keycode + column] == keysym) return first + i;
  return 0;
}

void XUser::Key(uint32_t keysym, bool down) {
  if (const int code = CodeOf(keysym, 0)) Code(code, down);
  Sync();
}

void XUser::Code(int keycode, bool down) {
  xcb_test_fake_input(c_, down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, uint8_t(keycode), 0, 0, 0, 0, 0);
  Sync();
}

void XUser::Type(uint32_t keysym) {
  Key(keysym, true);
  Key(keysym, false);
}

void XUser::Write(const std::string& text) {
  constexpr uint32_t kShiftKey = 0xFFE1;
  for (const char c : text) {
    const auto keysym = uint32_t(static_cast<unsigned char>(c));
    if (CodeOf(keysym, 0)) {
      Type(keysym);
    } else if (const int code = CodeOf(keysym, 1)) {
      Key(kShiftKey, true);
      Code(code, true);
      Code(code, false);
      Key(kShiftKey, false);
    }
  }
}

bool XUser::IsManaged() {
  const xcb_window_t probe = xcb_generate_id(c_);
  xcb_create_window(c_, XCB_COPY_FROM_PARENT, probe, root(), 0, 0, 20, 20, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_map_window(c_, probe);
  bool managed = false;
  for (int i = 0; i < 40 && !managed; ++i) {
    const timespec pause{0, 5000000};
    nanosleep(&pause, nullptr);
    managed = Viewable(probe) && Frame(probe) != probe;
  }
  xcb_destroy_window(c_, probe);
  // Gone for the manager too.
  return Eventually([&] { return Words(root(), "_NET_CLIENT_LIST").empty(); }) && managed;
}

xcb_window_t XUser::Search(xcb_window_t in, const std::string& title) {
  if (Text(in, "_NET_WM_NAME") == title && !Words(in, "_NET_WM_PID").empty()) return in;
  Reply tree(xcb_query_tree_reply(c_, xcb_query_tree(c_, in), nullptr));
  if (tree.p == nullptr) return 0;
  const xcb_window_t* children = xcb_query_tree_children(tree.p);
  for (int i = 0; i < xcb_query_tree_children_length(tree.p); ++i) {
    if (xcb_window_t found = Search(children[i], title)) return found;
  }
  return 0;
}

xcb_window_t XUser::Find(const std::string& title) {
  xcb_window_t found = 0;
  Eventually([&] { return (found = Search(root(), title)) != 0; });
  return found;
}

xcb_window_t XUser::Frame(xcb_window_t window) {
  for (;;) {
    Reply tree(xcb_query_tree_reply(c_, xcb_query_tree(c_, window), nullptr));
    if (tree.p == nullptr || tree->parent == root() || tree->parent == 0) return window;
    window = tree->parent;
  }
}

XUser::Geometry XUser::Where(xcb_window_t window) {
  Reply g(xcb_get_geometry_reply(c_, xcb_get_geometry(c_, window), nullptr));
  Reply t(xcb_translate_coordinates_reply(c_, xcb_translate_coordinates(c_, window, root(), 0, 0),
                                          nullptr));
  if (g.p == nullptr || t.p == nullptr) return {};
  return {t->dst_x, t->dst_y, g->width, g->height};
}

bool XUser::Viewable(xcb_window_t window) {
  Reply a(xcb_get_window_attributes_reply(c_, xcb_get_window_attributes(c_, window), nullptr));
  return a.p != nullptr && a->map_state == XCB_MAP_STATE_VIEWABLE;
}

xcb_window_t XUser::Focus() {
  Reply f(xcb_get_input_focus_reply(c_, xcb_get_input_focus(c_), nullptr));
  return f->focus;
}

xcb_atom_t XUser::Atom(const char* name) {
  Reply a(xcb_intern_atom_reply(c_, xcb_intern_atom(c_, 0, uint16_t(strlen(name)), name), nullptr));
  return a->atom;
}

std::vector<uint32_t> XUser::Words(xcb_window_t window, const char* property, uint32_t most) {
  Reply r(xcb_get_property_reply(
      c_, xcb_get_property(c_, 0, window, Atom(property), XCB_ATOM_ANY, 0, most), nullptr));
  if (r.p == nullptr || r->format != 32) return {};
  const auto* words = static_cast<const uint32_t*>(xcb_get_property_value(r.p));
  return {words, words + xcb_get_property_value_length(r.p) / 4};
}

std::string XUser::Text(xcb_window_t window, const char* property) {
  Reply r(xcb_get_property_reply(
      c_, xcb_get_property(c_, 0, window, Atom(property), XCB_ATOM_ANY, 0, 1024), nullptr));
  if (r.p == nullptr || r->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(r.p)),
          size_t(xcb_get_property_value_length(r.p))};
}

void SendMessage(xcb_connection_t* c, xcb_window_t to, uint32_t mask, xcb_window_t about,
                 xcb_atom_t type, const std::vector<uint32_t>& data) {
  xcb_client_message_event_t m{};
  m.response_type = XCB_CLIENT_MESSAGE;
  m.format = 32;
  m.window = about;
  m.type = type;
  for (size_t i = 0; i < data.size() && i < 5; ++i) m.data.data32[i] = data[i];
  xcb_send_event(c, 0, to, mask, reinterpret_cast<const char*>(&m));
}

void XUser::Ask(xcb_window_t window, const char* type, const std::vector<uint32_t>& data) {
  SendMessage(c_, root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
              window, Atom(type), data);
  Sync();
}

void XUser::Tell(xcb_window_t window, const char* type, const std::vector<uint32_t>& data) {
  SendMessage(c_, window, 0, window, Atom(type), data);
  Sync();
}

Screenshot XUser::Look() {
  Screenshot shot{screen_->width_in_pixels, screen_->height_in_pixels, {}};
  Reply image(xcb_get_image_reply(c_,
                                  xcb_get_image(c_, XCB_IMAGE_FORMAT_Z_PIXMAP, root(), 0, 0,
                                                uint16_t(shot.width), uint16_t(shot.height), ~0u),
                                  nullptr));
  shot.pixels.resize(size_t(shot.width) * size_t(shot.height));
  if (image.p == nullptr) return shot;
  const auto* words = reinterpret_cast<const uint32_t*>(xcb_get_image_data(image.p));
  for (size_t i = 0; i < shot.pixels.size(); ++i) shot.pixels[i] = words[i] & 0xFFFFFF;
  return shot;
}

}  // namespace support
