#pragma once

#include <string_view>

namespace tavenhall::fuzz {

// Lays what an input says into a folder that is there: an entry on each line, with the folders above it.
//
//   a/b/                 a folder
//   a/b/c                an empty file
//   a/b/c<tab>12345      a file of 12345 bytes, which differ from place to place
//   a/b/c<tab>=x|y       a file with the lines "x" and "y", each with its newline
//   a/b/c<tab>>target    a symbolic link
//
// Names may hold any other byte; one that is too long for the system is cut. What cannot be laid (a file below
// a file, a name that is taken) is left out, as are all entries beyond the 60th.
void layTree(std::string_view input, const char* folder);

// Removes everything in the folder, and leaves the folder. What is mounted below it stays: that may be the
// checkout that is being tested. Throws std::system_error.
void clearFolder(const char* folder);

}  // namespace tavenhall::fuzz
