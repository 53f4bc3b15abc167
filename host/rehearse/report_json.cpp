#include "host/rehearse/findings.h"

#include "host/base/text.h"

#include <nlohmann/json.hpp>

namespace tavenhall {

using nlohmann::ordered_json;

namespace {

const char* fateName(Fate fate) {
  switch (fate) {
    case Fate::same: return "same";
    case Fate::differs: return "differs";
    case Fate::missing: return "missing";
    case Fate::overwritten: return "overwritten";
    case Fate::replaced: break;
  }
  return "replaced";
}

template <typename Value>
ordered_json orNull(const std::optional<Value>& value) {
  return value ? ordered_json(*value) : ordered_json();
}

ordered_json planJson(const RehearsalFindings& findings) {
  const InstallPlan& plan = findings.plan;
  ordered_json libraries = ordered_json::array();
  for (const PlannedLibrary& library : plan.editions.libraries) {
    libraries.push_back({{"folder", library.folderName}, {"edition", library.isLite ? "Lite" : "Full"}});
  }
  ordered_json passes = ordered_json::array();
  for (const PlannedPass& pass : plan.passes) {
    passes.push_back({{"folder", pass.folderName},
                      {"destination", findings.insidePath(pass.destination)},
                      {"volumes", pass.volumeCount}});
  }
  return {{"product", plan.product.pluginName}, {"mode", plan.mode},      {"modeReason", modeReason(plan)},
          {"edition", editionReason(plan)},     {"libraries", libraries}, {"passes", passes}};
}

ordered_json amountsOf(const CopiedVolume& copied) {
  return {{"bytes", copied.bytes}, {"files", copied.files}, {"folders", copied.folders}};
}

ordered_json systemFoldersJson(const RehearsalFindings& findings) {
  ordered_json folders = ordered_json::array();
  for (const CopiedVolume& copied : findings.systemFolders) {
    folders.push_back({{"destination", copied.folder}});
    folders.back().update(amountsOf(copied));
  }
  return folders;
}

ordered_json volumesJson(const RehearsalFindings& findings) {
  ordered_json volumes = ordered_json::array();
  for (const CopiedVolume& copied : findings.volumes) {
    volumes.push_back(
        {{"number", copied.number + 1}, {"folder", copied.folder}, {"seconds", orNull(copied.seconds)}});
    volumes.back().update(amountsOf(copied));
  }
  return volumes;
}

ordered_json filesJson(const RehearsalFindings& findings) {
  ordered_json files = ordered_json::array();
  for (const FileFate& file : findings.files) {
    files.push_back({{"source", file.source},
                     {"destination", file.destination},
                     {"bytes", file.bytes},
                     {"fate", fateName(file.fate)}});
  }
  return files;
}

ordered_json leftFilesJson(const RehearsalFindings& findings) {
  ordered_json files = ordered_json::array();
  for (const LeftFile& file : findings.leftFiles) {
    files.push_back({{"path", file.path}, {"data", file.isData}, {"fullEditionOnly", file.isOfFullEdition}});
  }
  return files;
}

ordered_json eventsJson(const RehearsalFindings& findings) {
  ordered_json events = ordered_json::array();
  for (const RehearsalRecord::TimedEvent& event : findings.record.events) {
    events.push_back({{"at", event.seconds}, {"event", ordered_json::parse(event.line, nullptr, false)}});
  }
  return events;
}

ordered_json sizesJson(const AnnouncedComparison& sizes) {
  return {{"announcedBytes", sizes.announced}, {"realBytes", sizes.real}, {"far", sizes.isFar}};
}

}  // namespace

ordered_json reportJson(const RehearsalFindings& findings) {
  const InEnglish english;
  const Verdict verdict = judge(findings);
  const ordered_json seen = findings.record.toJson();
  const RehearsalRecord::Bar bar = volumeBar(findings.record);
  return {{"set", findings.set},
          {"status", static_cast<int>(verdict.status())},
          {"failures", verdict.failures},
          {"remarks", verdict.diagnostics},
          {"plan", planJson(findings)},
          {"seconds", findings.record.seconds},
          {"left", findings.record.hasLeft},
          {"systemFolders", systemFoldersJson(findings)},
          {"volumes", volumesJson(findings)},
          {"prompts", seen["prompts"]},
          {"alerts", seen["alerts"]},
          {"sheets", seen["sheets"]},
          {"whole", verdict.whole.real > 0 ? sizesJson(verdict.whole) : ordered_json()},
          {"firstComponent", verdict.hasFirstComponent ? sizesJson(verdict.firstComponent) : ordered_json()},
          {"bar", {{"highest", bar.highest}, {"maximum", bar.maximum}}},
          {"files", filesJson(findings)},
          {"notInstalled", leftFilesJson(findings)},
          {"unusedDiscs", findings.unusedDiscs},
          {"logFile", findings.log.empty() ? ordered_json() : ordered_json(findings.log)},
          {"log", findings.logText},
          {"gone", findings.goneFiles},
          {"extra", findings.extraFiles},
          {"events", eventsJson(findings)}};
}

}  // namespace tavenhall
