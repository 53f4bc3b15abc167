#pragma once

#include "platform/cocoa/adapter.h"
#include "platform/cocoa/differences.h"

namespace tavenhall {

// Runs `change`, which touches the control named by `what`, on the thread where that has to be done, and
// returns when it has run. Any thread.
template <typename Change>
void changeControl(const char* what, Change change) noexcept {
  auto adapted = [=] { adapt(what, change); };
  changeControl([](void* context) { (*static_cast<decltype(adapted)*>(context))(); }, &adapted);
}

}  // namespace tavenhall
