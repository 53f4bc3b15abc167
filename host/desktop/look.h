#pragma once

#include <string>

// The window's system-specific functions beyond AppKit; gnustep/ and macos/ implement them. Main thread.

// Sets the user's languages. Call it before the application exists.
void setUpLanguages();

// Sets the fonts for a language, which is named like its folder in a bundle. Call it before the application
// exists.
void setUpFonts(const std::string& language);

// Sets the application's appearance and menu. Returns false if it cannot show anything, and prints the reason
// on standard error.
[[nodiscard]] bool setUpLook();
