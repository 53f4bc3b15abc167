#pragma once

// How the program ends. One table for all commands.
namespace tavenhall {

enum class ExitStatus : int {
  success = 0,   // what was asked was done; an install left its page forwards, with nothing missing
  failure = 1,   // the install failed, wholly or for a single file
  badUsage = 2,  // an option, a package or a bundle that cannot be used; nothing was begun
  noAnswer = 3,  // an alert waited for an answer, and the input was closed
};

}  // namespace tavenhall
