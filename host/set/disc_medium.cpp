#include "host/set/disc_medium.h"

#include "host/base/exit_status.h"
#include "host/base/text.h"

#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <string_view>

namespace tavenhall {

namespace {

struct KnownMedium {
  const char* name;
  const char* shownName;
  std::int64_t capacity;
};

// Of the two kinds of recordable DVD the smaller: DVD+R with 2,295,104 sectors of 2,048 bytes, DVD-R DL with
// 4,171,712. BD-R without spare areas: 12,219,392 and 24,438,784 sectors.
constexpr std::array<KnownMedium, 4> kKnownMedia{{{"dvd5", "DVD-5", 4700372992},
                                                  {"dvd9", "DVD-9", 8543666176},
                                                  {"bd25", "BD-25", 25025314816},
                                                  {"bd50", "BD-50", 50050629632}}};

constexpr std::int64_t kSmallest = 10000000;  // bytes; below, what the file system takes is most of it

// Upper bounds of what xorriso 1.5.4 needs in an image with Rock Ridge, Joliet and HFS+. Measured with trees of
// 1 to 23,000 entries and names of 5 to 106 bytes: an empty image has 391,168 bytes, a file of a short name
// adds 521, of 106 bytes 1,290; a folder 4,275 to 4,780. HFS+ has a bit for each block of 2,048 bytes.
constexpr DiscSpace kOptical{0, 2048, 500, 10, 4096};
constexpr std::int64_t kOpticalFixed = 524288;

// exFAT in clusters of 128 KiB, which drives over 32 GB are formatted with: a folder has a cluster at least, a
// name two records of 32 bytes and one more for each 15 characters. Measured with mkfs.exfat 1.2.0: of a volume
// of 64 GB 3.2 MB are not clusters, 2 MB of them for each cluster's number of 4 bytes.
constexpr DiscSpace kFlash{0, 131072, 96, 3, 131072};
constexpr std::int64_t kFlashFixed = 4194304;

constexpr std::int64_t kCapacityPerFixedByte = 16384;

std::int64_t nameBytes(std::string_view path, const DiscSpace& space) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  return space.perEntry + space.perNameByte * static_cast<std::int64_t>(name.size());
}

}  // namespace

std::int64_t fileBytesOnDisc(std::string_view path, std::int64_t size, const DiscSpace& space) {
  return (size + space.block - 1) / space.block * space.block + nameBytes(path, space);
}

std::int64_t folderBytesOnDisc(std::string_view path, const DiscSpace& space) {
  return space.perFolder + nameBytes(path, space);
}

DiscSpace DiscMedium::space(std::int64_t reserve) const {
  DiscSpace space = isOptical ? kOptical : kFlash;
  space.capacity =
      capacity - (isOptical ? kOpticalFixed : kFlashFixed) - capacity / kCapacityPerFixedByte - reserve;
  return space;
}

std::int64_t bytesFromText(const std::string& text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const std::string_view unit(end, static_cast<std::size_t>(text.data() + text.size() - end));
  std::int64_t factor = 1;
  bool isKnown = unit.empty();
  for (const char* const known : {"k", "m", "g", "t"}) {
    factor = isKnown ? factor : factor * 1000;
    isKnown = isKnown || unit == known;
  }
  if (error != std::errc() || !isKnown || number <= 0 ||
      number > std::numeric_limits<std::int64_t>::max() / factor) {
    throw UsageError(format(_("{0} is no size: write bytes, or a number with k, m, g or t"), {text}));
  }
  return number * factor;
}

DiscMedium discMedium(const std::string& name) {
  for (const KnownMedium& known : kKnownMedia) {
    if (name == known.name) {
      return {name, known.shownName, known.capacity, true};
    }
  }
  constexpr std::string_view kUsb = "usb:";
  const bool isOptical = !name.starts_with(kUsb);
  const std::int64_t capacity = bytesFromText(isOptical ? name : name.substr(kUsb.size()));
  if (capacity < kSmallest) {
    throw UsageError(format(_("a disc of {0} is too small; the smallest has {1}"),
                            {sizeText(capacity), sizeText(kSmallest)}));
  }
  return {name, format(isOptical ? _("disc of {0}") : _("flash drive of {0}"), {sizeText(capacity)}), capacity,
          isOptical};
}

}  // namespace tavenhall
