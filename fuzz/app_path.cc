// Application-path files of any content, and records under any key.
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz/root.h"
#include "os/os.h"

namespace {

std::string MakeRegistry() {
  const std::string registry = FuzzRoot() + "/Users/Shared/Quorvik/";
  std::filesystem::create_directories(registry);
  os::SetExecutablePath("/opt/bin/tool");
  return registry;
}

// The first line of at most 255 bytes, up to a zero, its last line feed or its last return.
std::string Expected(const std::string& content) {
  std::string line = content.substr(0, 255);
  line = line.substr(0, line.find('\n'));
  line = line.substr(0, line.find('\0'));
  return line.substr(0, line.rfind('\r'));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string registry = MakeRegistry();
  const std::string content(reinterpret_cast<const char*>(data), size);
  std::ofstream(registry + "key", std::ios::binary) << content;
  if (OS_GetAppPath("key") != Expected(content)) abort();
  // Whatever the key, the record lands in the registry or nowhere.
  const std::string key = content.c_str();
  if (OS_SetAppPath(key.c_str()) == 0) {
    if (key.find('/') != std::string::npos || !std::filesystem::is_regular_file(registry + key)) {
      abort();
    }
    const bool fits = registry.size() + key.size() < 256;
    if (fits && strcmp(OS_GetAppPath(key.c_str()), "/opt/bin") != 0) abort();
    unlink((registry + key).c_str());
  }
  return 0;
}
