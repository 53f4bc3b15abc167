#include "tests/faults/program_memory.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <fstream>
#include <sys/uio.h>
#include <unistd.h>

namespace tavenhall::test {

namespace {

constexpr std::size_t kPageSize = 4096;

std::string linkBelow(pid_t process, const std::string& name) {
  std::array<char, 8192> target{};
  const std::string link = "/proc/" + std::to_string(process) + "/" + name;
  const ssize_t length = readlink(link.c_str(), target.data(), target.size());
  return {target.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

}  // namespace

bool readMemory(pid_t process, std::uint64_t address, void* bytes, std::size_t count) {
  iovec here{bytes, count};
  iovec there{reinterpret_cast<void*>(address), count};
  return process_vm_readv(process, &here, 1, &there, 1, 0) == static_cast<ssize_t>(count);
}

bool writeMemory(pid_t process, std::uint64_t address, const void* bytes, std::size_t count) {
  iovec here{const_cast<void*>(bytes), count};
  iovec there{reinterpret_cast<void*>(address), count};
  return process_vm_writev(process, &here, 1, &there, 1, 0) == static_cast<ssize_t>(count);
}

// Up to the end of each page in turn, since the next one may not be there.
std::string readText(pid_t process, std::uint64_t address) {
  std::string text;
  std::array<char, kPageSize> bytes{};
  while (true) {
    const std::size_t count = kPageSize - address % kPageSize;
    if (!readMemory(process, address, bytes.data(), count)) {
      return text;
    }
    const char* last = std::find(bytes.cbegin(), bytes.cbegin() + count, '\0');
    text.append(bytes.data(), static_cast<std::size_t>(last - bytes.data()));
    if (last != bytes.data() + count) {
      return text;
    }
    address += count;
  }
}

std::string pathOfDescriptor(pid_t process, int descriptor) {
  return linkBelow(process, "fd/" + std::to_string(descriptor));
}

std::string pathBelow(pid_t process, int folder, const std::string& path) {
  if (path.starts_with('/')) {
    return path;
  }
  const std::string base = folder == AT_FDCWD ? linkBelow(process, "cwd") : pathOfDescriptor(process, folder);
  return path.empty() ? base : base + "/" + path;
}

std::string programOf(pid_t process) { return linkBelow(process, "exe"); }

pid_t processOfThread(pid_t thread) {
  std::ifstream status("/proc/" + std::to_string(thread) + "/status");
  for (std::string word; status >> word;) {
    if (word == "Tgid:") {
      pid_t process = 0;
      status >> process;
      return process;
    }
  }
  return thread;
}

}  // namespace tavenhall::test
