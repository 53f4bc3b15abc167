#include "platform/file_hints.h"

namespace tavenhall {

void hintSequentialRead(int /*descriptor*/) noexcept {}

}  // namespace tavenhall
