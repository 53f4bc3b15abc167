#import "platform/cocoa/gnustep/installer_plugins.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const char* yesOrNo(BOOL flag) { return flag ? "yes" : "no"; }

const char* nameIn(id pane, id object) {
  if (object == pane) {
    return "the pane";
  }
  return object == nil ? "none" : class_getName([object class]);
}

void reportView(const char* name, NSView* view, NSView* page) {
  const NSRect frame = [view frame];
  std::printf("%s: %s, %gx%g, inside the page: %s, hidden: %s\n", name, class_getName([view class]),
              frame.size.width, frame.size.height,
              yesOrNo(view != page && [view isDescendantOf:page] && NSContainsRect([page bounds], frame)),
              yesOrNo([view isHidden]));
}

}  // namespace

// Writes what the layout of the bundle that BUNDLE names is like once it is loaded, a line for each thing.
int main() {
  @autoreleasepool {
    [NSApplication sharedApplication];
    NSBundle* bundle = [NSBundle bundleWithPath:[NSString stringWithUTF8String:std::getenv("BUNDLE")]];
    InstallerSection* section = [InstallerSection sectionOfBundle:bundle installer:nil];
    InstallerPane* pane = [section firstPane];
    std::printf("first pane: %s, of its section: %s\n", nameIn(nil, pane), yesOrNo([pane section] == section));

    NSView* page = [pane contentView];
    reportView("contentView", page, page);
    NSTextField* instructions = [pane valueForKey:@"instructions"];
    NSTextField* status = [pane valueForKey:@"status"];
    NSButton* button = [pane valueForKey:@"uiButton"];
    NSProgressIndicator* bar = [pane valueForKey:@"progressIndicator"];
    reportView("instructions", instructions, page);
    std::printf("instructions: editable: %s, delegate: %s\n", yesOrNo([instructions isEditable]),
                nameIn(pane, [instructions delegate]));
    reportView("status", status, page);
    std::printf("status: editable: %s, delegate: %s\n", yesOrNo([status isEditable]),
                nameIn(pane, [status delegate]));
    reportView("uiButton", button, page);
    std::printf("uiButton: %s to %s\n", sel_getName([button action]), nameIn(pane, [button target]));
    reportView("progressIndicator", bar, page);
    std::printf("progressIndicator: %g of %g to %g, indeterminate: %s, shown when stopped: %s\n",
                [bar doubleValue], [bar minValue], [bar maxValue], yesOrNo([bar isIndeterminate]),
                yesOrNo([bar isDisplayedWhenStopped]));
  }
  std::fflush(nullptr);
  return 0;
}
