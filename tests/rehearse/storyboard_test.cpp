#include "tests/rehearse/rehearsals.h"

#include <csignal>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// The storyboard of a rehearsal, as a browser shows it.
namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kBoard = "/tmp/board.html";

Outcome makeBoard(const std::string& set, const std::vector<std::string>& more = {}) {
  std::vector<std::string> command{kTavinstall, "rehearse", set, "--storyboard", kBoard};
  command.insert(command.end(), more.begin(), more.end());
  return runThrough(command);
}

// What a script finds in the file that is opened after it: written into the title, which the browser prints.
constexpr const char* kProbe = R"js(
<script>
const shown = [...document.querySelectorAll('.story')].filter((story) => story.getClientRects().length > 0);
const story = shown[0];
const inside = (inner, outer) => inner.left >= outer.left - 1 && inner.right <= outer.right + 1 &&
    inner.top >= outer.top - 1 && inner.bottom <= outer.bottom + 1;
const all = (selector) => [...story.querySelectorAll(selector)];
const spills = (selector, outer) => all(selector).filter((element) =>
    !inside(element.getBoundingClientRect(), element.closest(outer).getBoundingClientRect())).length;
document.title = JSON.stringify({
  shown: shown.map((story) => story.lang),
  screens: all('figcaption').map((caption) => caption.textContent.replace(/^\d+\. | · .*$/g, '')),
  windows: all('.window').length,
  terminals: all('.terminal').length,
  rows: all('.terminal')[0].getBoundingClientRect().height / parseFloat(getComputedStyle(all('.terminal')[0]).lineHeight),
  spilledRuns: spills('.terminal span', '.terminal'),
  spilledParts: spills('.pane, .buttons, .prompt, .title', '.window'),
  width: document.documentElement.scrollWidth,
  paper: getComputedStyle(document.body).backgroundColor,
  prompts: all('.prompt strong').map((message) => message.textContent),
});
</script>
)js";

bool hasBrowser() { return runThrough({"sh", "-c", "command -v chromium"}).status == 0; }

nlohmann::json seenInBrowser(const std::string& html, const std::vector<std::string>& options = {}) {
  writeFile("/tmp/probed.html", html + kProbe);
  std::vector<std::string> command{"env",
                                   "HOME=/tmp/browser",
                                   "chromium",
                                   "--headless=new",
                                   "--no-sandbox",
                                   "--disable-gpu",
                                   "--user-data-dir=/tmp/browser",
                                   "--window-size=1600,1200",
                                   "--dump-dom"};
  command.insert(command.end(), options.begin(), options.end());
  command.emplace_back("file:///tmp/probed.html");
  const std::string dom = runThrough(command).output;
  const std::size_t start = dom.find("<title>") + 7;
  std::string title = dom.substr(start, dom.find("</title>") - start);
  for (std::size_t at = title.find("&amp;"); at != std::string::npos; at = title.find("&amp;", at + 1)) {
    title.replace(at, 5, "&");
  }
  auto seen = nlohmann::json::parse(title, nullptr, false);
  EXPECT_TRUE(seen.is_object()) << dom.substr(0, 400);
  return seen.is_object() ? seen : nlohmann::json::object();
}

void expectReadable(const nlohmann::json& seen) {
  EXPECT_NEAR(seen["rows"].get<double>(), 24.0, 0.01);
  EXPECT_EQ(seen["spilledRuns"], 0);
  EXPECT_EQ(seen["spilledParts"], 0);
  EXPECT_LE(seen["width"].get<int>(), 1600);
  EXPECT_EQ(seen["terminals"], seen["screens"].size());
}

class SampleStoryboards : public testing::TestWithParam<const char*> {};

TEST_P(SampleStoryboards, AreReadableInABrowser) {
  const std::string name = GetParam();
  ASSERT_EQ(runThrough({TAVINSTALL_SOURCE_DIR "/scripts/samples", "/tmp/sets", name}).status, 0);
  const Outcome made = makeBoard("/tmp/sets/" + name, {"--language", "en", "--language", "de"});
  EXPECT_EQ(made.status, 0) << made.error;
  EXPECT_THAT(made.output,
              HasSubstr("English: Rehearsal passed: everything was installed, no problems found.\nDeutsch: "));
  const std::string html = readFile(kBoard);
  EXPECT_THAT(html, HasSubstr("No problems found."));
  if (!hasBrowser()) {
    GTEST_SKIP() << "chromium is not installed";
  }
  const auto seen = seenInBrowser(html);
  EXPECT_EQ(seen["shown"], nlohmann::json({"en"}));
  EXPECT_GE(seen["windows"].get<int>(), 3);
  expectReadable(seen);
}

INSTANTIATE_TEST_SUITE_P(Each, SampleStoryboards,
                         testing::Values("data-update", "two-discs", "download", "product-update"),
                         [](const testing::TestParamInfo<const char*>& test) {
                           std::string name = test.param;
                           std::erase(name, '-');
                           return name;
                         });

TEST(RehearsalStoryboard, ShowsLongTextsCutFailuresAndTheOtherLanguage) {
  makeDownloadSet("Mode = Downloaded\nTotalSizeMillionsBytes = 1\nInstallDataTitle = " + std::string(300, 'T') +
                  "\nInstallingData = " + std::string(1500, 'x') + " <b>%s</b>\n");
  writeFile(inSet("rehearsal.json"), R"({"product": "Tessaphon"})");
  std::filesystem::create_symlink("gone", inSet("TANVO/broken.db"));
  const Outcome made = makeBoard(kSetFolder, {"--language", "en", "--language", "ja"});
  EXPECT_EQ(made.status, 1);
  EXPECT_THAT(made.output, HasSubstr("English: Rehearsal failed.\n"));
  EXPECT_THAT(made.output, testing::EndsWith("Written: /tmp/board.html\n"));
  std::string html = readFile(kBoard);
  EXPECT_THAT(html, HasSubstr("[text-missing]"));
  EXPECT_THAT(html, HasSubstr("Step 1 finished."));
  if (!hasBrowser()) {
    GTEST_SKIP() << "chromium is not installed";
  }
  const auto english = seenInBrowser(html);
  expectReadable(english);
  EXPECT_THAT(english["screens"].get<std::vector<std::string>>(), testing::Contains("A failure"));
  EXPECT_THAT(english["prompts"].get<std::vector<std::string>>(),
              testing::Contains(HasSubstr("Failed to open input file.")));
  EXPECT_EQ(english["paper"], "rgb(255, 255, 255)");
  EXPECT_NE(seenInBrowser(html, {"--blink-settings=preferredColorScheme=0"})["paper"], "rgb(255, 255, 255)");

  // The tab of another language, as a click selects it.
  const std::string first = "id=\"language-en\" checked";
  ASSERT_NE(html.find(first), std::string::npos);
  html.replace(html.find(first), first.size(), "id=\"language-en\"");
  const std::string second = "id=\"language-ja\"";
  html.replace(html.find(second), second.size(), second + " checked");
  const auto japanese = seenInBrowser(html);
  EXPECT_EQ(japanese["shown"], nlohmann::json({"ja"}));
  EXPECT_EQ(japanese["screens"].size(), english["screens"].size());
  EXPECT_NE(japanese["screens"], english["screens"]);
}

TEST(RehearsalStoryboard, StoppedLeavesNothing) {
  makeDiscSet();  // its rehearsal takes the page's waits
  ChildProgram program({kTavinstall, "rehearse", kSetFolder, "--product", "Lumaweave", "--storyboard", kBoard});
  ASSERT_TRUE(comesTrue([&program] { return descendantsOf(program.pid()).size() > 7; }));
  const std::vector<pid_t> processes = descendantsOf(program.pid());
  ASSERT_EQ(kill(program.pid(), SIGINT), 0);
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_EQ(program.standardError(), "tavinstall: the rehearsal was stopped; there is no report\n");
  EXPECT_FALSE(std::filesystem::exists(kBoard));
  expectNothingLeft(processes);
}

TEST(RehearsalStoryboard, WithoutARehearsalThereIsNone) {
  makeDownloadSet();
  std::filesystem::create_symlink("/etc", inSet("TANVO/outside"));
  const Outcome refused = makeBoard(kSetFolder, {"--language", "de"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.error, HasSubstr("tavinstall: "));
  EXPECT_THAT(refused.error, Not(HasSubstr("tavinstall: tavinstall: ")));
  EXPECT_FALSE(std::filesystem::exists(kBoard));
  EXPECT_EQ(makeBoard(kSetFolder, {"--ui", "plain"}).status, 2);
  EXPECT_EQ(runThrough({kTavinstall, "rehearse", kSetFolder, "--language", "de"}).status, 2);
}

}  // namespace
}  // namespace tavenhall::test
