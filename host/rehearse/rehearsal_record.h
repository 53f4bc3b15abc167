#pragma once

#include <cstdint>
#include <deque>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>
#include <vector>

namespace tavenhall {

// What was seen of the page while a rehearsal ran.
struct RehearsalRecord {
  struct Prompt {
    std::string volume;
    std::string reply;  // "inserted", "late", "not accepted", "no such disc": also texts to be translated
  };
  struct Alert {
    std::string message;
    std::string informative;
    int answer = 0;
  };
  // The bar between two settings of its maximum.
  struct Bar {
    double maximum = 0.0;
    double highest = 0.0;
  };

  std::vector<Prompt> prompts;
  std::vector<Alert> alerts;
  std::vector<std::string> sheets;
  std::vector<Bar> bars;
  std::vector<std::size_t> insertedDiscs;  // indices into the set's, in order
  std::string missingDisc;                 // the volume that was asked for in vain; empty: none
  bool missingDiscWasIn = false;           // it was in, and the page did not take it
  bool hasLeft = false;                    // the page let itself be left forwards
  double seconds = 0.0;

  void addAlert(const std::string& message, const std::string& informative);
  void addAnswer(int answer);  // also before its alert
  void addBarMaximum(double maximum);
  void addBarValue(double value);

  // Each text that sheets said, in the order in which they came first, and how often.
  [[nodiscard]] std::vector<std::pair<std::string, int>> countedSheets() const;

  [[nodiscard]] nlohmann::ordered_json toJson() const;
  [[nodiscard]] static RehearsalRecord fromJson(const nlohmann::ordered_json& json);

 private:
  std::deque<int> earlyAnswers_;
};

}  // namespace tavenhall
