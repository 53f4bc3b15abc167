#include "host/check/report.h"

#include <nlohmann/json.hpp>

namespace tavenhall {

namespace {

using nlohmann::json;

json orNull(const std::optional<std::int64_t>& number) { return number ? json(*number) : json(); }

json librariesJson(const EditionPlan& editions) {
  json libraries = json::array();
  for (const PlannedLibrary& library : editions.libraries) {
    libraries.push_back(
        {{"folder", library.folderName}, {"lite", library.isLite}, {"detected", library.isDetected}});
  }
  return libraries;
}

const char* sourceWord(EditionSource source) {
  switch (source) {
    case EditionSource::none: return "none";
    case EditionSource::request: return "request";
    case EditionSource::choiceFile: return "choice file";
    case EditionSource::noChoice: return "no choice";
    case EditionSource::detection: break;
  }
  return "detection";
}

json passesJson(const InstallPlan& plan) {
  json passes = json::array();
  for (const PlannedPass& pass : plan.passes) {
    json volumes = json::array();
    for (const PlannedVolume& volume : pass.volumes) {
      volumes.push_back({{"root", volume.root},
                         {"primary", volume.primary},
                         {"alternate", volume.alternate},
                         {"mounted", volume.isMounted},
                         {"optional", volume.isOptional},
                         {"librariesOnly", volume.librariesOnly}});
    }
    passes.push_back({{"folder", pass.folderName},
                      {"destination", pass.destination},
                      {"volumeCount", pass.volumeCount},
                      {"volumes", std::move(volumes)}});
  }
  return passes;
}

json planJson(const CheckResult& result) {
  const InstallPlan& plan = result.checked.plan;
  const RealSizes real = result.checked.realSizes();
  json systemFolders = json::array();
  for (const PlannedFolder& folder : plan.systemFolders) {
    systemFolders.push_back({{"source", folder.source}, {"destination", folder.destination}});
  }
  return {{"mode", plan.mode},
          {"modeReason", modeReason(plan)},
          {"title", plan.title},
          {"text", plan.enteringText},
          {"completionText", plan.completionText},
          {"edition",
           {{"offered", plan.editions.isOffered},
            {"lite", plan.editions.allAreLite},
            {"source", sourceWord(plan.editions.source)},
            {"reason", editionReason(plan)},
            {"libraries", librariesJson(plan.editions)}}},
          {"size",
           {{"key", plan.announced.countedKey},
            {"announcedBytes", plan.announced.isKnown ? json(plan.announced.bytes) : json()},
            {"realBytes", orNull(real.whole)},
            {"realFirstComponentBytes", orNull(real.component)},
            {"realSystemFolderBytes", real.systemFolders}}},
          {"systemFolders", std::move(systemFolders)},
          {"passes", passesJson(plan)}};
}

// What was there before keeps its names; "consequences" are not counted.
json diagnosticJson(const CheckResult& result, const Diagnostic& diagnostic) {
  json consequences = json::array();
  for (const Diagnostic& consequence : diagnostic.consequences) {
    consequences.push_back(diagnosticJson(result, consequence));
  }
  json fix;
  if (diagnostic.correction) {
    fix = {{"begin", diagnostic.correction->begin},
           {"end", diagnostic.correction->end},
           {"text", diagnostic.correction->text},
           {"safe", diagnostic.kind->isFixable}};
  }
  return {{"name", diagnostic.name()},
          {"severity", severityWord(diagnostic.severity)},
          {"file", diagnostic.place.file},
          {"line", diagnostic.place.line > 0 ? json(diagnostic.place.line) : json()},
          {"column", diagnostic.place.column > 0 ? json(diagnostic.place.column) : json()},
          {"length", diagnostic.place.column > 0 ? json(diagnostic.place.length) : json()},
          {"text", diagnostic.sentence},
          {"remedy", diagnostic.kind->remedy},
          {"fix", std::move(fix)},
          {"consequences", std::move(consequences)},
          {"reference", diagnostic.reference()}};
}

json setJson(const CheckResult& result) {
  const CheckedSet& checked = result.checked;
  const Diagnostics& diagnostics = result.diagnostics;
  json list = json::array();
  for (const Diagnostic& diagnostic : diagnostics.all()) {
    list.push_back(diagnosticJson(result, diagnostic));
  }
  json more = json::object();
  for (const auto& [name, count] : diagnostics.more()) {
    more[std::string(name)] = count;
  }
  return {{"set", checked.set.folder.string()},
          {"package", checked.set.package.string()},
          {"product", {{"plugin", checked.product.pluginName}, {"folder", checked.product.folderName}}},
          {"plan", planJson(result)},
          {"remarks", std::move(list)},
          {"more", std::move(more)},
          {"errors", diagnostics.count(Severity::error)},
          {"warnings", diagnostics.count(Severity::warning)},
          {"notes", diagnostics.count(Severity::note)}};
}

}  // namespace

std::string checkJson(std::span<const CheckResult> results) {
  json report = json::array();
  for (const CheckResult& result : results) {
    report.push_back(setJson(result));
  }
  return (results.size() == 1 ? report[0] : report).dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

}  // namespace tavenhall
