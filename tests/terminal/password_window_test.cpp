// The window in which a command of the installation asks for a password.
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/page_driver.h"
#include "tests/terminal/rendered.h"

#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kPrompt = "[sudo] password for tester:";

class PasswordWindow : public InUtf8 {
 protected:
  PasswordWindow() { driver.enter(); }

  void ask(const char* prompt = kPrompt) { driver.page.setPasswordPrompt(prompt, driver.now()); }
  void type(const std::string& text) {
    for (const char character : text) {
      driver.page.type({&character, 1});
    }
  }

  PageDriver driver;
};

TEST_F(PasswordWindow, ShowsTheCommandsPromptAndStars) {
  ask();
  type("abc");
  EXPECT_THAT(driver.windowTexts(),
              ElementsAre("A password is needed", "A command of the installation prompts:", kPrompt,
                          "***_____________________________"));
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("send password"));
  EXPECT_EQ(driver.page.typedPassword().text(), "abc");
  driver.page.clearPassword();
  EXPECT_EQ(driver.page.typedPassword().text(), "");
  EXPECT_FALSE(driver.page.hasWindow());
}

TEST_F(PasswordWindow, ALongPasswordFillsItsField) {
  ask();
  type(std::string(60, 'x'));
  EXPECT_EQ(driver.windowTexts().back(), std::string(32, '*'));
  EXPECT_EQ(driver.page.typedPassword().characters(), 60U);
}

TEST_F(PasswordWindow, NoLetterPressesAButton) {
  ask();
  driver.press('c');
  driver.press('o');
  EXPECT_THAT(driver.requests(), IsEmpty());
  EXPECT_TRUE(driver.page.takesTyping());
}

TEST_F(PasswordWindow, EscapeOnlyGoesToCancel) {
  ask();
  type("abc");
  driver.act(Action::cancel);
  EXPECT_THAT(driver.requests(), IsEmpty());
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("refuse password"));
  EXPECT_EQ(driver.page.typedPassword().text(), "");
}

TEST_F(PasswordWindow, GoesWhenTheCommandAsksNoMore) {
  ask();
  type("abc");
  driver.page.setPasswordPrompt(std::nullopt, driver.now());
  EXPECT_FALSE(driver.page.hasWindow());
  EXPECT_EQ(driver.page.typedPassword().text(), "");
  EXPECT_THAT(driver.requests(), IsEmpty());
}

TEST_F(PasswordWindow, ShowsTheCommandsMessageWithTheNextPrompt) {
  driver.page.addMessage("something of before");
  ask();
  EXPECT_EQ(driver.windowTexts()[1], "A command of the installation prompts:");
  driver.act(Action::press);
  driver.at(2);
  driver.page.addMessage("Sorry, try again.");
  ask();
  EXPECT_EQ(driver.windowTexts()[1], "Sorry, try again.");
  driver.act(Action::press);
  driver.page.addMessage("cp: something else");
  driver.at(60);
  ask();
  EXPECT_EQ(driver.windowTexts()[1], "A command of the installation prompts:");
}

TEST_F(PasswordWindow, ShowsNoRateWhileItIsOpen) {
  driver.receive("{'event':'phase','phase':'copying','volume':1,'volumes':1,'disc':'','seconds':0}");
  for (int second = 1; second <= 10; ++second) {
    driver.at(second);
    driver.receive("{'event':'progress.value','value':" + std::to_string(second * 1000) + "}");
  }
  EXPECT_TRUE(driver.page.meter().rate(driver.now()));
  ask();
  EXPECT_FALSE(driver.page.meter().rate(driver.now()));
  driver.at(100);
  driver.act(Action::press);
  EXPECT_TRUE(driver.page.meter().rate(driver.now()));
}

TEST_F(PasswordWindow, IsBelowTheLeaveWindowWhichGetsTheKeys) {
  ask();
  driver.act(Action::leave);
  EXPECT_FALSE(driver.page.takesTyping());
  driver.press('g');
  EXPECT_TRUE(driver.page.takesTyping());
}

TEST_F(PasswordWindow, ATooSmallPageReportsAWaitingPrompt) {
  ask();
  const Size small{10, 50};
  EXPECT_THAT(rowsOf(driver, small), Contains(HasSubstr("A prompt is waiting. Make this window larger")));
}

TEST_F(PasswordWindow, TheEndOfTheInstallForgetsIt) {
  ask();
  type("abc");
  driver.page.end({}, driver.now());
  EXPECT_FALSE(driver.page.hasWindow());
  EXPECT_EQ(driver.page.typedPassword().text(), "");
}

}  // namespace
}  // namespace tavenhall::test
