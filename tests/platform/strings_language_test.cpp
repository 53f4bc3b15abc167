#include "platform/strings_language.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdlib.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "platform/strings_file.h"
#include "tests/support/files.h"

namespace tavenhall::test {

namespace {

using testing::ElementsAre;

const std::string kContents = "/tmp/Some.bundle/Contents";

class LanguageChoice : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
      unsetenv(name);
    }
  }

  static void set(const char* name, const char* value) { ASSERT_EQ(setenv(name, value, 1), 0); }

  // Each language's table says its own name.
  static void addLanguage(const std::string& folderName) {
    writeFile(kContents + "/Resources/" + folderName + "/Localizable.strings",
              "\"is\" = \"" + folderName + "\";");
  }

  static std::string chosen() { return loadBundleStrings(kContents).text("is"); }
};

}  // namespace

// ---- The names to try ----

TEST_F(LanguageChoice, IsEnglishWhereNothingIsSet) {
  EXPECT_THAT(languageFolderNames(), ElementsAre("en", "English"));
}

TEST_F(LanguageChoice, TriesTheCountryInBothSpellingsAndThenTheLanguage) {
  set("LANG", "de_DE.UTF-8");
  EXPECT_THAT(languageFolderNames(), ElementsAre("de_DE", "de-DE", "de", "en", "English"));
}

TEST_F(LanguageChoice, LeavesEncodingAndModifierAside) {
  set("LANG", "ca_ES@valencia");
  EXPECT_THAT(languageFolderNames(), ElementsAre("ca_ES", "ca-ES", "ca", "en", "English"));
}

TEST_F(LanguageChoice, TakesALanguageWithoutACountry) {
  set("LANG", "fr");
  EXPECT_THAT(languageFolderNames(), ElementsAre("fr", "en", "English"));
}

TEST_F(LanguageChoice, TakesADashForAnUnderscore) {
  set("LANG", "pt-BR");
  EXPECT_THAT(languageFolderNames(), ElementsAre("pt_BR", "pt-BR", "pt", "en", "English"));
}

TEST_F(LanguageChoice, GivesUpOnePartOfTheNameAtATime) {
  set("LANG", "sr_Latn_RS");
  EXPECT_THAT(languageFolderNames(),
              ElementsAre("sr_Latn_RS", "sr-Latn-RS", "sr_Latn", "sr-Latn", "sr", "en", "English"));
}

TEST_F(LanguageChoice, TakesTheVariablesInTheirOrder) {
  set("LANG", "it_IT.UTF-8");
  EXPECT_EQ(languageFolderNames().front(), "it_IT");
  set("LC_MESSAGES", "fr_FR.UTF-8");
  EXPECT_EQ(languageFolderNames().front(), "fr_FR");
  set("LC_ALL", "es_ES.UTF-8");
  EXPECT_EQ(languageFolderNames().front(), "es_ES");
  set("LANGUAGE", "nl");
  EXPECT_EQ(languageFolderNames().front(), "nl");
}

TEST_F(LanguageChoice, LooksAtOneVariableOnly) {
  set("LANG", "it");
  set("LC_ALL", "es");
  EXPECT_THAT(languageFolderNames(), ElementsAre("es", "en", "English"));
}

TEST_F(LanguageChoice, TakesAnEmptyVariableForAMissingOne) {
  set("LANGUAGE", "");
  set("LC_ALL", "");
  set("LANG", "it");
  EXPECT_THAT(languageFolderNames(), ElementsAre("it", "en", "English"));
}

TEST_F(LanguageChoice, TakesTheWholeListOfLanguages) {
  set("LANGUAGE", "sv:nb_NO::de");
  EXPECT_THAT(languageFolderNames(), ElementsAre("sv", "nb_NO", "nb-NO", "nb", "de", "en", "English"));
}

TEST_F(LanguageChoice, TakesThePlainLocalesForEnglish) {
  for (const char* locale : {"C", "POSIX", "C.UTF-8"}) {
    set("LC_ALL", locale);
    EXPECT_THAT(languageFolderNames(), ElementsAre("en", "English", "en", "English")) << locale;
  }
}

TEST_F(LanguageChoice, TriesEnglishByItsFullNameToo) {
  set("LANGUAGE", "en_GB:de");
  EXPECT_THAT(languageFolderNames(), ElementsAre("en_GB", "en-GB", "en", "English", "de", "en", "English"));
}

TEST_F(LanguageChoice, DerivesTheChineseScriptFromTheCountry) {
  set("LANG", "zh_CN.UTF-8");
  EXPECT_THAT(languageFolderNames(), ElementsAre("zh_CN", "zh-CN", "zh-Hans", "zh", "en", "English"));
  set("LANG", "zh_TW.UTF-8");
  EXPECT_THAT(languageFolderNames(), ElementsAre("zh_TW", "zh-TW", "zh-Hant", "zh", "en", "English"));
}

TEST_F(LanguageChoice, NeverLeavesTheBundle) {
  for (const char* locale :
       {"../../Other.bundle", "/etc", "..", "a/b", "x y", ":", "::", ".", "@", "_", "\xFF"}) {
    set("LANGUAGE", locale);
    for (const std::string& name : languageFolderNames()) {
      EXPECT_EQ(name.find_first_of("./ \xFF"), std::string::npos) << locale;
    }
    EXPECT_THAT(languageFolderNames(), testing::Contains("en")) << locale;
  }
}

// ---- The table that a bundle has ----

TEST_F(LanguageChoice, FindsTheUsersLanguage) {
  addLanguage("en.lproj");
  addLanguage("de.lproj");
  set("LANG", "de_AT.UTF-8");
  EXPECT_EQ(chosen(), "de.lproj");
}

TEST_F(LanguageChoice, PrefersTheCountrysOwnTable) {
  addLanguage("pt.lproj");
  addLanguage("pt-BR.lproj");
  set("LANG", "pt_BR.UTF-8");
  EXPECT_EQ(chosen(), "pt-BR.lproj");
  addLanguage("pt_BR.lproj");
  EXPECT_EQ(chosen(), "pt_BR.lproj");
}

TEST_F(LanguageChoice, TakesTheFirstOfTheUsersLanguagesThatTheBundleHas) {
  addLanguage("en.lproj");
  addLanguage("fr.lproj");
  addLanguage("de.lproj");
  set("LANGUAGE", "sv:fr_CA:de");
  EXPECT_EQ(chosen(), "fr.lproj");
}

TEST_F(LanguageChoice, FindsTheChineseScripts) {
  addLanguage("en.lproj");
  addLanguage("zh-Hans.lproj");
  addLanguage("zh-Hant.lproj");
  set("LANG", "zh_CN.UTF-8");
  EXPECT_EQ(chosen(), "zh-Hans.lproj");
  set("LANG", "zh_TW.UTF-8");
  EXPECT_EQ(chosen(), "zh-Hant.lproj");
}

TEST_F(LanguageChoice, FallsBackToEnglish) {
  addLanguage("de.lproj");
  addLanguage("English.lproj");
  set("LANG", "ja_JP.UTF-8");
  EXPECT_EQ(chosen(), "English.lproj");
  addLanguage("en.lproj");
  EXPECT_EQ(chosen(), "en.lproj");
}

TEST_F(LanguageChoice, FallsBackToTheFirstLanguageThereIs) {
  addLanguage("fr.lproj");
  addLanguage("de.lproj");
  addLanguage("it.lproj");
  set("LANG", "ja_JP.UTF-8");
  EXPECT_EQ(chosen(), "de.lproj");
}

TEST_F(LanguageChoice, PassesOverALanguageWithoutATable) {
  addLanguage("en.lproj");
  makeFolder(kContents + "/Resources/de.lproj");
  makeFolder(kContents + "/Resources/fr.lproj/Localizable.strings");
  set("LANGUAGE", "de:fr");
  EXPECT_EQ(chosen(), "en.lproj");
}

// Opening it would wait for a writer for ever.
TEST_F(LanguageChoice, PassesOverATableThatIsAPipe) {
  addLanguage("en.lproj");
  makeFolder(kContents + "/Resources/de.lproj");
  ASSERT_EQ(mkfifo((kContents + "/Resources/de.lproj/Localizable.strings").c_str(), 0644), 0);
  set("LANG", "de");
  EXPECT_EQ(chosen(), "en.lproj");
}

TEST_F(LanguageChoice, ReadsATableLongerThanOnePiece) {
  std::string text;
  for (int number = 0; number < 2000; ++number) {
    text += "\"key " + std::to_string(number) + "\" = \"text " + std::to_string(number) + "\";\n";
  }
  writeFile(kContents + "/Resources/en.lproj/Localizable.strings", text);
  const StringTable table = loadBundleStrings(kContents);
  EXPECT_EQ(table.entries().size(), 2000U);
  EXPECT_EQ(table.text("key 1999"), "text 1999");
}

TEST_F(LanguageChoice, GivesAnEmptyTableWhereTheBundleHasNone) {
  EXPECT_TRUE(loadBundleStrings("/tmp/Not there/Contents").entries().empty());
  makeFolder(kContents + "/Resources");
  EXPECT_TRUE(loadBundleStrings(kContents).entries().empty());
  writeFile(kContents + "/Resources/Localizable.strings", "\"a\" = \"1\";");
  EXPECT_TRUE(loadBundleStrings(kContents).entries().empty());
}

}  // namespace tavenhall::test
