#include "tests/check/sets.h"

namespace tavenhall::test {

TEST(AttributesDiagnostic, NoFileAtAll) {
  makeDiscSet();
  std::filesystem::remove(inSet(kAttributes));
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  expectDiagnostics(checkFor("Lumaweave"), {{"attributes-missing", "error", kAttributes}}, 1);
}

TEST(AttributesDiagnostic, AFileBesideThePackageAndOneAbove) {
  makeDownloadSet();
  writeAttributes("InstallDataTitle = Nobody reads this\n");
  expectDiagnostics(checkFor("Tessaphon"), {{"attributes-twice", "warning", kAttributes}}, 3);
}

TEST(AttributesDiagnostic, AFileOneFolderAboveAloneIsSound) {
  makeDownloadSet();
  std::filesystem::rename(inSet("Package/.InstallationAttributes.dat"), inSet(kAttributes));
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(AttributesDiagnostic, AByteOrderMark) {
  makeDiscSet("\xEF\xBB\xBF" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(
      result, {{"byte-order-mark", "error", kAttributes, 1}, {"mode-missing", "warning", kAttributes}}, 1);
  EXPECT_THAT(sentenceOf(result, "byte-order-mark"),
              testing::EndsWith("recognise the key: the page installs from discs."));
}

TEST(AttributesDiagnostic, AByteOrderMarkBeforeACommentIsSound) {
  makeDiscSet("\xEF\xBB\xBF# First\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(AttributesDiagnostic, AFileInUtf16) {
  std::string wide = "\xFF\xFE";
  for (const char letter : kDiscLines) {
    wide += letter;
    wide += '\0';
  }
  makeDiscSet(wide);
  const std::vector<Found> found = foundIn(checkFor("Lumaweave"));
  EXPECT_THAT(found, testing::Contains(Found{"byte-order-mark", "error", kAttributes, 1}));
}

TEST(AttributesDiagnostic, ANulByte) {
  makeDiscSet(std::string("# It ends\0here\n", 15) + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {{"nul-byte", "error", kAttributes, 1}}, 1);
}

TEST(AttributesDiagnostic, ALineOfMoreThan2047Bytes) {
  makeDiscSet("PreparationTitle = " + std::string(2047, 'x') + "\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {{"line-too-long", "error", kAttributes, 1}}, 1);
}

TEST(AttributesDiagnostic, ALineOf2047BytesIsSound) {
  makeDiscSet("PreparationTitle = " + std::string(2047 - 19 - 1, 'x') + "\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(AttributesDiagnostic, ACarriageReturnInsideAValue) {
  makeDiscSet("PreparationTitle = One\rTwo\n" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"carriage-return", "warning", kAttributes, 1}}, 3);
  EXPECT_THAT(sentenceOf(result, "carriage-return"), testing::HasSubstr("shows \"One\" and ignores"));
}

TEST(AttributesDiagnostic, ACarriageReturnAtALinesEndIsSound) {
  makeDiscSet("PreparationTitle = One \r\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(AttributesDiagnostic, LinesThatEndInCarriageReturnsAlone) {
  std::string lines = kDiscLines;
  for (char& letter : lines) {
    letter = letter == '\n' ? '\r' : letter;
  }
  makeDiscSet(lines);
  EXPECT_THAT(foundIn(checkFor("Lumaweave")),
              testing::Contains(Found{"carriage-return", "warning", kAttributes, 1}));
}

TEST(AttributesDiagnostic, ATextInAnotherEncoding) {
  makeDiscSet("PreparationTitle = Gr\xFC\xDF\x65\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {{"text-not-utf8", "warning", kAttributes, 1}}, 3);
}

TEST(AttributesDiagnostic, ATextInUtf8IsSound) {
  makeDiscSet("PreparationTitle = Gr\xC3\xBC\xC3\x9F\x65 \xE2\x99\xAB \xF0\x9F\x8E\xB9\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

// ---- Keys ----

TEST(KeyDiagnostic, AKeyThatNobodyKnows) {
  makeDiscSet("Publisher = Tavenhall\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {{"key-unknown", "warning", kAttributes, 1}}, 3);
}

TEST(KeyDiagnostic, AMisspeltKey) {
  makeDiscSet("PreparatoinTitle = One\n" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"key-misspelt", "error", kAttributes, 1}}, 1);
  EXPECT_EQ(
      sentenceOf(result, "key-misspelt"),
      "\"PreparatoinTitle\" is probably meant to be PreparationTitle, which is missing, so the installer shows "
      "its built-in \"Data Location\".");
}

TEST(KeyDiagnostic, AMisspeltKeyWhoseRightFormIsThereIsOnlyUnknown) {
  makeDiscSet("InstalDataTitle = One\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {{"key-unknown", "warning", kAttributes, 1}}, 3);
}

TEST(KeyDiagnostic, ANumberKeyInAnotherCase) {
  makeDiscSet("Mode = InstallFromVolumes\nnumberofvolumes = 2\nTotalSizeMillionsBytes = 1\n" + kTexts);
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"key-case", "error", kAttributes, 2}}, 1);
  EXPECT_EQ(sentenceOf(result, "key-case"),
            "The key of a number must be spelt exactly NumberOfVolumes, so the page installs one volume.");
}

TEST(KeyDiagnostic, AKeyInLineOneThousand) {
  std::string lines = kDiscLines;
  for (int line = 7; line < 1000; ++line) {
    lines += "\n";
  }
  makeDiscSet(lines + "PreparationTitle = Too late\n");
  expectDiagnostics(checkFor("Lumaweave"), {{"key-too-late", "error", kAttributes, 1000}}, 1);
}

TEST(KeyDiagnostic, AKeyInLineNineHundredNinetyNineIsSound) {
  std::string lines = kDiscLines;
  for (int line = 7; line < 999; ++line) {
    lines += "\n";
  }
  makeDiscSet(lines + "PreparationTitle = Just in time\n");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(KeyDiagnostic, AKeyBeyondTheSearchThatStandsEarlierToo) {
  std::string lines = kDiscLines;
  for (int line = 7; line < 1000; ++line) {
    lines += "\n";
  }
  makeDiscSet(lines + "NumberOfVolumes = 3\n");
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"key-twice", "warning", kAttributes, 1000}}, 3);
  EXPECT_EQ(sentenceOf(result, "key-twice"),
            "NumberOfVolumes is already in line 5, which is the one that counts. This line is ignored.");
}

TEST(KeyDiagnostic, AKeyThatStandsTwice) {
  makeDiscSet(kDiscLines + "mode = DataUpdater\n");
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"key-twice", "warning", kAttributes, 7}}, 3);
  EXPECT_EQ(sentenceOf(result, "key-twice"),
            "Mode is already in line 1, which is the one that counts. This line is ignored.");
}

TEST(KeyDiagnostic, AKeyWithoutABlankBehindIt) {
  makeDiscSet("PreparationTitle=One\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {{"key-joined", "error", kAttributes, 1}}, 1);
}

TEST(KeyDiagnostic, ALineWithoutASeparator) {
  makeDiscSet("PreparationTitle Where to put it\n" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"separator-missing", "error", kAttributes, 1}}, 1);
  EXPECT_THAT(sentenceOf(result, "separator-missing"), testing::HasSubstr("so \"Where\" is not part"));
}

TEST(KeyDiagnostic, ASeparatorWithoutABlankBehindIt) {
  makeDiscSet("PreparationTitle =One\n" + kDiscLines);
  expectDiagnostics(checkFor("Lumaweave"), {{"separator-missing", "error", kAttributes, 1}}, 1);
}

TEST(KeyDiagnostic, AKeyWithoutAValue) {
  makeDiscSet(kDiscLines + "PreparationTitle =\n");
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"value-missing", "error", kAttributes, 7}}, 1);
  EXPECT_EQ(sentenceOf(result, "value-missing"),
            "PreparationTitle has no value, so the page uses the value of line 6, \"1\".");
}

TEST(FileDiagnostic, Utf16WithoutAMark) {
  std::string bytes;
  for (const char character : std::string("# Grosses Haus\nMode = InstallFromVolumes\n")) {
    bytes += {'\0', character};
  }
  makeDiscSet(bytes);
  EXPECT_THAT(foundIn(checkFor("Lumaweave")),
              testing::Contains(Found{"utf16-without-mark", "error", kAttributes, 1}));
}

}  // namespace tavenhall::test
