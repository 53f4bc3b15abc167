#include "platform/cocoa/adapter.h"

#include <gtest/gtest.h>

namespace tavenhall {
namespace {

TEST(Text, BytesBecomeAString) {
  @autoreleasepool {
    EXPECT_TRUE([stringOfBytes("Gr\xC3\xBC\xC3\x9F"
                               "e") isEqualToString:@"Gr\u00FC\u00DFe"]);
    EXPECT_EQ([stringOfBytes("") length], 0U);
  }
}

TEST(Text, IsNeverNil) {
  @autoreleasepool {
    ASSERT_NE(stringOfBytes("a\xFF"
                            "b\xE4"),
              nil);
    EXPECT_TRUE([stringOfBytes("a\xFF"
                               "b\xE4") isEqualToString:@"a\uFFFDb\uFFFD"]);
    ASSERT_NE(stringOfBytes(nullptr), nil);
    EXPECT_EQ([stringOfBytes(nullptr) length], 0U);
  }
}

TEST(Text, AStringBecomesBytesAndNoneTheEmptyText) {
  @autoreleasepool {
    EXPECT_EQ(bytesOfString(@"\u65E5\u672C"), "\xE6\x97\xA5\xE6\x9C\xAC");
    EXPECT_EQ(bytesOfString(nil), "");
  }
}

}  // namespace
}  // namespace tavenhall
