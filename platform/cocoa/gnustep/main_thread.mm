#include "platform/cocoa/gnustep/main_thread.h"

#include "platform/cocoa/adapter.h"

#import <AppKit/AppKit.h>
#include <cstdlib>
#include <dispatch/dispatch.h>

@interface InstallDataHandOff : NSObject {
 @public
  void (*work_)(void*);
  void* context_;
}
- (void)run;
@end

@implementation InstallDataHandOff
- (void)run {
  work_(context_);
}
@end

namespace tavenhall {

void runOnMainThread(void (*work)(void*), void* context) noexcept {
  if ([NSThread isMainThread]) {
    work(context);
    return;
  }
  adapt("a hand-off", [=] {
    InstallDataHandOff* handOff = [[[InstallDataHandOff alloc] init] autorelease];
    handOff->work_ = work;
    handOff->context_ = context;
    NSArray* modes = [NSArray
        arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil];
    [handOff performSelectorOnMainThread:@selector(run) withObject:nil waitUntilDone:YES modes:modes];
  });
}

}  // namespace tavenhall

// ---- The main queue ----

dispatch_queue_t dispatch_get_main_queue() { return nullptr; }

// From the main thread it would wait for itself.
void dispatch_sync_f(dispatch_queue_t /*queue*/, void* context, dispatch_function_t work) {
  if ([NSThread isMainThread]) {
    NSLog(@"a hand-off to the main queue from the main thread");
    std::abort();
  }
  tavenhall::runOnMainThread(work, context);
}
