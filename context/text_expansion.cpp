#include "context/text_expansion.h"

namespace tavenhall {

std::string expandFormat(std::string_view format, const char* argument) noexcept {
  std::string expanded;
  bool argumentUsed = false;
  for (std::size_t i = 0; i < format.size(); ++i) {
    const std::string_view pair = format.substr(i, 2);
    if (pair == "%%") {
      expanded += '%';
      ++i;
    } else if (pair == "%s" && !argumentUsed) {
      expanded += argument != nullptr ? argument : "(null)";
      argumentUsed = true;
      ++i;
    } else {
      expanded += format[i];
    }
  }
  return expanded;
}

}  // namespace tavenhall
