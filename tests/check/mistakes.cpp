#include "tests/check/mistakes.h"

#include <algorithm>
#include <filesystem>

namespace tavenhall::test {
namespace {

using Base = Mistake::Base;

namespace fs = std::filesystem;

constexpr const char* kFirstDisc = "discs/1 Tavenhall Lumaweave";
constexpr const char* kSecondDisc = "discs/2 Tavenhall Lumaweave";

void move(const std::string& from, const std::string& to) { fs::rename(inSet(from), inSet(to)); }

std::string utf16Of(const std::string& text) {
  std::string bytes;
  for (const char character : text) {
    bytes += {character, '\0'};
  }
  return bytes;
}

const std::vector<Mistake> kMistakes = {
    {"The Mode is misspelt", Base::discs, "InstallFromVolumes", "InstallFromVolume"},
    {"The Mode is that of another kind of set", Base::discs, "InstallFromVolumes", "FullDownload"},
    {"An update with the Mode of discs", Base::dataUpdate, "DataUpdater", "InstallFromVolumes"},
    {"There is no Mode", Base::discs, "Mode = InstallFromVolumes\n", ""},
    {"The file's name has no full stop", Base::discs, "", "",
     [] { move(".InstallationAttributes.dat", "InstallationAttributes.dat"); }},
    {"An editor has added an extension", Base::discs, "", "",
     [] { move(".InstallationAttributes.dat", ".InstallationAttributes.dat.txt"); }},
    {"The file begins with a byte-order mark", Base::discs, "Mode", "\xEF\xBB\xBFMode"},
    {"The file is UTF-16", Base::discs, "", "", [] { writeAttributes("\xFF\xFE" + utf16Of(kDiscLines)); }},
    {"The file is UTF-16 without a mark", Base::discs, "", "", [] { writeAttributes(utf16Of(kDiscLines)); }},
    {"The lines end as on an old Mac", Base::discs, "", "",
     [] {
       std::string text = kDiscLines;
       std::replace(text.begin(), text.end(), '\n', '\r');
       writeAttributes(text);
     }},
    {"A key is misspelt", Base::discs, "InstalledData", "InstaledData"},
    {"A number's key is in another case", Base::discs, "NumberOfVolumes", "numberOfVolumes"},
    {"A key that nothing reads", Base::discs, "NumberOfVolumes", "Publisher = Tavenhall\nNumberOfVolumes"},
    {"A key is there twice", Base::discs, "NumberOfVolumes = 2\n",
     "NumberOfVolumes = 2\nNumberOfVolumes = 3\n"},
    {"There is no blank after the key", Base::discs, "Mode = Install", "Mode=Install"},
    {"There is no separator", Base::discs, "Mode = Install", "Mode Install"},
    {"A key has no value", Base::dataUpdate, "RelativePath = First", "RelativePath ="},
    {"A number in words", Base::discs, "NumberOfVolumes = 2", "NumberOfVolumes = two"},
    {"A number with a separator", Base::discs, "Bytes = 1", "Bytes = 1,000"},
    {"The size is in bytes", Base::discs, "Bytes = 1", "Bytes = 205000000"},
    {"The size is missing", Base::discs, "TotalSizeMillionsBytes = 1\n", ""},
    {"A blank after Yes", Base::discs, "NumberOfVolumes = 2\n",
     "NumberOfVolumes = 2\nLiteVsFullPrompt = Yes \n"},
    {"The prompt is neither Yes nor No", Base::discs, "NumberOfVolumes = 2\n",
     "NumberOfVolumes = 2\nLiteVsFullPrompt = True\n"},
    {"Quotation marks around a text", Base::discs, "Installing Lumaweave", "\"Installing Lumaweave\""},
    {"A placeholder in the title", Base::discs, "Installing Lumaweave", "Installing into %s"},
    {"The last text is missing", Base::discs, "InstalledData = Installed in\\n\\n%s\n", ""},
    {"A folder in another case", Base::dataUpdate, "RelativePath = First", "RelativePath = first"},
    {"A backslash in a path", Base::dataUpdate, "RelativePath = First", "RelativePath = .\\First"},
    {"The second folder is not named", Base::dataUpdate, "RelativePath2 = Second\n", ""},
    {"A data folder with a digit for a letter", Base::download, "", "", [] { move("TANVO", "TANV0"); }},
    {"A data folder in another case on a disc", Base::discs, "", "",
     [] { move(std::string(kFirstDisc) + "/DOVA", std::string(kFirstDisc) + "/Dova"); }},
    {"A disc of another name", Base::discs, "", "", [] { move(kSecondDisc, "discs/2 Lumaweave"); }},
    {"A disc without a number", Base::discs, "", "", [] { move(kSecondDisc, "discs/Tavenhall Lumaweave"); }},
    {"One disc more than announced", Base::discs, "", "",
     [] { writeFile(inSet("discs/3 Tavenhall Lumaweave/DOVA/three.db"), "three"); }},
    {"One disc less than announced", Base::discs, "NumberOfVolumes = 2", "NumberOfVolumes = 3"},
    {"A disc that is larger than its medium", Base::discs, "", "",
     [] {
       writeFile(inSet("rehearsal.json"), R"({"product": "Lumaweave", "discSize": "20m"})");
       writeFile(inSet(std::string(kFirstDisc) + "/DOVA/large.db"), "");
       fs::resize_file(inSet(std::string(kFirstDisc) + "/DOVA/large.db"), 30'000'000);
     }},
    {"Hidden files", Base::discs, "", "",
     [] { writeFile(inSet(std::string(kFirstDisc) + "/DOVA/.kit.db"), "x"); }},
    {"A broken link", Base::discs, "", "",
     [] { fs::create_symlink("gone.db", inSet(std::string(kFirstDisc) + "/DOVA/kit.db")); }},
    {"Names that differ in case", Base::discs, "", "",
     [] { writeFile(inSet(std::string(kSecondDisc) + "/DOVA/Factory/ONE.db"), "x"); }},
    {"Names that look alike", Base::discs, "", "",
     [] {
       writeFile(inSet(std::string(kFirstDisc) + "/DOVA/Caf\xC3\xA9.db"), "x");
       writeFile(inSet(std::string(kSecondDisc) + "/DOVA/Cafe\xCC\x81.db"), "x");
     }},
    {"A name that is not UTF-8", Base::discs, "", "",
     [] { writeFile(inSet(std::string(kFirstDisc) + "/DOVA/Caf\xE9.db"), "x"); }},
    {"Modes that are lost", Base::discs, "", "",
     [] {
       fs::permissions(inSet(std::string(kFirstDisc) + "/DOVA/Factory/one.db"), static_cast<fs::perms>(04755));
       fs::permissions(inSet(std::string(kSecondDisc) + "/DOVA/Factory/two.db"), static_cast<fs::perms>(0600));
     }},
    {"An application with a blank in its name", Base::update, "", "",
     [] { move("Applications/Tessaphon.app", "Applications/My Tessaphon.app"); }},
};

void makeBase(Base base) {
  fs::remove_all(kSetFolder);
  switch (base) {
    case Base::discs: makeDiscSet(); break;
    case Base::dataUpdate: makeDataUpdateSet(); break;
    case Base::download: makeDownloadSet(); break;
    case Base::update: makeUpdateSet(); break;
  }
}

}  // namespace

const std::vector<Mistake>& allMistakes() { return kMistakes; }

void makeSetWith(const Mistake& mistake) {
  makeBase(mistake.base);
  if (!mistake.from.empty()) {
    std::string attributes = readFile(inSet(".InstallationAttributes.dat"));
    EXPECT_NE(attributes.find(mistake.from), std::string::npos) << mistake.title;
    writeAttributes(attributes.replace(attributes.find(mistake.from), mistake.from.size(), mistake.to));
  }
  if (mistake.change != nullptr) {
    mistake.change();
  }
}

std::string productOf(const Mistake& mistake) {
  return mistake.base == Base::discs ? "Lumaweave" : "Tessaphon";
}

}  // namespace tavenhall::test
