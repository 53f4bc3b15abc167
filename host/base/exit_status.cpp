#include "host/base/exit_status.h"

#include "host/base/text.h"

#include <cstdio>

namespace tavenhall {

void showError(const std::exception& error) {
  std::fprintf(stderr, "tavinstall: %s\n", printableLine(error.what()).c_str());
}

}  // namespace tavenhall
