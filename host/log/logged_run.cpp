#include "host/log/logged_run.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace tavenhall {

namespace {

// Removes `start` from the start of `text`, if it is there.
bool take(std::string_view& text, std::string_view start) {
  if (!text.starts_with(start)) {
    return false;
  }
  text.remove_prefix(start.size());
  return true;
}

std::string_view withoutEnd(std::string_view text) {
  const std::size_t last = text.find_last_not_of(" \n");
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

// Removes the number at the start of the text and returns it.
std::optional<int> takeNumber(std::string_view& text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{}) {
    return std::nullopt;
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

std::string_view nameOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

// Two paths that follow each other in a record, and the text after them.
struct PathPair {
  std::string_view source;
  std::string_view target;
  std::string_view rest;
};

// Paths contain blanks, so the first ends where the name that both share ends. If there is no such place, the
// source is the whole text.
PathPair pathPair(std::string_view text) {
  for (std::size_t at = text.find(" /"); at != std::string_view::npos; at = text.find(" /", at + 1)) {
    const std::string_view source = text.substr(0, at);
    const std::string_view second = text.substr(at + 1);
    const std::string_view name = nameOf(source);
    const std::size_t found = second.find(name);
    const std::size_t end = found + name.size();
    const bool isInBoth = !name.empty() && found != std::string_view::npos && found > 0 &&
                          second[found - 1] == '/' && (end == second.size() || second[end] == ' ');
    if (isInBoth) {
      return {source, second.substr(0, end), second.substr(std::min(end + 1, second.size()))};
    }
  }
  return {text, {}, {}};
}

// The root in "<root> <root>/<name> <root>/Mac OSX/<name>"; the whole text if it has another form.
std::string_view missingFolder(std::string_view text) {
  for (std::size_t at = text.find(" /"); at != std::string_view::npos; at = text.find(" /", at + 1)) {
    const std::string_view root = text.substr(0, at);
    std::string_view rest = text.substr(at + 1);
    const std::size_t alternate = rest.rfind(std::string(root) + "/Mac OSX/");
    if (rest.starts_with(std::string(root) + "/") && alternate != std::string_view::npos && alternate > 0) {
      return rest.substr(0, alternate - 1);
    }
  }
  return text;
}

// The folder that "<folder> <result> <errno> <folder>" names, if the result is not 0; else nothing.
std::string_view failedFolder(std::string_view text) {
  for (std::size_t at = text.find(' '); at != std::string_view::npos; at = text.find(' ', at + 1)) {
    const std::string_view folder = text.substr(0, at);
    std::string_view rest = text.substr(at + 1);
    const auto result = takeNumber(rest);
    if (result && take(rest, " ") && takeNumber(rest) && take(rest, " ") && rest == folder) {
      return *result != 0 ? folder : std::string_view();
    }
  }
  return {};
}

}  // namespace

void LoggedRuns::add(const LogRecord& record) {
  std::string_view message = record.message;
  if (const std::size_t banner = message.find("  Install Data Pane Enter: ");
      message.starts_with("\n\n*") && banner != std::string_view::npos) {
    finish();
    run_.emplace();
    run_->begin = record.time;
    run_->host = record.host;
    run_->pageVersion = withoutEnd(message.substr(message.find(": ", banner) + 2));
    run_->title = std::exchange(titleBefore_, {});
    run_->attributesFile = attributesBefore_;
  }
  takeSetting(message);
  if (!run_ || run_->outcome == RunEnd::complete) {
    return;  // what follows a run that is complete belongs to the next one
  }
  run_->end = record.time;
  run_->lastMessage = withoutEnd(message);
  takeVolume(record);
  takePrompt(record);
  takeFailure(record);
  if (message.starts_with("Installation complete")) {
    run_->outcome = RunEnd::complete;
  } else if (message.starts_with("InstallData fatal error")) {
    run_->outcome = RunEnd::noDataFolder;
  }
}

void LoggedRuns::finish() {
  if (run_) {
    report_(*run_);
    run_.reset();
  }
}

// The attributes file is logged once a process, and the title at any time, so both records may precede their
// run.
void LoggedRuns::takeSetting(std::string_view message) {
  if (take(message, "Found Installation Attribute File at  ")) {
    attributesBefore_ = withoutEnd(message);
    if (run_) {
      run_->attributesFile = attributesBefore_;
    }
  } else if (message == "Did not find Installation Attribute File.") {
    attributesBefore_.clear();
  } else if (take(message, "Data from attributes file::  InstallData title=")) {
    (run_ && run_->outcome == RunEnd::never ? run_->title : titleBefore_) = withoutEnd(message);
  }
  if (!run_) {
    return;
  }
  if (take(message, "Installation mode is ")) {
    run_->mode = takeNumber(message);
  } else if (take(message, "Install Type = ")) {
    run_->edition = message;
  } else if (take(message, "After resolve 1 ")) {
    // The page looks for its folder on entering and, in an updater, again for its pass.
    if (std::find(run_->destinations.begin(), run_->destinations.end(), message) == run_->destinations.end()) {
      run_->destinations.emplace_back(message);
    }
  } else if (take(message, "Confirmed ")) {
    constexpr std::string_view kMiddle = " Library Installation is ";
    if (const std::size_t middle = message.find(kMiddle); middle != std::string_view::npos) {
      run_->detectedEditions.push_back(std::string(message.substr(0, middle)) + ": " +
                                       std::string(withoutEnd(message.substr(middle + kMiddle.size()))));
    }
  } else if (take(message, "Successfully deleted existing p/w/a at ")) {
    run_->placed.emplace_back(message);
  } else if (message.starts_with("readyToProceed is False")) {
    ++run_->refusals;
  }
}

RunVolume& LoggedRuns::volume() {
  if (run_->volumes.empty()) {
    run_->volumes.emplace_back();
  }
  return run_->volumes.back();
}

void LoggedRuns::takeVolume(const LogRecord& record) {
  std::string_view message = record.message;
  if (take(message, "Volume ")) {
    const auto number = takeNumber(message);
    if (number && message.starts_with(" /")) {
      run_->volumes.emplace_back();
      run_->volumes.back().number = *number;
    }
  } else if (take(message, "Begin copySingleVolume: copySrcPath ") ||
             take(message, "Begin copySingleVolume for copySrcPathWithSubFolder ")) {
    ++volume().copies;
    if (volume().begin.empty()) {
      volume().begin = record.time;
      volume().folder = withoutEnd(message);
    }
  } else if (take(message, "End copySingleVolume: copySrcPath ")) {
    volume().end = record.time;
  } else if (!run_->volumes.empty()) {  // what is copied before the first volume is none
    run_->volumes.back().folders += message.starts_with("Copying folder ") ? 1 : 0;
    run_->volumes.back().timesEmpty +=
        message.starts_with("copySingleVolume: no items found in top level folder") ? 1 : 0;
    run_->volumes.back().hundredsOfMegabytes += message.starts_with("Data copy progress ") ? 1 : 0;
  }
}

// Whether the latest prompt is for that volume and still open. Some products' discs share one name.
bool LoggedRuns::isWaitingFor(std::string_view volumeName) const {
  return !run_->prompts.empty() && run_->prompts.back().volume == volumeName &&
         run_->prompts.back().found.empty() && !run_->prompts.back().isSkipped;
}

void LoggedRuns::takePrompt(const LogRecord& record) {
  std::string_view message = record.message;
  const bool isOptional = take(message, "Dialog prompting to insert optional disc: ");
  if (isOptional || take(message, "Dialog prompting to insert mandatory volume ")) {
    takeNumber(message);
    const std::string name(withoutEnd(message.substr(message.empty() ? 0 : 1)));
    if (!isWaitingFor(name)) {
      RunPrompt& prompt = run_->prompts.emplace_back();
      prompt.time = record.time;
      prompt.volume = name;
      prompt.isOptional = isOptional;
    }
    ++run_->prompts.back().times;
  } else if (message.starts_with("Skipping an optional disc")) {
    if (!run_->prompts.empty()) {
      run_->prompts.back().isSkipped = true;
    }
  } else if (message.starts_with("Using primary folder ") || message.starts_with("Using alternate folder ")) {
    if (!run_->prompts.empty() && isWaitingFor(run_->prompts.back().volume)) {
      run_->prompts.back().found = record.time;
    }
  }
}

void LoggedRuns::takeFailure(const LogRecord& record) {
  std::string_view message = record.message;
  if (take(message, "Source error ")) {
    const PathPair paths = pathPair(withoutEnd(message));
    fail(record, "source", paths.source, paths.target);
  } else if (take(message, "Target error ")) {
    const PathPair paths = pathPair(withoutEnd(message));
    fail(record, "target", paths.source, paths.target, paths.rest);
  } else if (take(message, "File copy failure: sizes differ: ")) {
    const std::string_view source = message.substr(0, message.find(" (size is "));
    std::string_view target = message.substr(std::min(message.find(") /"), message.size() - 1) + 1);
    target.remove_prefix(target.starts_with(' ') ? 1 : 0);
    fail(record, "size", source, target.substr(0, target.find("  (size is ")));
  } else if (take(message, "mkdir2 sudo mkdir ")) {
    if (const std::string_view folder = failedFolder(message); !folder.empty()) {
      fail(record, "folder", folder);
    }
  } else if (take(message, "Files to be installed not found ")) {
    fail(record, "not-found", missingFolder(message));
  } else if (take(message, "copyDirectoryOrFile: no destination for ")) {
    fail(record, "no-destination", message);
  }
}

void LoggedRuns::fail(const LogRecord& record, const char* kind, std::string_view file, std::string_view target,
                      std::string_view reason) {
  ++run_->failureCount;
  if (run_->failures.size() < LoggedRun::kMostFailures) {
    run_->failures.push_back({std::string(record.time), kind, std::string(file), std::string(target),
                              std::string(reason), std::string(withoutEnd(record.message))});
  }
}

}  // namespace tavenhall
