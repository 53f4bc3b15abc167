#include "platform/system.h"

// A system without sleep prevention: no hold is granted, and none needs to be given back.
namespace tavenhall {

void createPowerAssertion(const char* /*type*/, std::uint32_t /*level*/, const char* /*name*/,
                          std::uint32_t& identifier) noexcept {
  identifier = 0;
}

void releasePowerAssertion(std::uint32_t /*identifier*/) noexcept {}

}  // namespace tavenhall
