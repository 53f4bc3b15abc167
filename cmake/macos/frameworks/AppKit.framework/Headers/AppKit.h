#pragma once

#import <Foundation/Foundation.h>

// As much of AppKit as is used. Types as in Apple's public headers, whose names stand before the groups. All of
// it has existed since macOS 10.0 unless it says otherwise.

#define IBOutlet __attribute__((iboutlet))
#define IBAction void)__attribute__((ibaction)

@class NSButton, NSCell, NSColor, NSFont, NSGraphicsContext, NSLayoutManager, NSMenuItem, NSTextContainer,
    NSTextStorage, NSView, NSWindow;

// NSResponder.h
@interface NSResponder : NSObject
@end

// NSApplication.h
@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
@end
typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) { NSApplicationActivationPolicyRegular = 0 };
extern "C" NSRunLoopMode const NSModalPanelRunLoopMode;
@class NSMenu;
@interface NSApplication : NSResponder
@property(class, readonly, strong) NSApplication* sharedApplication;
@property(assign) id<NSApplicationDelegate> delegate;
@property(readonly, assign) NSWindow* modalWindow;
@property(strong) NSMenu* mainMenu;
- (void)run;
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy API_AVAILABLE(macos(10.6));
@end
extern "C" NSApplication* NSApp;

// NSMenu.h, NSMenuItem.h
@interface NSMenu : NSObject
- (NSMenuItem*)addItemWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key;
@end
@interface NSMenuItem : NSObject
@property(strong) NSMenu* submenu;
@end

// NSView.h
@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frame;
@property(readonly, assign) NSWindow* window;
@property(copy) NSArray* subviews;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
@property NSRect frame;
@property NSRect bounds;
- (void)setFrameOrigin:(NSPoint)origin;
- (void)setFrameSize:(NSSize)size;
@property(getter=isFlipped, readonly) BOOL flipped;
@property BOOL needsDisplay;
- (void)displayIfNeeded;
- (void)drawRect:(NSRect)rect;
@end

// NSCell.h, NSControl.h, NSParagraphStyle.h
typedef NS_ENUM(NSUInteger, NSLineBreakMode) {
  NSLineBreakByWordWrapping = 0,
  NSLineBreakByCharWrapping = 1,
  NSLineBreakByTruncatingTail = 4
};
@interface NSCell : NSObject
@property(readonly) NSSize cellSize;
@property BOOL wraps;
@property BOOL scrollable;
@property NSLineBreakMode lineBreakMode;
@end
@interface NSControl : NSView
@property(weak) id target;
@property SEL action;
@property(strong) NSCell* cell;
@property(getter=isEnabled) BOOL enabled;
@property(copy) NSString* stringValue;
@property(strong) NSFont* font;
@property NSUInteger alignment;
@end
@interface NSControl (NSDeprecated)
- (void)setNeedsDisplay;
@end

// NSTextField.h
@interface NSTextField : NSControl
@property BOOL drawsBackground;
@property(copy) NSColor* textColor;
@property(getter=isBordered) BOOL bordered;
@property(getter=isBezeled) BOOL bezeled;
@property(getter=isEditable) BOOL editable;
@property(getter=isSelectable) BOOL selectable;
- (void)setTitleWithMnemonic:(NSString*)text API_DEPRECATED("use a title", macos(10.0, 10.8));
@end

// NSButton.h, NSButtonCell.h
typedef NS_ENUM(NSUInteger, NSBezelStyle) { NSBezelStyleRounded = 1 };
constexpr NSBezelStyle NSRoundedBezelStyle = NSBezelStyleRounded;
@interface NSButton : NSControl
@property(copy) NSString* title;
@property(copy) NSString* keyEquivalent;
@property NSBezelStyle bezelStyle;
@end

// NSProgressIndicator.h
@interface NSProgressIndicator : NSView
@property double doubleValue;
@property double minValue;
@property double maxValue;
@end

// NSWindow.h, NSPanel.h
typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
  NSWindowStyleMaskTitled = 1 << 0,
  NSWindowStyleMaskClosable = 1 << 1,
  NSWindowStyleMaskMiniaturizable = 1 << 2
};
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };
constexpr NSWindowStyleMask NSTitledWindowMask = NSWindowStyleMaskTitled;
constexpr NSWindowStyleMask NSClosableWindowMask = NSWindowStyleMaskClosable;
constexpr NSWindowStyleMask NSMiniaturizableWindowMask = NSWindowStyleMaskMiniaturizable;
@protocol NSWindowDelegate <NSObject>
@optional
- (BOOL)windowShouldClose:(NSWindow*)window;
@end
@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)content
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)flag;
@property(copy) NSString* title;
@property(assign) id<NSWindowDelegate> delegate;
@property(strong) NSView* contentView;
@property(copy) NSColor* backgroundColor;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
- (void)center;
- (void)makeKeyAndOrderFront:(id)sender;
- (void)performClose:(id)sender;
@end
@interface NSPanel : NSWindow
extern "C" void NSBeginInformationalAlertSheet(NSString* title, NSString* defaultButton,
                                               NSString* alternateButton, NSString* otherButton,
                                               NSWindow* window, id delegate, SEL didEnd, SEL didDismiss,
                                               void* context, NSString* format, ...)
    __attribute__((format(__NSString__, 10, 11))) API_DEPRECATED("use NSAlert", macos(10.0, 10.10));
@end

// NSAlert.h
typedef NS_ENUM(NSUInteger, NSAlertStyle) {
  NSAlertStyleWarning = 0,
  NSAlertStyleInformational = 1,
  NSAlertStyleCritical = 2
};
typedef NSInteger NSModalResponse;
constexpr NSModalResponse NSAlertFirstButtonReturn = 1000;
@interface NSAlert : NSObject
@property(copy) NSString* messageText;
@property(copy) NSString* informativeText;
@property NSAlertStyle alertStyle;
- (NSButton*)addButtonWithTitle:(NSString*)title;
- (NSModalResponse)runModal;
@end

// NSAnimationContext.h
@interface NSAnimationContext : NSObject
+ (void)beginGrouping API_AVAILABLE(macos(10.5));
+ (void)endGrouping API_AVAILABLE(macos(10.5));
@property(class, readonly, strong) NSAnimationContext* currentContext API_AVAILABLE(macos(10.5));
@property double duration;
@end

// NSColor.h, NSFont.h, NSBezierPath.h, NSGraphics.h
@interface NSColor : NSObject <NSCopying>
+ (NSColor*)colorWithCalibratedRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
- (void)set;
@end
@interface NSFont : NSObject <NSCopying>
+ (NSFont*)systemFontOfSize:(CGFloat)size;
+ (NSFont*)boldSystemFontOfSize:(CGFloat)size;
@end
@interface NSBezierPath : NSObject <NSCopying>
+ (NSBezierPath*)bezierPathWithOvalInRect:(NSRect)rect;
- (void)fill;
- (void)stroke;
@end
extern "C" void NSRectFill(NSRect rect);
extern "C" void NSFrameRect(NSRect rect);

// NSParagraphStyle.h, NSAttributedString.h, NSStringDrawing.h
typedef NS_ENUM(NSUInteger, NSTextTabType) { NSLeftTabStopType = 0 };
@interface NSTextTab : NSObject <NSCopying>
- (instancetype)initWithType:(NSTextTabType)type location:(CGFloat)location;
@end
@interface NSParagraphStyle : NSObject <NSCopying, NSMutableCopying>
@end
@interface NSMutableParagraphStyle : NSParagraphStyle
@property CGFloat paragraphSpacing;
@property(copy) NSArray* tabStops;
@property CGFloat headIndent;
@property CGFloat firstLineHeadIndent;
@property NSLineBreakMode lineBreakMode;
@end
extern "C" NSAttributedStringKey const NSFontAttributeName;
extern "C" NSAttributedStringKey const NSForegroundColorAttributeName;
extern "C" NSAttributedStringKey const NSParagraphStyleAttributeName;
typedef NS_OPTIONS(NSInteger, NSStringDrawingOptions) { NSStringDrawingUsesLineFragmentOrigin = 1 << 0 };
@interface NSString (NSStringDrawing)
- (NSSize)sizeWithAttributes:(NSDictionary*)attributes;
- (void)drawInRect:(NSRect)rect withAttributes:(NSDictionary*)attributes;
- (NSRect)boundingRectWithSize:(NSSize)size
                       options:(NSStringDrawingOptions)options
                    attributes:(NSDictionary*)attributes API_AVAILABLE(macos(10.4));
@end

// NSPasteboard.h
extern "C" NSString* const NSPasteboardTypeString;
@interface NSPasteboard : NSObject
- (BOOL)setString:(NSString*)text forType:(NSString*)type;
@end

// NSTextView.h, NSText.h, NSTextStorage.h, NSTextContainer.h, NSLayoutManager.h
@interface NSTextStorage : NSMutableAttributedString
- (void)setAttributedString:(NSAttributedString*)text;
@end
@interface NSTextContainer : NSObject
@property BOOL widthTracksTextView;
@property NSSize containerSize;
@property CGFloat lineFragmentPadding;
@end
@interface NSLayoutManager : NSObject
- (NSRange)glyphRangeForTextContainer:(NSTextContainer*)container;
- (NSRect)usedRectForTextContainer:(NSTextContainer*)container;
@end
@interface NSText : NSView
@property(getter=isEditable) BOOL editable;
@property BOOL drawsBackground;
@property NSRange selectedRange;
@end
@interface NSTextView : NSText
@property NSSize textContainerInset;
@property(assign) NSTextContainer* textContainer;
@property(readonly, assign) NSLayoutManager* layoutManager;
@property(readonly, assign) NSTextStorage* textStorage;
@property(readonly, copy) NSArray* writablePasteboardTypes;
- (BOOL)writeSelectionToPasteboard:(NSPasteboard*)pasteboard type:(NSString*)type;
@end

// NSScroller.h, NSScrollView.h
typedef NS_ENUM(NSUInteger, NSBorderType) { NSNoBorder = 0 };
@interface NSScroller : NSControl
+ (CGFloat)scrollerWidth API_DEPRECATED("use scrollerWidthForControlSize:scrollerStyle:", macos(10.0, 10.7));
@end
@interface NSScrollView : NSView
@property NSBorderType borderType;
@property BOOL hasVerticalScroller;
@property BOOL drawsBackground;
@property(strong) NSView* documentView;
@end

// NSNibLoading.h
extern "C" NSString* const NSNibOwner;
@interface NSBundle (NSNibLoadingDeprecated)
- (BOOL)loadNibFile:(NSString*)name
    externalNameTable:(NSDictionary*)table
             withZone:(NSZone*)zone
    API_DEPRECATED("use loadNibNamed:owner:topLevelObjects:", macos(10.0, 10.8));
@end
