#include "host/protocol/json_form.h"

#include "host/base/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;

struct EventLine {
  Event event;
  std::string line;  // without its newline
};

void PrintTo(const EventLine& event, std::ostream* out) { *out << event.line; }

event::Summary wholeSummary() {
  event::Summary summary;
  summary.copyingSeconds = 8.5;
  summary.waitingSeconds = 3.25;
  summary.checkingSeconds = 0.125;
  summary.hasLeft = true;
  summary.ready = 1;
  summary.mode = 2;
  summary.seconds = 14.0649;
  summary.kBytesCopied = 204800;
  summary.bytesWritten = 209715200;
  summary.filesDone = 12;
  summary.copySeconds = {6.207, 4.0};
  summary.alerts = {{{"Ready for next volume", "Insert B", {"OK", "Skip"}, 1}, 1001},
                    {{"Ready for next volume", "Insert C", {"OK"}, 1}, 0}};
  summary.sheets = {{"OK", "Failed to open input file.", ""}};
  summary.isInstalled = true;
  summary.audit.files = 11;
  summary.audit.folders = 2;
  summary.audit.bytes = 209715199;
  summary.audit.skipped = 3;
  summary.audit.failures = 1;
  summary.status = 1;
  summary.reason = "not installed: 1";
  summary.failedFiles = {{"size", "/Volumes/A/TANVO/a.db", "/T/a.db", 1, "2 of 4 bytes"}};
  summary.remaining = {{"/Volumes/B/TANVO", 2}};
  summary.facts = {"/Set/A.pkg", "Tessaphon", "Lite", "/T", 2, "/log.txt", "2026-11-23T03:18:56Z", "0.1.0"};
  return summary;
}

class EventForm : public testing::TestWithParam<EventLine> {};

TEST_P(EventForm, IsOneLineAndReadsBackTheSame) {
  EXPECT_EQ(encode(GetParam().event), GetParam().line + "\n");
  const auto decoded = decodeEvent(GetParam().line);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(encode(*decoded), GetParam().line + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    All, EventForm,
    testing::Values(
        EventLine{event::Title{"Installing Data"}, R"({"event":"title","text":"Installing Data"})"},
        EventLine{event::Entered{}, R"({"event":"entered"})"}, EventLine{event::Idle{}, R"({"event":"idle"})"},
        EventLine{event::Exit{0, true}, R"({"event":"exit","direction":0,"allowed":true})"},
        EventLine{event::Exit{1, false}, R"({"event":"exit","direction":1,"allowed":false})"},
        EventLine{event::PreviousEnabled{false}, R"({"event":"previous","enabled":false})"},
        EventLine{event::NextEnabled{true}, R"({"event":"next","enabled":true})"},
        EventLine{event::Instructions{"a\n\"b\"\\"}, R"({"event":"instructions","text":"a\n\"b\"\\"})"},
        EventLine{event::Status{" "}, R"({"event":"status","text":" "})"},
        EventLine{event::Status{"Größe \x1b[\t"}, "{\"event\":\"status\",\"text\":\"Größe \\u001b[\\t\"}"},
        EventLine{event::ProgressMinimum{0.0}, R"({"event":"progress.min","value":0.0})"},
        EventLine{event::ProgressMaximum{5859.375}, R"({"event":"progress.max","value":5859.375})"},
        EventLine{
            event::ProgressValue{0.0, {}},
            R"({"event":"progress.value","value":0.0,"volume":0,"volumes":0,"bytes":0,"files":0,"file":""})"},
        EventLine{
            event::ProgressValue{5859.375, {2, 3, 6000000001, 7, "/Volumes/Tessaphon B/TANVO/ü.db"}},
            R"({"event":"progress.value","value":5859.375,"volume":2,"volumes":3,"bytes":6000000001,"files":7,)"
            R"("file":"/Volumes/Tessaphon B/TANVO/ü.db"})"},
        EventLine{
            event::ProgressValue{1e15, {}},
            R"({"event":"progress.value","value":1e+15,"volume":0,"volumes":0,"bytes":0,"files":0,"file":""})"},
        EventLine{
            event::CopyBegin{"/Volumes/A/TANVO", "/T", 1, 2},
            R"({"event":"copy.begin","source":"/Volumes/A/TANVO","destination":"/T","volume":1,"volumes":2})"},
        EventLine{event::CopyEnd{"/Volumes/A/TANVO", "/T", true, 4096, 3},
                  R"({"event":"copy.end","source":"/Volumes/A/TANVO","destination":"/T","copied":true,)"
                  R"("bytes":4096,"files":3})"},
        EventLine{event::Audit{"/Volumes/A/TANVO", "/T", 1, 3, 1, 4096, 2, 4},
                  R"({"event":"audit","source":"/Volumes/A/TANVO","destination":"/T","volume":1,"files":3,)"
                  R"("folders":1,"bytes":4096,"skipped":2,"failures":4})"},
        EventLine{event::Phase{event::Phase::Kind::looking, 2, 3, "Tessaphon B", 10},
                  R"({"event":"phase","phase":"looking","volume":2,"volumes":3,"disc":"Tessaphon B",)"
                  R"("seconds":10})"},
        EventLine{event::AuditFailure{"size", "/Volumes/A/TANVO/a.db", "/T/a.db", 1, "2 of 4 bytes"},
                  R"({"event":"audit.failure","problem":"size","source":"/Volumes/A/TANVO/a.db",)"
                  R"("destination":"/T/a.db","volume":1,"detail":"2 of 4 bytes"})"},
        EventLine{event::Alert{"Ready for next volume", "Please insert Tessaphon B", {"OK", "Skip"}, 1, 3},
                  R"({"event":"alert","message":"Ready for next volume",)"
                  R"("informative":"Please insert Tessaphon B","buttons":["OK","Skip"],"style":1,"number":3})"},
        EventLine{event::Answered{3, 1001}, R"({"event":"answered","number":3,"button":1001})"},
        EventLine{event::Attached{{"", "Tessaphon", "", "", 2, "", "", ""}, true, true, 12.5},
                  R"({"event":"attached","answers":true,"barWraps":true,"seconds":12.5,"package":"",)"
                  R"("product":"Tessaphon","edition":"","destination":"","volumes":2,"log":"","started":"",)"
                  R"("version":""})"},
        EventLine{event::Past{0.25}, R"({"event":"past","seconds":0.25})"},
        EventLine{event::Present{}, R"({"event":"present"})"},
        EventLine{
            event::Sheet{"OK", "100 %s of \"it\"", "/Volumes/A/TANVO/2.db"},
            R"({"event":"sheet","button":"OK","message":"100 %s of \"it\"","file":"/Volumes/A/TANVO/2.db"})"},
        EventLine{event::Assertion{"NoDisplaySleepAssertion", 255, "Tavenhall installation in progress"},
                  R"({"event":"assertion","type":"NoDisplaySleepAssertion","level":255,)"
                  R"("name":"Tavenhall installation in progress"})"},
        EventLine{event::AssertionRelease{"NoDisplaySleepAssertion"},
                  R"({"event":"assertion.release","type":"NoDisplaySleepAssertion"})"},
        EventLine{event::Error{"not understood"}, R"({"event":"error","message":"not understood"})"},
        EventLine{wholeSummary(),
                  R"({"event":"summary","left":true,"ready":1,"mode":2,"seconds":14.065,"kBytesCopied":204800,)"
                  R"("copies":[{"seconds":6.207},{"seconds":4.0}],)"
                  R"("alerts":[{"message":"Ready for next volume","informative":"Insert B",)"
                  R"("buttons":["OK","Skip"],"answer":1001},)"
                  R"({"message":"Ready for next volume","informative":"Insert C","buttons":["OK"]}],)"
                  R"("sheets":[{"button":"OK","message":"Failed to open input file.","file":""}],)"
                  R"("bytes":209715200,"files":12,"installed":true,)"
                  R"("audit":{"files":11,"folders":2,"bytes":209715199,"skipped":3,"failures":1},)"
                  R"("copyingSeconds":8.5,"waitingSeconds":3.25,"checkingSeconds":0.125,)"
                  R"("status":1,"reason":"not installed: 1","failedFiles":[{"problem":"size",)"
                  R"("source":"/Volumes/A/TANVO/a.db","destination":"/T/a.db","volume":1,)"
                  R"("detail":"2 of 4 bytes"}],"package":"/Set/A.pkg","product":"Tessaphon","edition":"Lite",)"
                  R"("destination":"/T","volumes":2,"log":"/log.txt","started":"2026-11-23T03:18:56Z",)"
                  R"("version":"0.1.0","remaining":[{"source":"/Volumes/B/TANVO","volume":2}]})"}));

TEST(EventForm, BytesThatAreNotUtf8AreReplaced) {
  EXPECT_EQ(encode(event::Title{"Caf\xE9, \xFF"}),
            "{\"event\":\"title\",\"text\":\"Caf\xEF\xBF\xBD, \xEF\xBF\xBD\"}\n");
  EXPECT_EQ(encode(event::Status{"\xE9"}), "{\"event\":\"status\",\"text\":\"\xEF\xBF\xBD\"}\n");
}

TEST(EventForm, UnknownEventsAndOtherLinesAreNone) {
  for (const char* line : {"", "x", "[]", "{}", R"({"event":"later"})", R"({"event":1})"}) {
    EXPECT_FALSE(decodeEvent(line)) << line;
  }
}

TEST(EventForm, FieldsThatAreMissingOrOfAnotherTypeHaveTheirDefaults) {
  const auto event = decodeEvent(R"({"event":"alert","message":7,"buttons":[1,"OK"],"more":true})");
  ASSERT_TRUE(event && std::holds_alternative<event::Alert>(*event));
  const auto& alert = std::get<event::Alert>(*event);
  EXPECT_EQ(alert.message, "");
  EXPECT_THAT(alert.buttons, testing::ElementsAre("", "OK"));
  EXPECT_EQ(alert.style, 0);
}

TEST(SummaryFile, HasTheFieldsOfTheEvent) {
  EXPECT_EQ(encodeSummaryFile({}),
            R"({"left":false,"ready":0,"mode":0,"seconds":0.0,"kBytesCopied":0,"copies":[],"alerts":[],)"
            R"("sheets":[],"bytes":0,"files":0,)"
            R"("installed":false,"audit":{"files":0,"folders":0,"bytes":0,"skipped":0,"failures":0},)"
            R"("copyingSeconds":0.0,"waitingSeconds":0.0,"checkingSeconds":0.0,"status":0,"reason":"",)"
            R"("failedFiles":[],"package":"","product":"","edition":"","destination":"","volumes":0,"log":"",)"
            R"("started":"","version":"","remaining":[]})"
            "\n");
}

// ---- Requests ----

Request requestOf(std::string_view line) { return std::get<Request>(decodeRequest(line)); }
Command commandOf(std::string_view line) { return std::get<Command>(requestOf(line)); }
int buttonOf(std::string_view line) { return std::get<Answer>(requestOf(line)).button; }
bool isBad(std::string_view line) { return std::holds_alternative<BadRequest>(decodeRequest(line)); }

TEST(RequestForm, EveryCommandHasItsName) {
  for (const auto& [name, command] :
       {std::pair("title", Command::title), std::pair("enter", Command::enter),
        std::pair("forward", Command::forward), std::pair("back", Command::back),
        std::pair("quit", Command::quit), std::pair("wait", Command::wait), std::pair("stop", Command::stop),
        std::pair("no-answers", Command::noAnswers)}) {
    const std::string line = R"({"do":")" + std::string(name) + R"("})";
    EXPECT_EQ(commandOf(line), command);
    EXPECT_EQ(encode(Request(command)), line + "\n");
  }
}

TEST(RequestForm, AnAnswerIsAWholeNumberOf32Bits) {
  EXPECT_EQ(encode(Request(Answer{1001})), "{\"answer\":1001}\n");
  EXPECT_EQ(buttonOf(R"({"answer":1000})"), 1000);
  EXPECT_EQ(buttonOf(R"({"answer":-1})"), -1);
  EXPECT_EQ(buttonOf(R"({"answer":2147483647})"), 2147483647);
  for (const char* line :
       {R"({"answer":2147483648})", R"({"answer":18446744073709551615})", R"({"answer":99999999999999999999})",
        R"({"answer":1000.0})", R"({"answer":"1000"})", R"({"answer":true})"}) {
    EXPECT_TRUE(isBad(line)) << line;
  }
}

TEST(RequestForm, AnAnswerMayNameItsAlert) {
  EXPECT_EQ(encode(Request(Answer{1001, 2})), "{\"answer\":1001,\"alert\":2}\n");
  EXPECT_EQ(std::get<Answer>(requestOf(R"({"alert":2,"answer":1001})")).alert, 2);
  for (const char* line :
       {R"({"answer":1000,"alert":0})", R"({"answer":1000,"alert":-1})", R"({"answer":1000,"alert":"1"})",
        R"({"answer":1000,"alert":2147483648})", R"({"answer":1000,"alert":1,"more":1})", R"({"alert":1})"}) {
    EXPECT_TRUE(isBad(line)) << line;
  }
}

TEST(RequestForm, BlanksDoNotMatter) {
  EXPECT_EQ(commandOf("  { \"do\" :\t\"enter\" }  "), Command::enter);
  EXPECT_EQ(buttonOf(" { \"answer\" : 1001 } \r"), 1001);
}

TEST(RequestForm, AnythingElseIsBad) {
  for (const char* line :
       {"", " ", "{", "enter", "{'do':'enter'}", R"({"do":"enter"} x)", R"({"do":"enter"}{})", "[]", "null",
        "1000", "\xEF\xBB\xBF", R"({"do":"Enter"})", R"({"do":"enter "})", R"({"Do":"enter"})", R"({"do":""})",
        R"({"do":"enter","answer":1000})", R"({"do":"enter","id":7})", R"({"event":"enter"})",
        R"({"do":["enter"]})"}) {
    EXPECT_TRUE(isBad(line)) << line;
  }
}

TEST(RequestForm, AnErrorListsTheForms) {
  EXPECT_THAT(std::get<BadRequest>(decodeRequest("nonsense")).message, HasSubstr(R"({"do":"enter"})"));
  EXPECT_EQ(std::get<BadRequest>(decodeRequest(std::string(LineReader::kLongestLine + 1, ' '))).message,
            "the line is too long");
}

}  // namespace
}  // namespace tavenhall::test
