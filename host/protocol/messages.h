#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// The events that an engine reports to its frontend. Those of one run, in order:
//
//   Warning                     before all others
//   Title                       any time, in reply to Command::title
//   PreviousEnabled ... Sheet   while the page is entered and while its threads run; each CopyEnd is followed
//                               by the failures of its audit and by the Audit
//   Entered                     in reply to Command::enter, when the page's entry has returned
//   Idle                        in reply to Command::wait, when every page thread has ended
//   Exit                        in reply to Command::forward and Command::back
//   Summary                     last; nothing follows
//
// A frontend that attaches to a running engine gets Attached, then the past events that still matter, each
// after a Past, then Present, and from there on the same as every other frontend.
//
// protocol/json_form.h has their public form. Texts are the page's own, with its blanks and percent signs.
//
// A frontend sends requests to an engine; they are at the end of this file.
namespace tavenhall::event {

// The progress of the copy. Zero and empty until the first file.
struct CopyState {
  std::int32_t volume = 0;       // from 1; 0 before the first
  std::int32_t volumeCount = 0;  // of the running pass
  std::int64_t bytesWritten = 0;
  std::int64_t filesDone = 0;
  std::string file;  // the latest file, as a path at the source

  bool operator==(const CopyState&) const = default;
};

struct Title {
  std::string text;
};
struct Entered {};
struct Idle {};
struct Exit {
  std::int64_t direction = 0;  // kDirectionForward or kDirectionBackward
  bool isAllowed = false;
};

// The installer's own buttons.
struct PreviousEnabled {
  bool isEnabled = false;
};
struct NextEnabled {
  bool isEnabled = false;
};

// The page's large text, and the line under its bar. A status of a single blank clears the line.
struct Instructions {
  std::string text;
};
struct Status {
  std::string text;
};

// The bar. It goes from 0 to 100 until the page sets its range; then its unit is 1024 bytes.
struct ProgressMinimum {
  double value = 0.0;
};
struct ProgressMaximum {
  double value = 0.0;
};
struct ProgressValue {
  double value = 0.0;
  CopyState copy;
};

// The copy of one folder tree: a volume, one library of it, or a folder beside the package.
struct CopyBegin {
  std::string source;
  std::string destination;  // empty where there is none, so that nothing is copied
  std::int32_t volume = 0;  // from 1; 0 for a folder beside the package
  std::int32_t volumeCount = 0;
};
struct CopyEnd {
  std::string source;
  std::string destination;
  bool isCopied = false;          // the page's own result: no file failed to open
  std::int64_t bytesWritten = 0;  // by this copy
  std::int64_t filesDone = 0;
};

// The host's own comparison of a copied tree with its source, after CopyEnd. Volumes as in CopyBegin.
struct Audit {
  std::string source;
  std::string destination;
  std::int32_t volume = 0;
  std::int64_t files = 0;  // installed: type and size are right
  std::int64_t folders = 0;
  std::int64_t bytes = 0;    // of these files
  std::int64_t skipped = 0;  // entries that the page does not install by design
  std::int64_t failures = 0;

  // Nothing that was installed is no success.
  [[nodiscard]] bool isClean() const { return failures == 0 && files > 0; }
};

// An entry of the tree that is not installed as it should be; before the tree's Audit.
struct AuditFailure {
  std::string problem;  // a name for programs; docs/protocol.md lists them
  std::string source;
  std::string destination;
  std::int32_t volume = 0;
  std::string detail;  // the reason, in English; may be empty
};

// What the install does from now on. Before the Alert, CopyBegin or audit that it stands for.
struct Phase {
  enum class Kind {
    waiting,   // for the user's answer to an alert
    looking,   // for the disc: the page waits `seconds` before it looks
    notFound,  // waiting again, since the disc was not there
    copying,
    checking,  // the copy is compared with its source
    ejecting,  // the disc
  };

  Kind kind = Kind::waiting;
  std::int32_t volume = 0;       // from 1; 0 for a folder beside the package
  std::int32_t volumeCount = 0;  // 0 until the page has read the first disc
  std::string disc;              // the name of the volume's disc; empty where it comes from no disc
  std::int64_t seconds = 0;
};

// The page waits for an Answer: kAlertFirstButtonReturn for the first button, and on from there.
struct Alert {
  std::string message;
  std::string informative;
  std::vector<std::string> buttons;
  int style = 0;
  std::int64_t number = 0;  // from 1 in each run
};

// The alert was answered, by whichever frontend came first or by the engine itself.
struct Answered {
  std::int64_t number = 0;  // of the alert
  int button = 0;           // as in Answer
};

// A failure. The page does not wait.
struct Sheet {
  std::string button;
  std::string message;
  std::string file;  // that was being copied, at its source; empty where none was
};

// The page takes and releases a power assertion.
struct Assertion {
  std::string type;
  std::uint32_t level = 0;
  std::string name;
};
struct AssertionRelease {
  std::string type;
};

// Something that a frontend for people would refuse to install.
struct Warning {
  std::string message;  // in English
};

// A request that is not valid.
struct Error {
  std::string message;
};

// What is known of a run before it begins. Empty or 0 where it is not known.
struct RunFacts {
  std::string package;      // its path
  std::string product;      // its name
  std::string edition;      // "Lite" or "Full", where there is a choice
  std::string destination;  // the data folder
  std::int32_t volumes = 0;
  std::string log;      // the path of the installation log
  std::string started;  // ISO 8601, UTC
  std::string version;  // of this program
};

// The run that a frontend has attached to.
struct Attached {
  RunFacts facts;
  bool barWraps = false;          // as an updater's does: no percentage for the whole
  bool takesAnswers = false;      // false: another program, or the engine itself, answers
  std::optional<double> seconds;  // since the page was entered; none: it was not yet
};

// The next event is from so many seconds ago.
struct Past {
  double seconds = 0.0;
};

// The past ends here.
struct Present {};

// A volume or folder that the install consists of and that is not copied to its end.
struct Remaining {
  std::string source;       // a path
  std::int32_t volume = 0;  // from 1; 0 for a folder beside the package
};

// The result of the run.
struct Summary {
  struct ShownAlert {
    Alert alert;
    int answer = 0;  // 0: none was given
  };

  bool hasLeft = false;  // the page let itself be left forwards
  std::int32_t ready = 0;
  std::int32_t mode = 0;
  double seconds = 0.0;           // of the whole run
  std::int64_t kBytesCopied = 0;  // the page's own count, in units of 1024 bytes with each chunk rounded down
  std::int64_t bytesWritten = 0;
  std::int64_t filesDone = 0;
  std::vector<double> copySeconds;  // of each copy thread, with its audit
  double copyingSeconds = 0.0;      // of the whole run: time in which files were copied,
  double waitingSeconds = 0.0;      // in which the page waited for the user and for discs,
  double checkingSeconds = 0.0;     // and in which copies were compared with their sources
  std::vector<ShownAlert> alerts;
  std::vector<Sheet> sheets;

  bool isInstalled = false;  // the verdict: every audit is clean, and the page refused nothing and was left
  Audit audit;               // the sums of all audits since the page was entered last; its texts are empty

  int status = 0;      // ExitStatus; of the install, also where the process's is the protocol's
  std::string reason;  // why it is not 0, in a line
  std::vector<AuditFailure> failedFiles;  // the first kMostFailedFiles
  std::vector<Remaining> remaining;       // where the run was stopped
  RunFacts facts;

  static constexpr std::size_t kMostFailedFiles = 1000;
};

}  // namespace tavenhall::event

namespace tavenhall {

using Event = std::variant<event::Title, event::Entered, event::Idle, event::Exit, event::PreviousEnabled,
                           event::NextEnabled, event::Instructions, event::Status, event::ProgressMinimum,
                           event::ProgressMaximum, event::ProgressValue, event::CopyBegin, event::CopyEnd,
                           event::Audit, event::AuditFailure, event::Phase, event::Alert, event::Answered,
                           event::Sheet, event::Assertion, event::AssertionRelease, event::Warning,
                           event::Error, event::Attached, event::Past, event::Present, event::Summary>;

// Builds a visitor from lambdas, one for each kind of event that matters and a generic one for the rest.
template <typename... Handlers>
struct EventVisitor : Handlers... {
  using Handlers::operator()...;
};
template <typename... Handlers>
EventVisitor(Handlers...) -> EventVisitor<Handlers...>;

// ---- Requests. Commands form one queue and are performed one after the other; answers form a queue of their
// ---- own, so an answer may be sent before its alert

enum class Command {
  title,      // report the page's title
  enter,      // enter the page, once no page thread runs; this starts an install
  wait,       // report when no page thread runs
  forward,    // ask to leave the page forwards
  back,       // ask to leave the page backwards
  quit,       // end the engine, also while an install runs
  stop,       // end the engine once no file is half copied; not in the queue, but at once
  noAnswers,  // no answer will come from here; an alert that nobody else can answer ends the engine. At once,
              // too
};

// The answer to an alert: kAlertFirstButtonReturn for its first button, and on from there.
struct Answer {
  int button = 0;
  std::int64_t alert =
      0;  // its number; any other alert ignores the answer. 0: the alert that is up, or the next
};

using Request = std::variant<Command, Answer>;

}  // namespace tavenhall
