#include "tests/cocoa/stand-ins/thread_starts.h"

#include "tests/cocoa/method_exchange.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

#include <atomic>

using tavenhall::test::recordCall;

namespace {

using tavenhall::test::ThreadStarts;

std::atomic<ThreadStarts> theStarts = ThreadStarts::all;

}  // namespace

@interface NSThread (Recorded)
- (id)recorded_initWithTarget:(id)target selector:(SEL)selector object:(id)argument;
- (void)recorded_start;
@end

@implementation NSThread (Recorded)
- (id)recorded_initWithTarget:(id)target selector:(SEL)selector object:(id)argument {
  recordCall(std::string("NSThread initWithTarget: ") + class_getName([target class]) +
             " selector: " + sel_getName(selector) + " object: " + (argument == nil ? "nil" : "something"));
  return [self recorded_initWithTarget:target selector:selector object:argument];
}

- (void)recorded_start {
  recordCall("NSThread start, stackSize: " + std::to_string([self stackSize]));
  switch (theStarts) {
    case ThreadStarts::all: [self recorded_start]; break;
    case ThreadStarts::refused:
      [NSException raise:NSInternalInconsistencyException format:@"no more threads"];
      break;
    case ThreadStarts::lost: break;
  }
}
@end

namespace tavenhall::test {

void recordThreadStarts() {
  exchangeMethods([NSThread class], @selector(initWithTarget:selector:object:),
                  @selector(recorded_initWithTarget:selector:object:));
  exchangeMethods([NSThread class], @selector(start), @selector(recorded_start));
}

void setThreadStarts(ThreadStarts starts) { theStarts = starts; }

}  // namespace tavenhall::test
