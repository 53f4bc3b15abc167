#pragma once

#include "host/base/text.h"

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>

namespace tavenhall::test {

// From now on the words that this process makes are in that language, as in a UTF-8 terminal.
inline void speak(const char* language) {
  ASSERT_EQ(setenv("LC_ALL", "C.UTF-8", 1), 0);
  ASSERT_EQ(setenv("LANGUAGE", language, 1), 0);
  ASSERT_NE(std::setlocale(LC_CTYPE, ""), nullptr) << "this system has no C.UTF-8";
  speakUsersLanguage(TAVINSTALL_BINARY_DIR "/share/locale");
}

}  // namespace tavenhall::test
