#include "tests/fuzz/fuzzing.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

// Goes through the inputs in the folders that are named, in the order of their names, where libFuzzer is not
// linked in: what a fuzzer once found is tried in every build.
int main(int argumentCount, char** arguments) {
  namespace fs = std::filesystem;
  LLVMFuzzerInitialize(&argumentCount, &arguments);
  std::vector<fs::path> inputs;
  for (int i = 1; i < argumentCount; ++i) {
    for (const fs::directory_entry& entry : fs::directory_iterator(arguments[i])) {
      inputs.push_back(entry.path());
    }
  }
  std::sort(inputs.begin(), inputs.end());
  for (const fs::path& input : inputs) {
    std::printf("%s\n", input.filename().c_str());
    std::fflush(stdout);
    // A copy that ends where its memory ends, so that a checker of memory sees a step too far.
    const std::string bytes = tavenhall::fuzz::readBytes(input.c_str());
    const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
  }
  if (inputs.empty()) {
    std::fprintf(stderr, "no inputs; name the folders that hold them\n");
    return 2;
  }
  std::printf("%zu inputs\n", inputs.size());
}
