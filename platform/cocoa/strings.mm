#include "platform/cocoa/adapter.h"
#import "platform/cocoa/install_data_pane.h"
#include "platform/cocoa/text.h"
#include "platform/system.h"

namespace tavenhall {

std::string localizedString(const char* key) noexcept {
  std::string text = key;
  adapt("a localised text",
        [&] { text = bytesOfString([InstallDataPane localizedStringForKey:stringOfBytes(key)]); });
  return text;
}

}  // namespace tavenhall
