#include "host/log/failure_text.h"

#include "host/text.h"

namespace tavenhall {

std::string failureText(const RunFailure& failure) {
  if (failure.file.empty()) {
    return failure.detail;
  }
  if (failure.kind == "source") {
    return filled(_("cannot read {0}"), {failure.file});
  }
  if (failure.kind == "target") {
    return failure.reason.empty() ? filled(_("cannot write {0}"), {failure.target})
                                  : filled(_("cannot write {0}: {1}"), {failure.target, failure.reason});
  }
  if (failure.kind == "size") {
    return filled(_("not copied whole, perhaps since the disk is full: {0}"), {failure.target});
  }
  if (failure.kind == "folder") {
    return filled(_("cannot make the folder {0}"), {failure.file});
  }
  if (failure.kind == "not-found") {
    return filled(_("no data to install: there is no {0}"), {failure.file});
  }
  if (failure.kind == "no-destination") {
    return filled(_("nowhere to copy {0} to: its data folder is missing"), {failure.file});
  }
  return failure.detail;
}

}  // namespace tavenhall
