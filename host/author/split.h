#pragma once

#include "host/author/disc_layout.h"
#include "host/author/library.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/set/disc_medium.h"
#include "host/set/install_plan.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tavenhall {

struct SplitRequest {
  std::filesystem::path library;
  std::filesystem::path set;  // made by `new` for discs
  std::string product;        // empty: the set's own
  DiscMedium medium;
  std::int64_t reserve = 0;           // bytes left free on each disc
  std::vector<std::string> fullOnly;  // paths in the library that a Lite edition does not have
  bool hasManifest = false;           // leaves room for it
};

// A library on discs, before anything is written.
struct Split {
  struct SplitDisc {
    std::string name;              // as the page looks for it
    std::filesystem::path folder;  // in the set
    std::vector<LibraryEntry> entries;
    std::int64_t bytes = 0;        // of the files
    std::int64_t bytesOnDisc = 0;  // with what the file system takes
  };

  SourceLibrary library;
  DiscMedium medium;
  std::filesystem::path set;  // its folder
  std::filesystem::path attributesFile;
  std::string attributes;  // what will be in it
  std::vector<SplitDisc> discs;
  std::int64_t room = 0;           // bytes of each disc, for bytesOnDisc
  std::size_t fewestPossible = 0;  // discs
  std::vector<std::string> dividedFolders;
  std::vector<std::filesystem::path> replaced;  // discs with nothing but placeholders
};

// What stands in the way, a sentence and its paths each, in lines.
class CannotSplit : public UsageError {
 public:
  explicit CannotSplit(std::vector<std::string> problems)
      : UsageError(_("the library cannot be put on these discs; nothing was written")),
        problems_(std::move(problems)) {}

  [[nodiscard]] const std::vector<std::string>& problems() const { return problems_; }

 private:
  std::vector<std::string> problems_;
};

// Keeps two splits of one set apart, until destruction or the end of the process: a lock on the set's folder
// itself, so nothing is left behind. On a file system without locks nothing keeps them apart.
class SplitLock {
 public:
  // Throws UsageError if another one has the lock. Without a folder there is nothing to be locked.
  explicit SplitLock(const std::filesystem::path& set);
  SplitLock(const SplitLock&) = delete;
  SplitLock& operator=(const SplitLock&) = delete;
  ~SplitLock();

 private:
  int folder_;
};

// The set must be one for discs whose own hold placeholders at most. Throws
// CannotSplit, or UsageError where there is no such set or library.
[[nodiscard]] Split planSplit(const SplitRequest& request);

enum class SplitMethod {
  linkOrCopy,  // a hard link where the file system of the set is the library's
  link,
  copy,
};

// Makes the discs, and then writes the attributes file. `progress` gets the bytes of the files that are done,
// and may throw Stopped, which is passed on when the set is as it was. Throws UsageError; the set then has its
// placeholders still, unless it was the last step that failed.
void makeDiscs(const Split& split, SplitMethod method, const std::function<void(std::int64_t)>& progress);

}  // namespace tavenhall
