#pragma once

#include "host/set/install_plan.h"
#include "host/ui/styled_text.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// What the first page says: what will be installed, from where and to where, and whether there is room.
namespace tavenhall {

struct Introduction {
  std::string productName;
  std::string pageTitle;
  std::string what;               // a sentence
  std::vector<std::string> from;  // discs and folders
  std::vector<std::string> to;    // folders
  std::string destination;        // the data's, for later texts
  bool isDestinationThere = true;
  std::optional<std::int64_t> neededBytes;  // none: not announced
  std::optional<std::int64_t> freeBytes;    // none: the disk does not say
  bool barWraps = false;

  [[nodiscard]] bool isRoomShort() const { return neededBytes && freeBytes && *freeBytes < *neededBytes; }
};

// What is free for this user on the disk that holds `path`, or would hold it: that of the nearest folder
// above that is there. None where the system does not say. Any thread.
[[nodiscard]] std::optional<std::int64_t> freeBytesAt(const std::string& path);

using FreeBytes = std::function<std::optional<std::int64_t>(const std::string& path)>;

[[nodiscard]] Introduction introduce(const InstallPlan& plan, const FreeBytes& freeBytes);

// The page's text, `width` cells wide.
[[nodiscard]] std::vector<Line> introductionLines(const Introduction& introduction, int width);

// "The data takes 1.2 GB, and the disk has 300.0 MB free."; only where the room is short.
[[nodiscard]] std::string shortRoomText(const Introduction& introduction);

}  // namespace tavenhall
