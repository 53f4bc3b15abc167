#import <InstallerPlugins/InstallerPlugins.h>
#include <cstdio>
#include <cstdlib>

@interface InstallerPane (PageOfTheBundle)
- (NSString*)_localizedStringForKey:(NSString*)key;
@end

// Writes every text of the bundle that BUNDLE names, a line each, in the language of the environment.
int main() {
  @autoreleasepool {
    NSBundle* bundle = [NSBundle bundleWithPath:[NSString stringWithUTF8String:std::getenv("BUNDLE")]];
    InstallerPane* pane = [[[bundle classNamed:@"InstallDataPane"] alloc] init];
    if (pane == nil) {
      return 1;
    }
    for (NSString *key in [NSArray
             arrayWithObjects:@"OK_BUTTON", @"FindError", @"InstallError", @"FolderName", @"PluginName", nil]) {
      std::printf("%s\n", [[pane _localizedStringForKey:key] UTF8String]);
    }
  }
  return 0;
}
