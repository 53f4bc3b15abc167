#pragma once

#include <cstdint>
#include <memory>

// Hints to the system about files that are about to be copied. Hints only: every failure is ignored, and
// no byte of any file depends on them.
namespace tavenhall {

// The file, of `size` bytes, will be read once from start to end. Any thread.
void hintSequentialRead(int descriptor, std::int64_t size) noexcept;

// About `size` bytes will be written to the file, which is empty. Any thread.
void hintSequentialWrite(int descriptor, std::int64_t size) noexcept;

// Reads a tree's small files into the page cache shortly before they are copied, on a thread of its own, so
// that the copy need not wait for each. It reads at most kFilesAhead files ahead, and nothing that is cached
// already. Where no thread can be started, nothing happens.
//
// The tree must be walked as the page does: entries in the order of readdir, each folder where it comes, hidden
// names skipped.
class ReadAhead {
 public:
  explicit ReadAhead(const char* folder) noexcept;
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

  // Joins the thread; no file of the tree is open afterwards.
  ~ReadAhead();

  // Tells the reader that the copy has come to the next file. Only on the thread that walks the tree; does
  // nothing without a reader.
  static void cameToFile() noexcept;

  static constexpr int kFilesAhead = 64;

 private:
  class Reader;

  std::unique_ptr<Reader> reader_;
  inline static Reader* current_ = nullptr;  // the copy's thread
};

}  // namespace tavenhall
