#include "tests/faults/call_filter.h"

#include <array>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {

namespace {

constexpr GatedCall byPath(long number, CallKind kind) { return {number, kind, -1, 0, -1}; }
constexpr GatedCall below(long number, CallKind kind) { return {number, kind, 0, 1, -1}; }
constexpr GatedCall onDescriptor(long number, CallKind kind) { return {number, kind, -1, -1, 0}; }

// The first rows are of older processors' systems alone.
constexpr GatedCall kCalls[] = {
#ifdef SYS_open
    byPath(SYS_open, CallKind::open),
    byPath(SYS_stat, CallKind::stat),
    byPath(SYS_lstat, CallKind::stat),
    byPath(SYS_access, CallKind::stat),
    byPath(SYS_mkdir, CallKind::makeFolder),
    byPath(SYS_unlink, CallKind::remove),
    byPath(SYS_rmdir, CallKind::remove),
    byPath(SYS_rename, CallKind::rename),
    byPath(SYS_chmod, CallKind::permissions),
    byPath(SYS_readlink, CallKind::readLink),
#endif
    below(SYS_openat, CallKind::open),
    onDescriptor(SYS_read, CallKind::read),
    onDescriptor(SYS_pread64, CallKind::read),
    onDescriptor(SYS_readv, CallKind::read),
    onDescriptor(SYS_write, CallKind::write),
    onDescriptor(SYS_pwrite64, CallKind::write),
    onDescriptor(SYS_writev, CallKind::write),
    onDescriptor(SYS_fallocate, CallKind::reserve),
    onDescriptor(SYS_ftruncate, CallKind::reserve),
    onDescriptor(SYS_close, CallKind::close),
    below(SYS_newfstatat, CallKind::stat),
    below(SYS_statx, CallKind::stat),
    below(SYS_faccessat, CallKind::stat),
    onDescriptor(SYS_fstat, CallKind::stat),
    below(SYS_mkdirat, CallKind::makeFolder),
    onDescriptor(SYS_getdents64, CallKind::list),
    below(SYS_unlinkat, CallKind::remove),
    below(SYS_renameat, CallKind::rename),
    below(SYS_renameat2, CallKind::rename),
    below(SYS_fchmodat, CallKind::permissions),
    onDescriptor(SYS_fchmod, CallKind::permissions),
    byPath(SYS_statfs, CallKind::fileSystem),
    onDescriptor(SYS_fstatfs, CallKind::fileSystem),
    below(SYS_readlinkat, CallKind::readLink),
    onDescriptor(SYS_lseek, CallKind::seek),
};

constexpr long kOthers[] = {SYS_nanosleep, SYS_clock_nanosleep, SYS_clone, SYS_clone3, SYS_rt_sigaction};

}  // namespace

std::span<const GatedCall> gatedCalls() { return kCalls; }

int installCallFilter() {
  std::vector<long> numbers(std::begin(kOthers), std::end(kOthers));
  for (const GatedCall& call : kCalls) {
    numbers.push_back(call.number);
  }
  std::vector<sock_filter> program;
  program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)));
  for (const long number : numbers) {
    program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(number), 0, 1));
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
  }
  program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
    return -1;
  }
  // A signal leaves a call alone that is being judged, so that each call is shown once.
  constexpr auto kFlags = SECCOMP_FILTER_FLAG_NEW_LISTENER | SECCOMP_FILTER_FLAG_WAIT_KILLABLE_RECV;
  return static_cast<int>(syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, kFlags, &filter));
}

}  // namespace tavenhall::test
