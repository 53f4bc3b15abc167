#pragma once

namespace tavenhall {

// Runs `work(context)` on the main thread, also while an alert is up or the mouse is tracked, and returns when
// it has run. Any thread; on the main thread it runs at once.
void runOnMainThread(void (*work)(void*), void* context) noexcept;

}  // namespace tavenhall
