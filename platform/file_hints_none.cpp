#include "platform/file_hints.h"

namespace tavenhall {

void hintSequentialRead(int /*descriptor*/, std::int64_t /*size*/) noexcept {}

void hintSequentialWrite(int /*descriptor*/, std::int64_t /*size*/) noexcept {}

}  // namespace tavenhall
