#pragma once

#include "tests/install/json_installer.h"
#include "tests/support/files.h"

#include <string>
#include <utility>
#include <vector>

namespace tavenhall::test {

// The fixed places of the tests' user.
inline constexpr const char* kPackage = "/Users/tester/Downloads/Set/Installer.pkg";
inline constexpr const char* kMakersFolder = "/Users/tester/Library/Application Support/Tavenhall";
inline constexpr const char* kDova = "/Users/tester/Library/Application Support/Tavenhall/DOVA";
inline constexpr const char* kDiscA = "/Volumes/Tavenhall Tessaphon A";
inline constexpr const char* kDiscB = "/Volumes/Tessaphon B";

// Lays the package and its attributes file, and makes the user's central folder for each name.
void layPackage(std::string_view attributes, const std::vector<std::string>& centralFolders = {"TANVO"});

// What a case's files say instead of a text that depends on the machine.
using Mask = std::pair<std::string, std::string>;

struct CaseOptions {
  std::vector<std::string> folders = {};  // described in expected.tree besides the usual ones
  std::vector<Mask> masks = {};

  // The events come from another installer, which does not know how far the copy is: they are compared without
  // "copy.begin", "copy.end" and the fields that "progress.value" has of it.
  bool isWithoutCopyState = false;
};

// Compares a run with the files of tests/install/cases/<name>: its log (expected.log, each record's time and
// host name masked), its events (expected.events), and what it left below /Library, /Applications and the
// user's Application Support (expected.tree, as describeTree has it). With TAVINSTALL_RENEW=1 in the
// environment, writes the files instead and shows what changed.
void expectCase(const std::string& name, const JsonInstaller& installer, const CaseOptions& options = {});

}  // namespace tavenhall::test
