#include "tests/install/child_program.h"
#include "tests/support/files.h"

#import <Foundation/Foundation.h>
#import <InstallerPlugins/InstallerPlugins.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The bundle as the installer finds it.
@interface NSObject (PageOfTheBundle)
- (NSString*)_localizedStringForKey:(NSString*)key;
- (BOOL)_entriesAreValid;
- (void)updateText:(id)sender;
@end

namespace tavenhall::test {
namespace {

constexpr const char* kTessaphonBundle = TAVINSTALL_BINARY_DIR "/InstallDataPane.bundle";
constexpr const char* kLumaweaveBundle = TAVINSTALL_BINARY_DIR "/InstallDataPane-Lumaweave.bundle";

NSBundle* bundleAt(const char* path) { return [NSBundle bundleWithPath:[NSString stringWithUTF8String:path]]; }

id newPaneOf(NSBundle* bundle) { return [[[bundle classNamed:@"InstallDataPane"] alloc] init]; }

using testing::ElementsAre;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
    lines.push_back(text.substr(at, text.find('\n', at) - at));
  }
  return lines;
}

std::string textOf(NSString* string) { return string == nil ? "nil" : [string UTF8String]; }

class Bundle : public testing::Test {
 protected:
  NSAutoreleasePool* pool_ = [[NSAutoreleasePool alloc] init];
};

TEST_F(Bundle, IsASectionWithItsLayoutAndItsPane) {
  NSBundle* bundle = bundleAt(kTessaphonBundle);

  ASSERT_TRUE([bundle load]);
  EXPECT_EQ(textOf(NSStringFromClass([bundle principalClass])), "InstallerSection");
  EXPECT_EQ(textOf([bundle objectForInfoDictionaryKey:@"CFBundlePackageType"]), "BNDL");
  NSString* layout = [bundle objectForInfoDictionaryKey:@"NSMainNibFile"];
  EXPECT_NE([bundle pathForResource:layout ofType:@"xib"], nil);
  EXPECT_TRUE([[bundle classNamed:@"InstallDataPane"] isSubclassOfClass:[InstallerPane class]]);
}

TEST_F(Bundle, ItsPaneAnswersBeforeItsLayoutIsLoaded) {
  setAttributes("InstallDataTitle = Klang & Co. \xE4 100 %\n");
  id pane = newPaneOf(bundleAt(kTessaphonBundle));

  EXPECT_EQ(textOf([pane title]), "Klang & Co. \xEF\xBF\xBD 100 %");
  EXPECT_FALSE([pane _entriesAreValid]);
  [pane updateText:nil];
  EXPECT_TRUE([pane shouldExitPane:InstallerDirectionBackward]);
  EXPECT_TRUE([pane nextEnabled]);
}

TEST_F(Bundle, AKeyThatItsTableDoesNotHaveIsItsOwnText) {
  id pane = newPaneOf(bundleAt(kTessaphonBundle));
  EXPECT_EQ(textOf([pane _localizedStringForKey:@"NoSuchKey"]), "NoSuchKey");
}

TEST_F(Bundle, OfAnotherProductHasThatProductsNames) {
  id pane = newPaneOf(bundleAt(kLumaweaveBundle));
  EXPECT_EQ(textOf([pane _localizedStringForKey:@"PluginName"]), "Lumaweave");
  EXPECT_EQ(textOf([pane _localizedStringForKey:@"FolderName"]), "DOVA");
}

struct Language {
  const char* code;
  const char* button;
  const char* findError;
  const char* installError;
};

void PrintTo(const Language& language, std::ostream* out) { *out << language.code; }

class BundleIn : public testing::TestWithParam<Language> {};

// In a process of its own, since the language is settled when a process starts.
TEST_P(BundleIn, TheUsersLanguageHasItsOwnTextsAndTheSameNames) {
  const Outcome texts = runThrough({TAVINSTALL_BINARY_DIR "/bin/bundle_texts"},
                                   {{"BUNDLE", kTessaphonBundle}, {"LANGUAGE", GetParam().code}});

  EXPECT_EQ(texts.status, 0) << texts.error;
  EXPECT_THAT(linesOf(texts.output), ElementsAre(GetParam().button, GetParam().findError,
                                                 GetParam().installError, "TANVO", "Tessaphon"));
}

INSTANTIATE_TEST_SUITE_P(
    Languages, BundleIn,
    testing::Values(Language{"en", "OK",
                             "The folder for the Tessaphon data was not found. Please install Tessaphon first, "
                             "then run this installer again.",
                             "The installation of the Tessaphon data has not finished."},
                    Language{"de", "OK",
                             "Der Ordner für die Daten von Tessaphon wurde nicht gefunden. Bitte installieren "
                             "Sie zuerst Tessaphon und starten Sie dann dieses Installationsprogramm erneut.",
                             "Die Installation der Daten von Tessaphon ist noch nicht abgeschlossen."},
                    Language{"fr", "OK",
                             "Le dossier des données de Tessaphon est introuvable. Installez d’abord "
                             "Tessaphon, puis relancez ce programme d’installation.",
                             "L’installation des données de Tessaphon n’est pas terminée."},
                    Language{"es", "Aceptar",
                             "No se ha encontrado la carpeta de los datos de Tessaphon. Instale primero "
                             "Tessaphon y vuelva a ejecutar este instalador.",
                             "La instalación de los datos de Tessaphon no ha finalizado."},
                    Language{"it", "OK",
                             "La cartella dei dati di Tessaphon non è stata trovata. Installa prima Tessaphon, "
                             "poi esegui di nuovo questo programma di installazione.",
                             "L’installazione dei dati di Tessaphon non è terminata."},
                    Language{"ja", "OK",
                             "Tessaphonのデータ用フォルダが見つかりません。先にTessaphonをインストールしてから"
                             "、このインストーラをもう一度実行してください。",
                             "Tessaphonのデータのインストールはまだ完了していません。"},
                    Language{"zh_CN", "好",
                             "未找到 Tessaphon 数据的文件夹。请先安装 Tessaphon，然后再次运行此安装器。",
                             "Tessaphon 数据尚未安装完成。"}),
    [](const auto& language) {
      std::string name = language.param.code;
      std::erase(name, '_');
      return name;
    });

}  // namespace
}  // namespace tavenhall::test
