#include "platform/cocoa/pane_host.h"

#include "platform/cocoa/alerts.h"
#include "platform/cocoa/animation.h"
#include "platform/cocoa/control_changes.h"
#import "platform/cocoa/install_data_pane.h"
#include "platform/cocoa/sheets.h"

#include <dispatch/dispatch.h>

namespace tavenhall {

PaneHost::PaneHost(::InstallDataPane* pane, const Outlets& outlets)
    : pane_(pane),
      sheetsField_(outlets.instructions),
      instructions_(outlets.instructions),
      status_(outlets.status),
      progressIndicator_(outlets.progressIndicator) {}

bool PaneHost::detachThread(const char* name, void (*body)(void*), void* target) noexcept {
  return threads_.detach(pane_, *this, name, body, target);
}

void PaneHost::setNextEnabled(bool enabled) noexcept {
  changeControl("Continue", [=, this] { [pane_ setNextEnabled:enabled]; });
}

void PaneHost::setPreviousEnabled(bool enabled) noexcept {
  changeControl("Go Back", [=, this] { [pane_ setPreviousEnabled:enabled]; });
}

int PaneHost::runModal(const Alert& alert) noexcept { return runModalAlert(alert); }

void PaneHost::beginInformationalSheet(const Sheet& sheet) noexcept {
  tavenhall::beginInformationalSheet(sheet, [sheetsField_ window], pane_);
}

void PaneHost::dispatchSync(void (*block)(void*), void* context) noexcept {
  dispatch_sync_f(dispatch_get_main_queue(), context, block);
}

void PaneHost::beginAnimationGrouping() noexcept { beginAnimationGroup(); }

void PaneHost::setAnimationDuration(double seconds) noexcept { setAnimationGroupDuration(seconds); }

void PaneHost::endAnimationGrouping() noexcept { endAnimationGroup(); }

}  // namespace tavenhall
