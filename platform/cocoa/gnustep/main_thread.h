#pragma once

namespace tavenhall {

// Runs `work(context)` on the main thread, whether it waits for an event, in an alert or for the mouse, and
// returns when it has run; at once on the main thread itself. Any thread.
void runOnMainThread(void (*work)(void*), void* context) noexcept;

}  // namespace tavenhall
