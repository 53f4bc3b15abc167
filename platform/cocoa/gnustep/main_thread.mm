#include "platform/cocoa/gnustep/main_thread.h"

#include "platform/cocoa/adapter.h"

#import <AppKit/AppKit.h>
#include <cstdlib>
#include <dispatch/dispatch.h>

@interface InstallDataDispatch : NSObject {
 @public
  void (*work_)(void*);
  void* context_;
}
- (void)run;
@end

@implementation InstallDataDispatch
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
  adapt("a dispatch to the main thread", [=] {
    InstallDataDispatch* dispatch = [[[InstallDataDispatch alloc] init] autorelease];
    dispatch->work_ = work;
    dispatch->context_ = context;
    NSArray* modes = [NSArray
        arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil];
    [dispatch performSelectorOnMainThread:@selector(run) withObject:nil waitUntilDone:YES modes:modes];
  });
}

}  // namespace tavenhall

// ---- The main queue ----

dispatch_queue_t dispatch_get_main_queue() { return nullptr; }

// Would deadlock on the main thread.
void dispatch_sync_f(dispatch_queue_t /*queue*/, void* context, dispatch_function_t work) {
  if ([NSThread isMainThread]) {
    NSLog(@"dispatch_sync_f to the main queue on the main thread");
    std::abort();
  }
  tavenhall::runOnMainThread(work, context);
}
