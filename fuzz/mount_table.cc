// Mount tables of any content, against a second reading of them line by line: the input up to the
// first byte 255 is /etc/mtab, what follows /etc/rfstab. The plain list is the whole one, cut.
#include <stdint.h>
#include <stdlib.h>

#include <fstream>
#include <sstream>
#include <vector>

#include "fuzz/root.h"
#include "os/os.h"

namespace {

struct Place {
  std::string name, path, host;
};

std::string Decode(const std::string& text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    const std::string digits = text.substr(i + 1, 3);
    const bool octal = digits.size() == 3 && digits.find_first_not_of("01234567") == digits.npos;
    const long code = octal ? strtol(digits.c_str(), nullptr, 8) : 0;
    const bool escape = text[i] == '\\' && code > 0 && code < 256;
    result += escape ? static_cast<char>(code) : text[i];
    if (escape) i += 3;
  }
  return result;
}

// The lines, each up to its first zero.
std::vector<std::string> LinesOf(const std::string& text, size_t limit) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line.substr(0, limit).c_str());
  return lines;
}

std::vector<Place> Expected(const std::string& mtab, const std::string& rfstab, size_t limit) {
  std::vector<Place> mounts;
  for (const std::string& line : LinesOf(mtab, limit)) {
    std::istringstream words(line);
    std::string device, path, type;
    if (!(words >> device >> path >> type)) continue;
    if (type != "nfs" && type != "nfs4" && type != "smbfs" && type != "cifs" && type != "smb3") {
      continue;
    }
    device = Decode(device);
    path = Decode(path);
    std::string name = path.substr(1) + ":";
    for (char& c : name) c = c >= 'a' && c <= 'z' ? static_cast<char>(c & ~0x20) : c;
    const size_t colon = device.find(':');
    Place place = {name, path, colon == device.npos ? "" : device.substr(0, colon)};
    auto at = mounts.begin();
    while (at != mounts.end() && at->name <= place.name) ++at;
    mounts.insert(at, place);
  }
  for (const std::string& line : LinesOf(rfstab, limit)) {
    std::istringstream words(line);
    std::string name, path;
    if (line.rfind('#', 0) == 0 || !(words >> name)) continue;
    if (!(words >> path)) path = name;
    mounts.push_back({name, path, ""});
  }
  return mounts;
}

void Write(const std::string& name, const std::string& content) {
  std::ofstream(FuzzRoot() + "/etc/" + name, std::ios::binary) << content;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 8192) return 0;
  std::filesystem::create_directories(FuzzRoot() + "/etc");
  const std::string text(reinterpret_cast<const char*>(data), size);
  const size_t cut = text.find('\xFF');
  const std::string mtab = text.substr(0, cut);
  const std::string rfstab = cut == text.npos ? "" : text.substr(cut + 1);
  Write("mtab", mtab);
  Write("rfstab", rfstab);

  int count = 0;
  OS_DeviceN* whole = OS_ListDevN(&count);
  const std::vector<Place> expected = Expected(mtab, rfstab, 65536);
  if (count != static_cast<int>(expected.size()) + 4) abort();
  for (size_t i = 0; i < expected.size(); ++i) {
    const OS_DeviceN& one = whole[i + 4];
    if (expected[i].name != one.name || expected[i].path != one.path ||
        expected[i].host != one.host) {
      abort();
    }
  }
  OS_ListDevFreeN(whole);

  const OS_Device* plain = OS_ListDev(&count);
  const std::vector<Place> cut_lines = Expected(mtab, rfstab, 120);
  if (count < 4 || count > 50) abort();
  if (cut_lines.size() <= 46 && count != static_cast<int>(cut_lines.size()) + 4) abort();
  for (int i = 4; i < count; ++i) {
    if (plain[i].index != i * 4) abort();
    if (cut_lines.size() > 46) continue;
    const Place& place = cut_lines[i - 4];
    if (place.name.substr(0, 39) != plain[i].name || place.path.substr(0, 86) != plain[i].path ||
        place.host.substr(0, 63) != plain[i].host) {
      abort();
    }
  }
  return 0;
}
