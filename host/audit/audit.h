#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

// Compares what the page has copied with its source: every entry that the page should have installed must be
// there, with the right type and size. Contents are not compared.
namespace tavenhall {

enum class AuditProblem {
  noDestination,  // there is no folder to install to
  sameSource,     // an earlier copy of this install had the same source folder
  notListed,      // a folder of the source cannot be listed, so its content is unknown
  notReadable,    // the source is not a file that can be read
  folderAsFile,   // a link to a folder, which the page copies as an empty file
  skipped,        // the page skips every file below a path with the attributes file's name in it
  missing,        // nothing is at the destination
  refused,        // the page could not write the file
  wrongType,      // a file where a folder should be, or the other way round
  wrongSize,
  sharedFile,  // one file with another installed entry, so that only one of the two has its contents
  isSource,    // the destination is a link to the source: nothing was copied
};

struct AuditFailure {
  AuditProblem problem = AuditProblem::missing;
  std::string source;
  std::string destination;           // empty with noDestination
  int error = 0;                     // errno of the call that failed; 0 if none did
  std::int64_t sourceSize = 0;       // bytes; with wrongSize
  std::int64_t destinationSize = 0;  // likewise
};

struct AuditCounts {
  std::int64_t files = 0;  // installed: type and size are right
  std::int64_t folders = 0;
  std::int64_t bytes = 0;    // of these files
  std::int64_t skipped = 0;  // entries that the page does not install by design: hidden names, attributes files
  std::int64_t failures = 0;

  AuditCounts& operator+=(const AuditCounts& other);
};

// The audit of one install. One thread at a time.
class Audit {
 public:
  // Called for each failure while compare() runs, on one thread at a time, which need not be the caller's.
  using Report = std::function<void(const AuditFailure&)>;

  explicit Audit(Report report) : report_(std::move(report)) {}

  // The page has reported a failure of this file, by its path at the source. Call it before compare().
  void addRefusal(const std::string& source) { refused_.insert(source); }

  // Compares a copied tree with its source, which must still be mounted. `destination` may be null: there is
  // none. Takes the time of reading both trees' names and sizes, on two threads if the tree has several
  // folders. Memory: 24 bytes for each file of the install.
  AuditCounts compare(const char* source, const char* destination);

  // An installed file: which file it is, what it was copied from, and the hash of its path.
  struct Installed {
    std::uint64_t file;
    std::uint64_t source;
    std::uint64_t path;
  };

  // A file that may be installed under another name too: it is reached through a link, or has several names.
  struct Suspect {
    Installed entry;
    std::string source;
    std::string destination;
    bool isReported = false;
  };

 private:
  struct CopiedFolder {
    std::uint64_t folder;
    std::uint64_t listing;  // a digest of the names and sizes below it
  };

  [[nodiscard]] std::int64_t reportSharedFiles();

  Report report_;
  std::unordered_set<std::string> refused_;
  std::uint64_t copies_ = 0;
  std::vector<CopiedFolder> copied_;
  std::vector<Installed> installed_;
  std::vector<Suspect> suspects_;
};

}  // namespace tavenhall
