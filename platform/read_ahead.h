#pragma once

#include <memory>

namespace tavenhall {

// Reads a tree's small files into the system's memory shortly before they are copied, on a thread of its own,
// so that the copy need not wait for each. A hint only: it never changes, locks or reports anything, goes at
// most kFilesAhead files ahead, and reads nothing that the system has in memory. Where no thread can be had,
// nothing happens.
//
// The tree is taken to be walked as the page does: entries as the system lists them, each folder where it
// comes, hidden names left out.
class ReadAhead {
 public:
  explicit ReadAhead(const char* folder) noexcept;
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

  // Waits for the thread: nothing of the tree is open any more.
  ~ReadAhead();

  // The copy has come to the next file. On the thread that walks the tree, whether or not anybody reads ahead.
  static void cameToFile() noexcept;

  static constexpr int kFilesAhead = 64;

 private:
  class Reader;

  std::unique_ptr<Reader> reader_;
  inline static Reader* current_ = nullptr;  // the copy's thread
};

}  // namespace tavenhall
