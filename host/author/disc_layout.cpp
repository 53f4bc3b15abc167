#include "host/author/disc_layout.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <string_view>

namespace tavenhall {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

std::string_view folderOf(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

// By the parts of the path, so that all that is in a folder is together.
bool isBefore(const std::string& left, const std::string& right) {
  return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
    const auto rank = [](char c) { return c == '/' ? 0 : 1 + static_cast<unsigned char>(c); };
    return rank(a) < rank(b);
  });
}

struct Folder {
  std::string_view path;
  std::size_t parent = kNone;
  std::size_t begin = 0;  // its entries, in their order by path
  std::size_t end = 0;
  std::int64_t bytes = 0;  // of all that is in it, and its own
  std::int64_t own = 0;
  std::int64_t above = 0;  // those of the folders above it
  bool isDivided = false;
};

// What goes on a disc as a whole: a folder, or one entry.
struct Unit {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::int64_t bytes = 0;
  std::size_t parent = kNone;  // the folder that it is in
  std::size_t folder = kNone;  // itself, if it is one
};

struct OpenDisc {
  std::vector<Unit> units;
  std::vector<bool> hasFolder;
  std::int64_t bytes = 0;
};

class Library {
 public:
  Library(std::span<const LibraryEntry> entries, const DiscSpace& space)
      : entries_(entries), space_(space), order_(entries.size()) {
    std::iota(order_.begin(), order_.end(), 0U);
    std::sort(order_.begin(), order_.end(), [&](std::size_t left, std::size_t right) {
      return isBefore(entries_[left].path, entries_[right].path);
    });
    parents_.reserve(order_.size());
    for (std::size_t at = 0; at < order_.size(); ++at) {
      const LibraryEntry& entry = entries_[order_[at]];
      const std::size_t parent = folderAt(folderOf(entry.path), at);
      parents_.push_back(parent);
      for (std::size_t folder = parent; folder != kNone; folder = folders_[folder].parent) {
        folders_[folder].end = at + 1;
        folders_[folder].bytes += bytesOnDisc(entry, space_);
      }
    }
    for (std::size_t index = folders_.size(); index-- > 0;) {  // the outer ones are first
      for (std::size_t above = folders_[index].parent; above != kNone; above = folders_[above].parent) {
        folders_[above].bytes += folders_[index].own;
      }
    }
  }

  // A lower bound: that of Martello and Toth for the entries alone, or what all needs together.
  [[nodiscard]] std::size_t fewestPossible() const {
    std::vector<std::int64_t> sizes;
    std::int64_t all = 0;
    sizes.reserve(entries_.size());
    for (const LibraryEntry& entry : entries_) {
      sizes.push_back(bytesOnDisc(entry, space_));
      all += sizes.back();
    }
    for (const Folder& folder : folders_) {
      all += folder.own;
    }
    std::sort(sizes.rbegin(), sizes.rend());
    std::vector<std::int64_t> sums(sizes.size() + 1, 0);
    std::partial_sum(sizes.begin(), sizes.end(), sums.begin() + 1);
    const std::int64_t capacity = space_.capacity;
    const auto countAbove = [&](std::int64_t limit) {
      return std::partition_point(sizes.begin(), sizes.end(),
                                  [limit](std::int64_t size) { return size > limit; }) -
             sizes.begin();
    };
    std::int64_t most = discsFor(all);
    const auto large = countAbove(capacity / 2);  // no two of these go together
    for (auto last = static_cast<std::size_t>(large); last < sizes.size(); ++last) {
      // The entries as small as this one fit only beside those of the large ones that leave room for them.
      const auto alone = static_cast<std::size_t>(countAbove(capacity - sizes[last]));
      const auto beside = static_cast<std::size_t>(large) - alone;
      const std::int64_t room =
          static_cast<std::int64_t>(beside) * capacity - (sums[static_cast<std::size_t>(large)] - sums[alone]);
      const std::int64_t small = sums[last + 1] - sums[static_cast<std::size_t>(large)];
      most = std::max(most, large + discsFor(std::max<std::int64_t>(0, small - room)));
    }
    return static_cast<std::size_t>(std::max<std::int64_t>(most, large));
  }

  // Each unit, the largest first, to the disc that it fills best.
  [[nodiscard]] std::vector<OpenDisc> pack() const {
    std::vector<OpenDisc> discs;
    for (const Unit& unit : units()) {
      OpenDisc* best = nullptr;
      std::int64_t most = 0;
      for (OpenDisc& disc : discs) {
        const std::int64_t bytes = disc.bytes + added(unit, disc);
        if (bytes <= space_.capacity && bytes > most) {
          best = &disc;
          most = bytes;
        }
      }
      if (best == nullptr) {
        best = &discs.emplace_back(emptyDisc());
      }
      add(unit, *best);
    }
    return discs;
  }

  // Lets the largest folders be divided that are not. Returns false if there is none.
  bool divide(std::size_t count) {
    std::size_t divided = 0;
    for (const Unit& unit : units()) {
      if (unit.folder != kNone && divided < count) {
        folders_[unit.folder].isDivided = true;
        ++divided;
      }
    }
    return divided > 0;
  }

  [[nodiscard]] DiscLayout layout(std::vector<OpenDisc> discs, std::size_t fewestPossible) const {
    DiscLayout layout;
    layout.fewestPossible = fewestPossible;
    for (OpenDisc& disc : discs) {
      std::sort(disc.units.begin(), disc.units.end(),
                [](const Unit& left, const Unit& right) { return left.begin < right.begin; });
    }
    std::sort(discs.begin(), discs.end(), [](const OpenDisc& left, const OpenDisc& right) {
      return left.units.front().begin < right.units.front().begin;
    });
    for (const OpenDisc& disc : discs) {
      DiscLayout::DiscPart& part = layout.discs.emplace_back();
      part.bytes = disc.bytes;
      for (const Unit& unit : disc.units) {
        part.entries.insert(part.entries.end(), order_.begin() + static_cast<std::ptrdiff_t>(unit.begin),
                            order_.begin() + static_cast<std::ptrdiff_t>(unit.end));
      }
    }
    for (std::size_t index = 0; index < folders_.size(); ++index) {
      const auto holders = std::count_if(discs.begin(), discs.end(),
                                         [index](const OpenDisc& disc) { return disc.hasFolder[index]; });
      if (holders > 1 && fits(folders_[index])) {
        layout.dividedFolders.emplace_back(folders_[index].path);
      }
    }
    return layout;
  }

 private:
  [[nodiscard]] std::int64_t discsFor(std::int64_t bytes) const {
    return (bytes + space_.capacity - 1) / space_.capacity;
  }

  // The folder of that path, made where it is missing; `at` is its first entry then.
  std::size_t folderAt(std::string_view path, std::size_t at) {
    if (path.empty()) {
      return kNone;
    }
    if (const auto found = byPath_.find(path); found != byPath_.end()) {
      return found->second;
    }
    Folder folder;
    folder.path = path;
    folder.parent = folderAt(folderOf(path), at);
    folder.begin = at;
    folder.own = folderBytesOnDisc(path, space_);
    folder.bytes = folder.own;
    folder.above = folder.parent == kNone ? 0 : folders_[folder.parent].above + folders_[folder.parent].own;
    folders_.push_back(folder);
    byPath_.emplace(path, folders_.size() - 1);
    return folders_.size() - 1;
  }

  [[nodiscard]] bool fits(const Folder& folder) const { return folder.above + folder.bytes <= space_.capacity; }

  // Whether what is in it goes on discs by itself.
  [[nodiscard]] bool isOpen(std::size_t index) const {
    return folders_[index].isDivided || !fits(folders_[index]);
  }

  // What goes on a disc as a whole, the largest first.
  [[nodiscard]] std::vector<Unit> units() const {
    std::vector<Unit> units;
    for (std::size_t at = 0; at < order_.size();) {
      std::size_t outermost = kNone;
      for (std::size_t folder = parents_[at]; folder != kNone; folder = folders_[folder].parent) {
        outermost = isOpen(folder) ? outermost : folder;
      }
      if (outermost == kNone) {
        units.push_back({at, at + 1, bytesOnDisc(entries_[order_[at]], space_), parents_[at]});
        ++at;
      } else {
        const Folder& folder = folders_[outermost];
        units.push_back({folder.begin, folder.end, folder.bytes, folder.parent, outermost});
        at = folder.end;
      }
    }
    std::stable_sort(units.begin(), units.end(),
                     [](const Unit& left, const Unit& right) { return left.bytes > right.bytes; });
    return units;
  }

  [[nodiscard]] OpenDisc emptyDisc() const {
    OpenDisc disc;
    disc.hasFolder.resize(folders_.size());
    return disc;
  }

  // With the folders above it that the disc does not have yet.
  [[nodiscard]] std::int64_t added(const Unit& unit, const OpenDisc& disc) const {
    std::int64_t bytes = unit.bytes;
    for (std::size_t folder = unit.parent; folder != kNone && !disc.hasFolder[folder];
         folder = folders_[folder].parent) {
      bytes += folders_[folder].own;
    }
    return bytes;
  }

  void add(const Unit& unit, OpenDisc& disc) const {
    disc.bytes += added(unit, disc);
    disc.units.push_back(unit);
    for (std::size_t folder = unit.parent; folder != kNone && !disc.hasFolder[folder];
         folder = folders_[folder].parent) {
      disc.hasFolder[folder] = true;
    }
  }

  const std::span<const LibraryEntry> entries_;
  const DiscSpace space_;
  std::vector<std::size_t> order_;    // the entries by path
  std::vector<std::size_t> parents_;  // the folder of each, in that order
  std::vector<Folder> folders_;
  std::map<std::string_view, std::size_t> byPath_;
};

}  // namespace

std::int64_t bytesOnDisc(const LibraryEntry& entry, const DiscSpace& space) {
  return entry.isFolder ? folderBytesOnDisc(entry.path, space) : fileBytesOnDisc(entry.path, entry.size, space);
}

bool fitsOnDisc(const LibraryEntry& entry, const DiscSpace& space) {
  std::int64_t bytes = bytesOnDisc(entry, space);
  for (std::string_view folder = folderOf(entry.path); !folder.empty(); folder = folderOf(folder)) {
    bytes += folderBytesOnDisc(folder, space);
  }
  return bytes <= space.capacity;
}

DiscLayout layOut(std::span<const LibraryEntry> entries, const DiscSpace& space) {
  Library library(entries, space);
  const std::size_t fewest = library.fewestPossible();
  std::vector<OpenDisc> best = library.pack();
  for (std::size_t count = 1; best.size() > fewest + 1 && library.divide(count); count *= 2) {
    std::vector<OpenDisc> discs = library.pack();
    if (discs.size() < best.size()) {
      best = std::move(discs);
    }
  }
  return library.layout(std::move(best), fewest);
}

}  // namespace tavenhall
