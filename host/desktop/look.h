#pragma once

// What the window needs of each system besides AppKit: gnustep/ and macos/ fill these. Main thread.

// Before there is an application: its settings.
void setUpDefaults();

// Once there is one: how it looks, and its menu. False where it can show nothing; standard error says why.
[[nodiscard]] bool setUpLook();
