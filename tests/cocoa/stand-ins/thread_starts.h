#pragma once

namespace tavenhall::test {

// From now on starts of threads are recorded; they still start. Once a process.
void recordThreadStarts();

// From now on no thread can be started, or again every one.
void refuseThreads(bool areRefused);

}  // namespace tavenhall::test
