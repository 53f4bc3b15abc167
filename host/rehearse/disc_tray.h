#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavenhall {

// Returns the name below /Volumes of the volume that an alert of the page asks for; nothing for other alerts.
[[nodiscard]] std::optional<std::string> volumeAskedFor(std::string_view message, std::string_view informative);

// The disc drive of a rehearsal. Inserts a disc after the page has asked for it, by a link in the sandbox's
// /Volumes to the disc's bind mount; the eject command removes the link.
class DiscTray {
 public:
  struct Disc {
    std::string volumeName;
    std::string inside;  // its path in the sandbox
  };

  // `volumes` is the real path of the sandbox's /Volumes; the discs are in the set's order. A disc is reported
  // missing `late` times before it is inserted.
  DiscTray(std::filesystem::path volumes, std::vector<Disc> discs, int late);

  enum class Reply {
    inserted,     // the disc is now inserted
    notYet,       // the disc is reported missing
    notAccepted,  // it was inserted already: the page finds no data folder on it
    noSuchDisc    // the set has no further disc of that name
  };

  // The page asks for a volume.
  [[nodiscard]] Reply ask(const std::string& volumeName);

  // The inserted discs in order, as indices into the set's discs.
  [[nodiscard]] const std::vector<std::size_t>& inserted() const { return inserted_; }

 private:
  [[nodiscard]] std::optional<std::size_t> nextDisc(const std::string& volumeName) const;

  std::filesystem::path volumes_;
  std::vector<Disc> discs_;
  int late_;
  int timesAsked_ = 0;  // since the last disc was inserted
  std::vector<std::size_t> inserted_;
};

}  // namespace tavenhall
