// What single operations of the page and its host cost. They run in private folders at the page's fixed paths.
#include "context/attributes_line.h"
#include "context/installation_log.h"
#include "context/internal_lookups.h"
#include "host/engine/main_queue.h"
#include "host/protocol/json_events.h"
#include "platform/host_system.h"
#include "tests/support/private_root.h"

#include <array>
#include <atomic>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace tavenhall {
namespace {

void OneLogLine(benchmark::State& state) {
  for (auto _ : state) {
    addEventToInstallationLog("Copying folder %s %s\n", "/Volumes/Tavenhall Tessaphon/TANVO", "/Users/tester");
  }
}
BENCHMARK(OneLogLine);

// The main thread of an engine, which waits for hand-offs and nothing else.
class MainThread {
 public:
  explicit MainThread(bool isFollowing) : isFollowing_(isFollowing) { isReady_.wait(false); }
  MainThread(const MainThread&) = delete;
  MainThread& operator=(const MainThread&) = delete;
  ~MainThread() {
    isEnding_ = true;
    wakeUp_.signal();
    thread_.join();
  }

  MainQueue& queue() { return *queue_; }

 private:
  void run() {
    MainQueue queue(wakeUp_);
    queue.followCallers(isFollowing_);
    queue_ = &queue;
    isReady_ = true;
    isReady_.notify_one();
    while (!isEnding_) {
      pollfd source{wakeUp_.descriptor(), POLLIN, 0};
      poll(&source, 1, -1);
      wakeUp_.clear();
      queue.serve();
    }
  }

  const bool isFollowing_;
  WakeUp wakeUp_;
  MainQueue* queue_ = nullptr;
  std::atomic<bool> isReady_ = false;
  std::atomic<bool> isEnding_ = false;
  std::thread thread_{[this] { run(); }};
};

void OneHandOff(benchmark::State& state, bool isFollowing) {
  MainThread mainThread(isFollowing);
  for (auto _ : state) {
    mainThread.queue().dispatchSync([](void* /*context*/) {}, nullptr);
  }
}
BENCHMARK_CAPTURE(OneHandOff, threads_where_the_system_puts_them, false)->UseRealTime();
BENCHMARK_CAPTURE(OneHandOff, main_thread_follows, true)->UseRealTime();

void OneAttributesLookup(benchmark::State& state) {
  std::array<char, kAttributesValueSize> text{};
  for (auto _ : state) {
    benchmark::DoNotOptimize(getStringFromAttributesFile("InstalledData", text.data(), text.size()));
  }
}
BENCHMARK(OneAttributesLookup);

void OneEventLine(benchmark::State& state) {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  JsonEvents events(nowhere);
  double value = 0.0;
  for (auto _ : state) {
    events.number("progress.value", value += 2.0);
  }
  close(nowhere);
}
BENCHMARK(OneEventLine);

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
