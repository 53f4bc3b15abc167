#pragma once

#import "platform/cocoa/gnustep/file_manager.h"

namespace tavenhall::test {

// From now on removals and changes of attributes are recorded; they are still done. Once a process.
void recordFileManager();

// From now on removals are not done, and fail with this error, which is retained; nil: they are done again.
void failRemovals(NSError* error);

}  // namespace tavenhall::test
