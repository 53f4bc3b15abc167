#include "context/internal_lookups.h"
#include "host/log/log_records.h"
#include "host/log/logged_run.h"
#include "pane/install_data_pane.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/fuzz/page_files.h"
#include "tests/fuzz/stops.h"
#include "tests/fuzz/tree_input.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

// The input is the whole world of an install (tests/fuzz/tree_input.h), laid out at the root: discs in
// "Volumes", the package's set in "tmp/set" with its attributes file, the user's folder in "Users/tester". The
// page is entered and installs; each disc that it asks for is put in with its second asking. At the end
// everything that the last copy met is where it belongs, or named in the log.
namespace tavenhall::fuzz {

namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 5> kFolders{"/Volumes", "/Library", "/Applications", "/Users/tester", "/tmp"};
constexpr const char* kLog = "/Users/tester/Library/Caches/Tavenhall/installationLog.txt";
constexpr const char* kAttributes = "/tmp/set/.InstallationAttributes.dat";
constexpr long long kMostVolumes = 12;  // an absurd number of volumes is allowed, and takes as absurdly long

// The buffers that a path or a command of the page may outgrow.
constexpr std::array<std::size_t, 5> kLimits{512, 1024, 2048, 4096, 8192};

void layOut(std::string_view input) {
  for (const char* folder : kFolders) {
    clearFolder(folder);
  }
  makeFolders("/tmp/set");
  writeBytes(kLocationFile, "/tmp/set/Installer.pkg\n");
  makeFolders("/Users/tester/Library/Caches");
  makeFolders("/Users/tester/Library/Application Support/Tavenhall/TANVO");
  // Outside these folders the root is the real one.
  std::string inside;
  while (!input.empty()) {
    const std::size_t end = std::min(input.find('\n'), input.size() - 1);
    const std::string_view line = input.substr(0, end + 1);
    input.remove_prefix(end + 1);
    const bool isInside = line.starts_with("Volumes/") || line.starts_with("Library/") ||
                          line.starts_with("Applications/") || line.starts_with("Users/tester/") ||
                          line.starts_with("tmp/set/");
    inside += isInside ? line : "";
  }
  layTree(inside, "/");
}

// One page in one world. The page's two threads are not to be had here, so each of their bodies runs on the
// calling thread.
struct World {
  test::RecordingHost host;
  InstallDataPane pane{host};
  int asked = 0;
  int sheets = 0;

  World() {
    host.onLine = [this](const std::string& line) { sheets += line.find("sheet ") < 7 ? 1 : 0; };
    host.onAlert = [this](const std::string& line) {
      if (line.find("Ready for next volume") != std::string::npos && ++asked % 2 == 0) {
        putDiscIn();
      }
    };
  }

  void putDiscIn() const {
    const std::string folder = pane.gPathOfSourceDataIncludingTANVOtail.c_str();
    std::error_code error;
    // Whatever stands in its place goes; it may be a file, or a link to nowhere.
    fs::remove(pane.gPathOfSourceDataExcludingTANVOtail.c_str(), error);
    fs::remove(folder, error);
    fs::create_directories(folder, error);
    require(!error, "a disc cannot be put in");
  }

  void install() {
    pane.didEnterPane(0);
    if (pane.gTANVOorDOVA_destinationPath != nullptr) {
      sheets = 0;  // that the install thread could not be started is no failure here
      pane.doEntireInstall();
    }
  }
};

// Every file and folder below `source` is below `destination`, or `log` names it.
void checkCopied(const std::string& source, const std::string& destination, std::string_view log) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(source, error)) {
    const std::string name = entry.path().filename();
    const std::string from = source + "/" + name;
    const std::string to = destination + "/" + name;
    struct stat there {};
    const bool isThere = stat(to.c_str(), &there) == 0;
    if (name[0] == '.' || from.find(".InstallationAttributes.dat") != std::string::npos || entry.is_symlink()) {
      continue;
    }
    if (entry.is_directory()) {
      if (isThere && S_ISDIR(there.st_mode)) {
        checkCopied(from, to, log);
      } else {
        require(log.find(to) != std::string_view::npos, "a folder is missing without a word: " + to);
      }
    } else if (!isThere || !S_ISREG(there.st_mode)) {
      require(log.find(to) != std::string_view::npos, "a file is missing without a word: " + to);
    } else if (readBytes(from.c_str()) != readBytes(to.c_str())) {
      const bool isNamed = log.find("error " + from) != std::string_view::npos ||
                           log.find("sizes differ: " + from) != std::string_view::npos;
      require(isNamed, "a file differs without a word: " + to);
    }
  }
}

void checkLog(const std::string& log, int sheets) {
  int count = 0;
  LoggedRuns runs([&](const LoggedRun& run) {
    ++count;
    require(run.outcome != RunEnd::never, "the log does not record the end");
    require(sheets == 0 || run.failureCount > 0 || run.outcome == RunEnd::noDataFolder,
            "a sheet without a failure in the log");
  });
  LogRecords records([&runs](const LogRecord& record) { runs.add(record); });
  records.add(log);
  records.finish();
  runs.finish();
  require(count == 1, "the log records another number of runs");
}

int lowestFreeDescriptor() {
  const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
  close(descriptor);
  return descriptor;
}

bool wantsTooManyVolumes() {
  struct stat found {};
  for (const char* path : {kAttributes, "/tmp/.InstallationAttributes.dat"}) {
    if (stat(path, &found) == 0 && !S_ISREG(found.st_mode)) {
      return true;  // nothing to read the number from
    }
  }
  const bool isTooMany = getLongLongFromAttributesFile("NumberOfVolumes") > kMostVolumes;
  forgetLog();
  return isTooMany;
}

void checkInstall(World& world) {
  const int freeBefore = lowestFreeDescriptor();
  const auto stop = stopOf([&world] { world.install(); });
  require(lowestFreeDescriptor() == freeBefore && openFolders() == 0, "a descriptor was left open");
  if (stop) {
    const bool isKnown = std::any_of(kLimits.begin(), kLimits.end(),
                                     [&stop](std::size_t limit) { return *stop == stopLine(limit); });
    require(isKnown, "a stop for another reason: " + *stop);
    return;
  }
  struct stat found {};
  if (stat(kLog, &found) != 0 || !S_ISREG(found.st_mode)) {
    return;  // the log lies elsewhere
  }
  const std::string log = readBytes(kLog);
  checkLog(log, world.sheets);
  const auto& pane = world.pane;
  require(pane.kBytesCopied >= 0 && pane.copySingleVolumeRunning == 0, "the page's state at the end");
  if (pane.copySrcPath != nullptr && pane.copyDstPath != nullptr && pane.gInstallMode != kModeProductUpdater &&
      pane.gVolumeCount == pane.gCurrentVolumeNumber) {
    checkCopied(pane.copySrcPath, pane.copyDstPath, log);
  }
}

}  // namespace

}  // namespace tavenhall::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavenhall;
  using namespace tavenhall::fuzz;
  static const bool isSetUp = [] {
    test::platform().keepsCalls = false;
    test::platform().canStartThreads = false;
    return true;
  }();
  static_cast<void>(isSetUp);
  layOut(asText(data, size));
  forgetWhatIsReadOncePerProcess();
  if (wantsTooManyVolumes()) {
    return 0;
  }
  forgetWhatIsReadOncePerProcess();
  static World* world = nullptr;
  delete world;
  world = new World;
  world->host.keepsLines = false;
  checkInstall(*world);
  return 0;
}
