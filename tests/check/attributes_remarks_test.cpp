#include "tests/check/sets.h"

namespace tavenhall::test {

TEST(AttributesRemark, NoFileAtAll) {
  makeDiscSet();
  std::filesystem::remove(inSet(kAttributes));
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  expectRemarks(checkFor("Lumaweave"), {{"attributes-missing", "warning", kAttributes}}, 3);
}

TEST(AttributesRemark, AFileBesideThePackageAndOneAbove) {
  makeDownloadSet();
  writeAttributes("InstallDataTitle = Nobody reads this\n");
  expectRemarks(checkFor("Tessaphon"), {{"attributes-twice", "warning", kAttributes}}, 3);
}

TEST(AttributesRemark, AFileOneFolderAboveAloneIsSound) {
  makeDownloadSet();
  std::filesystem::rename(inSet("Package/.InstallationAttributes.dat"), inSet(kAttributes));
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(AttributesRemark, AByteOrderMark) {
  makeDiscSet("\xEF\xBB\xBF" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result,
                {{"byte-order-mark", "error", kAttributes, 1}, {"mode-missing", "warning", kAttributes}}, 1);
  EXPECT_THAT(sentenceOf(result, "byte-order-mark"), testing::EndsWith("so the page installs from discs."));
}

TEST(AttributesRemark, AByteOrderMarkBeforeACommentIsSound) {
  makeDiscSet("\xEF\xBB\xBF# First\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(AttributesRemark, AFileInUtf16) {
  std::string wide = "\xFF\xFE";
  for (const char letter : kDiscLines) {
    wide += letter;
    wide += '\0';
  }
  makeDiscSet(wide);
  const std::vector<Found> found = foundIn(checkFor("Lumaweave"));
  EXPECT_THAT(found, testing::Contains(Found{"byte-order-mark", "error", kAttributes, 1}));
}

TEST(AttributesRemark, ANulByte) {
  makeDiscSet(std::string("# It ends\0here\n", 15) + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {{"nul-byte", "error", kAttributes, 1}}, 1);
}

TEST(AttributesRemark, ALineOfMoreThan2047Bytes) {
  makeDiscSet("PreparationTitle = " + std::string(2047, 'x') + "\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {{"line-too-long", "error", kAttributes, 1}}, 1);
}

TEST(AttributesRemark, ALineOf2047BytesIsSound) {
  makeDiscSet("PreparationTitle = " + std::string(2047 - 19 - 1, 'x') + "\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(AttributesRemark, ACarriageReturnInsideAValue) {
  makeDiscSet("PreparationTitle = One\rTwo\n" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"carriage-return", "warning", kAttributes, 1}}, 3);
  EXPECT_THAT(sentenceOf(result, "carriage-return"), testing::HasSubstr("shows \"One\" and nothing"));
}

TEST(AttributesRemark, ACarriageReturnAtALinesEndIsSound) {
  makeDiscSet("PreparationTitle = One \r\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(AttributesRemark, LinesThatEndInCarriageReturnsAlone) {
  std::string lines = kDiscLines;
  for (char& letter : lines) {
    letter = letter == '\n' ? '\r' : letter;
  }
  makeDiscSet(lines);
  EXPECT_THAT(foundIn(checkFor("Lumaweave")),
              testing::Contains(Found{"carriage-return", "warning", kAttributes, 1}));
}

TEST(AttributesRemark, ATextInAnotherEncoding) {
  makeDiscSet("PreparationTitle = Gr\xFC\xDF\x65\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {{"text-not-utf8", "warning", kAttributes, 1}}, 3);
}

TEST(AttributesRemark, ATextInUtf8IsSound) {
  makeDiscSet("PreparationTitle = Gr\xC3\xBC\xC3\x9F\x65 \xE2\x99\xAB \xF0\x9F\x8E\xB9\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

// ---- Keys ----

TEST(KeyRemark, AKeyThatNobodyKnows) {
  makeDiscSet("Publisher = Tavenhall\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {{"key-unknown", "warning", kAttributes, 1}}, 3);
}

TEST(KeyRemark, AMisspeltKey) {
  makeDiscSet("PreparatoinTitle = One\n" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"key-misspelt", "error", kAttributes, 1}}, 1);
  EXPECT_EQ(
      sentenceOf(result, "key-misspelt"),
      "\"PreparatoinTitle\" is probably meant to be PreparationTitle, which is missing, so the installer shows "
      "its built-in \"Data Location\".");
}

TEST(KeyRemark, AMisspeltKeyWhoseRightFormIsThereIsOnlyUnknown) {
  makeDiscSet("InstalDataTitle = One\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {{"key-unknown", "warning", kAttributes, 1}}, 3);
}

TEST(KeyRemark, ANumberKeyInAnotherCase) {
  makeDiscSet("Mode = InstallFromVolumes\nnumberofvolumes = 2\nTotalSizeMillionsBytes = 1\n");
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"key-case", "error", kAttributes, 2}}, 1);
  EXPECT_EQ(sentenceOf(result, "key-case"),
            "The page finds a number by its exact key only, NumberOfVolumes, so the page installs one volume.");
}

TEST(KeyRemark, AKeyInLineOneThousand) {
  std::string lines = kDiscLines;
  for (int line = 7; line < 1000; ++line) {
    lines += "\n";
  }
  makeDiscSet(lines + "PreparationTitle = Too late\n");
  expectRemarks(checkFor("Lumaweave"), {{"key-too-late", "error", kAttributes, 1000}}, 1);
}

TEST(KeyRemark, AKeyInLineNineHundredNinetyNineIsSound) {
  std::string lines = kDiscLines;
  for (int line = 7; line < 999; ++line) {
    lines += "\n";
  }
  makeDiscSet(lines + "PreparationTitle = Just in time\n");
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(KeyRemark, AKeyBeyondTheSearchThatStandsEarlierToo) {
  std::string lines = kDiscLines;
  for (int line = 7; line < 1000; ++line) {
    lines += "\n";
  }
  makeDiscSet(lines + "NumberOfVolumes = 3\n");
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"key-twice", "warning", kAttributes, 1000}}, 3);
  EXPECT_EQ(sentenceOf(result, "key-twice"),
            "NumberOfVolumes stands in line 5 already, and that one counts: nobody sees this one.");
}

TEST(KeyRemark, AKeyThatStandsTwice) {
  makeDiscSet(kDiscLines + "mode = DataUpdater\n");
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"key-twice", "warning", kAttributes, 7}}, 3);
  EXPECT_EQ(sentenceOf(result, "key-twice"),
            "Mode stands in line 1 already, and that one counts: nobody sees this one.");
}

TEST(KeyRemark, AKeyWithoutABlankBehindIt) {
  makeDiscSet("PreparationTitle=One\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {{"key-joined", "error", kAttributes, 1}}, 1);
}

TEST(KeyRemark, ALineWithoutASeparator) {
  makeDiscSet("PreparationTitle Where to put it\n" + kDiscLines);
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"separator-missing", "error", kAttributes, 1}}, 1);
  EXPECT_THAT(sentenceOf(result, "separator-missing"), testing::HasSubstr("does not see \"Where\""));
}

TEST(KeyRemark, ASeparatorWithoutABlankBehindIt) {
  makeDiscSet("PreparationTitle =One\n" + kDiscLines);
  expectRemarks(checkFor("Lumaweave"), {{"separator-missing", "error", kAttributes, 1}}, 1);
}

TEST(KeyRemark, AKeyWithoutAValue) {
  makeDiscSet(kDiscLines + "PreparationTitle =\n");
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"value-missing", "error", kAttributes, 7}}, 1);
  EXPECT_EQ(sentenceOf(result, "value-missing"),
            "PreparationTitle has no value, so the page takes what line 6 says, \"1\".");
}

}  // namespace tavenhall::test
