#include "host/rehearse/disc_tray.h"

#include "context/install_rules.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

std::optional<std::string> volumeAskedFor(std::string_view message, std::string_view informative) {
  constexpr std::string_view kMandatory = "Please insert ";
  if (message != "Ready for next volume") {
    return std::nullopt;
  }
  if (informative.starts_with(kMandatory)) {
    return std::string(informative.substr(kMandatory.size()));
  }
  constexpr std::int32_t kFirstOptionalVolume = 2;
  for (std::int32_t number = kFirstOptionalVolume; const OptionalDisc* disc = optionalDiscForVolume(number);
       ++number) {
    if (informative.starts_with("Insert " + std::string(disc->title) + " Outrider disc.")) {
      return fs::path(disc->mountPath).filename().string();
    }
  }
  return std::nullopt;
}

DiscTray::DiscTray(fs::path volumes, std::vector<Disc> discs, int late)
    : volumes_(std::move(volumes)), discs_(std::move(discs)), late_(late) {}

DiscTray::Reply DiscTray::ask(const std::string& volumeName) {
  std::error_code error;
  if (fs::is_symlink(volumes_ / volumeName, error)) {
    return Reply::notAccepted;
  }
  const auto disc = nextDisc(volumeName);
  if (!disc) {
    return Reply::noSuchDisc;
  }
  if (timesAsked_++ < late_) {
    return Reply::notYet;
  }
  timesAsked_ = 0;
  fs::create_directory_symlink(discs_[*disc].inside, volumes_ / volumeName, error);
  inserted_.push_back(*disc);
  return Reply::inserted;
}

// Discs may share a name, so the first of them that was not in yet.
std::optional<std::size_t> DiscTray::nextDisc(const std::string& volumeName) const {
  for (std::size_t i = 0; i < discs_.size(); ++i) {
    if (discs_[i].volumeName == volumeName &&
        std::find(inserted_.begin(), inserted_.end(), i) == inserted_.end()) {
      return i;
    }
  }
  return std::nullopt;
}

}  // namespace tavenhall
