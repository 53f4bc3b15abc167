#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

// A mutex and a condition variable that clang checks (-Wthread-safety): a member marked GUARDED_BY is only
// touched while its mutex is held.
#if defined(__clang__)
#define TAVENHALL_THREAD_ANNOTATION(annotation) __attribute__((annotation))
#else
#define TAVENHALL_THREAD_ANNOTATION(annotation)
#endif
#define CAPABILITY(name) TAVENHALL_THREAD_ANNOTATION(capability(name))
#define SCOPED_CAPABILITY TAVENHALL_THREAD_ANNOTATION(scoped_lockable)
#define GUARDED_BY(mutex) TAVENHALL_THREAD_ANNOTATION(guarded_by(mutex))
#define REQUIRES(mutex) TAVENHALL_THREAD_ANNOTATION(requires_capability(mutex))
#define EXCLUDES(mutex) TAVENHALL_THREAD_ANNOTATION(locks_excluded(mutex))
#define ACQUIRE(...) TAVENHALL_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) TAVENHALL_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define ASSERT_CAPABILITY(mutex) TAVENHALL_THREAD_ANNOTATION(assert_capability(mutex))

namespace tavenhall {

class CAPABILITY("mutex") Mutex {
 public:
  void lock() ACQUIRE() { mutex_.lock(); }
  void unlock() RELEASE() { mutex_.unlock(); }

  // For code that is called with the mutex held in a way that clang cannot see. Checks nothing at run time.
  void assertHeld() const ASSERT_CAPABILITY(this) {}

 private:
  friend class Condition;

  std::mutex mutex_;
};

class SCOPED_CAPABILITY Lock {
 public:
  explicit Lock(Mutex& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  ~Lock() RELEASE() { mutex_.unlock(); }

 private:
  Mutex& mutex_;
};

// Waits release the mutex and take it again. A wait may end without a notification, so callers check in a loop.
class Condition {
 public:
  void wait(Mutex& mutex) REQUIRES(mutex) {
    std::unique_lock lock(mutex.mutex_, std::adopt_lock);
    condition_.wait(lock);
    lock.release();
  }

  // Returns false once the time has passed.
  bool waitUntil(Mutex& mutex, std::chrono::steady_clock::time_point time) REQUIRES(mutex) {
    std::unique_lock lock(mutex.mutex_, std::adopt_lock);
    const bool isInTime = condition_.wait_until(lock, time) == std::cv_status::no_timeout;
    lock.release();
    return isInTime;
  }

  void notifyAll() noexcept { condition_.notify_all(); }

 private:
  std::condition_variable condition_;
};

}  // namespace tavenhall
