#pragma once

namespace tavenhall {

// Brackets changes of controls, with one duration for all of them. The thread that changes the controls.
void beginAnimationGroup() noexcept;
void setAnimationGroupDuration(double seconds) noexcept;
void endAnimationGroup() noexcept;

}  // namespace tavenhall
