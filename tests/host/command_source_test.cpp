#include "host/protocol/command_source.h"

#include <array>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;

// ---- One line ----

Command commandOf(std::string_view line) { return std::get<Command>(parseCommandLine(line)); }
int answerOf(std::string_view line) { return std::get<int>(parseCommandLine(line)); }
bool isBad(std::string_view line) { return std::holds_alternative<BadLine>(parseCommandLine(line)); }

TEST(CommandLineForm, EveryCommandHasItsName) {
  EXPECT_EQ(commandOf(R"({"do":"title"})"), Command::title);
  EXPECT_EQ(commandOf(R"({"do":"enter"})"), Command::enter);
  EXPECT_EQ(commandOf(R"({"do":"forward"})"), Command::forward);
  EXPECT_EQ(commandOf(R"({"do":"back"})"), Command::back);
  EXPECT_EQ(commandOf(R"({"do":"quit"})"), Command::quit);
  EXPECT_EQ(commandOf(R"({"do":"wait"})"), Command::wait);
}

TEST(CommandLineForm, BlanksDoNotMatter) {
  EXPECT_EQ(commandOf("  { \"do\" :\t\"enter\" }  "), Command::enter);
  EXPECT_EQ(answerOf(" { \"answer\" : 1001 } \r"), 1001);
}

TEST(CommandLineForm, AnAnswerIsAWholeNumberOf32Bits) {
  EXPECT_EQ(answerOf(R"({"answer":1000})"), 1000);
  EXPECT_EQ(answerOf(R"({"answer":-1})"), -1);
  EXPECT_EQ(answerOf(R"({"answer":2147483647})"), 2147483647);
  EXPECT_TRUE(isBad(R"({"answer":2147483648})"));
  EXPECT_TRUE(isBad(R"({"answer":18446744073709551615})"));
  EXPECT_TRUE(isBad(R"({"answer":99999999999999999999})"));
  EXPECT_TRUE(isBad(R"({"answer":1000.0})"));
  EXPECT_TRUE(isBad(R"({"answer":"1000"})"));
  EXPECT_TRUE(isBad(R"({"answer":true})"));
}

TEST(CommandLineForm, NamesAreComparedExactly) {
  EXPECT_TRUE(isBad(R"({"do":"Enter"})"));
  EXPECT_TRUE(isBad(R"({"do":"enter "})"));
  EXPECT_TRUE(isBad(R"({"Do":"enter"})"));
  EXPECT_TRUE(isBad(R"({"do":""})"));
}

TEST(CommandLineForm, WhatIsNoJsonObjectIsBad) {
  for (const char* line : {"", " ", "{", "enter", "{'do':'enter'}", R"({"do":"enter"} x)",
                           R"({"do":"enter"}{})", "[]", "null", "1000", "\xEF\xBB\xBF"}) {
    EXPECT_TRUE(isBad(line)) << line;
  }
}

TEST(CommandLineForm, AnObjectWithMoreOrOtherFieldsIsBad) {
  EXPECT_TRUE(isBad(R"({"do":"enter","answer":1000})"));
  EXPECT_TRUE(isBad(R"({"do":"enter","id":7})"));
  EXPECT_TRUE(isBad(R"({"event":"enter"})"));
  EXPECT_TRUE(isBad(R"({"do":["enter"]})"));
}

TEST(CommandLineForm, AnErrorSaysWhatTheLinesAre) {
  const ParsedLine parsed = parseCommandLine("nonsense");
  EXPECT_THAT(std::get<BadLine>(parsed).message, HasSubstr(R"({"do":"enter"})"));
}

// ---- Many lines ----

// The writing end of a source's input.
class Input {
 public:
  Input() {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    readEnd_ = ends[0];
    writeEnd_ = ends[1];
  }
  ~Input() {
    close(readEnd_);
    end();
  }

  void give(std::string_view text) const {
    EXPECT_EQ(write(writeEnd_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  void end() {
    if (writeEnd_ >= 0) {
      close(writeEnd_);
      writeEnd_ = -1;
    }
  }

  [[nodiscard]] int descriptor() const { return readEnd_; }

 private:
  int readEnd_ = -1;
  int writeEnd_ = -1;
};

TEST(CommandSource, CommandsAndAnswersHaveQueuesOfTheirOwn) {
  Input input;
  CommandSource source(input.descriptor());
  input.give("{\"answer\":1}\n{\"do\":\"title\"}\n{\"answer\":2}\n{\"do\":\"enter\"}\n");
  source.read();

  EXPECT_EQ(source.next(), Command::title);
  source.drop();
  EXPECT_EQ(source.next(), Command::enter);
  source.drop();
  EXPECT_EQ(source.next(), std::nullopt);
  EXPECT_EQ(source.takeAnswer(), 1);
  EXPECT_EQ(source.takeAnswer(), 2);
  EXPECT_EQ(source.takeAnswer(), std::nullopt);
}

TEST(CommandSource, ACommandStaysUntilItIsDropped) {
  Input input;
  CommandSource source(input.descriptor());
  input.give("{\"do\":\"wait\"}\n");
  source.read();

  EXPECT_EQ(source.next(), Command::wait);
  EXPECT_EQ(source.next(), Command::wait);
}

TEST(CommandSource, ALineMayComeInPieces) {
  Input input;
  CommandSource source(input.descriptor());
  input.give("{\"do\":\"ti");
  source.read();
  EXPECT_EQ(source.next(), std::nullopt);
  input.give("tle\"}");
  source.read();
  EXPECT_EQ(source.next(), std::nullopt);
  input.give("\n{\"do\"");
  source.read();
  EXPECT_EQ(source.next(), Command::title);
  EXPECT_EQ(source.takeBadLine(), std::nullopt);
}

TEST(CommandSource, ALineMayEndInACarriageReturnAndANewline) {
  Input input;
  CommandSource source(input.descriptor());
  input.give("{\"do\":\"back\"}\r\n{\"answer\":1001}\r\n");
  source.read();

  EXPECT_EQ(source.next(), Command::back);
  EXPECT_EQ(source.takeAnswer(), 1001);
  EXPECT_EQ(source.takeBadLine(), std::nullopt);
}

TEST(CommandSource, TheLastLineNeedsNoNewline) {
  Input input;
  CommandSource source(input.descriptor());
  input.give("{\"do\":\"forward\"}");
  input.end();
  source.read();
  EXPECT_FALSE(source.isClosed());
  source.read();

  EXPECT_TRUE(source.isClosed());
  EXPECT_EQ(source.descriptor(), -1);
  EXPECT_EQ(source.next(), Command::forward);
}

TEST(CommandSource, InputThatEndsAfterANewlineHasNoFurtherLine) {
  Input input;
  CommandSource source(input.descriptor());
  input.give("{\"do\":\"forward\"}\n");
  input.end();
  source.read();
  source.read();

  EXPECT_TRUE(source.isClosed());
  EXPECT_EQ(source.takeBadLine(), std::nullopt);
}

TEST(CommandSource, BadLinesAreReportedInOrderAndSkipped) {
  Input input;
  CommandSource source(input.descriptor());
  input.give("\n{\"do\":\"enter\"}\nnonsense\n{\"do\":\"leave\"}\n");
  source.read();

  EXPECT_EQ(source.next(), Command::enter);
  EXPECT_THAT(source.takeBadLine().value(), HasSubstr("not a JSON object"));
  EXPECT_THAT(source.takeBadLine().value(), HasSubstr("not a JSON object"));
  EXPECT_THAT(source.takeBadLine().value(), HasSubstr("not understood"));
  EXPECT_EQ(source.takeBadLine(), std::nullopt);
}

TEST(CommandSource, AnEndlessLineIsOneBadLineAndWhatFollowsIsUnderstood) {
  Input input;
  CommandSource source(input.descriptor());
  const std::string piece(16384, ' ');
  for (int i = 0; i < 100; ++i) {
    input.give(piece);
    source.read();
  }
  EXPECT_EQ(source.takeBadLine(), std::nullopt) << "the line has not ended yet";
  input.give("{\"do\":\"enter\"}\n{\"do\":\"title\"}\n");
  source.read();

  EXPECT_THAT(source.takeBadLine().value(), HasSubstr("too long"));
  EXPECT_EQ(source.takeBadLine(), std::nullopt);
  EXPECT_EQ(source.next(), Command::title);
}

TEST(CommandSource, ALineOfTheGreatestLengthIsUnderstood) {
  Input input;
  CommandSource source(input.descriptor());
  const std::string command = R"({"do":"enter"})";
  const std::string line = std::string(1048576 - command.size(), ' ') + command + "\n";
  for (std::size_t at = 0; at < line.size(); at += 16384) {
    input.give(std::string_view(line).substr(at, 16384));
    source.read();
  }

  EXPECT_EQ(source.next(), Command::enter);
  EXPECT_EQ(source.takeBadLine(), std::nullopt);
}

TEST(CommandSource, WithoutInputItGivesItsCommandsAndTheSameAnswerAlways) {
  CommandSource source({Command::title, Command::enter}, 1000);

  EXPECT_TRUE(source.isClosed());
  EXPECT_EQ(source.descriptor(), -1);
  EXPECT_EQ(source.next(), Command::title);
  source.drop();
  source.add(Command::forward);
  EXPECT_EQ(source.next(), Command::enter);
  source.drop();
  EXPECT_EQ(source.next(), Command::forward);
  EXPECT_EQ(source.takeAnswer(), 1000);
  EXPECT_EQ(source.takeAnswer(), 1000);
}

}  // namespace
}  // namespace tavenhall::test
