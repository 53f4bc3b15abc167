#include "tests/faults/sweep_case.h"
#include "tests/support/private_root.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <poll.h>
#include <random>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

// Every call that the page makes on its files during a small install goes wrong once, in every way that it can,
// alone and together with all that follow it; and during a large one, one call of each kind by chance.
//   fault_sweep                    everything
//   fault_sweep --part 10 --seed 7 a tenth of it, the same for the same seed
//   fault_sweep --only discs:open  one scenario, or one kind of call in it
//   fault_sweep --jobs 4           so many installs at a time; each in a process and a private root of its own
// The figures go to standard output as a table, what was lost to standard error. 1: something was lost.
namespace tavenhall::test {

namespace {

struct PlannedCase {
  const SweepScenario* scenario;
  std::shared_ptr<const Undisturbed> undisturbed;
  const KindOfFault* kind;
  Fault fault;
};

struct Tally {
  int calls = 0;
  int runs = 0;
  std::map<Ending, int> endings;
};

using Tallies = std::map<std::pair<std::string, std::string>, Tally>;  // by scenario and kind

struct Options {
  int part = 1;
  unsigned seed = 1;
  int jobs = 2;
  std::string only;
};

// ---- Processes: each run enters a private root, which a process can do once ----

struct Worker {
  pid_t pid;
  int answer;  // the end of a pipe
};

Worker startWorker(const std::function<std::string()>& work) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  const pid_t pid = fork();
  if (pid < 0) {
    throw std::runtime_error("no process");
  }
  if (pid == 0) {
    close(ends[0]);
    std::string answer;
    try {
      enterPrivateRoot();
      answer = work();
    } catch (const std::exception& error) {
      answer = std::string("!") + error.what();
    }
    const bool isWritten = write(ends[1], answer.data(), answer.size()) == static_cast<ssize_t>(answer.size());
    _exit(isWritten ? 0 : 1);
  }
  close(ends[1]);
  return {pid, ends[0]};
}

std::string answerOf(const Worker& worker) {
  std::string answer;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = read(worker.answer, buffer.data(), buffer.size())) != 0;) {
    if (count > 0) {
      answer.append(buffer.data(), static_cast<std::size_t>(count));
    }
  }
  close(worker.answer);
  int status = 0;
  waitpid(worker.pid, &status, 0);
  if (answer.empty() || status != 0) {
    return "!the run's own process ended with " + std::to_string(status);
  }
  return answer;
}

// ---- The plan ----

// A line for each kind of call, then the tree.
Undisturbed undisturbedRun(const SweepScenario& scenario) {
  std::istringstream answer(answerOf(startWorker([&scenario] {
    const Undisturbed undisturbed = runUndisturbed(scenario);
    std::string lines;
    for (const int count : undisturbed.calls) {
      lines += std::to_string(count) + "\n";
    }
    for (const std::string& line : undisturbed.tree) {
      lines += line + "\n";
    }
    return lines;
  })));
  if (answer.peek() == '!') {
    throw std::runtime_error(answer.str().substr(1));
  }
  Undisturbed undisturbed;
  for (std::string line; std::getline(answer, line);) {
    if (undisturbed.calls.size() < kindsOfFaults().size()) {
      undisturbed.calls.push_back(std::stoi(line));
    } else {
      undisturbed.tree.push_back(line);
    }
  }
  return undisturbed;
}

std::vector<Fault> faultsOf(const KindOfFault& kind, int calls) {
  std::vector<Fault> faults;
  for (const Verdict& verdict : kind.verdicts) {
    for (int nth = 1; nth <= calls; ++nth) {
      faults.push_back({kind.kind, verdict, nth, false});
      if (verdict.kind != Verdict::Kind::kill) {
        faults.push_back({kind.kind, verdict, nth, true});
      }
    }
  }
  return faults;
}

// One call in each way.
std::vector<Fault> sampleOf(const KindOfFault& kind, int calls, std::mt19937& random) {
  std::vector<Fault> faults;
  for (const Verdict& verdict : kind.verdicts) {
    for (const bool isLasting : {false, true}) {
      if (!isLasting || verdict.kind != Verdict::Kind::kill) {
        faults.push_back(
            {kind.kind, verdict, 1 + static_cast<int>(random() % static_cast<unsigned>(calls)), isLasting});
      }
    }
  }
  return faults;
}

std::vector<PlannedCase> planCases(const Options& options, Tallies& tallies) {
  std::vector<PlannedCase> cases;
  std::mt19937 random(options.seed);
  for (const SweepScenario& scenario : sweepScenarios()) {
    const auto undisturbed = std::make_shared<const Undisturbed>(undisturbedRun(scenario));
    const std::vector<int>& counts = undisturbed->calls;
    for (std::size_t i = 0; i < counts.size(); ++i) {
      const KindOfFault& kind = kindsOfFaults()[i];
      const std::string name = std::string(scenario.name) + ":" + kind.name;
      if (counts[i] == 0 || !name.starts_with(options.only)) {
        continue;
      }
      tallies[{scenario.name, kind.name}].calls = counts[i];
      const std::vector<Fault> faults =
          scenario.isSampled ? sampleOf(kind, counts[i], random) : faultsOf(kind, counts[i]);
      for (const Fault& fault : faults) {
        if (random() % static_cast<unsigned>(options.part) == 0) {
          cases.push_back({&scenario, undisturbed, &kind, fault});
        }
      }
    }
  }
  return cases;
}

std::string describe(const PlannedCase& planned) {
  const Fault& fault = planned.fault;
  return std::string(planned.scenario->name) + ": " + planned.kind->name + " number " +
         std::to_string(fault.nth) + (fault.isLasting ? " and all that follow" : "") + ", " +
         verdictName(fault.verdict);
}

// ---- The run ----

class Sweep {
 public:
  explicit Sweep(const Options& options) : options_(options), cases_(planCases(options, tallies_)) {}

  int run() {
    while (next_ < cases_.size() || !running_.empty()) {
      while (next_ < cases_.size() && running_.size() < static_cast<std::size_t>(options_.jobs)) {
        const PlannedCase& planned = cases_[next_++];
        running_.push_back({&planned, startWorker([&planned] {
                              const CaseResult result =
                                  runCase(*planned.scenario, planned.fault, planned.undisturbed->tree);
                              return std::to_string(static_cast<int>(result.ending)) + " " + result.why;
                            })});
      }
      takeOneResult();
      showProgress();
    }
    printFigures();
    return lost_ == 0 ? 0 : 1;
  }

 private:
  struct Running {
    const PlannedCase* planned;
    Worker worker;
  };

  void showProgress() const {
    if (isatty(STDERR_FILENO) != 0) {
      std::fprintf(stderr, "\r%zu of %zu", next_ - running_.size(), cases_.size());
    }
  }

  void takeOneResult() {
    std::vector<pollfd> answers;
    for (const Running& running : running_) {
      answers.push_back({running.worker.answer, POLLIN, 0});
    }
    poll(answers.data(), answers.size(), -1);
    for (std::size_t i = 0; i < answers.size(); ++i) {
      if (answers[i].revents != 0) {
        const Running done = running_[i];
        running_.erase(running_.begin() + static_cast<std::ptrdiff_t>(i));
        take(*done.planned, answerOf(done.worker));
        return;
      }
    }
  }

  void take(const PlannedCase& planned, const std::string& answer) {
    const bool isAnswer = !answer.starts_with('!');
    const auto ending = isAnswer ? static_cast<Ending>(std::stoi(answer)) : Ending::lost;
    const std::string why = isAnswer ? answer.substr(answer.find(' ') + 1) : answer.substr(1);
    Tally& tally = tallies_[{planned.scenario->name, planned.kind->name}];
    ++tally.runs;
    ++tally.endings[ending];
    if (ending == Ending::lost) {
      ++lost_;
      std::fprintf(stderr, "%s: %s\n", describe(planned).c_str(), why.c_str());
    }
  }

  void printFigures() const {
    static constexpr std::array kEndings{Ending::whole,  Ending::falseAlarm, Ending::named, Ending::stopped,
                                         Ending::killed, Ending::notReached, Ending::lost};
    std::printf("| install | call | calls | errors | runs |");
    for (const Ending ending : kEndings) {
      std::printf(" %s |", endingName(ending));
    }
    std::printf("\n|---|---|---|---|---|---|---|---|---|---|---|---|\n");
    Tally all;
    for (const auto& [name, tally] : tallies_) {
      std::string errors;
      for (const KindOfFault& kind : kindsOfFaults()) {
        if (kind.name == name.second) {
          for (const Verdict& verdict : kind.verdicts) {
            errors += (errors.empty() ? "" : " ") + verdictName(verdict);
          }
        }
      }
      printRow(name.first + " | " + name.second + " | " + std::to_string(tally.calls) + " | " + errors, tally,
               kEndings);
      all.calls += tally.calls;
      all.runs += tally.runs;
      for (const auto& [ending, count] : tally.endings) {
        all.endings[ending] += count;
      }
    }
    printRow("**all** | | " + std::to_string(all.calls) + " | ", all, kEndings);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start_;
    std::printf("\n%d runs, each followed by an undisturbed one, in %.0f s; %d lost.\n", all.runs, took.count(),
                lost_);
  }

  static void printRow(const std::string& start, const Tally& tally, std::span<const Ending> endings) {
    std::printf("| %s | %d |", start.c_str(), tally.runs);
    for (const Ending ending : endings) {
      const auto count = tally.endings.find(ending);
      std::printf(" %d |", count == tally.endings.end() ? 0 : count->second);
    }
    std::printf("\n");
  }

  const Options& options_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  Tallies tallies_;
  std::vector<PlannedCase> cases_;
  std::vector<Running> running_;
  std::size_t next_ = 0;
  int lost_ = 0;
};

std::optional<Options> readOptions(int count, char** arguments) {
  Options options;
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string_view name = arguments[i];
    const std::string_view value = arguments[i + 1];
    const auto number = [value](auto& field) {
      return std::from_chars(value.data(), value.data() + value.size(), field).ec == std::errc{} && field > 0;
    };
    if (name == "--only") {
      options.only = value;
    } else if (!(name == "--part" && number(options.part)) && !(name == "--seed" && number(options.seed)) &&
               !(name == "--jobs" && number(options.jobs))) {
      return std::nullopt;
    }
  }
  return count % 2 == 1 ? std::optional(options) : std::nullopt;
}

}  // namespace

}  // namespace tavenhall::test

int main(int count, char** arguments) {
  const auto options = tavenhall::test::readOptions(count, arguments);
  if (!options) {
    std::fprintf(stderr, "usage: fault_sweep [--part N] [--seed N] [--jobs N] [--only SCENARIO[:CALL]]\n");
    return 2;
  }
  try {
    return tavenhall::test::Sweep(*options).run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fault_sweep: %s\n", error.what());
    return 1;
  }
}
