#include "context/attributes_file.h"

#include "context/attributes_line.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "context/open_file.h"

#include <array>
#include <atomic>

namespace tavenhall {

namespace {

constexpr std::size_t kAttributesPathSize = 4096;

constinit std::atomic<bool> foundMessageIssued = false;

std::FILE* openBesidePackage(const char* tail, BoundedText<kAttributesPathSize>& path) {
  getFolderContainingPKGfile(nullptr);
  path.assign(sOutputPathWithCallersSubfolder.view());
  path.append(tail);
  return openToRead(path.c_str());
}

// Passes the file's lines to a search. Returns whether it found its key. A failed read counts as a line.
template <typename Search>
bool searchLines(std::FILE* file, Search& search) {
  std::array<char, kAttributesLineSize> line{};
  for (int turn = 0; turn < kAttributesLineCount; ++turn) {
    if (std::fgets(line.data(), static_cast<int>(line.size()), file) != nullptr &&
        search.show(parseAttributesLine(line.data()))) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::FILE* getInstallationAttributesFile(void) noexcept {
  BoundedText<kAttributesPathSize> path;
  std::FILE* file = openBesidePackage("/.InstallationAttributes.dat", path);
  if (file == nullptr) {
    file = openBesidePackage("/../.InstallationAttributes.dat", path);
  }
  if (!foundMessageIssued.exchange(true)) {
    if (file != nullptr) {
      addEventToInstallationLog("Found Installation Attribute File at  %s", path.c_str());
    } else {
      addEventToInstallationLog("Did not find Installation Attribute File.");
    }
  }
  return file;
}

int getStringFromAttributesFile(const char* key, char* value, std::size_t size) noexcept {
  std::FILE* file = getInstallationAttributesFile();
  if (file == nullptr) {
    return 0;
  }
  TextSearch search(key, value, size);
  const bool found = searchLines(file, search);
  std::fclose(file);
  return found ? 1 : 0;
}

std::int64_t getLongLongFromAttributesFile(const char* key) noexcept {
  std::FILE* file = getInstallationAttributesFile();
  if (file == nullptr) {
    return 0;
  }
  NumberSearch search(key);
  searchLines(file, search);
  std::fclose(file);
  return search.number();
}

}  // namespace tavenhall
