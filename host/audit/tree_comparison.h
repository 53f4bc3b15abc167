#pragma once

#include "host/audit/audit.h"
#include "host/base/mutex.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unordered_set>
#include <vector>

namespace tavenhall {

// What one thread has found in a tree.
struct ComparedTree {
  AuditCounts counts;
  std::uint64_t listing = 0;  // a digest of the source's names and sizes, whatever their order
  std::vector<Audit::Installed> installed;
  std::vector<Audit::Suspect> suspects;
};

// Which file this is, as one number.
[[nodiscard]] std::uint64_t identityOf(const struct stat& found);

// Compares one copied tree with its source, folder by folder, on up to two threads. Use it once.
class TreeComparison {
 public:
  // The arguments must live as long as this object. `copy` distinguishes this tree's sources from those of
  // other trees, since the next disc may use the same numbers.
  TreeComparison(const std::unordered_set<std::string>& refused, const Audit::Report& report,
                 std::uint64_t copy)
      : refused_(refused), report_(report), copy_(copy) {}

  // What each of the two threads has found.
  [[nodiscard]] std::array<ComparedTree, 2> run(const std::string& source, const std::string& destination);

 private:
  // A folder of both trees that is still to be compared.
  struct Folder {
    std::string source;
    std::string destination;
    bool isBehindLink = false;  // a folder above it, below the destination's top, is a link
  };

  // A folder whose entries are being compared.
  struct OpenFolder {
    const Folder& paths;
    int source;  // descriptors; -1: it could not be opened
    int destination;
    std::uint64_t destinationHash;  // of the path
    bool isSkipped;                 // the page skips all files in it
  };

  void work(ComparedTree& found);
  void compareFolder(const Folder& folder, ComparedTree& found);
  void compareFile(const OpenFolder& folder, const char* name, ComparedTree& found);
  void add(Folder folder);
  void fail(const AuditFailure& failure, ComparedTree& found);

  const std::unordered_set<std::string>& refused_;
  const Audit::Report& report_;
  const std::uint64_t copy_;

  Mutex mutex_;  // held for calls of report_, too
  Condition changed_;
  std::vector<Folder> pending_ GUARDED_BY(mutex_);
  int busy_ GUARDED_BY(mutex_) = 0;  // threads that compare a folder, and may add others
};

}  // namespace tavenhall
