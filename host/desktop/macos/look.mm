#import "host/desktop/look.h"

#include "host/base/text.h"
#import <AppKit/AppKit.h>

// AppKit has its own appearance here; the program adds only the menu with Quit.

void setUpLanguages() {}

void setUpFonts(const std::string& /*language*/) {}

bool setUpLook() {
  [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
  NSMenu* bar = [[[NSMenu alloc] init] autorelease];
  NSMenuItem* item = [bar addItemWithTitle:@"" action:nil keyEquivalent:@""];
  NSMenu* menu = [[[NSMenu alloc] init] autorelease];
  [menu addItemWithTitle:nsString(tavenhall::_("Quit")) action:@selector(performClose:) keyEquivalent:@"q"];
  [item setSubmenu:menu];
  [NSApp setMainMenu:bar];
  return true;
}
