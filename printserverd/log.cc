#include "printserverd/log.h"

#include <unistd.h>

#include <chrono>
#include <mutex>

#include "printserverd/folder.h"

namespace printserverd {

void Log(const std::string& text) {
  std::string line = "printserverd: " + text;
  for (char& c : line) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
  }
  line.push_back('\n');
  WriteAll(STDERR_FILENO, line.data(), line.size());
}

void LogRarely(const std::string& text) {
  {
    static std::mutex mutex;
    static std::chrono::steady_clock::time_point next;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto now = std::chrono::steady_clock::now();
    if (now < next) return;
    next = now + std::chrono::seconds(1);
  }
  Log(text);
}

}  // namespace printserverd
