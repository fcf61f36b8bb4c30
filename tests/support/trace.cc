#include "tests/support/trace.h"

#include <unistd.h>

#include <cstdio>
#include <map>
#include <utility>

namespace support {

namespace {

struct Hook {
  std::string name;
  XwHandler handler;
};
std::map<XwWindow*, Hook> hooks;
int descriptor = -1;

bool IsKey(int type) {
  return (type >= 32 && type <= 126) || (type >= 256 && type < 768);
}

std::string_view NameOf(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

std::string TraceLine(const std::string& name) {
  char text[200];
  const int type = Inp.type;
  if (type == XWE_CONFIGURE && Inp.window != nullptr && Inp.window->kind != 0) {
    snprintf(text, sizeof text, "%d %dx%d at %d %d", type, Inp.width, Inp.height, Inp.x, Inp.y);
  } else if (type == XWE_CONFIGURE || type == XWE_EXPOSE) {
    snprintf(text, sizeof text, "%d %dx%d", type, Inp.width, Inp.height);
  } else if (type >= XWE_MOTION && type <= XWE_RELEASE) {
    snprintf(text, sizeof text, "%d item %d at %d %d state %x", type, Inp.item, Inp.px, Inp.py,
             Inp.state);
  } else if (IsKey(type)) {
    snprintf(text, sizeof text, "%d item %d state %x", type, Inp.item, Inp.state);
  } else if (type == XWE_MODIFIERS) {
    snprintf(text, sizeof text, "%d state %x", type, Inp.state);
  } else if (type == XWE_TIMER || type == XWE_KEY_UP) {
    snprintf(text, sizeof text, "%d value %ld", type, long(Inp.value));
  } else if (type == XWE_OPEN && Inp.value != 0) {
    const std::string_view file = NameOf(reinterpret_cast<const char*>(Inp.value));
    snprintf(text, sizeof text, "%d %.*s", type, int(file.size()), file.data());
  } else {
    snprintf(text, sizeof text, "%d item %d", type, Inp.item);
  }
  return name + " " + text;
}

int Note(int type) {
  const auto found = hooks.find(Inp.window);
  if (found == hooks.end()) return 0;
  const Hook& hook = found->second;
  const std::string line = TraceLine(hook.name) + "\n";
  if (descriptor >= 0 && write(descriptor, line.data(), line.size()) != ssize_t(line.size())) {
    perror("trace");
  }
  return hook.handler(type);
}

// "main 770" of a motion's line; nothing of another's.
std::string_view MotionOf(std::string_view line) {
  const size_t at = line.find(" 770 ");
  return at == std::string_view::npos ? std::string_view{} : line.substr(0, at + 4);
}

}  // namespace

void HookTrace(XwWindow* w, const std::string& name) {
  hooks[w] = {name, std::exchange(w->handler, Note)};
}

void WriteTraceTo(int fd) {
  descriptor = fd;
}

std::string MergeMotions(std::string_view text) {
  std::string merged;
  std::string_view last_motion;
  size_t last_start = 0;
  while (!text.empty()) {
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    const std::string_view motion = MotionOf(line);
    if (!motion.empty() && motion == last_motion) merged.resize(last_start);
    last_motion = motion;
    last_start = merged.size();
    merged.append(line).push_back('\n');
  }
  return merged;
}

}  // namespace support
