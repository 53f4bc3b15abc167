#include "platform/copy_hints.h"

namespace tavenhall {

class ReadAhead::Reader {};

ReadAhead::ReadAhead(const char* /*folder*/) noexcept {}
ReadAhead::~ReadAhead() = default;
void ReadAhead::cameToFile() noexcept {}

}  // namespace tavenhall
