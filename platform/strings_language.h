#pragma once

#include <string>
#include <vector>

// Which of a bundle's languages the user reads.
namespace tavenhall {

// The names of language folders ("de_DE", "de-DE", "de") to try, best first and without ".lproj": those of the
// user's languages (LANGUAGE, a list with colons; else the first that is set of LC_ALL, LC_MESSAGES and LANG),
// then English, as "en" and as "English". A name may come twice.
[[nodiscard]] std::vector<std::string> languageFolderNames();

}  // namespace tavenhall
