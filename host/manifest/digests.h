#pragma once

#include "host/base/stop_request.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tavenhall {

struct FileDigest {
  std::string digest;     // SHA-256, 64 lower-case hexadecimal digits; empty if the file could not be read
  std::int64_t size = 0;  // bytes that were read
  int error = 0;          // errno of the call that failed
};

// Reads the files on several threads and calls `done` for each, by its index, and `progress` with the bytes
// that were read since the call before; both on one thread at a time, which need not be the caller's. Special
// files are not read. Returns when all are done, or soon after `stop`, if there is one, has come; then `done`
// was not called for each.
void digestFiles(const std::vector<std::filesystem::path>& files,
                 const std::function<void(std::size_t index, const FileDigest& digest)>& done,
                 const std::function<void(std::int64_t bytes)>& progress, const StopRequest* stop = nullptr);

}  // namespace tavenhall
