#include "tests/install/case_files.h"
#include "tests/install/json_installer.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ostream>
#include <string>

// The page's texts come in the user's language, from the bundle that was built.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::HasSubstr;

struct Language {
  const char* name;
  const char* locale;
  const char* button;
  const char* findError;
  const char* installError;
};

void PrintTo(const Language& language, std::ostream* out) { *out << language.name; }

constexpr Language kLanguages[] = {
    {"English", "en_GB.UTF-8", "OK",
     "The folder for the Tessaphon data was not found. Please install Tessaphon first, then run this installer "
     "again.",
     "The installation of the Tessaphon data has not finished."},
    {"German", "de_AT.UTF-8", "OK",
     "Der Ordner für die Daten von Tessaphon wurde nicht gefunden. Bitte installieren Sie zuerst Tessaphon und "
     "starten Sie dann dieses Installationsprogramm erneut.",
     "Die Installation der Daten von Tessaphon ist noch nicht abgeschlossen."},
    {"French", "fr_CA.UTF-8", "OK",
     "Le dossier des données de Tessaphon est introuvable. Installez d’abord Tessaphon, puis relancez ce "
     "programme "
     "d’installation.",
     "L’installation des données de Tessaphon n’est pas terminée."},
    {"Spanish", "es_MX.UTF-8", "Aceptar",
     "No se ha encontrado la carpeta de los datos de Tessaphon. Instale primero Tessaphon y vuelva a ejecutar "
     "este "
     "instalador.",
     "La instalación de los datos de Tessaphon no ha finalizado."},
    {"Italian", "it_IT.UTF-8", "OK",
     "La cartella dei dati di Tessaphon non è stata trovata. Installa prima Tessaphon, poi esegui di nuovo "
     "questo "
     "programma di installazione.",
     "L’installazione dei dati di Tessaphon non è terminata."},
    {"Japanese", "ja_JP.UTF-8", "OK",
     "Tessaphonのデータ用フォルダが見つかりません。先にTessaphonをインストールしてから、このインストーラをもう"
     "一度"
     "実行してください。",
     "Tessaphonのデータのインストールはまだ完了していません。"},
    {"SimplifiedChinese", "zh_CN.UTF-8", "好",
     "未找到 Tessaphon 数据的文件夹。请先安装 Tessaphon，然后再次运行此安装器。",
     "Tessaphon 数据尚未安装完成。"},
    {"NoneOfTheBundlesIsEnglish", "nl_NL.UTF-8", "OK",
     "The folder for the Tessaphon data was not found. Please install Tessaphon first, then run this installer "
     "again.",
     "The installation of the Tessaphon data has not finished."},
};

class PageLanguage : public testing::TestWithParam<Language> {};

TEST_P(PageLanguage, IsTheUsers) {
  writeFile(std::string(kSet) + "/Installer.pkg", "");
  JsonInstaller installer({"--package", kPackage}, {{"LANGUAGE", ""}, {"LC_ALL", GetParam().locale}});

  installer.send({kEnter});
  const auto onEntering = nlohmann::json::parse(installer.await("sheet"));
  installer.send({kForward});
  const auto onLeaving = nlohmann::json::parse(installer.await("sheet"));

  EXPECT_EQ(onEntering.at("message"), GetParam().findError);
  EXPECT_EQ(onEntering.at("button"), GetParam().button);
  EXPECT_EQ(onLeaving.at("message"), GetParam().installError);
  EXPECT_EQ(onLeaving.at("button"), GetParam().button);
  EXPECT_EQ(installer.finish(), 0);
}

INSTANTIATE_TEST_SUITE_P(Shipped, PageLanguage, testing::ValuesIn(kLanguages),
                         [](const auto& tested) { return tested.param.name; });

// The page's own line names the folder that it looked for, so this shows both of a product's names.
TEST(PageOfAnotherProduct, KeepsItsNamesInEveryLanguage) {
  writeFile(std::string(kSet) + "/Installer.pkg", "");
  JsonInstaller installer({"--package", kPackage, "--product", "Lumaweave"}, {{"LANGUAGE", "ja"}});

  installer.send({kEnter});
  const auto sheet = nlohmann::json::parse(installer.await("sheet"));

  EXPECT_EQ(sheet.at("message"),
            "Lumaweaveのデータ用フォルダが見つかりません。先にLumaweaveをインストールしてから、このインストーラ"
            "をもう一度"
            "実行してください。");
  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(logMessages(), Contains(HasSubstr("Tavenhall/DOVA")));
}

}  // namespace
}  // namespace tavenhall::test
