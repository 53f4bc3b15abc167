#pragma once

#include "tests/check/sets.h"
#include "tests/install/child_program.h"
#include "tests/terminal/tmux_terminal.h"

#include <nlohmann/json.hpp>
#include <string>
#include <sys/types.h>
#include <vector>

// Whole rehearsals with the built program: its own sandbox inside the test's.
namespace tavenhall::test {

inline constexpr const char* kReport = "/tmp/report.json";

// The command line for a rehearsal of the set at kSetFolder that leaves its report in kReport.
[[nodiscard]] std::vector<std::string> rehearseCommand(const std::vector<std::string>& arguments = {});

// Runs it through, with nothing to show it unless the arguments say how.
[[nodiscard]] Outcome rehearse(const std::vector<std::string>& arguments = {});

[[nodiscard]] nlohmann::json report();

// A report without what differs from run to run.
[[nodiscard]] nlohmann::json steadyFields(nlohmann::json told);

// Fails the test unless `tavinstall check` with the arguments says of the set what its rehearsal found: the
// same plan and sizes, and an error where the installation failed.
void expectCheckAgrees(const std::string& set, const nlohmann::json& told,
                       const std::vector<std::string>& arguments = {});

// The text of a report, with TIME for how long things took.
[[nodiscard]] std::string withoutTimes(const std::string& text);

// "<volume>: <reply>" for each prompt of the report.
[[nodiscard]] std::vector<std::string> promptsReported();

// "<path> <fate>" for each file of the report, sorted; the path is the source's below its data folder.
[[nodiscard]] std::vector<std::string> fatesReported();

// The processes below a process, and below those.
[[nodiscard]] std::vector<pid_t> descendantsOf(pid_t process);

// The FUSE file systems that this process can see in folders for temporary files.
[[nodiscard]] std::vector<std::string> temporaryMounts();

// Fails the test where a rehearsal has left a mount, a folder, or one of the processes.
void expectNothingLeft(const std::vector<pid_t>& processes = {});

// ---- The set as a set of images ----

// Makes an image of each disc in the set, by its number from 1: SquashFS for odd ones, ISO for even ones. The
// image is the only thing that is left of it.
void turnDiscsIntoImages();

// ---- As somebody else ----

// The command line run by an ordinary user; by the test's own where that is no root.
[[nodiscard]] std::vector<std::string> asOrdinaryUser(const std::vector<std::string>& command);

// Can an ordinary user mount images here? Where the test may, it lets them.
[[nodiscard]] bool ordinaryUserHasFuse();

}  // namespace tavenhall::test
