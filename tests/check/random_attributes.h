#pragma once

#include "context/install_rules.h"

#include <random>
#include <string>
#include <vector>

// Attributes files that nobody would write on purpose.
namespace tavenhall::test {

inline std::string randomBytes(std::mt19937& random) {
  std::string bytes(random() % 6000, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random());
  }
  return bytes;
}

// Lines that are nearly right: the page's own keys, in any case, with values of every kind.
inline std::string randomLines(std::mt19937& random) {
  static const std::vector<std::string> kValues{
      "2", "-7", "+3", "99999999999999999999", "abc", "Yes ", "%s and %s", "a\rb", "\\n", "\\", "12,000",
      "",  " ",  "\t5"};
  const auto keys = attributesKeys();
  std::string text;
  for (int line = static_cast<int>(random() % 1100); line > 0; --line) {
    std::string key = keys[random() % keys.size()].name;
    if (random() % 3 == 0) {
      key[random() % key.size()] ^= 0x20;
    }
    text +=
        (random() % 9 == 0 ? " " : "") + key + (random() % 9 == 0 ? "" : " =") + (random() % 9 == 0 ? "" : " ");
    text += random() % 50 == 0 ? std::string(random() % 5000, 'x') : kValues[random() % kValues.size()];
    text += random() % 30 == 0 ? std::string(1, '\0') : "";
    text += random() % 9 == 0 ? "\r\n" : "\n";
  }
  return text;
}

}  // namespace tavenhall::test
