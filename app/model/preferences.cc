#include "app/model/preferences.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "printserver/nc.h"

namespace console {
namespace {

constexpr size_t kMostColumns = 32;
constexpr size_t kMostUnknown = 200;
constexpr size_t kMostText = 8192;

struct Number {
  const char* name;
  int Preferences::*value;
  int least, most;
};
constexpr Number kNumbers[] = {
    {"window-width", &Preferences::window_width, 760, 16384},
    {"window-height", &Preferences::window_height, 480, 16384},
    {"window-left", &Preferences::window_left, 0, 16384},
    {"window-top", &Preferences::window_top, 0, 16384},
    {"places-width", &Preferences::places_width, 0, 8192},
    {"details-width", &Preferences::details_width, 0, 8192},
    {"queue-height", &Preferences::queue_height, 0, 8192},
    {"printers-height", &Preferences::printers_height, 0, 8192},
    {"file-order", &Preferences::file_order, 0, int(kMostColumns)},
    {"queue-order", &Preferences::queue_order, 0, int(kMostColumns)},
    {"refresh-seconds", &Preferences::refresh_seconds, 1, 3600},
};
struct Switch {
  const char* name;
  bool Preferences::*value;
};
constexpr Switch kSwitches[] = {
    {"show-places", &Preferences::show_places},
    {"show-printers", &Preferences::show_printers},
    {"show-details", &Preferences::show_details},
    {"files-descending", &Preferences::files_descending},
    {"queue-descending", &Preferences::queue_descending},
    {"hidden-names", &Preferences::hidden_names},
    {"mine-only", &Preferences::mine_only},
    {"active-only", &Preferences::active_only},
    {"ended-only", &Preferences::ended_only},
    {"start-local-server", &Preferences::start_local_server},
};
struct Text {
  const char* name;
  std::string Preferences::*value;
};
constexpr Text kTexts[] = {
    {"folder", &Preferences::folder},
    {"printer", &Preferences::printer},
    {"default-printer", &Preferences::default_printer},
    {"file-filter", &Preferences::file_filter},
    {"queue-filter", &Preferences::queue_filter},
    {"server", &Preferences::server},
};
struct Columns {
  const char* name;
  std::vector<int> Preferences::*value;
};
constexpr Columns kColumns[] = {
    {"file-columns", &Preferences::file_columns},
    {"queue-columns", &Preferences::queue_columns},
};
constexpr const char* kRecent = "recent-server";

bool ParseNumber(std::string_view text, int least, int most, int* out) {
  int number = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
  if (end.ec != std::errc() || end.ptr != text.data() + text.size()) return false;
  if (number < least || number > most) return false;
  *out = number;
  return true;
}

// Names of files may hold line ends.
std::string Escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\n')
      out += "\\n";
    else if (c == '\r')
      out += "\\r";
    else if (c == '\\')
      out += "\\\\";
    else
      out += c;
  }
  return out;
}

std::string Unescaped(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const char c = text[++i];
    out += c == 'n' ? '\n' : c == 'r' ? '\r' : c;
  }
  return out;
}

bool ParseColumns(std::string_view text, std::vector<int>* out) {
  std::vector<int> widths;
  while (!text.empty() && widths.size() < kMostColumns) {
    const size_t end = std::min(text.find(' '), text.size());
    int width = 0;
    if (!ParseNumber(text.substr(0, end), 0, 8192, &width)) return false;
    widths.push_back(width);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  *out = std::move(widths);
  return true;
}

template <typename Field, size_t n>
const Field* Named(const Field (&fields)[n], std::string_view name) {
  for (const Field& field : fields)
    if (name == field.name) return &field;
  return nullptr;
}

// False when there is no such name.
bool SetField(std::string_view name, std::string_view value, Preferences* p) {
  if (const Number* number = Named(kNumbers, name)) {
    ParseNumber(value, number->least, number->most, &(p->*number->value));
  } else if (const Switch* either = Named(kSwitches, name)) {
    if (value == "yes" || value == "no") p->*either->value = value == "yes";
  } else if (const Text* text = Named(kTexts, name)) {
    p->*text->value = Unescaped(value.substr(0, kMostText));
  } else if (const Columns* columns = Named(kColumns, name)) {
    ParseColumns(value, &(p->*columns->value));
  } else if (name == kRecent) {
    if (p->recent_servers.size() < kMostRecentServers)
      p->recent_servers.push_back(Unescaped(value.substr(0, kMostText)));
  } else {
    return false;
  }
  return true;
}

void ParseLine(std::string_view line, Preferences* p) {
  const size_t equals = line.find('=');
  if (line.empty() || line[0] == '#') return;
  if (equals != std::string_view::npos &&
      SetField(line.substr(0, equals), line.substr(equals + 1), p))
    return;
  if (p->unknown.size() < kMostUnknown) p->unknown.emplace_back(line);
}

}  // namespace

Preferences ParsePreferences(const std::string& text) {
  Preferences p;
  std::string_view rest = text;
  while (!rest.empty()) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    ParseLine(rest.substr(0, end), &p);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  if (!IsServerName(p.server)) p.server.clear();
  std::erase_if(p.recent_servers, [](const std::string& s) { return !IsServerName(s); });
  return p;
}

std::string FormatPreferences(const Preferences& p) {
  std::string out = "# What quorvik remembers. It is written when that changes.\n";
  const auto line = [&out](const char* name, const std::string& value) {
    out += std::string(name) + "=" + value + "\n";
  };
  for (const Number& n : kNumbers) line(n.name, std::to_string(p.*n.value));
  for (const Switch& s : kSwitches) line(s.name, p.*s.value ? "yes" : "no");
  for (const Text& t : kTexts) line(t.name, Escaped(p.*t.value));
  for (const Columns& c : kColumns) {
    std::string widths;
    for (const int width : p.*c.value)
      widths += (widths.empty() ? "" : " ") + std::to_string(width);
    line(c.name, widths);
  }
  for (const std::string& server : p.recent_servers) line(kRecent, Escaped(server));
  for (const std::string& unknown : p.unknown) out += unknown + "\n";
  return out;
}

namespace {

// The name without the usual port: with it, and without, it is the same server.
std::string WithoutUsualPort(const std::string& server) {
  const std::string port = ":" + std::to_string(NC_PORT);
  return server.ends_with(port) ? server.substr(0, server.size() - port.size()) : server;
}

}  // namespace

void NoteServer(const std::string& server, Preferences* p) {
  p->server = server;
  if (server.empty()) return;
  std::erase_if(p->recent_servers, [&server](const std::string& s) {
    return WithoutUsualPort(s) == WithoutUsualPort(server);
  });
  p->recent_servers.insert(p->recent_servers.begin(), server);
  if (p->recent_servers.size() > kMostRecentServers) p->recent_servers.resize(kMostRecentServers);
}

ServerChoice ChooseServer(const char* environment, const Preferences& p) {
  if (environment && *environment) return {environment, true};
  return {p.server, false};
}

bool IsServerName(const std::string& text) {
  const size_t colon = text.find(':');
  const std::string host = text.substr(0, colon);
  int port = 0;
  if (colon != std::string::npos && !ParseNumber(text.substr(colon + 1), 1, 65535, &port))
    return false;
  return !host.empty() && host.size() <= 253 && host[0] != '-' &&
         std::all_of(host.begin(), host.end(), [](char c) {
           return c == '.' || c == '-' || c == '_' || (c >= '0' && c <= '9') ||
                  (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
         });
}

}  // namespace console
