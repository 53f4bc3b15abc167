#pragma once

#import <CoreFoundation/CoreFoundation.h>
#import <objc/NSObject.h>
#import <objc/objc.h>
#include <stdarg.h>

// As much of Foundation as is used. Types as in Apple's public headers, whose names stand before the groups.
// All of it has existed since macOS 10.0 unless it says otherwise.

// NSObjCRuntime.h
#define NS_ENUM(type, name) \
  enum name : type name;    \
  enum name : type
#define NS_OPTIONS(type, name) \
  type name;                   \
  enum : name
@class NSString;
extern "C" {
void NSLog(NSString* format, ...) __attribute__((format(__NSString__, 1, 2)));
SEL NSSelectorFromString(NSString* name);
}
constexpr NSInteger NSNotFound = NSIntegerMax;

// NSRange.h
typedef struct _NSRange {
  NSUInteger location;
  NSUInteger length;
} NSRange;
inline NSRange NSMakeRange(NSUInteger location, NSUInteger length) { return {location, length}; }

// NSZone.h
typedef struct _NSZone NSZone;

// NSGeometry.h, CGBase.h, CGGeometry.h
typedef double CGFloat;
typedef struct CGPoint {
  CGFloat x;
  CGFloat y;
} CGPoint;
typedef struct CGSize {
  CGFloat width;
  CGFloat height;
} CGSize;
typedef struct CGRect {
  CGPoint origin;
  CGSize size;
} CGRect;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
extern "C" const NSRect NSZeroRect;
inline NSPoint NSMakePoint(CGFloat x, CGFloat y) { return {x, y}; }
inline NSSize NSMakeSize(CGFloat width, CGFloat height) { return {width, height}; }
inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return {{x, y}, {width, height}};
}
inline CGFloat NSMaxX(NSRect rect) { return rect.origin.x + rect.size.width; }
inline CGFloat NSMaxY(NSRect rect) { return rect.origin.y + rect.size.height; }

// NSObject.h
@protocol NSCopying
- (id)copyWithZone:(NSZone*)zone;
@end
@protocol NSMutableCopying
- (id)mutableCopyWithZone:(NSZone*)zone;
@end
@protocol NSCoding
@end
@protocol NSSecureCoding <NSCoding>
@end

// NSEnumerator.h
typedef struct {
  unsigned long state;
  id __unsafe_unretained* itemsPtr;
  unsigned long* mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained*)buffer
                                    count:(NSUInteger)length;
@end

// NSString.h
typedef NSUInteger NSStringEncoding;
typedef unsigned short unichar;
enum : NSStringEncoding { NSUTF8StringEncoding = 4 };
@class NSCharacterSet;
@interface NSString : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property(readonly) NSUInteger length;
+ (instancetype)stringWithUTF8String:(const char*)bytes;
- (const char*)UTF8String;
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding;
- (BOOL)getCString:(char*)buffer maxLength:(NSUInteger)size encoding:(NSStringEncoding)encoding;
- (BOOL)isEqualToString:(NSString*)text;
- (NSRange)rangeOfString:(NSString*)text;
- (NSString*)stringByAppendingString:(NSString*)text;
- (NSString*)stringByReplacingCharactersInRange:(NSRange)range
                                     withString:(NSString*)text API_AVAILABLE(macos(10.5));
- (NSString*)stringByTrimmingCharactersInSet:(NSCharacterSet*)set;
- (unichar)characterAtIndex:(NSUInteger)index;
- (NSString*)substringToIndex:(NSUInteger)index;
- (NSString*)substringFromIndex:(NSUInteger)index;
- (NSString*)substringWithRange:(NSRange)range;
@end
@interface NSMutableString : NSString
+ (instancetype)string;
- (void)appendString:(NSString*)text;
@end
@interface NSSimpleCString : NSString
@end
@interface NSConstantString : NSSimpleCString
@end

// NSCharacterSet.h
@interface NSCharacterSet : NSObject <NSCopying>
+ (NSCharacterSet*)whitespaceCharacterSet;
+ (NSCharacterSet*)characterSetWithCharactersInString:(NSString*)text;
- (BOOL)characterIsMember:(unichar)character;
@end

// NSValue.h
@interface NSValue : NSObject <NSCopying>
@end
@interface NSNumber : NSValue
+ (NSNumber*)numberWithShort:(short)value;
+ (NSNumber*)numberWithBool:(BOOL)value;
@end

// NSArray.h
@interface NSArray : NSObject <NSCopying, NSMutableCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
- (id)objectAtIndex:(NSUInteger)index;
+ (instancetype)arrayWithObject:(id)object;
+ (instancetype)arrayWithObjects:(id)first, ... __attribute__((sentinel(0, 1)));
@end
@interface NSMutableArray : NSArray
+ (instancetype)array;
- (void)addObject:(id)object;
@end

// NSDictionary.h
@interface NSDictionary : NSObject <NSCopying, NSMutableCopying, NSFastEnumeration>
- (id)objectForKey:(id)key;
+ (instancetype)dictionaryWithObject:(id)object forKey:(id)key;
+ (instancetype)dictionaryWithObjectsAndKeys:(id)first, ... __attribute__((sentinel(0, 1)));
@end
@interface NSMutableDictionary : NSDictionary
+ (instancetype)dictionaryWithDictionary:(NSDictionary*)other;
- (void)setObject:(id)object forKey:(id)key;
@end

// NSKeyValueCoding.h
@interface NSObject (NSKeyValueCoding)
- (void)setValue:(id)value forKey:(NSString*)key;
- (id)mutableCopy;
@end

// NSKeyValueObserving.h
typedef NS_OPTIONS(NSUInteger, NSKeyValueObservingOptions) { NSKeyValueObservingOptionNew = 1 };
@interface NSObject (NSKeyValueObserverRegistration)
- (void)addObserver:(NSObject*)observer
         forKeyPath:(NSString*)key
            options:(NSKeyValueObservingOptions)options
            context:(void*)context;
@end

// NSError.h
typedef NSString* NSErrorDomain;
extern "C" NSErrorDomain const NSPOSIXErrorDomain;
@interface NSError : NSObject <NSCopying>
+ (instancetype)errorWithDomain:(NSErrorDomain)domain code:(NSInteger)code userInfo:(NSDictionary*)info;
- (NSString*)localizedDescription;
- (NSString*)localizedFailureReason API_AVAILABLE(macos(10.4));
@end

// NSException.h
typedef NSString* NSExceptionName;
@interface NSException : NSObject <NSCopying>
+ (NSException*)exceptionWithName:(NSExceptionName)name reason:(NSString*)reason userInfo:(NSDictionary*)info;
@property(readonly, copy) NSExceptionName name;
@property(readonly, copy) NSString* reason;
@end

// NSFileManager.h
typedef NSString* NSFileAttributeKey;
extern "C" NSFileAttributeKey const NSFilePosixPermissions;
@interface NSFileManager : NSObject
+ (NSFileManager*)defaultManager;
- (BOOL)fileExistsAtPath:(NSString*)path;
- (BOOL)removeItemAtPath:(NSString*)path error:(NSError**)error API_AVAILABLE(macos(10.5));
- (NSDictionary*)attributesOfItemAtPath:(NSString*)path error:(NSError**)error API_AVAILABLE(macos(10.5));
- (BOOL)setAttributes:(NSDictionary*)attributes
         ofItemAtPath:(NSString*)path
                error:(NSError**)error API_AVAILABLE(macos(10.5));
- (NSString*)stringWithFileSystemRepresentation:(const char*)path length:(NSUInteger)length;
@end

// NSPathUtilities.h
typedef NS_ENUM(NSUInteger, NSSearchPathDirectory) {
  NSCachesDirectory = 13,
  NSApplicationSupportDirectory = 14
};
typedef NS_OPTIONS(NSUInteger, NSSearchPathDomainMask) { NSUserDomainMask = 1 };
extern "C" NSArray* NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                                        NSSearchPathDomainMask domains, BOOL expandTilde);

// NSBundle.h
@interface NSBundle : NSObject
+ (instancetype)bundleWithPath:(NSString*)path;
+ (NSBundle*)bundleForClass:(Class)type;
- (BOOL)load;
@property(readonly, copy) NSString* bundlePath;
- (NSString*)localizedStringForKey:(NSString*)key value:(NSString*)value table:(NSString*)table;
- (id)objectForInfoDictionaryKey:(NSString*)key;
@property(readonly) Class principalClass;
+ (NSArray*)preferredLocalizationsFromArray:(NSArray*)localizations;
@end

// NSNotification.h
@interface NSNotification : NSObject <NSCopying>
@end

// NSThread.h
@interface NSThread : NSObject
+ (void)detachNewThreadSelector:(SEL)selector toTarget:(id)target withObject:(id)argument;
- (instancetype)initWithTarget:(id)target selector:(SEL)selector object:(id)argument API_AVAILABLE(macos(10.5));
@property NSUInteger stackSize API_AVAILABLE(macos(10.5));
@property(class, readonly) BOOL isMainThread API_AVAILABLE(macos(10.5));
- (void)start API_AVAILABLE(macos(10.5));
@end

@interface NSObject (NSThreadPerformAdditions)
- (void)performSelectorOnMainThread:(SEL)selector withObject:(id)argument waitUntilDone:(BOOL)wait;
@end

// NSRunLoop.h, NSTimer.h
typedef NSString* NSRunLoopMode;
@class NSTimer;
@interface NSRunLoop : NSObject
+ (NSRunLoop*)currentRunLoop;
- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode;
@end
@interface NSTimer : NSObject
+ (NSTimer*)scheduledTimerWithTimeInterval:(double)seconds
                                    target:(id)target
                                  selector:(SEL)selector
                                  userInfo:(id)info
                                   repeats:(BOOL)repeats;
@end

// NSAttributedString.h
typedef NSString* NSAttributedStringKey;
@interface NSAttributedString : NSObject <NSCopying, NSMutableCopying>
- (instancetype)initWithString:(NSString*)text attributes:(NSDictionary*)attributes;
@property(readonly, copy) NSString* string;
@property(readonly) NSUInteger length;
- (id)attribute:(NSString*)name atIndex:(NSUInteger)index effectiveRange:(NSRange*)range;
- (NSAttributedString*)attributedSubstringFromRange:(NSRange)range;
@end
@interface NSMutableAttributedString : NSAttributedString
- (void)appendAttributedString:(NSAttributedString*)text;
@end
