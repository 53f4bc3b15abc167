#include "platform/program_path.h"

namespace tavenhall {

std::filesystem::path programPath() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace tavenhall
