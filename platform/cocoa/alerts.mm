#include "platform/cocoa/alerts.h"

#include "platform/cocoa/adapter.h"
#include "platform/cocoa/text.h"

#import <AppKit/AppKit.h>

namespace tavenhall {

int runModalAlert(const Alert& alert) noexcept {
  int answer = kAlertFirstButtonReturn;
  adapt("an alert", [&] {
    NSAlert* panel = [[NSAlert alloc] init];
    for (const char* title : alert.buttons) {
      [panel addButtonWithTitle:stringOfBytes(title)];
    }
    [panel setMessageText:stringOfBytes(alert.messageText)];
    [panel setInformativeText:stringOfBytes(alert.informativeText)];
    [panel setAlertStyle:static_cast<NSAlertStyle>(alert.style)];
    answer = static_cast<int>([panel runModal]);
    [panel release];
  });
  return answer;
}

}  // namespace tavenhall
