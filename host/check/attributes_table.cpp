#include "host/check/diagnostic_table.h"

#include "host/base/text.h"

// Those of the attributes file.
namespace tavenhall {

namespace {

constexpr DiagnosticKind kFileKinds[] = {
    {"attributes-missing", Severity::error, false, N_("Put .InstallationAttributes.dat beside the package."),
     "There is no attributes file beside the package or one folder above. The page then installs one "
     "disc, with its built-in texts and a wrong progress bar.",
     "Lumaweave Installer.pkg\nInstallationAttributes.dat",
     "Lumaweave Installer.pkg\n.InstallationAttributes.dat"},
    {"attributes-twice", Severity::warning, false, N_("Remove one of the two files."),
     "There is one beside the package and one in the folder above. The page reads the first. Remove "
     "the other.",
     ".InstallationAttributes.dat\nPackage/.InstallationAttributes.dat\nPackage/Installer.pkg",
     "Package/.InstallationAttributes.dat\nPackage/Installer.pkg"},
    {"byte-order-mark", Severity::error, true, N_("Save the file as UTF-8 without a byte-order mark."),
     "A byte-order mark precedes the first key, or the file is UTF-16. Save it as UTF-8 without a "
     "mark.",
     "EF BB BF 4D 6F 64 65", "4D 6F 64 65"},
    {"nul-byte", Severity::error, false, N_("Remove the NUL byte."), "A NUL byte ends the line.",
     "Mode = InstallFrom\\0Volumes", "Mode = InstallFromVolumes"},
    {"line-too-long", Severity::error, false, N_("Shorten the line to 2047 bytes."),
     "A line has more than 2047 bytes. Its text is truncated, and the rest counts as another line, "
     "which may even contain a key.",
     "InstallingData = (3,000 letters)", "InstallingData = (at most 2,000 letters)"},
    {"carriage-return", Severity::warning, true, N_("End the lines with line feeds."),
     "A carriage return inside a value ends it, or all lines of the file end in carriage returns "
     "only, which makes them one line.",
     "Mode = DataUpdater(CR)RelativePath = Data(CR)", "Mode = DataUpdater\nRelativePath = Data"},
    {"text-not-utf8", Severity::warning, false, N_("Save the file as UTF-8."),
     "A text is not valid UTF-8. Save the file as UTF-8.", "InstallDataTitle = Gr\\xFC\\xDFe",
     "InstallDataTitle = Grüße"},
    {"utf16-without-mark", Severity::error, true, N_("Save the file as UTF-8 without a byte-order mark."),
     "The file is UTF-16 without a byte-order mark: every other byte is NUL. The page finds no key "
     "in it.",
     "4D 00 6F 00 64 00 65 00", "4D 6F 64 65"},
};

constexpr DiagnosticKind kKeysKinds[] = {
    {"key-unknown", Severity::warning, false, N_("Remove the line, or begin it with # as a comment."),
     "No part of the installer reads this key.", "Publisher = Tavenhall", "# Publisher = Tavenhall"},
    {"key-misspelt", Severity::error, false, N_("Correct the key."),
     "The key resembles a key that is missing. The diagnostic names the missing key, which has its "
     "default value.",
     "InstallDataTitel = My Library", "InstallDataTitle = My Library"},
    {"key-case", Severity::error, true, N_("Correct the key."),
     "The case of a number key is wrong, so the page does not find it.", "numberOfVolumes = 2",
     "NumberOfVolumes = 2"},
    {"key-too-late", Severity::error, false, N_("Move the line up."),
     "The key is after line 999, where the page does not search. Parts of long lines count as lines.",
     "(line 1200) NumberOfVolumes = 2", "(line 5) NumberOfVolumes = 2"},
    {"key-twice", Severity::warning, false, N_("Remove one of the lines."),
     "An earlier line has the same key. The page uses the first.", "NumberOfVolumes = 2\nNumberOfVolumes = 3",
     "NumberOfVolumes = 3"},
    {"key-joined", Severity::error, false, N_("Put blanks around the separator."),
     "There is no blank between the key and what follows: `Mode=DataUpdater`.", "Mode=DataUpdater",
     "Mode = DataUpdater"},
    {"separator-missing", Severity::error, false, N_("Put blanks around the separator."),
     "There is no separator, or no blank after it, so the page skips the first word of the value "
     "instead: `Mode DataUpdater`, `Mode =DataUpdater`.",
     "Mode DataUpdater", "Mode = DataUpdater"},
    {"value-missing", Severity::error, false, N_("Give the key a value, or remove the line."),
     "The key has no value. The page uses the value of an earlier line.",
     "RelativePath =", "RelativePath = Data"},
};

constexpr DiagnosticKind kValuesKinds[] = {
    {"mode-missing", Severity::warning, false, N_("Add a line with the key."),
     "No line has the key `Mode`. For an install from discs, write `Mode = InstallFromVolumes`.",
     "InstallDataTitle = My Library", "Mode = InstallFromVolumes\nInstallDataTitle = My Library"},
    {"mode-misspelt", Severity::error, false, N_("Correct the Mode."),
     "The mode resembles one of the four words, or its case is wrong. As written, it means mode 3.",
     "Mode = InstallFromVolume", "Mode = InstallFromVolumes"},
    {"mode-several", Severity::warning, false, N_("Keep one of the words."),
     "The mode contains more than one of the four words.", "Mode = DataUpdater SupportHub",
     "Mode = DataUpdater"},
    {"value-cut", Severity::error, false, N_("Shorten the value to 63 bytes."),
     "The mode has more than 63 bytes.",
     "Mode = InstallFromVolumes, and 60 more letters of comment behind it, which nobody reads",
     "Mode = InstallFromVolumes"},
    {"number-invalid", Severity::error, true, N_("Write a number in digits alone."),
     "The value is not a number. The page uses the number of an earlier line, or 0.", "NumberOfVolumes = two",
     "NumberOfVolumes = 2"},
    {"number-trailing-text", Severity::warning, false, N_("Write a number in digits alone."),
     "Text follows the number. `12,000` is read as 12, `1.5` as 1.", "TotalSizeMillionsBytes = 12,000",
     "TotalSizeMillionsBytes = 12000"},
    {"number-out-of-range", Severity::error, false, N_("Write a number in digits alone."),
     "The number is negative, or too large for the page.", "NumberOfVolumes = -1", "NumberOfVolumes = 1"},
    {"trailing-blank", Severity::error, true, N_("Remove the blank at the end."),
     "A blank at the end changes the value: `Yes` with a blank does not mean Yes, and a folder name "
     "with a blank names another folder.",
     "LiteVsFullPrompt = Yes(blank)", "LiteVsFullPrompt = Yes"},
    {"prompt-value", Severity::warning, false, N_("Write Yes or No."),
     "`LiteVsFullPrompt` is neither Yes nor No. The page treats it as No.", "LiteVsFullPrompt = True",
     "LiteVsFullPrompt = Yes"},
    {"prompt-without-effect", Severity::warning, false, N_("Remove the line."),
     "`LiteVsFullPrompt` has no effect in this mode or with this number of volumes.",
     "NumberOfVolumes = 3\nLiteVsFullPrompt = Yes", "NumberOfVolumes = 3"},
    {"placeholder-missing", Severity::note, false, N_("Add \"%s\" where the folder is to be shown."),
     "The text has no `%s`, so it does not show the destination folder.",
     "InstalledData = The library is installed.", "InstalledData = The library is installed in:\\n\\n%s"},
    {"placeholder-repeated", Severity::warning, false, N_("Keep one \"%s\"."),
     "The text has more than one `%s`. The page replaces only the first.", "InstalledData = %s is in %s",
     "InstalledData = The library is in %s"},
    {"path-backslash", Severity::error, false, N_("Write / instead."),
     "A relative path has a backslash. The path separator is `/`.", "RelativePath = Data\\First",
     "RelativePath = Data/First"},
    {"second-path-missing", Severity::error, false, N_("Add a line with the key."),
     "There are two components and no `RelativePath2`.", "NumberOfVolumes = 2\nRelativePath = First",
     "NumberOfVolumes = 2\nRelativePath = First\nRelativePath2 = Second"},
    {"volumes-without-prompt", Severity::error, false, N_("Correct NumberOfVolumes or the Mode."),
     "In this mode the data is beside the package, but because of the number of volumes the page "
     "looks for the later ones on discs. It never asks for these discs.",
     "Mode = FullDownload\nNumberOfVolumes = 3", "Mode = InstallFromVolumes\nNumberOfVolumes = 3"},
    {"mode-unfit", Severity::error, false, N_("Correct the Mode."),
     "With another Mode the set would have no error. The check has tried each of the four words; "
     "what the Mode as written leads to is listed below it.",
     "Mode = FullDownload", "Mode = InstallFromVolumes"},
    {"text-missing", Severity::warning, false, N_("Add a line with the key."),
     "`InstalledData` is missing, so the user reads the built-in text at the end. It says that a "
     "first step is finished and asks for the Data Updater.",
     "InstallDataTitle = My Library", "InstallDataTitle = My Library\nInstalledData = The library is in %s"},
    {"title-missing", Severity::note, false, N_("Add a line with the key."),
     "`InstallDataTitle` is missing, so the page's title is the built-in one.",
     "InstalledData = The library is in %s",
     "InstallDataTitle = My Library\nInstalledData = The library is in %s"},
    {"path-misspelt", Severity::error, false, N_("Correct the name of the folder."),
     "There is no folder of the name that a relative path gives, but one with nearly that name. Most "
     "Macs do not tell upper case from lower case, but other disks do.",
     "RelativePath = data", "RelativePath = Data"},
    {"placeholder-in-title", Severity::warning, false, N_("Remove the \"%s\"."),
     "The title is shown as it is written, with the `%s`.", "InstallDataTitle = Installing to %s",
     "InstallDataTitle = Installing My Library"},
    {"quotation-marks", Severity::warning, false, N_("Remove the quotation marks."),
     "The text is in quotation marks, which the page shows too.", "InstallDataTitle = \"My Library\"",
     "InstallDataTitle = My Library"},
};

constexpr DiagnosticKind kSizesKinds[] = {
    {"size-missing", Severity::warning, true, N_("Add a line with the key."),
     "A required size is missing, so the bar keeps its previous range.", "Mode = FullDownload",
     "Mode = FullDownload\nTotalSizeMillionsBytes = 205"},
    {"size-total", Severity::warning, true, N_("Write the real size."),
     "`TotalSizeMillionsBytes` differs from the size of the data.", "TotalSizeMillionsBytes = 205000000",
     "TotalSizeMillionsBytes = 205"},
    {"size-component", Severity::warning, true, N_("Write the real size."),
     "`Component1SizeMillionsBytes` differs from the size of the first volume or component.",
     "Component1SizeMillionsBytes = 13000000", "Component1SizeMillionsBytes = 13"},
};

}  // namespace

std::vector<DiagnosticTopic> attributesTopics() {
  return {
      {"The file", "", kFileKinds},
      {"Keys", "", kKeysKinds},
      {"Values", "", kValuesKinds},
      {"Sizes",
       "The announced sizes may differ from the real ones by 5 % plus 1 MB. In mode 4 they may include "
       "`Library` and `Applications` or not.",
       kSizesKinds},
  };
}

}  // namespace tavenhall
