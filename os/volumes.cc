// The places that a user can browse: the fixed ones, network mounts, and mounted volumes.
#include <errno.h>
#include <limits.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "os/lines.h"
#include "os/match.h"
#include "os/os.h"
#include "os/system_paths.h"

static_assert(sizeof(OS_Device) == 192 && offsetof(OS_Device, path) == 40 &&
              offsetof(OS_Device, host) == 127 && offsetof(OS_Device, index) == 191);

namespace {

struct Place {
  std::string name, path, host;
};

// The whole list, or as much of it as the plain call has room for.
struct Limits {
  size_t places;
  size_t line;
};
constexpr Limits kPlain = {50, 120};
// Longer than a device, a mount point and options can be, each byte written as an escape.
constexpr Limits kWhole = {INT_MAX, 65536};

bool IsOctal(char c) {
  return c >= '0' && c <= '7';
}

// Mount tables write blanks and backslashes as a backslash and three octal digits.
std::string WithoutEscapes(const std::string& text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    const char* c = text.c_str() + i;
    if (c[0] == '\\' && IsOctal(c[1]) && IsOctal(c[2]) && IsOctal(c[3])) {
      const int code = (c[1] - '0') * 64 + (c[2] - '0') * 8 + (c[3] - '0');
      if (code > 0 && code < 256) {
        result += static_cast<char>(code);
        i += 3;
        continue;
      }
    }
    result += *c;
  }
  return result;
}

std::string UpperCase(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

bool IsNetwork(const std::string& type) {
  constexpr const char* kTypes[] = {"nfs", "nfs4", "smbfs", "cifs", "smb3"};
  return std::find(std::begin(kTypes), std::end(kTypes), type) != std::end(kTypes);
}

void AddFixed(std::vector<Place>* places) {
  places->push_back({"ROOT", "/", ""});
  places->push_back({"LOCAL", os::FolderPath(OS_FOLDER_HOME), ""});
  places->push_back({"DOCUMENTS", os::FolderPath(OS_FOLDER_DOCUMENTS), ""});
  places->push_back({"DESKTOP", os::FolderPath(OS_FOLDER_DESKTOP), ""});
}

void AddMounts(const Limits& limits, std::vector<Place>* places) {
  const size_t first = places->size();
  os::Lines lines(os::SystemPath("/etc/mtab"), limits.line);
  for (std::string line; places->size() < limits.places && lines.Next(&line);) {
    const std::vector<std::string> words = os::Words(line, 3);
    if (words.size() < 3 || !IsNetwork(words[2])) continue;
    const std::string device = WithoutEscapes(words[0]);
    const std::string path = WithoutEscapes(words[1]);
    const size_t colon = device.find(':');
    places->push_back({UpperCase(path.substr(1)) + ":", path,
                       colon == std::string::npos ? "" : device.substr(0, colon)});
  }
  std::stable_sort(places->begin() + first, places->end(),
                   [](const Place& a, const Place& b) { return a.name < b.name; });
}

void AddRemote(const Limits& limits, std::vector<Place>* places) {
  os::Lines lines(os::SystemPath("/etc/rfstab"), limits.line);
  for (std::string line; places->size() < limits.places && lines.Next(&line);) {
    const std::vector<std::string> words = os::Words(line, 2);
    if (line[0] != '#' && !words.empty()) places->push_back({words[0], words.back(), ""});
  }
}

// Add the folders of one folder of mounts, as OS_ListDir chooses them, by their whole names. False,
// with errno, if the folder cannot be listed.
bool AddVolumesOf(const std::string& folder, const Limits& limits, std::vector<Place>* places) {
  constexpr int kTypes = OS_LIST_FOLDERS | OS_LIST_OTHERS | OS_LIST_HIDDEN;
  int count = 0;
  OS_ListEntryN* list = OS_ListDirN(folder.c_str(), "*", &count, kTypes, OS_SORT_NAME);
  for (int i = 1; i < count && places->size() < limits.places; ++i) {
    if (!(list[i].mode & OS_LIST_FOLDERS) || os::IsLeftOut(list[i].name, OS_LIST_FOLDERS)) continue;
    places->push_back({list[i].name, folder + "/" + list[i].name, ""});
  }
  OS_ListFreeN(list);
  return count >= 0;
}

// Where there is no "/Volumes", the folder in which the desktop mounts things stands for it.
void AddVolumes(const Limits& limits, std::vector<Place>* places) {
  if (AddVolumesOf(os::SystemPath("/Volumes"), limits, places) || errno != ENOENT) return;
  for (const char* parent : {"/run/media/", "/media/"}) {
    if (AddVolumesOf(os::SystemPath(parent) + os::UserName(), limits, places)) return;
  }
}

std::vector<Place> FindPlaces(const Limits& limits) {
  std::vector<Place> places;
  AddFixed(&places);
  AddMounts(limits, &places);
  AddRemote(limits, &places);
  AddVolumes(limits, &places);
  return places;
}

template <size_t kSize>
void Cut(const std::string& text, char (&field)[kSize]) {
  field[text.copy(field, kSize - 1)] = 0;
}

char* PutText(const std::string& text, char* at, const char** field) {
  *field = at;
  memcpy(at, text.c_str(), text.size() + 1);
  return at + text.size() + 1;
}

}  // namespace

extern "C" {

OS_Device* OS_ListDev(int* count) {
  static OS_Device devices[kPlain.places];
  memset(devices, 0, sizeof devices);
  const std::vector<Place> places = FindPlaces(kPlain);
  for (size_t i = 0; i < places.size(); ++i) {
    Cut(places[i].name, devices[i].name);
    Cut(places[i].path, devices[i].path);
    Cut(places[i].host, devices[i].host);
    devices[i].index = static_cast<uint8_t>(i * 4);
  }
  if (count) *count = static_cast<int>(places.size());
  return devices;
}

int lsdev_sort(const OS_Device* a, const OS_Device* b) {
  return a && b ? strcmp(a->name, b->name) : 0;
}

OS_DeviceN* OS_ListDevN(int* count) {
  const std::vector<Place> places = FindPlaces(kWhole);
  size_t size = places.size() * sizeof(OS_DeviceN);
  for (const Place& p : places) size += p.name.size() + p.path.size() + p.host.size() + 3;
  auto* list = static_cast<OS_DeviceN*>(malloc(size));
  if (count) *count = list ? static_cast<int>(places.size()) : 0;
  char* text = reinterpret_cast<char*>(list + places.size());
  for (size_t i = 0; list && i < places.size(); ++i) {
    text = PutText(places[i].name, text, &list[i].name);
    text = PutText(places[i].path, text, &list[i].path);
    text = PutText(places[i].host, text, &list[i].host);
  }
  return list;
}

void OS_ListDevFreeN(OS_DeviceN* list) {
  free(list);
}

}  // extern "C"
