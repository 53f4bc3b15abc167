#pragma once

#include "tests/install/child_program.h"
#include "tests/terminal/tmux_terminal.h"

#include <string>
#include <string_view>
#include <vector>

// The built program's page in a terminal: the real one, and one that does what a test's script says.
namespace tavenhall::test {

inline constexpr const char* kPackageFile = "/Users/tester/Downloads/Set/Installer.pkg";
inline constexpr const char* kFirstDisc = "/Volumes/Tavenhall Tessaphon A";
inline constexpr const char* kSecondDisc = "/Volumes/Tessaphon B";

// A package of two discs, the first of them in the drive and the second in /discs: 3 MB, in a few files. The
// data folder is there.
void layTwoDiscSet();

// The command line for the set's package, with further arguments.
[[nodiscard]] std::vector<std::string> runCommand(const std::vector<std::string>& arguments = {});

// The same, with the page that does what the script says; see scripted_page.cpp. Lays a set of one disc.
[[nodiscard]] std::vector<std::string> runScript(std::string_view script);

// What the script "wait NAME" waits for.
void let(const std::string& name);

}  // namespace tavenhall::test
