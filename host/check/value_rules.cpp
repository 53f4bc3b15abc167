#include "context/contains.h"
#include "context/install_rules.h"
#include "host/base/text.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <sys/stat.h>
#include <utility>

namespace tavenhall {

namespace {

constexpr std::size_t kFolderSize = 1024;  // the page's buffer for a folder relative to the package's
constexpr std::int64_t kMostMillions = std::numeric_limits<std::int64_t>::max() / 1000000;

// The words of a mode's value; the page's own rule finds them.
constexpr std::string_view kModeWords[] = {"DataUpdater", "InstallFromVolumes", "TavenhallUpdater",
                                           "SupportHub"};

// A value up to its first carriage return, where the page ends it.
std::string_view untilCarriageReturn(std::string_view value) { return value.substr(0, value.find('\r')); }

std::string withSlashes(std::string_view path) {
  std::string text(path);
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

// Up to its first carriage return.
std::string_view blanksAtEnd(std::string_view value) {
  value = untilCarriageReturn(value);
  const std::size_t length = value.find_last_not_of(" \t") + 1;
  return value.substr(length);
}

std::string_view withoutBlanksAtEnd(std::string_view value) {
  return value.substr(0, value.find_last_not_of(" \t") + 1);
}

class ValueRules {
 public:
  ValueRules(const CheckedSet& checked, Diagnostics& diagnostics)
      : checked_(checked), attributes_(checked.plan.attributes), diagnostics_(diagnostics) {}

  void checkMode() {
    const FoundText mode = attributes_.findText("Mode", kModeSize);
    if (!mode) {
      if (attributes_.isFilePresent()) {
        diagnostics_.add("mode-missing", checked_.attributesPlace(),
                         _("The key Mode is missing, so the page installs from discs."));
      }
      return;
    }
    if (mode.source != mode.key) {
      return;  // a value of another line's was said of the key
    }
    const std::string_view written = untilCarriageReturn(mode.key->parts.value);
    if (written.size() >= kModeSize) {
      add("value-cut", *mode.key,
          _("The page reads at most 63 bytes of a Mode, so it ignores the end of this one."));
    }
    const auto words = std::count_if(std::begin(kModeWords), std::end(kModeWords),
                                     [&mode](std::string_view word) { return contains(mode.value, word); });
    if (words > 1) {
      add("mode-several", *mode.key,
          format(_("The Mode names more than one kind of installer. The page uses the first that it tests for, "
                   "mode {0}."),
                 {std::to_string(installModeForValue(mode.value))}));
    } else if (words == 0) {
      checkModeSpelling(mode);
    }
  }

  void checkNumber(const AttributesKey& key) {
    const FoundNumber found = attributes_.findNumber(key.name);
    if (!found || found.key->parts.value.empty()) {
      return;
    }
    const std::string_view value = found.key->parts.value;
    if (found.source != found.key) {
      const std::string sentence =
          found.source == nullptr
              ? format(_("{0} is {1}, which is not a number, so the page uses 0."),
                       {key.name, quotedText(value)})
              : format(_("{0} is {1}, which is not a number, so the page uses {2}, the number of line {3}."),
                       {key.name, quotedText(value), std::to_string(found.number),
                        std::to_string(found.source->line)});
      diagnostics_.add(
          "number-invalid", checked_.attributesPlace(found.key, untilCarriageReturn(value)), sentence,
          std::string_view(key.name) == "NumberOfVolumes" ? volumeCorrection(checked_) : std::nullopt);
      return;
    }
    const std::size_t sign = value.starts_with('-') || value.starts_with('+') ? 1 : 0;
    const std::size_t end = std::min(value.find_first_not_of("0123456789", sign), value.size());
    if (value.find_first_not_of(" \t\r", end) != std::string_view::npos) {
      add("number-trailing-text", *found.key,
          format(_("The page reads {0} up to the first character that is not a digit, so it is {1}."),
                 {key.name, std::to_string(found.number)}));
    }
    checkRange(key, found, value.substr(0, end));
  }

  void checkPrompt() {
    const FoundText prompt = attributes_.findText("LiteVsFullPrompt");
    if (!prompt || prompt.source != prompt.key) {
      return;
    }
    const std::string_view trimmed = withoutBlanksAtEnd(prompt.value);
    const bool isYes = equalsIgnoringCase(trimmed, "Yes");
    if (isYes && trimmed.size() < prompt.value.size()) {
      addAt(
          "trailing-blank", *prompt.key, blanksAtEnd(prompt.key->parts.value),
          _("A blank follows the Yes of LiteVsFullPrompt, so the page does not recognise it and the user gets "
            "no choice between Lite and Full."),
          "");
      return;
    }
    if (!isYes && !equalsIgnoringCase(trimmed, "No")) {
      add("prompt-value", *prompt.key,
          format(_("LiteVsFullPrompt is {0}. The page treats everything except Yes as No."),
                 {quotedText(trimmed)}));
      return;
    }
    checkPromptEffect(*prompt.key, isYes);
  }

  void checkText(const char* key) {
    const FoundText text = attributes_.findText(key);
    if (!text || text.source != text.key) {
      return;
    }
    int places = 0;
    for (std::size_t i = 0; i + 1 < text.value.size(); ++i) {
      if (text.value.compare(i, 2, "%s") == 0) {
        ++places;
      }
      i += text.value[i] == '%' ? 1 : 0;  // also over "%%", which is a percent sign
    }
    if (places == 0) {
      add("placeholder-missing", *text.key,
          format(_("{0} has no \"%s\", so the page does not show where the data goes."), {key}));
    } else if (places > 1) {
      add("placeholder-repeated", *text.key,
          format(
              _("The destination replaces only the first \"%s\" of {0}; the page shows the others unchanged."),
              {key}));
    }
  }

  // The two texts without which the user reads something that is not about the set.
  void checkMissingText(std::string_view name, const char* key) {
    if (attributes_.isFilePresent() && !attributes_.findText(key)) {
      const std::string_view fallback = fallbackText(key) != nullptr ? fallbackText(key) : "";
      diagnostics_.add(name, checked_.attributesPlace(),
                       format(_("The key {0} is missing, so the user reads {1}."),
                              {key, quotedText(fallback.substr(0, fallback.find('\n')))}));
    }
  }

  void checkTitle() {
    const FoundText title = attributes_.findText("InstallDataTitle");
    if (title && title.source == title.key && title.value.find("%s") != std::string::npos) {
      add("placeholder-in-title", *title.key, _("The page shows the title as it is written, with the \"%s\"."));
    }
  }

  void checkQuotation(const char* key) {
    const FoundText text = attributes_.findText(key);
    if (!text || text.source != text.key) {
      return;
    }
    const std::string_view value = withoutBlanksAtEnd(untilCarriageReturn(text.key->parts.value));
    if (value.size() > 1 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
      addAt("quotation-marks", *text.key, value,
            format(_("The quotation marks are part of {0}, so the page shows them."), {key}),
            std::string(value.substr(1, value.size() - 2)));
    }
  }

  void checkPath(const char* key) {
    const FoundText path = attributes_.findText(key);
    if (!path || path.source != path.key) {
      return;
    }
    const std::string_view written = untilCarriageReturn(path.key->parts.value);
    if (written.find('\\') != std::string_view::npos) {
      add("path-backslash", *path.key,
          format(_("{0} contains a backslash, which is not a path separator and becomes a line break before n "
                   "or r, so the page looks for a folder that does not exist."),
                 {key}),
          withSlashes(written));
    } else if (withoutBlanksAtEnd(written).size() < written.size() && !isFolderThere(path.value)) {
      addAt(
          "trailing-blank", *path.key, blanksAtEnd(written),
          format(_("The blank at the end is part of {0}, so the page looks for a folder that does not exist."),
                 {key}),
          "");
    } else if (checked_.plan.mode != kModeVolumes && !isFolderThere(path.value)) {
      suggestFolder(*path.key, path.value);
    }
    if (checked_.plan.packageFolder.size() + 1 + path.value.size() >= kFolderSize) {
      add("path-too-long", *path.key,
          format(_("The package's folder and {0} together exceed 1023 bytes, and the installer aborts."),
                 {key}));
    }
  }

 private:
  // The whole value is wrong; `correction` replaces it, if it is given.
  void add(std::string_view name, const AttributesPiece& piece, std::string sentence,
           const std::optional<std::string>& correction = {}) {
    addAt(name, piece, piece.parts.value, std::move(sentence), correction);
  }

  void addAt(std::string_view name, const AttributesPiece& piece, std::string_view part, std::string sentence,
             const std::optional<std::string>& correction) {
    part = part.substr(0, part.find('\r'));  // a line end of Windows stays
    diagnostics_.add(name, checked_.attributesPlace(&piece, part), std::move(sentence),
                     correction ? std::optional(correctionOf(attributes_, part, *correction)) : std::nullopt);
  }

  void checkModeSpelling(const FoundText& mode) {
    for (const std::string_view word : kModeWords) {
      if (isMisspellingOf(withoutBlanksAtEnd(mode.value), word)) {
        add("mode-misspelt", *mode.key,
            format(_("The Mode {0} is probably meant to be {1}. The page treats it as an installer that has "
                     "its data beside the package."),
                   {quotedText(mode.value), word}),
            std::string(word));
        return;
      }
    }
  }

  void checkRange(const AttributesKey& key, const FoundNumber& found, std::string_view digits) {
    const bool isVolumes = std::string_view(key.name) == "NumberOfVolumes";
    const bool isLimit = found.number == std::numeric_limits<std::int64_t>::max() ||
                         found.number == std::numeric_limits<std::int64_t>::min();
    const bool fits =
        !isLimit && found.number >= 0 &&
        (isVolumes ? found.number <= std::numeric_limits<std::int32_t>::max() : found.number <= kMostMillions);
    if (fits) {
      return;
    }
    digits = digits.substr(0, 24);
    add("number-out-of-range", *found.key,
        isVolumes ? plural("{1} cannot be {2}. The page then installs {0} volume.",
                           "{1} cannot be {2}. The page then installs {0} volumes.",
                           std::max(volumeCountForNumber(found.number), 0), {key.name, digits})
                  : format(_("{0} cannot be {1}. The page then expects {2} bytes."),
                           {key.name, digits, std::to_string(announcedBytes(found.number))}));
  }

  void checkPromptEffect(const AttributesPiece& piece, bool isYes) {
    const bool twoVolumes = volumesOfferEditions(checked_.plan.numberOfVolumes);
    const std::int32_t mode = checked_.plan.mode;
    if (mode == kModeProductUpdater) {
      add("prompt-without-effect", piece,
          _("LiteVsFullPrompt has no effect here: an updater detects which edition the user has."));
    } else if (isYes && !twoVolumes) {
      add("prompt-without-effect", piece,
          _("LiteVsFullPrompt has no effect here: only NumberOfVolumes 2 offers a choice, so the user gets "
            "everything."));
    } else if (!isYes && twoVolumes && mode != kModeVolumes) {
      add("prompt-without-effect", piece,
          _("LiteVsFullPrompt has no effect here: in this mode, NumberOfVolumes 2 alone offers a choice "
            "between Lite and Full."));
    }
  }

  // A folder beside the package whose name is nearly the one that is written.
  void suggestFolder(const AttributesPiece& piece, const std::string& value) {
    const std::string meant = nearestName(listNames(checked_.plan.packageFolder), value);
    if (!meant.empty()) {
      add("path-misspelt", piece,
          format(_("There is no folder {0}. Did you mean {1}?"), {quotedText(value), quotedText(meant)}),
          meant);
    }
  }

  bool isFolderThere(const std::string& value) const {
    struct stat found {};
    return stat((checked_.plan.packageFolder + "/" + value).c_str(), &found) == 0;
  }

  const CheckedSet& checked_;
  const AttributesReading& attributes_;
  Diagnostics& diagnostics_;
};

}  // namespace

void checkValues(const CheckedSet& checked, Diagnostics& diagnostics) {
  ValueRules rules(checked, diagnostics);
  rules.checkMode();
  for (const AttributesKey& key : attributesKeys()) {
    if (key.kind == KeyKind::number) {
      rules.checkNumber(key);
    }
  }
  rules.checkPrompt();
  rules.checkText("InstallingData");
  rules.checkText("InstalledData");
  for (const AttributesKey& key : attributesKeys()) {
    if (key.kind == KeyKind::text) {
      rules.checkQuotation(key.name);
    }
  }
  rules.checkTitle();
  rules.checkMissingText("title-missing", "InstallDataTitle");
  rules.checkMissingText("text-missing", "InstalledData");
  rules.checkPath("RelativePath");
  rules.checkPath("RelativePath2");
}

void addUnfitMode(const CheckedSet& checked, const AttributesPiece& piece, const std::string& words,
                  AttributesCorrection correction, Diagnostics& diagnostics) {
  diagnostics.add("mode-unfit", checked.attributesPlace(&piece, untilCarriageReturn(piece.parts.value)),
                  format(_("The Mode does not fit the set. With {0} the set would have no error."), {words}),
                  std::move(correction));
}

}  // namespace tavenhall
