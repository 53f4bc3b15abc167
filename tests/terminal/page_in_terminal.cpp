#include "tests/terminal/page_in_terminal.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

constexpr std::size_t kFileSize = 500000;

void layDisc(const std::string& disc, const std::string& library, unsigned seed) {
  for (unsigned i = 1; i <= 3; ++i) {
    writeFile(disc + "/TANVO/Tessaphon/" + library + "/00" + std::to_string(i) + ".db",
              someBytes(kFileSize, seed + i));
  }
}

}  // namespace

void layTwoDiscSet() {
  setAttributes(
      "Mode = InstallFromVolumes\n"
      "InstallDataTitle = Installing Tessaphon Data\n"
      "InstallingData = Now installing the Tessaphon library to:\\n\\n%s\\n\\nPlease have both discs at hand.\n"
      "InstalledData = The Tessaphon library is installed in:\\n\\n%s\\n\\nPress Continue.\n"
      "NumberOfVolumes = 2\n"
      "TotalSizeMillionsBytes = 3\n");
  writeFile(kPackageFile, "");
  makeFolder(kTanvo);
  layDisc(kFirstDisc, "Keyboards", 10);
  layDisc("/Volumes/.discs/Tessaphon B", "Voices", 20);
}

std::vector<std::string> runCommand(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{kTavinstall, "run", "--package", kPackageFile};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

std::vector<std::string> runScript(std::string_view script) {
  setAttributes(
      "Mode = InstallFromVolumes\n"
      "InstallDataTitle = Scripted Page\n"
      "TotalSizeMillionsBytes = 2000\n");
  writeFile(kPackageFile, "");
  makeFolder(kTanvo);
  writeFile("/tmp/page-script", script);
  return runCommand({"--bundle", TAVINSTALL_BINARY_DIR "/tests/ScriptedPage.bundle"});
}

void let(const std::string& name) { writeFile("/tmp/" + name, ""); }

}  // namespace tavenhall::test
