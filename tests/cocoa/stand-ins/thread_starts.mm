#include "tests/cocoa/stand-ins/thread_starts.h"

#include "tests/cocoa/method_exchange.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

#include <atomic>

using tavenhall::test::recordCall;

namespace {

std::atomic<bool> theyAreRefused = false;

}  // namespace

@interface NSThread (Recorded)
+ (void)recorded_detachNewThreadSelector:(SEL)selector toTarget:(id)target withObject:(id)argument;
@end

@implementation NSThread (Recorded)
+ (void)recorded_detachNewThreadSelector:(SEL)selector toTarget:(id)target withObject:(id)argument {
  recordCall(std::string("detachNewThreadSelector: ") + sel_getName(selector) + " toTarget: " +
             class_getName([target class]) + " withObject: " + (argument == nil ? "nil" : "something"));
  if (theyAreRefused) {
    [NSException raise:NSInternalInconsistencyException format:@"no more threads"];
  }
  [self recorded_detachNewThreadSelector:selector toTarget:target withObject:argument];
}
@end

namespace tavenhall::test {

void recordThreadStarts() {
  exchangeClassMethods([NSThread class], @selector(detachNewThreadSelector:toTarget:withObject:),
                       @selector(recorded_detachNewThreadSelector:toTarget:withObject:));
}

void refuseThreads(bool areRefused) { theyAreRefused = areRefused; }

}  // namespace tavenhall::test
