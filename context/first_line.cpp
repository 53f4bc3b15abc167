#include "context/first_line.h"

#include "context/open_file.h"

#include <cstdio>

namespace tavenhall {

bool readFirstLine(const char* path, BoundedText<kFirstLineSize>& line) noexcept {
  line.clear();
  std::FILE* file = openToRead(path);
  if (file == nullptr) {
    return false;
  }
  if (std::fgets(line.data(), static_cast<int>(line.capacity()), file) == nullptr) {
    line.clear();
  }
  if (const std::size_t length = line.length(); length > 0) {
    line.data()[length - 1] = '\0';
  }
  std::fclose(file);
  return true;
}

}  // namespace tavenhall
