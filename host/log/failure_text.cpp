#include "host/log/failure_text.h"

#include "host/base/text.h"

namespace tavenhall {

std::string failureText(const RunFailure& failure) {
  if (failure.file.empty()) {
    return failure.detail;
  }
  if (failure.kind == "source") {
    return format(_("cannot read {0}"), {failure.file});
  }
  if (failure.kind == "target") {
    return failure.reason.empty() ? format(_("cannot write {0}"), {failure.target})
                                  : format(_("cannot write {0}: {1}"), {failure.target, failure.reason});
  }
  if (failure.kind == "size") {
    return format(_("not copied whole, perhaps since the disk is full: {0}"), {failure.target});
  }
  if (failure.kind == "folder") {
    return format(_("cannot make the folder {0}"), {failure.file});
  }
  if (failure.kind == "not-found") {
    return format(_("no data to install: there is no {0}"), {failure.file});
  }
  if (failure.kind == "no-destination") {
    return format(_("nowhere to copy {0} to: its data folder is missing"), {failure.file});
  }
  return failure.detail;
}

}  // namespace tavenhall
