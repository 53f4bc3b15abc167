#pragma once

#include <clocale>
#include <gtest/gtest.h>

namespace tavenhall::test {

// Tests of text run as in a UTF-8 terminal, whatever the machine's own language is.
class InUtf8 : public testing::Test {
 protected:
  InUtf8() { EXPECT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr) << "this system has no C.UTF-8"; }
};

}  // namespace tavenhall::test
