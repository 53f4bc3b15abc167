#include "host/usage_error.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace tavenhall {

void showError(const std::exception& error) {
  std::string line = error.what();
  const auto isControl = [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
  };
  std::replace_if(line.begin(), line.end(), isControl, '?');
  std::fprintf(stderr, "tavinstall: %s\n", line.c_str());
}

}  // namespace tavenhall
