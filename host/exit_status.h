#pragma once

// How the program ends. One table for all commands.
namespace tavenhall {

enum class ExitStatus : int {
  success = 0,   // what was asked was done; an install left its page forwards, with nothing missing; a check
                 // found nothing wrong
  failure = 1,   // the install failed, wholly or for a single file; a check found errors
  badUsage = 2,  // an option, a package or a bundle that cannot be used; nothing was begun

  // One number, since no command has both: somebody should look at it.
  noAnswer = 3,  // run: an alert waited for an answer, and the input was closed
  remarks = 3,   // check and rehearse: done, with something to remark
};

}  // namespace tavenhall
