#import "host/desktop/look.h"

#import "host/desktop/gnustep/page_theme.h"
#import "host/desktop/palette.h"
#include "platform/strings_language.h"

#include "host/text.h"
#include "host/usage_error.h"
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

void setUpDefaults() {
  NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
  [defaults registerDefaults:[NSDictionary
                                 dictionaryWithObjectsAndKeys:@"LiberationSans", @"NSFont", @"LiberationSans",
                                                              @"NSUserFont", @"LiberationSans", @"NSLabelFont",
                                                              @"LiberationSans", @"NSMessageFont",
                                                              @"LiberationSans-Bold", @"NSBoldFont",
                                                              @"LiberationSans-Bold", @"NSTitleBarFont", @"13",
                                                              @"NSFontSize", @"13", @"NSUserFontSize",
                                                              // The title bar is the theme's, whatever draws
                                                              // the other programs'.
                                                              @"NO", @"GSBackHandlesWindowDecorations", @"NO",
                                                              @"GSX11HandlesWindowDecorations", @"YES",
                                                              @"GSSuppressAppIcon", nil]];
  // A domain that is not written to disk.
  NSMutableDictionary* arguments =
      [[[defaults volatileDomainForName:NSArgumentDomain] mutableCopy] autorelease];
  [arguments setObject:userLanguages(defaults) forKey:@"NSLanguages"];
  [defaults removeVolatileDomainForName:NSArgumentDomain];
  [defaults setVolatileDomain:arguments forName:NSArgumentDomain];
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
  return true;
}
