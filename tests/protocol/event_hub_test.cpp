#include "host/protocol/event_hub.h"
#include "host/base/child_process.h"
#include "host/base/files.h"
#include "host/protocol/json_form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;

// Without the times of the past.
std::vector<std::string> linesWritten(int descriptor) {
  std::vector<std::string> lines;
  LineReader reader(descriptor);
  while (reader.isOpen()) {
    reader.read([&lines](const std::string& line) {
      if (!line.starts_with(R"({"event":"past")")) {
        lines.push_back(line);
      }
    });
  }
  return lines;
}

TEST(EventHub, AFrontendThatComesLaterGetsThePastAndWhatFollows) {
  EventHub hub;
  hub.write(event::Title{"Samples"});
  hub.write(event::Status{"one"});
  hub.write(event::ProgressValue{1.0, {}});
  hub.write(event::Status{"two"});
  hub.write(event::ProgressValue{2.0, {}});
  hub.write(event::Entered{});
  hub.write(event::Status{"three"});
  const Pipe pipe = makePipe();
  {
    EventWriter writer(pipe.writeEnd);
    hub.attach(writer, {});
    hub.write(event::Idle{});
    hub.detach(writer);
    hub.write(event::Exit{});
  }
  close(pipe.writeEnd);

  EXPECT_THAT(
      linesWritten(pipe.readEnd),
      ElementsAre(
          R"({"event":"attached","answers":false,"barWraps":false,"package":"","product":"","edition":"","destination":"","volumes":0,"log":"","started":"","version":""})",
          R"({"event":"title","text":"Samples"})", R"({"event":"status","text":"two"})",
          R"({"event":"progress.value","value":2.0,"volume":0,"volumes":0,"bytes":0,"files":0,"file":""})",
          R"({"event":"entered"})", R"({"event":"status","text":"three"})", R"({"event":"present"})",
          R"({"event":"idle"})"));
  close(pipe.readEnd);
}

}  // namespace
}  // namespace tavenhall::test
