#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What the fuzz targets share. A target is one file with the function LLVMFuzzerTestOneInput, which takes any
// bytes, gives them to the product's own functions and requires what must hold of the result. It is linked
// with libFuzzer in the build `fuzz`, and elsewhere with a main function that goes through the kept inputs.
//
// Every target runs in a private root (tests/support/private_root.h), entered before the first input.
namespace tavenhall::fuzz {

[[nodiscard]] inline std::string_view asText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// A finding: says what, and ends the process as a crash does, so that the fuzzer keeps the input.
[[noreturn]] void fail(std::string_view what);

inline void require(bool holds, std::string_view what) {
  if (!holds) {
    fail(what);
  }
}

// Shows both texts where they differ, with everything but letters and digits as "\xNN".
void requireSame(std::string_view is, std::string_view expected, std::string_view what);

// ---- Files, without a test's comforts, since this is done thousands of times a second ----

// Writes a file into a folder that is there.
void writeBytes(const char* path, std::string_view bytes);
[[nodiscard]] std::string readBytes(const char* path);

// Makes a folder, with those above it.
void makeFolders(const std::string& path);

// ---- Texts ----

[[nodiscard]] bool isValidUtf8(std::string_view text);

// ---- The installation log ----

// Requires that the log holds records of exactly these messages, in order, and removes it.
void requireLog(const std::vector<std::string>& messages);
void forgetLog();

}  // namespace tavenhall::fuzz

extern "C" {
// Once a process, before the first input.
int LLVMFuzzerInitialize(int* argumentCount, char*** arguments);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
}
