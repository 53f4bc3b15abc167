#include "host/storyboard/storyboard.h"
#include "tests/terminal/rendered.h"

#include <clocale>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The screens of an install, and the file that shows them.
namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

event::Alert discAlert() {
  event::Alert alert;
  alert.message = "Ready for next volume";
  alert.informative = "Please insert Tessaphon B";
  alert.buttons = {"OK"};
  alert.number = 1;
  return alert;
}

event::Sheet failure(const std::string& text) {
  event::Sheet sheet;
  sheet.button = "OK";
  sheet.message = text;
  return sheet;
}

// A page with a disc, two failures of one kind and one of another.
std::vector<StoryEvent> someInstall() {
  event::CopyEnd copied;
  copied.source = "/Volumes/Tessaphon B/TANVO";
  copied.filesDone = 3;
  event::Summary summary;
  summary.status = 1;
  summary.filesDone = 3;
  return {{0.0, event::Title{"Installing <Data>"}},
          {0.1, event::Entered{}},
          {0.2, event::Instructions{"Now installing to\n\n/Users/you"}},
          {0.3, event::ProgressMaximum{1000.0}},
          {0.4, discAlert()},
          {5.0, event::Answered{1, 1000}},
          {6.0, event::CopyBegin{}},
          {7.0, event::Status{"Installing... Keys"}},
          {8.0, failure("Failed to copy file.")},
          {8.1, failure("Failed to copy file.")},
          {8.2, failure("Failed to open input file.")},
          {9.0, event::ProgressValue{500.0, {}}},
          {9.5, copied},
          {9.6, event::NextEnabled{true}},
          {10.0, summary}};
}

std::vector<StoryScreen> someScreens() {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  Introduction introduction;
  introduction.productName = "Tessaphon";
  introduction.pageTitle = "Installing <Data>";
  return screensOf(introduction, someInstall());
}

TEST(Story, HasAScreenForWhateverTheUserSees) {
  std::vector<std::string> captions;
  for (const StoryScreen& screen : someScreens()) {
    captions.push_back(screen.caption);
  }
  EXPECT_THAT(captions, ElementsAre("Before it begins", "The page is entered", "An alert", "A failure",
                                    "A failure", "At the end of TANVO", "The page can be left", "Afterwards"));
}

TEST(Story, ShowsTheWindowAndTheTerminalOfThatMoment) {
  const auto screens = someScreens();
  EXPECT_FALSE(screens[0].window);
  const StoryWindow& alert = screens[2].window.value();
  EXPECT_EQ(alert.title, "Installing <Data>");
  EXPECT_EQ(alert.text, "Now installing to\n\n/Users/you");
  EXPECT_EQ(alert.prompt->informative, "Please insert Tessaphon B");
  EXPECT_THAT(renderedText(screens[2].terminal, kStoryTerminal), HasSubstr("Please insert Tessaphon B"));

  const StoryWindow& copied = screens[5].window.value();
  EXPECT_FALSE(copied.prompt);
  EXPECT_EQ(copied.status, "Installing... Keys");
  EXPECT_EQ(copied.bar, 0.5);
  EXPECT_FALSE(copied.canContinue);
  EXPECT_TRUE(screens[6].window->canContinue);
  EXPECT_THAT(renderedText(screens[5].terminal, kStoryTerminal), Not(HasSubstr("Failed to open input file.")))
      << "a failure's window is closed again";
  EXPECT_FALSE(screens[7].window);
  EXPECT_THAT(renderedText(screens[7].terminal, kStoryTerminal), HasSubstr("Summary"));
}

TEST(Storyboard, EscapesWhateverASetSays) {
  StoryLanguage language;
  language.code = "en";
  language.name = "English";
  language.screens = someScreens();
  language.report = "</pre><script>alert(1)</script>";
  const std::string html = storyboardHtml({"A \"set\" <b>", "x & y", {language}});
  EXPECT_THAT(html, Not(HasSubstr("<script")));
  EXPECT_THAT(html, HasSubstr("<title>A &quot;set&quot; &lt;b&gt;</title>"));
  EXPECT_THAT(html, HasSubstr("<div class=\"title\">Installing &lt;Data&gt;</div>"));
  EXPECT_THAT(html, HasSubstr("&lt;/pre&gt;&lt;script&gt;"));
  EXPECT_THAT(html, HasSubstr("<div style=\"width:50%\">"));
  for (const char* outside : {"http:", "https:", "src=", "@import", "url("}) {
    EXPECT_THAT(html, Not(HasSubstr(outside)));
  }
}

}  // namespace
}  // namespace tavenhall::test
