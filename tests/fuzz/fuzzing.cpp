#include "tests/fuzz/fuzzing.h"

#include "tests/support/private_root.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace tavenhall::fuzz {

namespace {

constexpr const char* kLog = "/Users/tester/Library/Caches/Tavenhall/installationLog.txt";
constexpr std::size_t kLongestMessage = 4095;  // bytes; the log cuts there

std::string shown(std::string_view text) {
  constexpr std::size_t kMost = 2000;
  std::string visible;
  for (const char character : text.substr(0, kMost)) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x80 && (std::isalnum(byte) != 0 || std::strchr(" /.,:;=%_-", byte) != nullptr) && byte != 0) {
      visible += character;
    } else {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\x%02x", byte);
      visible += escaped;
    }
  }
  return visible + (text.size() > kMost ? " ..." : "") + " (" + std::to_string(text.size()) + " bytes)";
}

// Steps over "<time> <host>: "; where the message begins, or npos where there is no such heading.
std::size_t messageStart(std::string_view log, std::size_t at) {
  static const std::string host = [] {
    char name[256] = {};
    gethostname(name, sizeof name - 1);
    return std::string(name);
  }();
  // Month, day, year and time have three blanks between them, and one before the host's name.
  for (int blank = 0; blank < 4; ++blank) {
    at = log.find(' ', at);
    if (at == std::string_view::npos) {
      return at;
    }
    ++at;
  }
  const std::string heading = host + ": ";
  return log.substr(at, heading.size()) == heading ? at + heading.size() : std::string_view::npos;
}

}  // namespace

void fail(std::string_view what) {
  // On the descriptor, since the stream may be another just now (stops.cpp).
  dprintf(STDERR_FILENO, "FINDING: %.*s\n", static_cast<int>(what.size()), what.data());
  __builtin_trap();
}

void requireSame(std::string_view is, std::string_view expected, std::string_view what) {
  if (is != expected) {
    fail(std::string(what) + "\n  is       " + shown(is) + "\n  expected " + shown(expected));
  }
}

void writeBytes(const char* path, std::string_view bytes) {
  const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  const bool isWritten =
      file >= 0 && write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  if (!isWritten || close(file) != 0) {
    fail(std::string("could not write ") + path + ": " + std::strerror(errno));
  }
}

std::string readBytes(const char* path) {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    fail(std::string("could not open ") + path + ": " + std::strerror(errno));
  }
  std::string bytes;
  char piece[16384];
  for (ssize_t count = 0; (count = read(file, piece, sizeof piece)) > 0;) {
    bytes.append(piece, static_cast<std::size_t>(count));
  }
  close(file);
  return bytes;
}

void makeFolders(const std::string& path) { std::filesystem::create_directories(path); }

bool isValidUtf8(std::string_view text) {
  const auto byteAt = [text](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : static_cast<unsigned char>(0);
  };
  for (std::size_t i = 0; i < text.size();) {
    const unsigned first = byteAt(i);
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xC2 && first < 0xE0 ? 2
                               : first >= 0xE0 && first < 0xF0 ? 3
                               : first >= 0xF0 && first < 0xF5 ? 4
                                                               : 0;
    if (length == 0 || i + length > text.size()) {
      return false;
    }
    for (std::size_t more = 1; more < length; ++more) {
      if ((byteAt(i + more) & 0xC0U) != 0x80) {
        return false;
      }
    }
    // Too long a form, half of a surrogate pair, or beyond the last character.
    const unsigned second = byteAt(i + 1);
    if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
        (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F)) {
      return false;
    }
    i += length;
  }
  return true;
}

void requireLog(const std::vector<std::string>& messages) {
  const std::string log = readBytes(kLog);
  std::size_t at = 0;
  for (const std::string& message : messages) {
    const std::size_t start = messageStart(log, at);
    if (start == std::string::npos) {
      fail("the log has no record where one is expected: " + shown(message));
    }
    const std::string expected = message.substr(0, kLongestMessage) + "\n";
    requireSame(std::string_view(log).substr(start, expected.size()), expected, "a record of the log");
    at = start + expected.size();
  }
  requireSame(std::string_view(log).substr(at), "", "what the log has more");
  forgetLog();
}

void forgetLog() { unlink(kLog); }

}  // namespace tavenhall::fuzz

int LLVMFuzzerInitialize(int* /*argumentCount*/, char*** /*arguments*/) {
  tavenhall::test::enterPrivateRoot();
  tavenhall::fuzz::makeFolders("/Users/tester/Library/Caches/Tavenhall");
  return 0;
}
