#include "platform/read_ahead.h"

namespace tavenhall {

class ReadAhead::Reader {};

ReadAhead::ReadAhead(const char* /*folder*/) noexcept {}
ReadAhead::~ReadAhead() = default;

void ReadAhead::cameToFile() noexcept {}

}  // namespace tavenhall
