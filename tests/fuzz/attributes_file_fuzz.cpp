#include "context/attributes_line.h"
#include "context/install_settings.h"
#include "context/internal_lookups.h"
#include "context/text_expansion.h"
#include "host/set/attributes_reading.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/fuzz/page_files.h"
#include "tests/fuzz/scanf_reading.h"

#include <algorithm>
#include <array>
#include <cstring>

// The input is the attributes file. Every getter is asked, and has to give what the most literal reading of
// the file gives, with the log lines that go with it; a check of the set has to read the same.
namespace tavenhall::fuzz {

namespace {

constexpr const char* kFile = "/tmp/set/.InstallationAttributes.dat";

// The page's own buffers stand beside others; here whatever is written behind one is seen.
using Value = std::array<char, kAttributesValueSize>;

struct TextKey {
  const char* name;
  void (*get)(char* text) noexcept;
  const char* fallback;   // null: the buffer is left as the search left it
  const char* foundLine;  // up to the value; a blank follows the value
  const char* missingLine;
};

const std::array<TextKey, 9> kTextKeys{{
    {"InstallDataTitle", getInstallDataTitle, "Installing Data",
     "Data from attributes file::  InstallData title=", "Could not find title string in attributes file "},
    {"InstallingData", getInstallingDataString,
     "Now installing data from source media to: \n\n%s\n\nThis process is lengthy and can take up to 3 "
     "hours.\nThe progress bar will move very slowly at first.\nThanks for your patience.\n\nPlease wait for "
     "the installation to complete.",
     "Data from attributes file::  InstallingData=",
     "Could not find InstallingData string in attributes file "},
    {"InstalledData", [](char* text) noexcept { getCompletionMessage(0, text); },
     "Step 1 finished.\n\nPlease run the Data Updater to complete the installation.\n\nPress Continue button.",
     "Data from attributes file::  InstalledData=", "Could not find InstallingData string in attributes file "},
    {"RelativePath", getRelativePath, "..",
     "Data from attributes file::    RelativePath=", "Could not find RelativePath string in attributes file "},
    {"RelativePath2", getRelativePath2, nullptr,
     "Data from attributes file::  RelativePath2=", "Could not find RelativePath2 string in attributes file "},
    {"PreparationTitle", getPreparationTitle, "Data Location",
     "Data from attributes file::  preparation title=",
     "Could not find preparation title string in attributes file "},
    {"LiteVsFullPromptText", getLiteVsFullPromptText, "What installation of Tessaphon are you using?",
     "Data from attributes file::  LiteVsFullPromptText=",
     "Could not find LiteVsFullPromptText string in attributes file "},
    {"AlternateNameForLiteInstallation", getAlternateNameForLiteInstalltion, "Lite",
     "Data from attributes file::  AlternateNameForLiteInstallation=",
     "Could not find AlternateNameForLiteInstallation string in attributes file "},
    {"AlternateNameForFullInstallation", getAlternateNameForFullInstalltion, "Full",
     "Data from attributes file::  AlternateNameForFullInstallation=",
     "Could not find AlternateNameForFullInstallation string in attributes file "},
}};

constexpr std::array<const char*, 3> kNumberKeys{"NumberOfVolumes", "TotalSizeMillionsBytes",
                                                 "Component1SizeMillionsBytes"};

int expectedMode(const ScanfReading& file) {
  const ScanfReading::Text mode = file.text("Mode", 64);
  const auto has = [&mode](const char* word) { return std::strstr(mode.value.c_str(), word) != nullptr; };
  if (!mode.isFound) {
    return 2;
  }
  return has("DataUpdater")                             ? 0
         : has("InstallFromVolumes")                    ? 2
         : has("TavenhallUpdater") || has("SupportHub") ? 4
                                                        : 3;
}

void checkTexts(const ScanfReading& file, const AttributesReading& check) {
  for (const TextKey& key : kTextKeys) {
    Value value{};
    key.get(value.data());
    const ScanfReading::Text expected = file.text(key.name, kAttributesValueSize);
    const bool hasFallback = !expected.isFound && key.fallback != nullptr;
    requireSame(value.data(), hasFallback ? key.fallback : expected.value, key.name);
    requireLog({expected.isFound ? key.foundLine + expected.value + " " : key.missingLine});

    const FoundText found = check.findText(key.name);
    require(static_cast<bool>(found) == expected.isFound, "the page and a check differ in what is there");
    requireSame(found.value, expected.value, "a check's text");
  }
}

void checkNumbers(const ScanfReading& file, const AttributesReading& check) {
  for (const char* key : kNumberKeys) {
    const long long expected = file.number(key);
    requireSame(std::to_string(getLongLongFromAttributesFile(key)), std::to_string(expected), key);
    requireSame(std::to_string(check.findNumber(key).number), std::to_string(expected), "a check's number");
  }
}

// A text from the file as the page shows it: at most one place takes the argument, and only a percent sign or
// that place goes away.
void checkExpansion(const std::string& format) {
  const std::string plain = expandFormat(format, "");
  const std::string filled = expandFormat(format, "\x01");
  const auto marks = [](const std::string& text) { return std::count(text.begin(), text.end(), '\x01'); };
  const auto filledIn = marks(filled) - marks(plain);
  require(filledIn == (filled.size() == plain.size() ? 0 : 1), "an argument was filled in more than once");
  require(plain.size() <= format.size(), "an expanded text is longer than its format");
  require(expandFormat(format, nullptr).size() == plain.size() + static_cast<std::size_t>(filledIn) * 6,
          "a missing argument is not (null)");
}

}  // namespace

}  // namespace tavenhall::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavenhall;
  using namespace tavenhall::fuzz;
  static const bool isLaidOut = [] {
    makeFolders("/tmp/set");
    writeBytes(kLocationFile, "/tmp/set/Installer.pkg\n");
    return true;
  }();
  static_cast<void>(isLaidOut);
  writeBytes(kFile, asText(data, size));
  forgetWhatIsReadOncePerProcess();

  const ScanfReading file(kFile);
  const AttributesReading check = AttributesReading::parse(std::string(asText(data, size)));
  const int mode = getInstallationMode();
  require(mode == expectedMode(file), "the mode");
  requireLog({"Found Installation Attribute File at  /tmp/set/.InstallationAttributes.dat",
              "Installation mode is " + std::to_string(mode)});
  checkTexts(file, check);
  checkNumbers(file, check);
  checkExpansion(file.textOr("InstallingData", ""));
  checkExpansion(std::string(asText(data, size)));
  forgetLog();
  return 0;
}
