#pragma once

#import <Foundation/Foundation.h>

@interface NSFileManager (AttributesWithError)
// What changeFileAttributes:atPath: does; the error is always nil.
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error;
@end
