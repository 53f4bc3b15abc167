#pragma once

#include <string>

// What the window needs of each system besides AppKit: gnustep/ and macos/ fill these. Main thread.

// Before there is an application: which languages the user reads.
void setUpLanguages();

// Before there is an application: what texts in that language, named as its folder in a bundle is, are shown
// in.
void setUpFonts(const std::string& language);

// Once there is one: how it looks, and its menu. False where it can show nothing; standard error says why.
[[nodiscard]] bool setUpLook();
