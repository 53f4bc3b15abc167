#pragma once

#include "host/engine/run_engine.h"
#include "host/set/install_plan.h"
#include "host/set/unexamined_places.h"
#include "host/ui/introduction.h"
#include "host/ui/run_result.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

// What frontends present in addition to the events, from the installer set and the installation log.
namespace tavenhall {

using FreeBytes = std::function<std::optional<std::int64_t>(const std::string& path)>;

[[nodiscard]] Introduction introduce(const InstallPlan& plan, const FreeBytes& freeBytes);

// The failures in the installation log from `start` (a size in bytes) on. A log that is shorter is read from
// its beginning.
[[nodiscard]] Failures failuresInLog(const std::string& log, std::int64_t start);

// The plan of an installation on this machine. Throws UsageError if the attributes file cannot be read, or is
// a pipe or the like.
[[nodiscard]] InstallPlan planFor(const EngineOptions& options);

// Throws UsageError where the default product's plug-in would be shown for a set that names another product.
void requireNamedProduct(const std::filesystem::path& package);

// The reasons to refuse an installation of which it is not known what it consists of.
[[nodiscard]] std::string missingAttributes(const InstallPlan& plan);
[[nodiscard]] std::string cannotExamine(const UnexaminedPlace& place);

// The failure of an install whose attributes file cannot be read: what it consists of is not known.
[[nodiscard]] event::AuditFailure unreadableAttributes(const EngineOptions& options);

// The reason to refuse a product update: a folder beside its package is the system's own, and the page would
// remove the installed plug-ins before it copies them onto themselves. Empty if there is no reason.
[[nodiscard]] std::string refusalToCopyOntoItself(const InstallPlan& plan);

// The reason to refuse an installation that other users can change, with the remedy; empty if there is no
// reason. The first is for the package, or without one for the files of a pre-install step; the second for the
// folders beside the package.
[[nodiscard]] std::string refusalToTrust(const EngineOptions& options);
[[nodiscard]] std::string refusalToTrust(const InstallPlan& plan);

// The copies that the page must make by this plan: all volumes but optional ones, those without a data folder,
// and libraries in the Lite edition.
[[nodiscard]] std::vector<ExpectedCopy> expectedCopies(const InstallPlan& plan);

// Adds to the facts of a run what the plan tells.
void addFacts(const InstallPlan& plan, event::RunFacts& facts);

// The description of an installation on this machine. Call it before the engine is started.
[[nodiscard]] RunDescription describeRun(const InstallPlan& plan);

}  // namespace tavenhall
