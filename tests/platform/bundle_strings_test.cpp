#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/strings_file.h"
#include "platform/system.h"
#include "tests/support/files.h"

namespace tavenhall::test {

namespace {

namespace fs = std::filesystem;

// A copy of this program that lies somewhere else tells what text it finds there: run with this variable, it
// prints the text and ends before any test is looked at.
constexpr const char* kTellVariable = "TAVENHALL_TEST_TELL_TEXT";

const bool kIsNoTeller = [] {
  if (const char* key = std::getenv(kTellVariable); key != nullptr) {
    std::printf("%s", localizedString(key).c_str());
    std::fflush(stdout);
    _exit(0);
  }
  return true;
}();

// What a copy of this program at `place`, called as `command` from the folder `from`, finds for the key "who".
std::string textFoundBy(const std::string& place, const std::string& command, const std::string& from) {
  makeFolder(fs::path(place).parent_path().string());
  fs::copy_file("/proc/self/exe", place, fs::copy_options::overwrite_existing);
  const std::string line = "cd '" + from + "' && LANG=en_US.UTF-8 " + kTellVariable + "=who '" + command + "'";
  std::FILE* output = popen(line.c_str(), "r");
  if (output == nullptr) {
    return "popen failed";
  }
  std::array<char, 256> text{};
  const std::size_t length = std::fread(text.data(), 1, text.size(), output);
  return pclose(output) == 0 ? std::string(text.data(), length) : "the copy failed";
}

void writeTable(const std::string& bundle) {
  writeFile(bundle + "/Contents/Resources/en.lproj/Localizable.strings", "\"who\" = \"" + bundle + "\";");
}

}  // namespace

TEST(BundleStrings, AreThoseOfTheBundleThatTheCodeLiesIn) {
  writeTable("/tmp/A.bundle");
  const std::string place = "/tmp/A.bundle/Contents/MacOS/InstallDataPane";
  EXPECT_EQ(textFoundBy(place, place, "/"), "/tmp/A.bundle");
}

TEST(BundleStrings, AreFoundByARelativePath) {
  writeTable("/tmp/A.bundle");
  const std::string place = "/tmp/A.bundle/Contents/MacOS/InstallDataPane";
  EXPECT_EQ(textFoundBy(place, "./InstallDataPane", "/tmp/A.bundle/Contents/MacOS"), "/tmp/A.bundle");
  EXPECT_EQ(textFoundBy(place, "../MacOS/./InstallDataPane", "/tmp/A.bundle/Contents/Resources"),
            "/tmp/A.bundle");
}

TEST(BundleStrings, AreEmptyOutsideABundle) {
  writeTable("/tmp/A.bundle");
  for (const std::string place :
       {"/tmp/A.bundle/Contents/Program/InstallDataPane", "/tmp/A.bundle/Contents/InstallDataPane",
        "/tmp/A.bundle/MacOS/InstallDataPane", "/tmp/InstallDataPane"}) {
    EXPECT_EQ(textFoundBy(place, place, "/"), "who") << place;
  }
}

TEST(BundleStrings, AreNoneWhereTheBundleHasNoTable) {
  const std::string place = "/tmp/Empty.bundle/Contents/MacOS/InstallDataPane";
  EXPECT_EQ(textFoundBy(place, place, "/"), "who");
}

TEST(BundleStrings, OutsideABundleAKeyIsItsOwnText) {
  EXPECT_EQ(localizedString("FolderName"), "FolderName");
  EXPECT_EQ(localizedString(""), "");
}

TEST(BundleStrings, AreTheSameOneTableForEveryThread) {
  std::array<const StringTable*, 4> tables{};
  std::vector<std::thread> threads;
  threads.reserve(tables.size());
  for (const StringTable*& table : tables) {
    threads.emplace_back([&table] { table = &bundleStrings(); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const StringTable* table : tables) {
    EXPECT_EQ(table, &bundleStrings());
  }
}

TEST(BundleStrings, ThatAreShippedHaveEveryKeyOfThePage) {
  const StringTable table = StringTable::parse(
      readFile(std::string(TAVINSTALL_SOURCE_DIR) + "/resources/en.lproj/Localizable.strings.in"));
  EXPECT_EQ(table.entries().size(), 5U);
  for (const char* key : {"OK_BUTTON", "FindError", "InstallError", "FolderName", "PluginName"}) {
    EXPECT_TRUE(table.entries().contains(std::string_view(key))) << key;
  }
  EXPECT_EQ(table.text("OK_BUTTON"), "OK");
}

}  // namespace tavenhall::test
