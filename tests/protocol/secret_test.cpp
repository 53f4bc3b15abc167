#include "host/protocol/password_terminal.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace tavenhall::test {
namespace {

TEST(Secret, IsTakenBackByCharactersNotByBytes) {
  Secret secret;
  secret.append("a");
  secret.append("\u00fc");
  secret.append("\U0001F511");
  EXPECT_EQ(secret.characters(), 3U);
  secret.dropLastCharacter();
  EXPECT_EQ(secret.text(), "a\u00fc");
  secret.dropLastCharacter();
  EXPECT_EQ(secret.text(), "a");
  secret.dropLastCharacter();
  secret.dropLastCharacter();
  EXPECT_EQ(secret.text(), "");
}

TEST(Secret, WhatDoesNotFitIsNotAddedAtAll) {
  Secret secret;
  secret.append(std::string(Secret::kLongest - 1, 'a'));
  secret.append("\u00fc");
  EXPECT_EQ(secret.text().size(), Secret::kLongest - 1);
  secret.append("b");
  EXPECT_EQ(secret.text().size(), Secret::kLongest);
  secret.append("c");
  EXPECT_EQ(secret.text().back(), 'b');
}

TEST(Secret, NothingOfItStaysWhenItIsCleared) {
  Secret secret;
  secret.append("sesame");
  const char* const bytes = secret.text().data();
  secret.clear();
  EXPECT_EQ(std::string(bytes, 6), std::string(6, '\0'));
  EXPECT_EQ(secret.characters(), 0U);
}

TEST(Secret, WipingOverwritesAllOfIt) {
  std::array<char, 4> memory{'a', 'b', 'c', 'd'};
  wipe(memory.data(), 3);
  EXPECT_EQ(memory, (std::array<char, 4>{'\0', '\0', '\0', 'd'}));
}

}  // namespace
}  // namespace tavenhall::test
