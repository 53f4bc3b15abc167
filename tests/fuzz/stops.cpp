#include "tests/fuzz/stops.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <dirent.h>
#include <vector>

// The linker puts these in the place of the functions that the product calls (--wrap).
extern "C" {
[[noreturn]] void __real_abort();
[[noreturn]] void __wrap_abort();
DIR* __real_opendir(const char* path);
DIR* __wrap_opendir(const char* path);
int __real_closedir(DIR* folder);
int __wrap_closedir(DIR* folder);
}

namespace tavenhall::fuzz {

namespace {

std::jmp_buf beforeBody;
bool isInBody = false;
std::array<char, 256> line;

std::vector<DIR*>& folders() {
  static auto* const open = new std::vector<DIR*>;
  return *open;
}

// What is written on the standard error stream goes into `line`. The sanitizers' reports do not: they write
// on the descriptor itself.
std::FILE* lineStream() {
  static std::FILE* const stream = fmemopen(line.data(), line.size() - 1, "w");
  return stream;
}

}  // namespace

std::optional<std::string> stopOf(const std::function<void()>& body) {
  std::FILE* const realError = stderr;
  const std::size_t foldersBefore = folders().size();
  line.fill('\0');
  std::rewind(lineStream());
  stderr = lineStream();
  const bool hasStopped = setjmp(beforeBody) != 0;
  if (!hasStopped) {
    isInBody = true;
    body();
  }
  isInBody = false;
  stderr = realError;
  std::fflush(lineStream());
  if (!hasStopped) {
    std::fputs(line.data(), stderr);
    return std::nullopt;
  }
  while (folders().size() > foldersBefore) {
    __wrap_closedir(folders().back());
  }
  std::string said = line.data();
  if (said.ends_with('\n')) {
    said.pop_back();
  }
  return said;
}

std::string stopLine(std::size_t limit) {
  return "InstallDataPane: a text does not fit its buffer of " + std::to_string(limit) + " bytes; stopping";
}

std::size_t openFolders() { return folders().size(); }

}  // namespace tavenhall::fuzz

void __wrap_abort() {
  if (!tavenhall::fuzz::isInBody) {
    __real_abort();
  }
  std::longjmp(tavenhall::fuzz::beforeBody, 1);
}

DIR* __wrap_opendir(const char* path) {
  DIR* const folder = __real_opendir(path);
  if (folder != nullptr) {
    tavenhall::fuzz::folders().push_back(folder);
  }
  return folder;
}

int __wrap_closedir(DIR* folder) {
  std::erase(tavenhall::fuzz::folders(), folder);
  return __real_closedir(folder);
}
