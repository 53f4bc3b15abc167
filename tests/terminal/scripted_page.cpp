// A page that does what a script says, so that a test can bring a host into any state it wants to look at.
//
// The script is /tmp/page-script, one step a line; a text may hold "\n". Its steps are run on a thread of the
// page's own, like an install:
//
//   instructions TEXT    status TEXT    min N    max N    value N    next 0|1    previous 0|1
//   ready 0|1                           ready also reports a copy of as many bytes as the bar has said
//   sheet TEXT                          sheets N TEXT (so often)
//   alert MESSAGE|TEXT|BUTTON|BUTTON    its answer is added to /tmp/page-answers, a line each
//   log TEXT                            a record of the installation log
//   run COMMAND                         with the shell
//   wait FILE                           until it is there
//
// What stands before a line "thread" is done on the main thread, while the page is entered.
#include "platform/installer_host.h"
#include "platform/installer_pane.h"
#include "platform/visibility.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tavenhall {
namespace {

std::string unescaped(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isBreak = text[i] == '\\' && i + 1 < text.size() && text[i + 1] == 'n';
    result += isBreak ? '\n' : text[i];
    i += isBreak ? 1 : 0;
  }
  return result;
}

std::vector<std::string> partsOf(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, '|');) {
    parts.push_back(unescaped(part));
  }
  return parts;
}

void writeLog(const std::string& message) {
  std::array<char, 64> time{};
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::strftime(time.data(), time.size(), "%B %d %Y %T", &local);
  const std::string folder = std::string(std::getenv("HOME")) + "/Library/Caches/Tavenhall";
  std::filesystem::create_directories(folder);
  std::ofstream(folder + "/installationLog.txt", std::ios::app) << time.data() << " host: " << message << "\n";
}

constexpr const char* kSource = "/Volumes/Tavenhall Tessaphon A/TANVO";

class ScriptedPage final : public InstallerPane {
 public:
  explicit ScriptedPage(InstallerHost& host) : InstallerPane(host) {}

  void didEnterPane(std::int64_t /*direction*/) noexcept override {
    writeLog("The page is entered.");  // as the real page does, so that a frontend names the log
    script_ = std::make_unique<std::ifstream>("/tmp/page-script");
    for (std::string line; std::getline(*script_, line);) {
      if (line == "thread") {
        host().pageThreadStarted("doEntireInstall");
        std::thread([this] { runOnThread(); }).detach();
        return;
      }
      perform(line);
    }
  }

  bool shouldExitPane(std::int64_t direction) noexcept override {
    return direction != kDirectionForward || isReady_ != 0;
  }

  std::string title() noexcept override {
    std::ifstream file("/tmp/page-title");
    std::string title;
    return std::getline(file, title) ? title : "Scripted Page";
  }

  void controlTextDidChange() noexcept override {}
  void updateText() noexcept override {}
  std::int32_t isReadyToProceed() const noexcept override { return isReady_; }

  PaneSnapshot snapshot() const noexcept override {
    PaneSnapshot snapshot;
    snapshot.readyToProceed = isReady_;
    snapshot.kBytesCopied = kBytes_;
    snapshot.bytesWritten = kBytes_ * 1024;
    snapshot.currentFile = kBytes_ > 0 ? "/Volumes/A/TANVO/1.db" : "";
    snapshot.sourceFolder = isReady_ != 0 ? kSource : "";
    return snapshot;
  }

 private:
  void runOnThread() {
    isOnThread_ = true;
    for (std::string line; std::getline(*script_, line);) {
      perform(line);
    }
    host().pageThreadEnded("doEntireInstall");
  }

  void onMainThread(const std::function<void()>& block) {
    if (!isOnThread_) {
      block();
      return;
    }
    host().dispatchSync([](void* it) { (*static_cast<const std::function<void()>*>(it))(); },
                        const_cast<std::function<void()>*>(&block));
  }

  void perform(const std::string& line) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string step = line.substr(0, blank);
    const std::string text = line.substr(std::min(blank + 1, line.size()));
    const double number = std::atof(text.c_str());
    if (step == "instructions") {
      host().instructions().setTitleWithMnemonic(unescaped(text).c_str());
    } else if (step == "status") {
      host().status().setTitleWithMnemonic(unescaped(text).c_str());
    } else if (step == "min") {
      host().progressIndicator().setMinValue(number);
    } else if (step == "max") {
      host().progressIndicator().setMaxValue(number);
    } else if (step == "value") {
      kBytes_ = number > 1.0 ? static_cast<std::int64_t>(number) : kBytes_.load();
      onMainThread([&] { host().progressIndicator().setDoubleValue(number); });
    } else if (step == "next") {
      host().setNextEnabled(number != 0);
    } else if (step == "previous") {
      host().setPreviousEnabled(number != 0);
    } else if (step == "ready") {
      isReady_ = static_cast<std::int32_t>(number);
      if (isReady_ != 0) {
        reportCopy();
      }
    } else if (step == "sheet") {
      showSheets(1, text);
    } else if (step == "sheets") {
      showSheets(static_cast<int>(number), text.substr(text.find(' ') + 1));
    } else if (step == "alert") {
      showAlert(partsOf(text));
    } else if (step == "log") {
      writeLog(unescaped(text));
    } else if (step == "run") {
      static_cast<void>(!std::system(text.c_str()));
    } else if (step == "wait") {
      while (access(text.c_str(), F_OK) != 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    }
  }

  // Of the first volume, with one file that has as many bytes as the bar has said.
  void reportCopy() {
    const std::string destination =
        std::string(std::getenv("HOME")) + "/Library/Application Support/Tavenhall/TANVO";
    for (const std::string& top : {std::string(kSource), destination}) {
      std::filesystem::create_directories(top);
      std::ofstream(top + "/1.db");
      std::filesystem::resize_file(top + "/1.db", static_cast<std::uintmax_t>(kBytes_ * 1024));
    }
    const TreeCopy copy{kSource, destination.c_str()};
    host().copyBegun(copy);
    host().copyFinished(copy, true);
  }

  void showSheets(int count, const std::string& text) {
    const std::string message = unescaped(text);
    for (int i = 0; i < count; ++i) {
      onMainThread([&] { host().beginInformationalSheet({"OK", message.c_str()}); });
    }
  }

  void showAlert(const std::vector<std::string>& parts) {
    std::vector<const char*> buttons;
    for (std::size_t i = 2; i < parts.size(); ++i) {
      buttons.push_back(parts[i].c_str());
    }
    onMainThread([&] {
      const int answer =
          host().runModal({parts[0].c_str(), parts[1].c_str(), buttons, kAlertStyleInformational});
      std::ofstream("/tmp/page-answers", std::ios::app) << answer << "\n";
    });
  }

  std::unique_ptr<std::ifstream> script_;
  std::atomic<bool> isOnThread_ = false;
  std::atomic<std::int32_t> isReady_ = 0;
  std::atomic<std::int64_t> kBytes_ = 0;
};

}  // namespace
}  // namespace tavenhall

extern "C" TAVENHALL_EXPORT tavenhall::InstallerPane* createInstallDataPane(tavenhall::InstallerHost* host,
                                                                            std::uint32_t interfaceVersion) {
  return interfaceVersion == tavenhall::kInstallerInterfaceVersion ? new tavenhall::ScriptedPage(*host)
                                                                   : nullptr;
}
