#pragma once

#include "host/base/text.h"
#include "host/protocol/messages.h"
#include "host/ui/styled_text.h"
#include "host/ui/terminal_notices.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// The first page: what will be installed, from where, to where, and whether the disk has room for it.
namespace tavenhall {

struct Introduction {
  std::string productName;
  std::string pageTitle;
  std::string what;               // a sentence
  std::vector<std::string> from;  // discs and folders
  std::vector<std::string> to;    // folders
  std::string destination;        // the data folder, for later texts
  bool isDestinationThere = true;
  std::optional<std::int64_t> neededBytes;  // none: not announced
  std::optional<std::int64_t> freeBytes;    // none: unknown
  bool barWraps = false;

  [[nodiscard]] bool isRoomShort() const { return neededBytes && freeBytes && *freeBytes < *neededBytes; }
};

// The page's text, `width` cells wide.
[[nodiscard]] std::vector<Line> introductionLines(const Introduction& introduction, int width);

// "The data takes 1.2 GB, and the disk has 300.0 MB free."; only where the room is short.
[[nodiscard]] std::string shortRoomText(const Introduction& introduction);

// What a frontend presents of a run beyond the engine's events.
struct RunDescription {
  Introduction introduction;
  std::string log;  // the path of the installation log, as the user is shown it; empty: it is not shown
  std::int64_t logStart =
      -1;  // its size before the run, in bytes; -1: it is shown whether or not it was written
  std::string afterStop =
      _("The files copied so far are kept. Run the installer again to complete the installation.");

  bool isUnattended = false;                // the frontend must not ask
  NoticeAbilities notices;                  // of the terminal, as far as the user wants them
  std::optional<event::Attached> attached;  // the run that the frontend has attached to
  bool asksFirst = false;  // plain lines instead of the terminal page: the introduction waits for Continue

  // Call it before the engine is started.
  void watchLog(std::string path);

  // `log`, if this run has written to it; else empty.
  [[nodiscard]] std::string writtenLog() const;
};

}  // namespace tavenhall
