#include "tests/check/mistakes.h"
#include "tests/rehearse/rehearsals.h"

#include <deque>
#include <filesystem>
#include <memory>
#include <sys/stat.h>

// What breaks an installation is an error of the check, and what does not is none.
namespace tavenhall::test {
namespace {

TEST(CheckAndRehearse, AgreeOnWhatThePageCannotCopy) {
  struct Change {
    const char* name;
    void (*make)();
  };
  const Change changes[] = {
      {"a data folder with a digit", [] { std::filesystem::rename(inSet("TANVO"), inSet("TANV0")); }},
      {"a broken link", [] { std::filesystem::create_symlink("gone", inSet("TANVO/broken.db")); }},
      {"a link to a folder", [] { std::filesystem::create_symlink("Tessaphon", inSet("TANVO/again")); }},
      {"a pipe", [] { ASSERT_EQ(mkfifo(inSet("TANVO/pipe").c_str(), 0600), 0); }},
      {"a hidden file", [] { writeFile(inSet("TANVO/.hidden"), "x"); }},
      {"a wrong size",
       [] {
         writeFile(inSet("Package/.InstallationAttributes.dat"),
                   "Mode = Downloaded\nTotalSizeMillionsBytes = 500\n");
       }},
      {"an unknown key",
       [] { writeFile(inSet("Package/.InstallationAttributes.dat"), kDownloadLines + "Publisher = X\n"); }},
      {"quotation marks",
       [] {
         writeFile(inSet("Package/.InstallationAttributes.dat"), kDownloadLines + "PreparationTitle = \"X\"\n");
       }},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.name);
    std::filesystem::remove_all(kSetFolder);
    makeDownloadSet();
    writeFile(inSet("rehearsal.json"), R"({"product": "Tessaphon"})");
    change.make();
    const Outcome outcome = rehearse();
    ASSERT_NE(outcome.status, 2) << outcome.error;
    expectCheckAgrees(kSetFolder, report());
  }
}

struct Running {
  const Mistake& mistake;
  std::string folder;  // of the set and the report
  std::unique_ptr<ChildProgram> program;
};

// Waits for the rehearsal, and compares its report with a check.
void expectAgreement(const Running& running) {
  SCOPED_TRACE(running.mistake.title);
  const std::string said = running.program->readAll();
  ASSERT_NE(running.program->waitForEnd(), 2) << said << running.program->standardError();
  expectCheckAgrees(running.folder + "/Installer",
                    nlohmann::json::parse(readFile(running.folder + "/report.json")),
                    {"--product", productOf(running.mistake)});
}

// A rehearsal with discs mostly waits, as the page does for them; so there are many at a time.
TEST(CheckAndRehearse, AgreeOnEverySetOfTheGallery) {
  std::deque<Running> running;
  for (const Mistake& mistake : allMistakes()) {
    makeSetWith(mistake);
    const std::string folder = "/Users/tester/" + std::to_string(&mistake - allMistakes().data());
    std::filesystem::create_directory(folder);
    std::filesystem::rename(kSetFolder, folder + "/Installer");
    running.push_back({mistake, folder,
                       std::make_unique<ChildProgram>(std::vector<std::string>{
                           kTavinstall, "rehearse", folder + "/Installer", "--product", productOf(mistake),
                           "--ui", "quiet", "--report", folder + "/report.json"})});
    if (running.size() == 16) {
      expectAgreement(running.front());
      running.pop_front();
    }
  }
  for (const Running& last : running) {
    expectAgreement(last);
  }
}

}  // namespace
}  // namespace tavenhall::test
