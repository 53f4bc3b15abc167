#import "platform/cocoa/differences.h"

namespace tavenhall {

void changeControl(void (*change)(void*), void* context) noexcept { change(context); }

void beginWithoutWaiting(id sheet, SEL begin) noexcept { [sheet performSelector:begin]; }

}  // namespace tavenhall
