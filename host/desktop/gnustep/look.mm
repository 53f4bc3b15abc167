#import "host/desktop/look.h"

#include "host/desktop/gnustep/font_choice.h"
#import "host/desktop/gnustep/page_theme.h"
#include "platform/strings_language.h"

#include "host/base/exit_status.h"
#include "host/base/text.h"
#import <AppKit/AppKit.h>

namespace {

// What the user has set for all programs of the library goes before the environment, as it does in them. From
// the environment the library takes only languages whose locale is installed; these are the ones that the
// terminal's page would choose from.
NSArray* userLanguages(NSUserDefaults* defaults) {
  if ([[defaults persistentDomainForName:NSGlobalDomain] objectForKey:@"NSLanguages"] != nil) {
    return [NSLocale preferredLanguages];
  }
  NSMutableArray* languages = [NSMutableArray array];
  for (const std::string& name : tavenhall::languageFolderNames()) {
    [languages addObject:[NSString stringWithUTF8String:name.c_str()]];
  }
  return languages;
}

// Stands in alerts in place of the library's own icon: a disc.
void drawDisc() {
  [paletteColor(palette::kAccent) set];
  [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(2.0, 2.0, 44.0, 44.0)] fill];
  [paletteColor(palette::kAccentTint) set];
  NSBezierPath* ring = [NSBezierPath bezierPathWithOvalInRect:NSMakeRect(14.5, 14.5, 19.0, 19.0)];
  [ring setLineWidth:2.0];
  [ring stroke];
  [paletteColor(palette::kWindow) set];
  [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(19.0, 19.0, 10.0, 10.0)] fill];
}

// The library's dialogs mark their default button with a return sign; here it is known by its colour.
void hideReturnSign() {
  [(NSImage*)[NSImage imageNamed:@"common_ret"] setName:nil];
  static NSImage* const nothing = [[NSImage alloc] initWithSize:NSMakeSize(1.0, 1.0)];
  [nothing setName:@"common_ret"];
}

}  // namespace

@interface DiscIcon : NSObject
@end

@implementation DiscIcon
+ (void)draw:(NSCustomImageRep*)image {
  drawDisc();
}

+ (NSImage*)image {
  const NSSize size = NSMakeSize(48.0, 48.0);
  NSCustomImageRep* drawn = [[[NSCustomImageRep alloc] initWithDrawSelector:@selector(draw:)
                                                                   delegate:self] autorelease];
  [drawn setSize:size];
  NSImage* icon = [[[NSImage alloc] initWithSize:size] autorelease];
  [icon addRepresentation:drawn];
  return icon;
}
@end

// Alerts have their texts at the left, below each other, as the platform's have; the library centres the
// second.
@interface AlertLook : NSObject
@end

@implementation AlertLook
- (void)windowDidBecomeKey:(NSNotification*)notification {
  NSWindow* window = [notification object];
  if (![NSStringFromClass([window class]) isEqualToString:@"GSAlertPanel"]) {
    return;
  }
  CGFloat left = 0.0;  // of the first text
  CGFloat top = 0.0;
  for (NSView* view in [[window contentView] subviews]) {
    if ([view isKindOfClass:[NSTextField class]] && NSMaxY([view frame]) > top) {
      top = NSMaxY([view frame]);
      left = NSMinX([view frame]);
    }
  }
  for (NSView* view in [[window contentView] subviews]) {
    if ([view isKindOfClass:[NSTextField class]]) {
      const NSRect frame = [view frame];
      [(NSTextField*)view setAlignment:NSLeftTextAlignment];
      [view setFrame:NSMakeRect(left, NSMinY(frame), NSMaxX([[window contentView] bounds]) - left - 10.0,
                                NSHeight(frame))];
    }
  }
  [[window contentView] setNeedsDisplay:YES];
}
@end

void setUpLanguages() {
  NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
  // The domain that goes before all others, in which the library keeps what it takes from the environment.
  NSString* primary = @"GSPrimaryDomain";
  NSMutableDictionary* settings = [NSMutableDictionary dictionary];
  [settings addEntriesFromDictionary:[defaults volatileDomainForName:primary]];
  [settings setObject:userLanguages(defaults) forKey:@"NSLanguages"];
  [defaults removeVolatileDomainForName:primary];
  [defaults setVolatileDomain:settings forName:primary];
}

void setUpFonts(const std::string& language) {
  const tavenhall::FontChoice fonts = tavenhall::chooseFonts(language);
  if (!fonts.hasLetters) {
    tavenhall::showError(tavenhall::UsageError(
        tavenhall::_("no font has the letters of this language; install one, such as WenQuanYi Micro Hei")));
  }
  NSString* regular = nsString(fonts.regular);
  NSString* bold = nsString(fonts.bold);
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObjectsAndKeys:regular, @"NSFont", regular, @"NSUserFont",
                                                                  regular, @"NSLabelFont", regular,
                                                                  @"NSMessageFont", bold, @"NSBoldFont", bold,
                                                                  @"NSTitleBarFont", @"13", @"NSFontSize",
                                                                  @"13", @"NSUserFontSize",
                                                                  // The title bar is the theme's, whatever
                                                                  // draws the other programs'.
                                                                  @"NO", @"GSBackHandlesWindowDecorations",
                                                                  @"NO", @"GSX11HandlesWindowDecorations",
                                                                  @"YES", @"GSSuppressAppIcon", nil]];
}

bool setUpLook() {
  // The first text would fail, and leave the program there without a window.
  if ([NSFont systemFontOfSize:0.0] == nil) {
    tavenhall::showError(
        tavenhall::UsageError(tavenhall::_("no font is found; install one, such as Liberation Sans")));
    return false;
  }
  [GSTheme setTheme:[[[PageTheme alloc] initWithBundle:[NSBundle bundleForClass:[GSTheme class]]] autorelease]];
  [NSApp setApplicationIconImage:[DiscIcon image]];
  hideReturnSign();
  [[NSNotificationCenter defaultCenter] addObserver:[[AlertLook alloc] init]
                                           selector:@selector(windowDidBecomeKey:)
                                               name:NSWindowDidBecomeKeyNotification
                                             object:nil];
  return true;
}
