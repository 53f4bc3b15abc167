#pragma once

#include <variant>

// What a frontend sends to an engine. Commands form one queue and are performed one after the other; answers
// form a queue of their own, so an answer may be sent before its alert.
namespace tavenhall {

enum class Command {
  title,    // report the page's title
  enter,    // enter the page, once no page thread runs; this starts an install
  wait,     // report when no page thread runs
  forward,  // ask to leave the page forwards
  back,     // ask to leave the page backwards
  quit,     // end the engine, also while an install runs
};

// The answer to an alert: kAlertFirstButtonReturn for its first button, and on from there.
struct Answer {
  int button = 0;
};

using Request = std::variant<Command, Answer>;

}  // namespace tavenhall
