#include "host/terminal/page_model.h"

#include "tests/terminal/page_driver.h"

#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string stepSigns(const PageModel& page) {
  std::string signs;
  for (const Step& step : page.steps()) {
    signs += step.state == StepState::done      ? '+'
             : step.state == StepState::current ? '>'
             : step.state == StepState::failed  ? 'x'
                                                : '.';
  }
  return signs;
}

bool isEnabled(const PageModel& page, const std::string& label) {
  for (const PageButton& button : page.buttons()) {
    if (button.label == label) {
      return button.isEnabled;
    }
  }
  ADD_FAILURE() << "no button " << label;
  return false;
}

TEST(PageModel, ContinueOnTheFirstPageEntersThePage) {
  PageDriver driver;
  EXPECT_EQ(stepSigns(driver.page), ">...");
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("enter"));
  EXPECT_EQ(driver.page.stage(), PageModel::Stage::page);
  EXPECT_EQ(stepSigns(driver.page), "++>.");
}

TEST(PageModel, ThePagesOwnTitleIsAStepAndTheHeading) {
  PageDriver driver;
  driver.receive("{'event':'title','text':'Installing DOVA'}");
  driver.enter();
  EXPECT_EQ(driver.page.steps()[2].title, "Installing DOVA");
  EXPECT_EQ(driver.page.heading().text, "Installing DOVA");
}

TEST(PageModel, EnablesContinueWithThePage) {
  PageDriver driver;
  driver.enter();
  EXPECT_FALSE(isEnabled(driver.page, "Continue"));
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), IsEmpty());
  driver.receive("{'event':'next','enabled':true}");
  EXPECT_TRUE(isEnabled(driver.page, "Continue"));
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("forward"));
}

TEST(PageModel, AnAllowedExitForwardsQuitsTheEngine) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'next','enabled':true}");
  driver.receive("{'event':'idle'}");
  driver.act(Action::press);
  driver.receive("{'event':'exit','direction':0,'allowed':true}");
  EXPECT_THAT(driver.requests(), ElementsAre("forward", "quit"));
  EXPECT_FALSE(isEnabled(driver.page, "Continue"));
}

TEST(PageModel, ContinueIsPressedOnlyOnceWhileThePageIsAsked) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'next','enabled':true}");
  driver.act(Action::press);
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("forward"));
}

TEST(PageModel, EnablesGoBackWithThePageAndReturnsToTheFirstPage) {
  PageDriver driver;
  EXPECT_FALSE(isEnabled(driver.page, "Go Back"));
  driver.enter();
  driver.receive("{'event':'previous','enabled':true}");
  driver.press('g');
  driver.receive("{'event':'exit','direction':1,'allowed':true}");
  EXPECT_THAT(driver.requests(), ElementsAre("back"));
  EXPECT_EQ(driver.page.stage(), PageModel::Stage::introduction);
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("enter"));
}

TEST(PageModel, ARefusedExitStaysOnThePageUntilItsSheetIsRead) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'next','enabled':true}");
  driver.receive("{'event':'idle'}");
  driver.act(Action::press);
  driver.receive("{'event':'next','enabled':false}");
  driver.receive("{'event':'sheet','button':'OK','message':'The installation has not finished.'}");
  driver.receive("{'event':'exit','direction':0,'allowed':false}");
  EXPECT_THAT(driver.requests(), ElementsAre("forward"));
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("quit"));
}

TEST(PageModel, APageThatCanDoNothingAnyMoreGoesToTheLastPage) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'sheet','button':'OK','message':'The folder was not found.'}");
  driver.receive("{'event':'entered'}");
  driver.receive("{'event':'idle'}");
  EXPECT_THAT(driver.requests(), IsEmpty());
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("quit"));
}

TEST(PageModel, TheStatusOfOneBlankIsAnEmptyLine) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'status','text':'Installing... Keyboards'}");
  EXPECT_EQ(driver.page.statusLine().text, "Installing... Keyboards");
  driver.receive("{'event':'status','text':' '}");
  EXPECT_EQ(driver.page.statusLine().text, "");
}

TEST(PageModel, ThePagesTextIsWrapped) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'instructions','text':'Now installing the library.'}");
  ASSERT_EQ(driver.page.textLines(16).size(), 2U);
  EXPECT_EQ(driver.page.textLines(16)[0][0].text, "Now installing");
}

TEST(PageModel, ANewTextIsShownFromItsBeginning) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'instructions','text':'one'}");
  driver.act(Action::lineDown);
  driver.act(Action::lineDown);
  EXPECT_EQ(driver.page.textScroll(), 2);
  driver.receive("{'event':'instructions','text':'one'}");
  EXPECT_EQ(driver.page.textScroll(), 2);
  driver.receive("{'event':'instructions','text':'two'}");
  EXPECT_EQ(driver.page.textScroll(), 0);
}

TEST(PageModel, ScrollingEndsAtBothEnds) {
  PageDriver driver;
  driver.act(Action::lineUp);
  EXPECT_EQ(driver.page.textScroll(), 0);
  driver.act(Action::pageDown);
  EXPECT_EQ(driver.page.textScroll(), 4);
  driver.act(Action::toEnd);
  EXPECT_EQ(driver.page.textScroll(), 20);
  driver.act(Action::pageDown);
  EXPECT_EQ(driver.page.textScroll(), 20);
  driver.act(Action::toStart);
  EXPECT_EQ(driver.page.textScroll(), 0);
}

TEST(PageModel, TheClockStartsWithTheInstall) {
  PageDriver driver;
  driver.at(100);
  EXPECT_FALSE(driver.page.meter().isRunning());
  driver.enter();
  driver.at(130);
  EXPECT_EQ(driver.page.meter().passed(driver.now()).count(), 30);
}

// ---- Room ----

Introduction withLittleRoom() {
  Introduction introduction = PageDriver::plainIntroduction();
  introduction.freeBytes = 300000000;
  return introduction;
}

TEST(PageModel, TooLittleRoomIsAskedAboutBeforeThePageIsEntered) {
  PageDriver driver(withLittleRoom());
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), IsEmpty());
  EXPECT_THAT(
      driver.windowTexts(),
      ElementsAre(
          "There may not be enough space.", "The data needs 2.0 GB; the disk has 300.0 MB free.",
          "Files would then be missing or truncated. Data that is replaced needs no additional space."));
}

TEST(PageModel, EnterCancelsWhenThereIsTooLittleRoom) {
  PageDriver driver(withLittleRoom());
  driver.act(Action::press);
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), IsEmpty());
  EXPECT_EQ(driver.page.stage(), PageModel::Stage::introduction);
}

TEST(PageModel, WithTooLittleRoomTheUserMayInstallAllTheSame) {
  PageDriver driver(withLittleRoom());
  driver.act(Action::press);
  driver.press('i');
  EXPECT_THAT(driver.requests(), ElementsAre("enter"));
}

// ---- The end ----

RunResult success() {
  RunResult outcome;
  outcome.status = ExitStatus::success;
  outcome.hasSummary = true;
  return outcome;
}

TEST(PageModel, TheLastPageClosesByItsButton) {
  PageDriver driver;
  driver.enter();
  driver.page.end(success(), driver.now());
  EXPECT_EQ(stepSigns(driver.page), "+++>");
  EXPECT_TRUE(isEnabled(driver.page, "Close"));
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("close"));
}

TEST(PageModel, AFailedInstallIsAFailedStep) {
  PageDriver driver;
  driver.enter();
  driver.page.end(RunResult{}, driver.now());
  EXPECT_EQ(stepSigns(driver.page), "++x>");
}

TEST(PageModel, ThePagesLastTextOverAFailedInstallIsSetRight) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'sheet','button':'OK','message':'Failed to open input file.'}");
  driver.receive("{'event':'instructions','text':'Step 1 finished.'}");
  driver.receive("{'event':'next','enabled':true}");
  driver.receive("{'event':'idle'}");
  EXPECT_EQ(driver.page.statusLine().text, "Not everything was installed.");
}

TEST(PageModel, WhatCommandsSayIsKeptAndTheLatestIsANotice) {
  PageDriver driver;
  driver.page.addMessage("sudo: a password is required");
  driver.page.addMessage("");
  EXPECT_EQ(driver.page.notice(), "sudo: a password is required");
  EXPECT_THAT(driver.page.messages(), ElementsAre("sudo: a password is required"));
}

TEST(PageModel, OnlyTheLatestMessagesAreKept) {
  PageDriver driver;
  for (int i = 0; i < 1000; ++i) {
    driver.page.addMessage("message " + std::to_string(i));
  }
  EXPECT_EQ(driver.page.messages().size(), 200U);
  EXPECT_EQ(driver.page.messages().back(), "message 999");
}

// ---- Leaving ----

TEST(PageModel, LeavingIsAskedAboutAndStayingIsTheFirstButton) {
  PageDriver driver;
  driver.act(Action::leave);
  EXPECT_THAT(driver.windowTexts(), ElementsAre("Leave the installer?", "Nothing has been installed yet."));
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), IsEmpty());
  EXPECT_FALSE(driver.page.hasWindow());
}

TEST(PageModel, LeavingIsDoneWhenItIsMeant) {
  PageDriver driver;
  driver.act(Action::leave);
  driver.press('l');
  EXPECT_THAT(driver.requests(), ElementsAre("leave"));
}

TEST(PageModel, AskedToLeaveTwiceTheSecondButtonIsTheOneThatEnterPresses) {
  PageDriver driver;
  driver.act(Action::leave);
  driver.act(Action::leave);
  EXPECT_THAT(driver.requests(), IsEmpty());
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("leave"));
}

TEST(PageModel, LeavingWarnsOfAnIncompleteInstall) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'progress.max','value':2000000}");
  driver.receive("{'event':'progress.value','value':500000}");
  EXPECT_EQ(driver.page.leaveText(),
            "The installation is not finished. Leaving stops it. 512.0 MB of 2.0 GB is copied and kept in "
            "/Users/tester/Library/Application Support/Tavenhall/TANVO. The file that is being copied will be "
            "truncated. To complete it, run the installer again. It copies everything again.");
}

TEST(PageModel, WhileAQuestionWaitsNoFileIsCutShort) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'progress.max','value':2000000}");
  driver.receive("{'event':'progress.value','value':500000}");
  driver.receive(
      "{'event':'alert','message':'Next','informative':'Please insert B','buttons':['OK'],'style':1}");
  EXPECT_THAT(driver.page.leaveText(),
              HasSubstr("kept in /Users/tester/Library/Application Support/Tavenhall/TANVO."));
}

TEST(PageModel, LeavingAfterASuccessConfirmsIt) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'next','enabled':true}");
  driver.receive("{'event':'idle'}");
  EXPECT_EQ(driver.page.leaveText(), "The data is installed. Only the last page remains.");
}

TEST(PageModel, EscapeOnThePageAsksWhetherToLeave) {
  PageDriver driver;
  driver.act(Action::cancel);
  EXPECT_THAT(driver.windowTexts(), ElementsAre("Leave the installer?", "Nothing has been installed yet."));
  driver.act(Action::cancel);
  EXPECT_FALSE(driver.page.hasWindow());
}

TEST(PageModel, TheLastPageIsLeftWithoutAsking) {
  PageDriver driver;
  driver.page.end(success(), driver.now());
  driver.act(Action::leave);
  EXPECT_THAT(driver.requests(), ElementsAre("close"));
}

}  // namespace
}  // namespace tavenhall::test
