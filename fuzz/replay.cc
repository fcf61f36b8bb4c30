// Runs a fuzz target once for each file of the folders named on the command line: the seeds as a
// test, with any compiler.
#include <stdint.h>
#include <stdio.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& file : std::filesystem::directory_iterator(argv[i])) {
      std::ifstream in(file.path(), std::ios::binary);
      const std::string text{std::istreambuf_iterator<char>(in), {}};
      // A block of its own size, so that one byte too many is seen.
      const std::unique_ptr<uint8_t[]> data(new uint8_t[text.size()]);
      text.copy(reinterpret_cast<char*>(data.get()), text.size());
      printf("%s\n", file.path().c_str());
      fflush(stdout);
      LLVMFuzzerTestOneInput(data.get(), text.size());
      ++count;
    }
  }
  return count > 0 ? 0 : 1;
}
