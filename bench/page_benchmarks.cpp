// What single operations of the page and its host cost. They run in private folders at the page's fixed paths.
#include "context/attributes_line.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "host/protocol/event_writer.h"
#include "tests/support/private_root.h"

#include <array>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace tavenhall {
namespace {

void OneLogLine(benchmark::State& state) {
  for (auto _ : state) {
    addEventToInstallationLog("Copying folder %s %s\n", "/Volumes/Tavenhall Tessaphon/TANVO", "/Users/tester");
  }
}
BENCHMARK(OneLogLine);

void OneAttributesLookup(benchmark::State& state) {
  std::array<char, kAttributesValueSize> text{};
  for (auto _ : state) {
    benchmark::DoNotOptimize(getStringFromAttributesFile("InstalledData", text.data(), text.size()));
  }
}
BENCHMARK(OneAttributesLookup);

void OneProgressEvent(benchmark::State& state) {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  EventWriter events(nowhere);
  double value = 0.0;
  for (auto _ : state) {
    events.write(
        event::ProgressValue{value += 2.0, {1, 2, 204800, 7, "/Volumes/Tavenhall Tessaphon A/TANVO/1.db"}});
  }
  events.finish();
  close(nowhere);
}
BENCHMARK(OneProgressEvent);

void layAttributesFile() {
  const std::filesystem::path set = "/Users/tester/Downloads/Set";
  std::filesystem::create_directories(set);
  std::ofstream(set / "Installer.pkg");
  std::ofstream("/tmp/TavInstallLoc") << (set / "Installer.pkg").string() << "\n";
  std::ofstream attributes(set / ".InstallationAttributes.dat");
  attributes << "Mode = InstallFromVolumes\nInstallDataTitle = Installing Tessaphon Data\n"
                "InstallingData = Now installing to:\\n\\n%s\nInstalledData = It is installed in:\\n\\n%s\n"
                "NumberOfVolumes = 2\nTotalSizeMillionsBytes = 48000\n";
}

}  // namespace
}  // namespace tavenhall

int main(int argc, char** argv) {
  tavenhall::test::enterPrivateRoot();
  tavenhall::layAttributesFile();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
