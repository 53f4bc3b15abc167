#pragma once

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

// How GNUstep's controls and window frames look in this program. Main thread.
@interface PageTheme : GSTheme {
 @private
  NSColorList* colors_;
}
@end
