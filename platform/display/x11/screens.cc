// Monitors and the scale of the desktop.
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr uint32_t kMaxPropertyWords = 1 << 16;

xcb_get_property_cookie_t AskProperty(xcb_window_t window, xcb_atom_t property) {
  return xcb_get_property(x.c, 0, window, property, XCB_ATOM_ANY, 0, kMaxPropertyWords);
}

// As xcb_randr_get_monitors, which leaves the last three bytes of the request as the stack has
// them.
xcb_randr_get_monitors_cookie_t AskMonitors(xcb_window_t root) {
  xcb_randr_get_monitors_request_t request;
  memset(&request, 0, sizeof request);
  request.window = root;
  request.get_active = 1;
  // The library fills in the head, and uses the two parts in front.
  const xcb_protocol_request_t kind = {1, &xcb_randr_id, XCB_RANDR_GET_MONITORS, 0};
  iovec parts[3] = {{}, {}, {&request, sizeof request}};
  return {xcb_send_request(x.c, XCB_REQUEST_CHECKED, parts + 2, &kind)};
}

// The variable that forces the scale; 0 when it is not set or no scale.
double ForcedScale() {
  return ScaleInText(getenv("XW_SCALE"));
}

void WatchSettings(xcb_window_t owner) {
  if (owner == x.settings_owner) return;
  for (WatchWhat what : {kWatchEnd, kWatchProperties}) {
    Unwatch(x.settings_owner, what);
    Watch(owner, what);
  }
  x.settings_owner = owner;
}

double DpiOfDesktop(xcb_get_property_cookie_t resources, xcb_get_selection_owner_cookie_t owner) {
  double dpi = 0;
  Reply<xcb_get_property_reply_t> text(xcb_get_property_reply(x.c, resources, nullptr));
  if (text && text->format == 8) {
    dpi = DpiOfResources(static_cast<const char*>(xcb_get_property_value(text.p)),
                         size_t(xcb_get_property_value_length(text.p)));
  }
  Reply<xcb_get_selection_owner_reply_t> who(xcb_get_selection_owner_reply(x.c, owner, nullptr));
  WatchSettings(who ? who->owner : xcb_window_t{XCB_NONE});
  if (x.settings_owner == XCB_NONE) return dpi;
  Reply<xcb_get_property_reply_t> settings(xcb_get_property_reply(
      x.c, AskProperty(x.settings_owner, Atom(kXsettingsSettings)), nullptr));
  if (dpi == 0 && settings && settings->format == 8) {
    dpi = DpiOfSettings(static_cast<const uint8_t*>(xcb_get_property_value(settings.p)),
                        size_t(xcb_get_property_value_length(settings.p)));
  }
  return dpi;
}

void AddMonitors(xcb_randr_get_monitors_reply_t* reply, std::vector<DeviceRect>* out) {
  for (auto m = xcb_randr_get_monitors_monitors_iterator(reply); m.rem != 0;
       xcb_randr_monitor_info_next(&m)) {
    if (m.data->width == 0 || m.data->height == 0) continue;
    DeviceRect r{m.data->x, m.data->y, m.data->x + m.data->width, m.data->y + m.data->height};
    out->insert(m.data->primary ? out->begin() : out->end(), r);
  }
}

// A cursor over the bytes of the settings, in the byte order that they name. Past the end it yields
// nothing and says so.
class Reader {
 public:
  Reader(const uint8_t* data, size_t size) : data_(data), size_(size) {
    big_ = size > 0 && data[0] == XCB_IMAGE_ORDER_MSB_FIRST;
  }
  bool ok() const { return ok_; }
  uint32_t Number(size_t bytes) {
    const uint8_t* p = Take(bytes);
    uint32_t value = 0;
    for (size_t i = 0; p != nullptr && i < bytes; ++i) {
      value |= uint32_t(p[big_ ? bytes - 1 - i : i]) << (8 * i);
    }
    return value;
  }
  std::string_view Text(size_t length) {
    const uint8_t* p = Take(length);
    Take((4 - length % 4) % 4);
    return p != nullptr ? std::string_view(reinterpret_cast<const char*>(p), length)
                        : std::string_view();
  }
  const uint8_t* Take(size_t bytes) {
    if (!ok_ || bytes > size_ - at_) {
      ok_ = false;
      return nullptr;
    }
    at_ += bytes;
    return data_ + at_ - bytes;
  }

 private:
  const uint8_t* data_;
  size_t size_, at_ = 0;
  bool big_ = false, ok_ = true;
};

}  // namespace

double DpiOfResources(const char* text, size_t size) {
  constexpr std::string_view kKey = "Xft.dpi";
  std::string_view rest(text, size);
  while (!rest.empty()) {
    const size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (line.substr(0, kKey.size()) != kKey) continue;
    line.remove_prefix(kKey.size());
    const size_t colon = line.find_first_not_of(" \t");
    if (colon == std::string_view::npos || line[colon] != ':') continue;
    const double dpi = strtod(std::string(line.substr(colon + 1)).c_str(), nullptr);
    return std::isfinite(dpi) && dpi > 0 ? dpi : 0;
  }
  return 0;
}

double DpiOfSettings(const uint8_t* data, size_t size) {
  enum { kInteger = 0, kString = 1, kColor = 2 };
  Reader in(data, size);
  in.Take(4);
  in.Number(4);  // serial
  for (uint32_t left = in.Number(4); left > 0 && in.ok(); --left) {
    const uint32_t type = in.Number(1);
    in.Take(1);
    const std::string_view name = in.Text(in.Number(2));
    in.Number(4);  // serial of its last change
    if (type == kInteger) {
      const int32_t value = int32_t(in.Number(4));
      if (in.ok() && name == "Xft/DPI") return value > 0 ? value / 1024.0 : 0;
    } else if (type == kString) {
      in.Text(in.Number(4));
    } else if (type == kColor) {
      in.Take(8);
    } else {
      return 0;
    }
  }
  return 0;
}

// In quarters, so that sizes stay crisp; never below one.
double ScaleOfDpi(double dpi) {
  if (!(dpi > 96)) return 1;
  return dpi >= 96 * 8 ? 8 : std::round(dpi / 96 * 4) / 4;
}

void ReadScreens() {
  const xcb_window_t root = x.screen->root;
  xcb_randr_get_monitors_cookie_t monitors{};
  if (x.randr_event != 0) monitors = AskMonitors(root);
  double scale = ForcedScale();
  if (scale == 0) {
    auto resources = AskProperty(root, XCB_ATOM_RESOURCE_MANAGER);
    auto owner = xcb_get_selection_owner(x.c, Atom(kXsettingsSelection));
    scale = ScaleOfDpi(DpiOfDesktop(resources, owner));
  }
  std::vector<DeviceRect> bounds;
  if (x.randr_event != 0) {
    Reply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(x.c, monitors, nullptr));
    if (reply) AddMonitors(reply.p, &bounds);
  }
  if (bounds.empty())
    bounds.push_back({0, 0, x.screen->width_in_pixels, x.screen->height_in_pixels});
  x.scale = scale;
  x.screens.clear();
  for (const DeviceRect& b : bounds) x.screens.push_back({b, scale});
}

void RefreshScreens() {
  const std::vector<Screen> old = x.screens;
  const double scale = x.scale;
  ReadScreens();
  bool same = old.size() == x.screens.size();
  for (size_t i = 0; same && i < old.size(); ++i) {
    same = old[i].bounds == x.screens[i].bounds && old[i].scale == x.screens[i].scale;
  }
  if (same) return;
  Emit(RawEvent::kScreens, nullptr);
  if (scale == x.scale) return;
  // The settings of the desktop hold for all windows, wherever they are.
  for (auto& [id, n] : x.windows) Emit(RawEvent::kScale, n)->scale = x.scale;
}

int Screens(Screen* out, int max) {
  const int count = int(x.screens.size());
  for (int i = 0; i < count && i < max; ++i) out[i] = x.screens[size_t(i)];
  return count;
}

}  // namespace platform::x11
