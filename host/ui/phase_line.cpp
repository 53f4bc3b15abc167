#include "host/ui/phase_line.h"

#include "host/base/text.h"

#include <algorithm>

namespace tavenhall {

namespace {

using Kind = event::Phase::Kind;

std::string stateText(Kind kind, std::int64_t secondsLeft) {
  switch (kind) {
    case Kind::waiting: return _("waiting for you");
    case Kind::looking: return format(_("looking for it: {0} s"), {std::to_string(secondsLeft)});
    case Kind::notFound: return _("not found, waiting for you");
    case Kind::copying: return _("copying");
    case Kind::checking: return _("checking");
    case Kind::ejecting: break;
  }
  return _("ejecting");
}

}  // namespace

void PhaseLine::set(const event::Phase& phase, Time now) {
  phase_ = phase;
  since_ = now;
}

std::vector<std::string> PhaseLine::texts(Time now) const {
  if (!phase_) {
    return {};
  }
  const auto passed = std::chrono::duration_cast<std::chrono::seconds>(now - since_).count();
  const std::string state = stateText(phase_->kind, std::max<std::int64_t>(phase_->seconds - passed, 0));
  if (phase_->disc.empty()) {
    return {state};
  }
  const std::string number = std::to_string(phase_->volume);
  const std::string disc = phase_->volumeCount > 0
                               ? format(_("Disc {0} of {1}"), {number, std::to_string(phase_->volumeCount)})
                               : format(_("Disc {0}"), {number});
  const std::string end = " - " + state;
  return {disc + ": " + printableLine(phase_->disc) + end, disc + end, state};
}

std::string PhaseLine::explanation() const {
  if (!phase_) {
    return {};
  }
  switch (phase_->kind) {
    case Kind::waiting: return _("The installation waits for your answer.");
    case Kind::looking:
      return _("A disc takes a few seconds until it can be read. Then the installer looks for it.");
    case Kind::notFound:
      return _(
          "The disc could not be read, or it is another one. Check its label, insert it again, wait until the "
          "drive is quiet, and answer the prompt again.");
    case Kind::copying: return _("Files are copied from the disc or from the folder beside the package.");
    case Kind::checking:
      return _("Each file that was copied is compared with its source: its type and its size.");
    case Kind::ejecting: break;
  }
  return _("The disc is being ejected.");
}

}  // namespace tavenhall
