#include "platform/copy_hints.h"

namespace tavenhall {

void hintSequentialRead(int /*descriptor*/, std::int64_t /*size*/) noexcept {}

void hintSequentialWrite(int /*descriptor*/, std::int64_t /*size*/) noexcept {}

class ReadAhead::Reader {};

ReadAhead::ReadAhead(const char* /*folder*/) noexcept {}
ReadAhead::~ReadAhead() = default;
void ReadAhead::cameToFile() noexcept {}

}  // namespace tavenhall
