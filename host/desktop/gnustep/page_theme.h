#pragma once

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

// The theme for GNUstep's controls and window frames in this program. Main thread.
@interface PageTheme : GSTheme {
 @private
  NSColorList* colors_;
}
@end
