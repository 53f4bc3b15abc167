#include "pane/install_data_pane.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/fuzz/page_files.h"
#include "tests/support/recording_host.h"

// The input is the edition-choice file. Only a first line that is "Lite" and one more character chooses the
// Lite edition; usually that character is the newline.

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavenhall::fuzz;
  static auto* const host = new tavenhall::test::RecordingHost;
  static auto* const pane = new tavenhall::InstallDataPane(*host);

  writeBytes(kChoiceFile, asText(data, size));
  // As fgets reads it: up to the newline, of what room there is, and a C string.
  std::string line(asText(data, size).substr(0, 1023));
  line = line.substr(0, line.find('\n') == std::string::npos ? line.size() : line.find('\n') + 1);
  line = line.c_str();
  const std::string choice = line.substr(0, line.empty() ? 0 : line.size() - 1);

  const int before = size % 2 == 0 ? 1 : 0;  // what an earlier entry may have left
  pane->gTwoComponentInstallChoicesAreLite.fill(before);
  pane->readEditionChoiceFile();
  const bool isLite = choice == "Lite";
  require(pane->gTwoComponentInstallChoicesAreLite[0] == (isLite ? 1 : 0), "the choice");
  require(pane->gTwoComponentInstallChoicesAreLite[1] == before, "another library's choice was changed");
  requireLog(
      {"contentsOfTavInstallTypeFile = " + choice, isLite ? "Install Type = Lite" : "Install Type = Full"});
  return 0;
}
