#include "tests/install/case_files.h"

#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

namespace tavenhall::test {

namespace {

std::string maskedLog() {
  std::string text;
  for (const std::string& message : logMessages()) {
    text += "<time> <host>: " + message + "\n";
  }
  return text;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line + "\n";
  }
  return text;
}

void apply(const Mask& mask, std::string& text) {
  for (std::size_t at = text.find(mask.first); at != std::string::npos;
       at = text.find(mask.first, at + mask.second.size())) {
    text.replace(at, mask.first.size(), mask.second);
  }
}

// The difference as the usual tool shows it; "-" lines are expected, "+" lines are what came.
std::string difference(const std::string& expected, const std::string& actual) {
  writeFile("/tmp/.compare/expected", expected);
  writeFile("/tmp/.compare/actual", actual);
  std::FILE* tool =
      popen("diff -u --label expected --label actual /tmp/.compare/expected /tmp/.compare/actual", "r");
  std::string text;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), tool)) {
    text.append(buffer.data(), count);
  }
  pclose(tool);
  return text;
}

bool isRenewing() {
  const char* variable = std::getenv("TAVINSTALL_RENEW");
  return variable != nullptr && std::string_view(variable) == "1";
}

// The events as an installer reports them that knows neither how far the copy is nor what else happens, and
// audits nothing.
std::string withoutCopyState(const std::string& events) {
  std::string text;
  std::istringstream lines(events);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(R"({"event":"copy.)") || line.starts_with(R"({"event":"audit)") ||
        line.starts_with(R"({"event":"phase")") || line.starts_with(R"({"event":"answered")")) {
      continue;
    }
    if (line.starts_with(R"({"event":"alert")")) {
      line = line.substr(0, line.rfind(R"(,"number":)")) + "}";
    }
    if (line.starts_with(R"({"event":"sheet")")) {
      line = line.substr(0, line.rfind(R"(,"file":)")) + "}";
    }
    if (line.starts_with(R"({"event":"progress.value")")) {
      line = line.substr(0, line.find(R"(,"volume":)")) + "}";
    }
    text += line + "\n";
  }
  return text;
}

void expectFile(const std::string& path, const std::string& actual,
                const std::function<std::string(const std::string&)>& reduce = {}) {
  std::string expected = exists(path) ? readFile(path) : "";
  if (reduce) {
    expected = reduce(expected);
  }
  if (isRenewing() && !reduce) {
    if (actual != expected) {
      std::printf("renewed %s\n%s", path.c_str(), difference(expected, actual).c_str());
      writeFile(path, actual);
    }
    return;
  }
  EXPECT_TRUE(exists(path)) << "there is no " << path;
  EXPECT_TRUE(actual == expected) << path << "\n" << difference(expected, actual);
}

}  // namespace

void layPackage(std::string_view attributes, const std::vector<std::string>& centralFolders) {
  layTree(kSet, {textFile("Installer.pkg", ""), textFile(".InstallationAttributes.dat", attributes)});
  for (const std::string& name : centralFolders) {
    layTree(std::string(kMakersFolder) + "/" + name, {});
  }
}

void expectCase(const std::string& name, const JsonInstaller& installer, const CaseOptions& options) {
  std::vector<std::string> folders{"/Applications", "/Library", "/Users/tester/Library/Application Support"};
  folders.insert(folders.end(), options.folders.begin(), options.folders.end());
  std::string log = maskedLog();
  // How much the machine has free is its own.
  std::string events = std::regex_replace(
      joined(installer.events()), std::regex("the disk has [^ ]+ [kMGTB]+ free"), "the disk has <free> free");
  std::string tree = joined(describeTree(folders));
  for (const Mask& mask : options.masks) {
    apply(mask, log);
    apply(mask, events);
    apply(mask, tree);
  }
  const std::string folder = std::string(TAVINSTALL_SOURCE_DIR "/tests/install/cases/") + name;
  expectFile(folder + "/expected.log", log);
  if (options.isWithoutCopyState) {
    expectFile(folder + "/expected.events", withoutCopyState(events), withoutCopyState);
  } else {
    expectFile(folder + "/expected.events", events);
  }
  expectFile(folder + "/expected.tree", tree);
}

}  // namespace tavenhall::test
