#pragma once

namespace tavenhall::test {

// From now on starts of threads are recorded; they still start. Once a process.
void recordThreadStarts();

// From now on threads are started, refused with an exception, or not started without a word.
enum class ThreadStarts { all, refused, lost };
void setThreadStarts(ThreadStarts starts);

}  // namespace tavenhall::test
