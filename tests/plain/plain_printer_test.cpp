#include "host/plain/plain_printer.h"

#include "host/base/text.h"
#include "host/protocol/json_form.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tavenhall::test {
namespace {

using nlohmann::ordered_json;
using Lines = std::vector<std::string>;

// A printer whose clock stands where the test puts it.
class Printer : public testing::Test {
 protected:
  void show(const ordered_json& object) {
    if (const auto event = decodeEvent(object.dump())) {
      printer.show(*event, now);
    }
  }
  void progress(double value) { show({{"event", "progress.value"}, {"value", value}}); }
  void status(const char* text) { show({{"event", "status"}, {"text", text}}); }
  void pass(int milliseconds) { now += std::chrono::milliseconds(milliseconds); }

  Lines lines;
  PlainPrinter printer{[this](std::string_view line) { lines.emplace_back(line); }};
  PlainPrinter::Clock::time_point now;
};

TEST_F(Printer, TheTitleIsALine) {
  show({{"event", "title"}, {"text", "Installing Tessaphon"}});
  EXPECT_EQ(lines, Lines{"Installing Tessaphon"});
}

TEST_F(Printer, TheInstructionsAreSetInWithTheirEmptyLines) {
  show({{"event", "instructions"}, {"text", "To:\n\n/Users/u\n"}});
  EXPECT_EQ(lines, (Lines{"  To:", "", "  /Users/u"}));
}

TEST_F(Printer, BlanksAtTheEndOfALineAreNotPrinted) {
  show({{"event", "instructions"}, {"text", "To: \n \n/Users/u \n"}});
  EXPECT_EQ(lines, (Lines{"  To:", "", "  /Users/u"}));
}

TEST_F(Printer, TheSameInstructionsAreNotSaidAgain) {
  show({{"event", "instructions"}, {"text", "a"}});
  show({{"event", "instructions"}, {"text", "a"}});
  show({{"event", "instructions"}, {"text", "b"}});
  EXPECT_EQ(lines, (Lines{"  a", "  b"}));
}

TEST_F(Printer, TheBarStartsAsNoughtToAHundred) {
  progress(50.0);
  EXPECT_EQ(lines, Lines{" 50 %"});
}

TEST_F(Printer, PercentIsThePartOfTheRangeRoundedDown) {
  show({{"event", "progress.min"}, {"value", 0.0}});
  show({{"event", "progress.max"}, {"value", 5859.375}});
  progress(5859.0);
  EXPECT_EQ(lines, Lines{" 99 %"});
}

TEST_F(Printer, AFullBarIsAHundredPercentAndAFullerOneIsNoMore) {
  show({{"event", "progress.max"}, {"value", 10.0}});
  progress(10.0);
  pass(5000);
  progress(20.0);
  EXPECT_EQ(lines, Lines{"100 %"});
}

TEST_F(Printer, ARangeOfNothingIsNoughtPercent) {
  show({{"event", "progress.max"}, {"value", 0.0}});
  progress(5.0);
  EXPECT_EQ(lines, Lines{"  0 %"});
}

TEST_F(Printer, TheStatusFollowsThePercent) {
  progress(7.0);
  pass(1000);
  status("Installing... Voices");
  EXPECT_EQ(lines, (Lines{"  7 %", "  7 %  Installing... Voices"}));
}

TEST_F(Printer, AStatusOfOneBlankIsNone) {
  status("Installing... Voices");
  status(" ");
  progress(7.0);
  EXPECT_EQ(lines, Lines{"  7 %"});
}

TEST_F(Printer, WithoutAValueOfTheBarTheStatusIsNotALine) {
  status("Installing... Voices");
  EXPECT_EQ(lines, Lines{});
}

TEST_F(Printer, ThereIsAtMostOneProgressLineASecond) {
  progress(1.0);
  for (int i = 2; i <= 99; ++i) {
    pass(10);
    progress(i);
  }
  EXPECT_EQ(lines, Lines{"  1 %"});
  pass(20);
  progress(99.0);
  EXPECT_EQ(lines, (Lines{"  1 %", " 99 %"}));
}

TEST_F(Printer, ALineThatSaysNothingNewIsLeftAway) {
  progress(1.0);
  pass(2000);
  progress(1.5);
  pass(2000);
  progress(2.0);
  EXPECT_EQ(lines, (Lines{"  1 %", "  2 %"}));
}

TEST_F(Printer, WhatWasHeldBackIsSaidBeforeAnAlert) {
  progress(1.0);
  progress(2.0);
  show({{"event", "alert"},
        {"message", "Ready"},
        {"informative", "Insert B"},
        {"buttons", {"OK", "Skip"}},
        {"style", 1}});
  EXPECT_EQ(lines, (Lines{"  1 %", "  2 %", "? Ready", "  Insert B", "  1) OK", "  2) Skip"}));
}

TEST_F(Printer, WhatWasHeldBackIsSaidBeforeASheetAndAtTheEnd) {
  progress(1.0);
  progress(2.0);
  show({{"event", "sheet"}, {"button", "OK"}, {"message", "It failed."}});
  progress(3.0);
  printer.flush();
  printer.flush();
  EXPECT_EQ(lines, (Lines{"  1 %", "  2 %", "! It failed.", "  3 %"}));
}

TEST_F(Printer, WhatWasHeldBackAndIsNoLongerTrueIsNotSaid) {
  progress(1.0);
  progress(2.0);
  progress(1.0);
  printer.flush();
  EXPECT_EQ(lines, Lines{"  1 %"});
}

TEST_F(Printer, ErrorsAreLines) {
  show({{"event", "error"}, {"message", "not understood"}});
  EXPECT_EQ(lines, Lines{"! not understood"});
}

TEST_F(Printer, WhatTheReaderNeedsNotKnowIsNoLine) {
  for (const char* event :
       {"entered", "idle", "next", "previous", "exit", "assertion", "assertion.release", "new"}) {
    show({{"event", event}});
  }
  EXPECT_EQ(lines, Lines{});
}

TEST_F(Printer, ControlCharactersAreNotPrinted) {
  show({{"event", "title"}, {"text", "a\x1b[2Jb"}});
  show({{"event", "instructions"}, {"text", "c\td\r\ne\x7f"}});
  show({{"event", "sheet"}, {"message", "f\ag"}});
  show({{"event", "alert"}, {"message", "h\bi"}, {"informative", "j\x01"}, {"buttons", {"k\x1b"}}});
  progress(0.0);
  pass(1000);
  status("Installing... \x1b]0;l");
  EXPECT_EQ(lines, (Lines{"a?[2Jb", "  c?d?", "  e?", "! f?g", "? h?i", "  j?", "  1) k?", "  0 %",
                          "  0 %  Installing... ?]0;l"}));
}

TEST(PrintableText, KeepsLettersOfEveryScriptAndLineBreaks) {
  EXPECT_EQ(printableText("Größe\n音 100 %s"), "Größe\n音 100 %s");
}

TEST(PrintableText, ReplacesNulBytes) { EXPECT_EQ(printableText(std::string_view("a\0b", 3)), "a?b"); }

TEST(PrintableText, ReplacesTheControlCharactersBehindAscii) {
  EXPECT_EQ(printableText("a\xC2\x9B"
                          "2Jb\xC2\x80\xC2\x9F"),
            "a?2Jb??");
  EXPECT_EQ(printableText("\xC2\xA0\xC3\x9B\xE2\x82\xAC"), "\xC2\xA0\xC3\x9B\xE2\x82\xAC");
}

TEST(PrintableText, ReplacesBytesThatAreNotUtf8) {
  EXPECT_EQ(printableText("Caf\xE9.db \x9B"
                          "2J \xC2"),
            "Caf\xEF\xBF\xBD.db \xEF\xBF\xBD"
            "2J \xEF\xBF\xBD");
}

TEST(PrintableLine, IsOneLineThatSteersNoTerminal) {
  EXPECT_EQ(printableLine("Größe\n\x1B[2J\xC2\x9B"
                          "2J"),
            "Größe??[2J?2J");
}

TEST(SizeText, CountsInThousands) {
  EXPECT_EQ(sizeText(0), "0 bytes");
  EXPECT_EQ(sizeText(999), "999 bytes");
  EXPECT_EQ(sizeText(1000), "1.0 kB");
  EXPECT_EQ(sizeText(22528), "22.5 kB");
  EXPECT_EQ(sizeText(999949), "999.9 kB");
  EXPECT_EQ(sizeText(999950), "1.0 MB");
  EXPECT_EQ(sizeText(209715200), "209.7 MB");
  EXPECT_EQ(sizeText(1.25e9), "1.2 GB");
  EXPECT_EQ(sizeText(5e12), "5.0 TB");
  EXPECT_EQ(sizeText(5e16), "50000.0 TB");
}

TEST(DurationText, NamesItsTwoGreatestUnits) {
  EXPECT_EQ(durationText(0.4), "0 s");
  EXPECT_EQ(durationText(12.3), "12 s");
  EXPECT_EQ(durationText(59.6), "1 min 0 s");
  EXPECT_EQ(durationText(200), "3 min 20 s");
  EXPECT_EQ(durationText(3599), "59 min 59 s");
  EXPECT_EQ(durationText(3600), "1 h 0 min");
  EXPECT_EQ(durationText(7530), "2 h 5 min");
}

}  // namespace
}  // namespace tavenhall::test
