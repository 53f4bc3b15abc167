#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavenhall {

// The volume that an alert of the page asks for, as the name below /Volumes; nothing for other alerts.
[[nodiscard]] std::optional<std::string> volumeAskedFor(std::string_view message, std::string_view informative);

// The one drive of a rehearsal. A disc goes in only after the page has asked for it, as a link in the
// sandbox's /Volumes to the place where the disc is bound; the eject command takes the link away.
class DiscTray {
 public:
  struct Disc {
    std::string volumeName;
    std::string inside;  // where the sandbox sees it
  };

  // `volumes` is the sandbox's /Volumes, seen from outside; the discs come in the set's order. A disc is in
  // after its volume was asked for `late` times more than once.
  DiscTray(std::filesystem::path volumes, std::vector<Disc> discs, int late);

  enum class Reply {
    inserted,     // the disc is in now
    notYet,       // it comes later
    notAccepted,  // it was in already: the page finds no data folder on it
    noSuchDisc    // the set has no further disc of that name
  };

  // The page asks for a volume.
  [[nodiscard]] Reply ask(const std::string& volumeName);

  // The discs that went in, as indices into the set's, in order.
  [[nodiscard]] const std::vector<std::size_t>& inserted() const { return inserted_; }

 private:
  [[nodiscard]] std::optional<std::size_t> nextDisc(const std::string& volumeName) const;

  std::filesystem::path volumes_;
  std::vector<Disc> discs_;
  int late_;
  int timesAsked_ = 0;  // since the last disc went in
  std::vector<std::size_t> inserted_;
};

}  // namespace tavenhall
