#include "platform/host_system.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/sched.h>
#include <memory>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>

namespace tavenhall {

namespace {

using Filter = std::unique_ptr<std::remove_pointer_t<scmp_filter_ctx>, decltype(&seccomp_release)>;

// None of these is needed to show a page, to copy files or to run cp, chmod and mkdir.
constexpr std::array kRefused{
    // sockets: a socket in a folder, and VM sockets, are in no network namespace. socketpair() stays.
    "socket",
    // other processes
    "ptrace", "process_vm_readv", "process_vm_writev", "pidfd_getfd", "kcmp", "perf_event_open",
    // keyrings, which no namespace has
    "add_key", "keyctl", "request_key",
    // mounts, roots and namespaces
    "mount", "umount", "umount2", "pivot_root", "chroot", "fsopen", "fsconfig", "fsmount", "fspick",
    "move_mount", "open_tree", "mount_setattr", "unshare", "setns",
    // devices, and files without their paths
    "mknod", "mknodat", "name_to_handle_at", "open_by_handle_at",
    // the kernel
    "bpf", "userfaultfd", "io_uring_setup", "io_uring_enter", "io_uring_register", "init_module",
    "finit_module", "delete_module", "kexec_load", "kexec_file_load", "reboot", "swapon", "swapoff", "syslog",
    "acct", "quotactl", "settimeofday", "clock_settime", "adjtimex", "clock_adjtime"};

// Their arguments are in memory, which a filter cannot read. Programs then use an older call.
constexpr std::array kUnknown{"clone3", "openat2"};

// A call with an argument, or with two.
struct RefusedArguments {
  const char* call;
  std::array<scmp_arg_cmp, 2> arguments;
  unsigned count;
};

constexpr scmp_arg_cmp hasBits(unsigned argument, scmp_datum_t bits) {
  return {argument, SCMP_CMP_MASKED_EQ, bits, bits};
}

constexpr scmp_arg_cmp isRequest(scmp_datum_t request) {
  return {1, SCMP_CMP_MASKED_EQ, 0xFFFFFFFF, request};  // the kernel reads 32 bits
}

// A setuid program would keep the user's rights outside; the two ioctls type into a terminal.
constexpr std::array kRefusedArguments{
    RefusedArguments{"clone", {hasBits(0, CLONE_NEWUSER)}, 1},
    RefusedArguments{"ioctl", {isRequest(TIOCSTI)}, 1},
    RefusedArguments{"ioctl", {isRequest(TIOCLINUX)}, 1},
    RefusedArguments{"chmod", {hasBits(1, S_ISUID)}, 1},
    RefusedArguments{"fchmod", {hasBits(1, S_ISUID)}, 1},
    RefusedArguments{"fchmodat", {hasBits(2, S_ISUID)}, 1},
    RefusedArguments{"fchmodat2", {hasBits(2, S_ISUID)}, 1},
    RefusedArguments{"creat", {hasBits(1, S_ISUID)}, 1},
    RefusedArguments{"open", {hasBits(1, O_CREAT), hasBits(2, S_ISUID)}, 2},
    RefusedArguments{"openat", {hasBits(2, O_CREAT), hasBits(3, S_ISUID)}, 2}};

// A call that the library does not know, an old one of another processor, cannot be made here. It knows the
// newest by their names only in its own newest version.
int numberOf(const char* call) {
  constexpr int kFchmodat2 = 452;  // of every processor
  const int number = seccomp_syscall_resolve_name(call);
  return number == __NR_SCMP_ERROR && std::string_view(call) == "fchmodat2" ? kFchmodat2 : number;
}

bool add(const Filter& filter, std::uint32_t action, const char* call, unsigned count = 0,
         const scmp_arg_cmp* arguments = nullptr) {
  const int number = numberOf(call);
  return number < 0 || seccomp_rule_add_array(filter.get(), action, number, count, arguments) == 0;
}

bool fill(const Filter& filter) {
  bool isFull = seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_OPTIMIZE, 2) == 0;  // a binary tree
  for (const char* call : kRefused) {
    isFull = isFull && add(filter, SCMP_ACT_ERRNO(EPERM), call);
  }
  for (const char* call : kUnknown) {
    isFull = isFull && add(filter, SCMP_ACT_ERRNO(ENOSYS), call);
  }
  for (const RefusedArguments& row : kRefusedArguments) {
    isFull = isFull && add(filter, SCMP_ACT_ERRNO(EPERM), row.call, row.count, row.arguments.data());
  }
  return isFull;
}

}  // namespace

int openSandboxFilter() noexcept {
  const Filter filter(seccomp_init(SCMP_ACT_ALLOW), seccomp_release);
  const int descriptor = filter && fill(filter) ? openMemoryFile() : -1;
  if (descriptor >= 0 && seccomp_export_bpf(filter.get(), descriptor) != 0) {
    close(descriptor);
    return -1;
  }
  return descriptor;
}

}  // namespace tavenhall
