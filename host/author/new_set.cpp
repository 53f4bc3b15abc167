#include "host/author/new_set.h"

#include "context/install_rules.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

using Mode = NewSet::Mode;

constexpr int kPlaceholderMegabytes = 1;  // of each volume and component
constexpr const char* kFirst = "First Component";
constexpr const char* kSecond = "Second Component";
constexpr const char* kListedFolder = "TANVO";  // where the page looks for an update's libraries

const char* modeValue(Mode mode) {
  switch (mode) {
    case Mode::discs: return "InstallFromVolumes";
    case Mode::download: return "FullDownload";
    case Mode::dataUpdate: return "DataUpdater";
    case Mode::productUpdate: break;
  }
  return "TavenhallUpdater";
}

bool hasTwoComponents(const NewSet& set) {
  return set.mode == Mode::productUpdate || (set.mode != Mode::discs && set.hasEditions);
}

// A product update detects the edition instead.
bool offersEditions(const NewSet& set) { return set.hasEditions && set.mode != Mode::productUpdate; }

int volumesOf(const NewSet& set) {
  return set.mode == Mode::discs ? (set.hasEditions ? 2 : set.discs) : hasTwoComponents(set) ? 2 : 1;
}

std::string attributesText(const NewSet& set, const NewSetTexts& texts) {
  std::string text = std::string("Mode = ") + modeValue(set.mode) + "\n";
  text += "InstallDataTitle = " + texts.title + "\n";
  text += "InstallingData = " + texts.installing + "\n";
  text += "InstalledData = " + texts.installed + "\n";
  if (set.mode != Mode::discs) {
    text += std::string("RelativePath = ") + (hasTwoComponents(set) ? kFirst : "Data") + "\n";
  }
  if (hasTwoComponents(set)) {
    text += std::string("RelativePath2 = ") + kSecond + "\n";
  }
  const int volumes = volumesOf(set);
  const bool countsVolumes = set.mode == Mode::discs || (set.mode != Mode::productUpdate && volumes > 1);
  if (countsVolumes) {
    text += "NumberOfVolumes = " + std::to_string(volumes) + "\n";
  }
  if (set.mode == Mode::discs && set.hasEditions) {
    text += "LiteVsFullPrompt = Yes\nLiteVsFullPromptText = " + texts.choice + "\n";
  }
  text += "TotalSizeMillionsBytes = " + std::to_string(volumes * kPlaceholderMegabytes) + "\n";
  if (hasTwoComponents(set) || (set.mode == Mode::discs && set.hasEditions)) {
    text += "Component1SizeMillionsBytes = " + std::to_string(kPlaceholderMegabytes) + "\n";
  }
  return text;
}

std::string readmeText(const NewSet& set) {
  std::string text = "# The installer set of " + set.product + "\n\n" +
                     "Made by `tavinstall new`. It passes `tavinstall check` and `tavinstall rehearse` as it "
                     "is. Replace:\n\n" +
                     "| What | By |\n|---|---|\n" + "| `" + set.product +
                     " Installer.pkg` | the package that lays down the small files |\n";
  if (set.mode == Mode::discs) {
    text += "| `Placeholder.db` on each disc in `discs/` | the library's files; keep the discs' names |\n";
  } else {
    text += "| each `Placeholder.db` | the library's files |\n";
  }
  if (set.mode == Mode::productUpdate) {
    text +=
        "| what is in `Library` and `Applications` | the plug-ins and applications that the update replaces "
        "|\n";
  }
  text +=
      "| the texts in `.InstallationAttributes.dat` | your own; `\\n` is a line break, `%s` the folder |\n"
      "| `TotalSizeMillionsBytes` and the like | the real sizes; `tavinstall check` says which |\n\n"
      "`rehearsal.json` and this file are for the commands alone, and need not be shipped.\n";
  return text;
}

class SetWriter {
 public:
  explicit SetWriter(fs::path folder) : folder_(std::move(folder)) {}

  void write(const fs::path& name, const std::string& text) {
    const fs::path file = folder_ / name;
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) {
      throw UsageError(format(_("cannot write {0}: {1}"), {file.string(), std::strerror(errno)}));
    }
    files_.push_back(file);
  }

  // A library's file below a volume's or component's folder.
  void writePlaceholder(const std::string& root, const Product& product, const std::string& library) {
    constexpr std::size_t kMegabyte = 1000000;
    write(fs::path(root) / product.folderName / library / "Soundsources" / kPlaceholderName,
          std::string(kPlaceholderMegabytes * kMegabyte, '\0'));
  }

  [[nodiscard]] std::vector<fs::path> files() && { return std::move(files_); }

 private:
  const fs::path folder_;
  std::vector<fs::path> files_;
};

}  // namespace

std::string discName(const Product& product, int number) {
  BoundedText<kPathSize> path;
  volumeMountPath(product.pluginName, number, path);
  return fs::path(path.view()).filename().string();
}

NewSetTexts newSetTexts(const NewSet& set) {
  const bool isUpdate = set.mode == Mode::dataUpdate || set.mode == Mode::productUpdate;
  return {format(isUpdate ? _("Updating {0} Data") : _("Installing {0} Data"), {set.product}),
          format(_("Now installing the {0} library to:"), {set.product}) + "\\n\\n%s",
          format(_("The {0} library is installed in:"), {set.product}) + "\\n\\n%s",
          format(_("Which edition of {0} do you want to install?"), {set.product})};
}

std::vector<fs::path> makeSet(const NewSet& set, const NewSetTexts& texts) {
  const Product product = productNamed(set.product);
  if (set.mode == Mode::productUpdate && product.folderName != kListedFolder) {
    throw UsageError(
        format(_("a product update lists its libraries in {0}, so it needs a product of that folder"),
               {kListedFolder}));
  }
  std::error_code error;
  if (fs::exists(set.folder, error) && !fs::is_empty(set.folder, error)) {
    throw UsageError(
        format(_("{0} is not an empty folder; a new set needs a folder of its own"), {set.folder.string()}));
  }
  fs::create_directories(set.folder, error);
  if (error) {
    throw UsageError(format(_("cannot create the folder {0}: {1}"), {set.folder.string(), error.message()}));
  }
  const fs::path folder = fs::canonical(set.folder);
  SetWriter writer(folder);
  const std::string package = set.product + " Installer.pkg";
  writer.write(package, "A placeholder: put the installer package here.\n");
  writer.write(".InstallationAttributes.dat", attributesText(set, texts));
  writer.write("rehearsal.json", "{\"product\": \"" + set.product + "\"" +
                                     (offersEditions(set) ? ", \"installType\": \"Full\"" : "") + "}\n");
  writer.write("README.md", readmeText(set));
  if (set.mode == Mode::discs) {
    for (int number = 0; number < volumesOf(set); ++number) {
      const std::string shown = std::to_string(number + 1);
      writer.writePlaceholder("discs/" + shown + " " + discName(product, number), product,
                              set.product + "/Disc " + shown);
    }
  } else if (hasTwoComponents(set)) {
    writer.writePlaceholder(kFirst, product, set.product);
    writer.writePlaceholder(kSecond, product, set.product + "/Full");
  } else {
    writer.writePlaceholder("Data", product, set.product);
  }
  if (set.mode == Mode::productUpdate) {
    writer.write("Library/Audio/Plug-Ins/VST3/" + set.product + ".vst3/Contents/MacOS/" + set.product,
                 "placeholder\n");
    writer.write("Applications/" + set.product + ".app/Contents/MacOS/" + set.product, "placeholder\n");
  }
  return std::move(writer).files();
}

}  // namespace tavenhall
