#include "context/install_settings.h"

#include "context/attributes_file.h"
#include "context/attributes_line.h"
#include "context/install_rules.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"

#include <array>
#include <cstdio>
#include <dirent.h>

namespace tavenhall {

namespace {

struct KeyedText {
  const char* key;
  const char* foundLine;  // its one "%s" takes the value
  const char* missingLine;
};

// Looks up the key. Returns whether it is in the file.
bool getText(const KeyedText& row, char* text) {
  if (getStringFromAttributesFile(row.key, text, kAttributesValueSize) != 0) {
    addEventToInstallationLog(row.foundLine, text);
    return true;
  }
  if (const char* fallback = fallbackText(row.key)) {
    copyCut(text, kAttributesValueSize, fallback);
  }
  addEventToInstallationLog("%s", row.missingLine);
  return false;
}

constexpr KeyedText kInstallDataTitle{"InstallDataTitle", "Data from attributes file::  InstallData title=%s ",
                                      "Could not find title string in attributes file "};
constexpr KeyedText kRelativePath{"RelativePath", "Data from attributes file::    RelativePath=%s ",
                                  "Could not find RelativePath string in attributes file "};
constexpr KeyedText kRelativePath2{"RelativePath2", "Data from attributes file::  RelativePath2=%s ",
                                   "Could not find RelativePath2 string in attributes file "};
constexpr KeyedText kPreparationTitle{"PreparationTitle", "Data from attributes file::  preparation title=%s ",
                                      "Could not find preparation title string in attributes file "};
constexpr KeyedText kInstallingData{"InstallingData", "Data from attributes file::  InstallingData=%s ",
                                    "Could not find InstallingData string in attributes file "};
// Required: the missing line names "InstallingData", not its own key; support reads it so.
constexpr KeyedText kInstalledData{"InstalledData", "Data from attributes file::  InstalledData=%s ",
                                   "Could not find InstallingData string in attributes file "};
constexpr KeyedText kLiteVsFullPromptText{"LiteVsFullPromptText",
                                          "Data from attributes file::  LiteVsFullPromptText=%s ",
                                          "Could not find LiteVsFullPromptText string in attributes file "};
constexpr KeyedText kLiteName{"AlternateNameForLiteInstallation",
                              "Data from attributes file::  AlternateNameForLiteInstallation=%s ",
                              "Could not find AlternateNameForLiteInstallation string in attributes file "};
constexpr KeyedText kFullName{"AlternateNameForFullInstallation",
                              "Data from attributes file::  AlternateNameForFullInstallation=%s ",
                              "Could not find AlternateNameForFullInstallation string in attributes file "};

}  // namespace

void getInstallDataTitle(char* text) noexcept { getText(kInstallDataTitle, text); }
void getInstallingDataString(char* text) noexcept { getText(kInstallingData, text); }
void getCompletionMessage(int /*ignored*/, char* text) noexcept { getText(kInstalledData, text); }
void getRelativePath(char* text) noexcept { getText(kRelativePath, text); }
void getRelativePath2(char* text) noexcept { getText(kRelativePath2, text); }
void getPreparationTitle(char* text) noexcept { getText(kPreparationTitle, text); }
void getLiteVsFullPromptText(char* text) noexcept { getText(kLiteVsFullPromptText, text); }
void getAlternateNameForLiteInstalltion(char* text) noexcept { getText(kLiteName, text); }
void getAlternateNameForFullInstalltion(char* text) noexcept { getText(kFullName, text); }

bool findRelativePath2(char* text) noexcept { return getText(kRelativePath2, text); }

std::int64_t readNumberOfVolumes() noexcept {
  const std::int64_t number = getLongLongFromAttributesFile("NumberOfVolumes");
  addEventToInstallationLog("Data from attributes file::   num Vol=%lld ", static_cast<long long>(number));
  return number;
}

int getInstallationMode(void) noexcept {
  int mode = kModeVolumes;
  if (std::FILE* file = getInstallationAttributesFile()) {
    std::fclose(file);  // only its presence counts
    std::array<char, kModeSize> value{};
    if (getStringFromAttributesFile("Mode", value.data(), value.size()) != 0) {
      mode = installModeForValue(value.data());
    }
  } else {
    addEventToInstallationLog("Did not find InstallationAttributes file.  Assuming Flash installation");
  }
  addEventToInstallationLog("Installation mode is %d", mode);
  return mode;
}

int folderExistsAndHasContents(const char* path) noexcept {
  DIR* folder = opendir(path);
  if (folder == nullptr) {
    return 0;
  }
  int hasContents = 0;
  while (const dirent* entry = readdir(folder)) {
    if (!isHiddenName(entry->d_name)) {
      hasContents = 1;
      break;
    }
  }
  closedir(folder);
  return hasContents;
}

}  // namespace tavenhall
