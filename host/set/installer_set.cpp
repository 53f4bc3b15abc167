#include "host/set/installer_set.h"

#include "host/set/disc_medium.h"

#include "context/install_rules.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <nlohmann/json.hpp>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr const char* kRehearsalFile = "rehearsal.json";

bool isPackageName(const fs::path& name) { return name.extension() == ".pkg" && !isHiddenName(name.native()); }

std::vector<fs::path> sortedEntries(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    entries.push_back(entry->path());
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

// The packages in the set's own folder, or else in the folders right below it.
std::vector<fs::path> findPackages(const fs::path& folder) {
  std::vector<fs::path> packages;
  const auto takeFrom = [&packages](const fs::path& place) {
    for (const fs::path& entry : sortedEntries(place)) {
      if (isPackageName(entry.filename())) {
        packages.push_back(entry);
      }
    }
  };
  takeFrom(folder);
  if (packages.empty()) {
    for (const fs::path& entry : sortedEntries(folder)) {
      std::error_code error;
      if (fs::is_directory(entry, error) && entry.filename() != "discs") {
        takeFrom(entry);
      }
    }
  }
  return packages;
}

fs::path onlyPackage(const fs::path& folder) {
  const std::vector<fs::path> packages = findPackages(folder);
  if (packages.size() == 1) {
    return packages.front();
  }
  if (packages.empty()) {
    throw UsageError(
        format(_("no installer package in {0}; put one there, its name ending in .pkg"), {folder.string()}));
  }
  throw UsageError(format(
      _("more than one installer package in {0} ({1}, {2}); name one in {3}, as \"package\""),
      {folder.string(), packages[0].filename().string(), packages[1].filename().string(), kRehearsalFile}));
}

std::string textIn(const nlohmann::json& json, const char* key, const fs::path& file) {
  const auto found = json.find(key);
  if (found == json.end()) {
    return {};
  }
  if (!found->is_string()) {
    throw UsageError(format(_("{0}: \"{1}\" is not a text; put it in quotes"), {file.string(), key}));
  }
  return found->get<std::string>();
}

void readRehearsalFile(InstallerSet& set) {
  const fs::path file = set.folder / kRehearsalFile;
  std::error_code error;
  if (!fs::exists(file, error)) {
    return;
  }
  requireNoSpecialFile(file);
  // A folder in its place would throw from within the stream.
  std::ifstream stream;
  if (fs::is_regular_file(file, error)) {
    stream.open(file);
  }
  const nlohmann::json json =
      stream.is_open() ? nlohmann::json::parse(stream, nullptr, false) : nlohmann::json();
  if (!json.is_object()) {
    throw UsageError(
        format(_("{0} is not a JSON object; write it as {1}"), {file.string(), R"({"product": "NAME"})"}));
  }
  for (const auto& [key, value] : json.items()) {
    if (key != "product" && key != "package" && key != "installType" && key != "discSize") {
      throw UsageError(
          format(_("{0}: unknown key \"{1}\"; the keys are product, package, installType and discSize"),
                 {file.string(), key}));
    }
  }
  set.product = textIn(json, "product", file);
  set.installType = textIn(json, "installType", file);
  set.discSize = textIn(json, "discSize", file);
  if (!set.discSize.empty()) {
    static_cast<void>(discMedium(set.discSize));
  }
  if (!set.installType.empty() && set.installType != "Lite" && set.installType != "Full") {
    throw UsageError(format(_("{0}: installType must be Lite or Full"), {file.string()}));
  }
  if (const std::string package = textIn(json, "package", file); !package.empty()) {
    set.package = (set.folder / package).lexically_normal();
    if (!fs::exists(set.package, error)) {
      throw UsageError(format(_("{0}: there is no package {1}"), {file.string(), set.package.string()}));
    }
  }
}

void findDiscs(InstallerSet& set) {
  for (const fs::path& path : sortedEntries(set.folder / "discs")) {
    if (isHiddenName(path.filename().native())) {
      continue;
    }
    std::error_code error;
    const std::optional<Disc> disc = discFromName(path, fs::is_directory(path, error));
    const bool isTaken = disc && std::any_of(set.discs.begin(), set.discs.end(), [&disc](const Disc& other) {
                           return other.number == disc->number;
                         });
    if (disc && !isTaken) {
      requireNoSpecialFile(path);  // the tools that open images would block
      set.discs.push_back(*disc);
    } else {
      set.notDiscs.push_back(path);
    }
  }
  std::sort(set.discs.begin(), set.discs.end(),
            [](const Disc& one, const Disc& other) { return one.number < other.number; });
}

}  // namespace

std::optional<Disc> discFromName(const fs::path& path, bool isFolder) {
  Disc disc;
  disc.path = path;
  disc.isImage = !isFolder;
  if (disc.isImage && path.extension() != ".squashfs" && path.extension() != ".iso") {
    return std::nullopt;
  }
  const std::string name = (disc.isImage ? path.stem() : path.filename()).string();
  const char* end = name.data() + name.size();
  const auto [rest, error] = std::from_chars(name.data(), end, disc.number);
  if (error != std::errc{} || disc.number < 1 || end - rest < 2 || *rest != ' ') {
    return std::nullopt;
  }
  disc.volumeName.assign(rest + 1, end);
  return disc;
}

InstallerSet openInstallerSet(const fs::path& folder) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    throw UsageError(
        format(_("no installer set at {0}; a set is a folder with an installer package"), {folder.string()}));
  }
  InstallerSet set;
  set.folder = fs::canonical(folder, error);
  if (error || fs::directory_iterator(set.folder, error) == fs::directory_iterator()) {
    throw UsageError(
        format(_("cannot list {0}; a set is a folder with an installer package"), {folder.string()}));
  }
  readRehearsalFile(set);
  if (set.package.empty()) {
    set.package = onlyPackage(set.folder);
  }
  findDiscs(set);
  return set;
}

std::string productOfSet(const fs::path& package) {
  const fs::path beside = package.parent_path();
  for (const fs::path& folder : {beside, beside.parent_path()}) {
    InstallerSet set;
    set.folder = folder;
    try {
      readRehearsalFile(set);
    } catch (const UsageError&) {
      return {};  // the commands that need the file say what is wrong with it
    }
    if (!set.product.empty()) {
      return set.product;
    }
  }
  return {};
}

std::string dataRootIn(const fs::path& installed) {
  std::error_code error;
  if (!fs::is_directory(installed, error)) {
    throw UsageError(
        format(_("no folder at {0}; --installed needs a folder that holds the user's data folders"),
               {installed.string()}));
  }
  for (const char* home : {"", "Users/rehearsal"}) {
    const fs::path inHome = installed / home / "Library/Application Support/Tavenhall";
    if (fs::is_directory(inHome, error)) {
      return fs::canonical(inHome).string();
    }
  }
  return fs::canonical(installed).string();
}

}  // namespace tavenhall
