#pragma once

#include "host/ui/run_result.h"

#include <cstdint>
#include <deque>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>
#include <vector>

namespace tavenhall {

// The page's events during a rehearsal.
struct RehearsalRecord {
  struct Prompt {
    std::string volume;
    std::string reply;  // "inserted", "late", "not accepted", "no such disc": also marked for translation
  };
  struct Alert {
    std::string message;
    std::string informative;
    int answer = 0;
  };
  // The bar's range and highest value between two changes of its maximum.
  struct Bar {
    double maximum = 0.0;
    double highest = 0.0;
  };

  // Events as JSON lines, in order, with the seconds since the first; of progress only the latest before each
  // other event.
  struct TimedEvent {
    double seconds = 0.0;
    std::string line;
  };

  std::vector<TimedEvent> events;
  std::vector<Prompt> prompts;
  std::vector<Alert> alerts;
  std::vector<std::string> sheets;
  Failures auditFailures;  // their names are paths at the source
  std::vector<Bar> bars;
  std::vector<std::size_t> insertedDiscs;  // indices into the set's, in order
  std::string missingDisc;        // a volume that the page asked for and the set does not have; empty: none
  bool missingDiscWasIn = false;  // it was inserted, but the page did not accept it
  bool hasLeft = false;           // the page accepted Continue
  double seconds = 0.0;

  // `isProgress`: it replaces the latest one, if that is progress too. Beyond kMostEvents only the last is
  // kept.
  void addEvent(double atSeconds, std::string line, bool isProgress);
  static constexpr std::size_t kMostEvents = 5000;

  void addAlert(const std::string& message, const std::string& informative);
  void addAnswer(int answer);  // also before its alert
  void addBarMaximum(double maximum);
  void addBarValue(double value);

  // Each sheet's text and its number, in the order of the first ones.
  [[nodiscard]] std::vector<std::pair<std::string, int>> countedSheets() const;

  [[nodiscard]] nlohmann::ordered_json toJson() const;
  [[nodiscard]] static RehearsalRecord fromJson(const nlohmann::ordered_json& json);

 private:
  std::deque<int> earlyAnswers_;
  bool endsInProgress_ = false;
};

}  // namespace tavenhall
