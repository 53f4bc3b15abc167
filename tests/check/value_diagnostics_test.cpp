#include "context/install_rules.h"
#include "tests/check/sets.h"

namespace tavenhall::test {

namespace {

// The lines of the set on discs with another one in the place of that with `key`.
std::string discLinesWith(const std::string& key, const std::string& line) {
  std::string lines = kDiscLines;
  const std::size_t start = lines.find(key + " = ");
  lines.replace(start, lines.find('\n', start) - start, line);
  return lines;
}

}  // namespace

// ---- The mode ----

TEST(ModeDiagnostic, NoModeAtAll) {
  makeDiscSet(discLinesWith("Mode", "# no mode"));
  expectDiagnostics(checkFor("Lumaweave"), {{"mode-missing", "warning", kAttributes}}, 3);
}

TEST(ModeDiagnostic, AMisspeltMode) {
  makeDownloadSet("Mode = DataUpdate\nTotalSizeMillionsBytes = 1\n");
  expectDiagnostics(checkFor("Tessaphon"),
                    {{"mode-misspelt", "error", "Package/.InstallationAttributes.dat", 1}}, 1);
}

TEST(ModeDiagnostic, AModeInAnotherCase) {
  makeDownloadSet("Mode = supporthub\nTotalSizeMillionsBytes = 1\n");
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"mode-misspelt", "error", "Package/.InstallationAttributes.dat", 1}}, 1);
  EXPECT_THAT(sentenceOf(result, "mode-misspelt"), testing::HasSubstr("meant to be SupportHub"));
}

TEST(ModeDiagnostic, EveryModeWordIsOneOfThePages) {
  for (const char* word : {"DataUpdater", "InstallFromVolumes", "TavenhallUpdater", "SupportHub"}) {
    EXPECT_NE(installModeForValue(word), 3) << word;
  }
}

TEST(ModeDiagnostic, AModeThatNamesTwo) {
  makeDataUpdateSet("Mode = TavenhallUpdater DataUpdater\n" +
                    kDataUpdateLines.substr(kDataUpdateLines.find('\n') + 1));
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"mode-several", "warning", kAttributes, 1}}, 3);
  EXPECT_THAT(sentenceOf(result, "mode-several"), testing::HasSubstr("mode 0."));
}

TEST(ModeDiagnostic, AModeThatDoesNotFit) {
  makeDiscSet(discLinesWith("Mode", "Mode = InstallFromVolumes" + std::string(46, '-')));
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"value-cut", "error", kAttributes, 1}}, 1);
}

TEST(ModeDiagnostic, AModeThatIsCutInItsWord) {
  makeDiscSet(discLinesWith("Mode", "Mode = " + std::string(46, '-') + "InstallFromVolumes"));
  const CheckResult result = checkFor("Lumaweave");
  EXPECT_THAT(foundIn(result), testing::Contains(Found{"value-cut", "error", kAttributes, 1}));
  EXPECT_EQ(result.checked.plan.mode, 3);
}

TEST(ModeDiagnostic, AModeOf63BytesIsSound) {
  makeDiscSet(discLinesWith("Mode", "Mode = " + std::string(45, '-') + "InstallFromVolumes"));
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

// ---- Numbers ----

TEST(NumberDiagnostic, AValueThatIsNoNumber) {
  makeDiscSet(discLinesWith("TotalSizeMillionsBytes", "TotalSizeMillionsBytes = one"));
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"number-invalid", "error", kAttributes, 6}}, 1);
  EXPECT_EQ(
      sentenceOf(result, "number-invalid"),
      "TotalSizeMillionsBytes is \"one\", which is not a number, so the page uses 2, the number of line 5.");
}

TEST(NumberDiagnostic, AValueThatIsNoNumberAndHasNoneBefore) {
  makeDiscSet("NumberOfVolumes = two\nMode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n");
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"number-invalid", "error", kAttributes, 1}}, 1);
  EXPECT_THAT(sentenceOf(result, "number-invalid"), testing::HasSubstr("so the page uses 0."));
}

TEST(NumberDiagnostic, TextBehindANumber) {
  makeDiscSet(discLinesWith("TotalSizeMillionsBytes", "TotalSizeMillionsBytes = 1,000"));
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"number-trailing-text", "warning", kAttributes, 6}}, 3);
  EXPECT_THAT(sentenceOf(result, "number-trailing-text"), testing::HasSubstr("so it is 1."));
}

TEST(NumberDiagnostic, BlanksBehindANumberAreSound) {
  makeDiscSet(discLinesWith("TotalSizeMillionsBytes", "TotalSizeMillionsBytes = 1 \t\r"));
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(NumberDiagnostic, ANumberBeyond64Bits) {
  makeDiscSet(discLinesWith("TotalSizeMillionsBytes", "TotalSizeMillionsBytes = 99999999999999999999"));
  expectDiagnostics(checkFor("Lumaweave"), {{"number-out-of-range", "error", kAttributes, 6}}, 1);
}

TEST(NumberDiagnostic, ASizeWhoseBytesWrap) {
  makeDiscSet(discLinesWith("TotalSizeMillionsBytes", "TotalSizeMillionsBytes = 9223372036855"));
  expectDiagnostics(checkFor("Lumaweave"), {{"number-out-of-range", "error", kAttributes, 6}}, 1);
}

TEST(NumberDiagnostic, ANegativeNumberOfVolumes) {
  makeDiscSet(discLinesWith("NumberOfVolumes", "NumberOfVolumes = -2"));
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"number-out-of-range", "error", kAttributes, 5}}, 1);
  EXPECT_THAT(sentenceOf(result, "number-out-of-range"), testing::HasSubstr("cannot be -2"));
}

TEST(NumberDiagnostic, ANumberOfVolumesBeyond32Bits) {
  makeDiscSet(discLinesWith("NumberOfVolumes", "NumberOfVolumes = 4294967296"));
  EXPECT_THAT(foundIn(checkFor("Lumaweave")),
              testing::Contains(Found{"number-out-of-range", "error", kAttributes, 5}));
}

// ---- The prompt ----

TEST(PromptDiagnostic, ABlankBehindTheYes) {
  makeDiscSet(kDiscLines + "LiteVsFullPrompt = Yes \nComponent1SizeMillionsBytes = 1\n");
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"trailing-blank", "error", kAttributes, 7}}, 1);
  EXPECT_FALSE(result.checked.plan.editions.isOffered);
}

TEST(PromptDiagnostic, AnAnswerThatIsNone) {
  makeDiscSet(kDiscLines + "LiteVsFullPrompt = true\n");
  expectDiagnostics(checkFor("Lumaweave"), {{"prompt-value", "warning", kAttributes, 7}}, 3);
}

TEST(PromptDiagnostic, APromptWithOneVolume) {
  makeDiscSet("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\nLiteVsFullPrompt = Yes\n" + kTexts);
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  expectDiagnostics(checkFor("Lumaweave"), {{"prompt-without-effect", "warning", kAttributes, 3}}, 3);
}

TEST(PromptDiagnostic, ANoWhereTwoVolumesAreAChoiceAnyway) {
  makeDataUpdateSet(kDataUpdateLines + "LiteVsFullPrompt = No\n");
  expectDiagnostics(checkFor("Tessaphon"), {{"prompt-without-effect", "warning", kAttributes, 9}}, 3);
}

TEST(PromptDiagnostic, APromptInAnUpdater) {
  makeUpdateSet(kUpdateLines + "LiteVsFullPrompt = Yes\n");
  expectDiagnostics(checkFor("Tessaphon"), {{"prompt-without-effect", "warning", kAttributes, 8}}, 3);
}

// ---- Texts ----

TEST(TextDiagnostic, ATextThatDoesNotSayWhere) {
  makeDiscSet(discLinesWith("InstalledData", "InstalledData = Done, 100 %%s"));
  expectDiagnostics(checkFor("Lumaweave"), {{"placeholder-missing", "note", kAttributes, 4}}, 0);
}

TEST(TextDiagnostic, ATextThatSaysWhereTwice) {
  makeDiscSet(discLinesWith("InstallingData", "InstallingData = To %s, yes, %s"));
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"placeholder-repeated", "warning", kAttributes, 3}}, 3);
  EXPECT_EQ(result.checked.plan.enteringText, "To ~/Library/Application Support/Tavenhall/DOVA, yes, %s");
}

// ---- Paths ----

TEST(PathDiagnostic, ABackslashInAPath) {
  makeDataUpdateSet("Mode = DataUpdater\nRelativePath = First\\nested\nTotalSizeMillionsBytes = 1\n");
  EXPECT_THAT(foundIn(checkFor("Tessaphon")),
              testing::Contains(Found{"path-backslash", "error", kAttributes, 2}));
}

TEST(PathDiagnostic, ABlankAtAPathsEnd) {
  makeDataUpdateSet("Mode = DataUpdater\nRelativePath = First \nTotalSizeMillionsBytes = 1\n" + kTexts);
  expectDiagnostics(
      checkFor("Tessaphon"),
      {{"trailing-blank", "error", kAttributes, 2}, {"data-folder-missing", "error", "First /TANVO"}}, 1);
}

TEST(PathDiagnostic, ABlankAtTheEndOfAFolderThatHasOneIsSound) {
  makeDataUpdateSet("Mode = DataUpdater\nRelativePath = First \nTotalSizeMillionsBytes = 1\n" + kTexts);
  std::filesystem::rename(inSet("First"), inSet("First "));
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(PathDiagnostic, ARelativePathThatDoesNotFit) {
  makeDataUpdateSet("Mode = DataUpdater\nRelativePath = " + std::string(1100, 'p') +
                    "\nTotalSizeMillionsBytes = 1\n");
  EXPECT_THAT(foundIn(checkFor("Tessaphon")),
              testing::Contains(Found{"path-too-long", "error", kAttributes, 2}));
}

TEST(TextDiagnostic, TheLastTextIsMissing) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"title-missing", "note", kAttributes}, {"text-missing", "warning", kAttributes}},
                    3);
  EXPECT_EQ(sentenceOf(result, "text-missing"),
            "The key InstalledData is missing, so the user reads \"Step 1 finished.\".");
}

TEST(TextDiagnostic, APlaceholderInTheTitleAndQuotationMarks) {
  makeDiscSet(kDiscLines.substr(0, kDiscLines.find("Installing")) + "'Into %s'" +
              kDiscLines.substr(kDiscLines.find(" Lumaweave") + 10));
  expectDiagnostics(
      checkFor("Lumaweave"),
      {{"placeholder-in-title", "warning", kAttributes, 2}, {"quotation-marks", "warning", kAttributes, 2}}, 3);
}

TEST(TextDiagnostic, AnApostropheAtOneEndIsNoQuotation) {
  makeDiscSet(kDiscLines + "PreparationTitle = 'Tis\nAlternateNameForLiteInstallation = \"\n");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(PathDiagnostic, AFolderInAnotherCase) {
  makeDownloadSet("Mode = Downloaded\nRelativePath = data\nTotalSizeMillionsBytes = 1\n" + kTexts);
  std::filesystem::create_directories(inSet("Package/Data"));
  std::filesystem::rename(inSet("TANVO"), inSet("Package/Data/TANVO"));
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result,
                    {{"path-misspelt", "error", "Package/.InstallationAttributes.dat", 2},
                     {"data-folder-missing", "error", "Package/data/TANVO"}},
                    1);
  EXPECT_EQ(sentenceOf(result, "path-misspelt"), "There is no folder \"data\". Did you mean \"Data\"?");
}

TEST(ModeDiagnostic, AModeThatDoesNotFitTheSet) {
  makeDownloadSet("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n" + kTexts);
  expectDiagnostics(
      checkFor("Tessaphon"),
      {{"mode-unfit", "error", "Package/.InstallationAttributes.dat", 1}, {"disc-missing", "error", "discs"}},
      1);
}

}  // namespace tavenhall::test
