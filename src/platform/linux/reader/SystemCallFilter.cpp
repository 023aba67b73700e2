#include "platform/linux/reader/SystemCallFilter.h"

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace quillmere {
namespace {

#if defined(__x86_64__)
constexpr uint32_t kArchitecture = AUDIT_ARCH_X86_64;
/// Calls of another numbering have this bit.
constexpr uint32_t kForeignBit = 0x40000000;
#elif defined(__aarch64__)
constexpr uint32_t kArchitecture = AUDIT_ARCH_AARCH64;
constexpr uint32_t kForeignBit = 0;
#else
#error "The numbers of this machine's system calls have to be named here."
#endif

constexpr std::array kAllowed = {
    // The socket, the file and the memory that were given.
    SYS_read,
    SYS_pread64,
    SYS_readv,
    SYS_write,
    SYS_writev,
    SYS_lseek,
    SYS_close,
    SYS_fstat,
    SYS_recvmsg,
    SYS_sendmsg,
    SYS_ppoll,
    SYS_memfd_create,
    SYS_ftruncate,
    SYS_fallocate,
    // Memory.
    SYS_munmap,
    SYS_mremap,
    SYS_madvise,
    SYS_brk,
    // Threads of its own.
    SYS_eventfd2,
    SYS_pipe2,
    SYS_dup,
    SYS_futex,
    SYS_set_robust_list,
    SYS_rseq,
    SYS_sched_yield,
    SYS_sched_getaffinity,
    SYS_gettid,
    SYS_getpid,
    SYS_rt_sigaction,
    SYS_rt_sigprocmask,
    SYS_rt_sigreturn,
    SYS_sigaltstack,
    SYS_restart_syscall,
    SYS_exit,
    SYS_exit_group,
    // Time, and chance.
    SYS_clock_gettime,
    SYS_clock_getres,
    SYS_clock_nanosleep,
    SYS_nanosleep,
    SYS_gettimeofday,
    SYS_getrandom,
    SYS_getrusage,
    SYS_sysinfo,
#ifdef SYS_poll
    SYS_poll,
#endif
#ifdef SYS_time
    SYS_time,
#endif
};

constexpr sock_filter load(size_t offset) {
  return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<uint32_t>(offset));
}
constexpr sock_filter answer(uint32_t value) {
  return BPF_STMT(BPF_RET | BPF_K, value);
}
constexpr size_t kNumber = offsetof(seccomp_data, nr);
/// The lower half of an argument; both machines have it first.
constexpr size_t argument(size_t index) {
  return offsetof(seccomp_data, args) + index * sizeof(uint64_t);
}
constexpr uint32_t kRefused = SECCOMP_RET_ERRNO | EPERM;

/// One program of jumps that only go over the next few lines.
class Filter {
 public:
  void add(sock_filter line) { lines_.push_back(line); }
  void allow(long call) {
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(call), 0, 1));
    add(answer(SECCOMP_RET_ALLOW));
  }
  void refuse(long call, int error) {
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(call), 0, 1));
    add(answer(SECCOMP_RET_ERRNO | static_cast<uint32_t>(error)));
  }
  /// Only where the argument is one of these.
  void allowWith(long call, size_t index, std::initializer_list<uint32_t> values) {
    const auto lines = static_cast<uint8_t>(2 * values.size() + 3);
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(call), 0, lines));
    add(load(argument(index)));
    for (const uint32_t value : values) {
      add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, 1));
      add(answer(SECCOMP_RET_ALLOW));
    }
    add(answer(kRefused));
    add(load(kNumber));
  }
  /// Only where the argument has all of these bits.
  void allowWithBits(long call, size_t index, uint32_t bits) {
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(call), 0, 6));
    add(load(argument(index)));
    add(BPF_STMT(BPF_ALU | BPF_AND | BPF_K, bits));
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, bits, 0, 1));
    add(answer(SECCOMP_RET_ALLOW));
    add(answer(kRefused));
    add(load(kNumber));
  }
  /// Only where the argument has none of these bits.
  void allowWithoutBits(long call, size_t index, uint32_t bits) {
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(call), 0, 5));
    add(load(argument(index)));
    add(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, bits, 1, 0));
    add(answer(SECCOMP_RET_ALLOW));
    add(answer(kRefused));
    add(load(kNumber));
  }
  bool install() {
    const sock_fprog program{static_cast<unsigned short>(lines_.size()), lines_.data()};
    return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &program) == 0;
  }

 private:
  std::vector<sock_filter> lines_;
};

}  // namespace

bool installSystemCallFilter() {
  Filter filter;
  filter.add(load(offsetof(seccomp_data, arch)));
  filter.add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kArchitecture, 1, 0));
  filter.add(answer(SECCOMP_RET_KILL_PROCESS));
  filter.add(load(kNumber));
  if (kForeignBit != 0) {
    filter.add(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, kForeignBit, 0, 1));
    filter.add(answer(kRefused));
  }
  for (const long call : kAllowed) filter.allow(call);
  // Of a descriptor, not of a path.
  filter.allowWithBits(SYS_newfstatat, 3, AT_EMPTY_PATH);
  filter.allowWithBits(SYS_statx, 2, AT_EMPTY_PATH);
  filter.allowWithoutBits(SYS_mmap, 2, PROT_EXEC);
  filter.allowWithoutBits(SYS_mprotect, 2, PROT_EXEC);
  // Threads, no processes. The newer call has its flags where no filter sees them; who hears that it is not there takes
  // the older one.
  filter.refuse(SYS_clone3, ENOSYS);
  filter.allowWithBits(SYS_clone, 0, CLONE_THREAD | CLONE_VM | CLONE_SIGHAND);
  filter.allowWith(SYS_fcntl, 1, {F_ADD_SEALS, F_GET_SEALS});
  // Names of threads, and of memory.
  filter.allowWith(SYS_prctl, 0, {PR_SET_NAME});
  // An abort is a signal to itself.
  filter.allowWith(SYS_tgkill, 0, {static_cast<uint32_t>(::getpid())});
  filter.allowWith(SYS_prlimit64, 0, {0});
  filter.add(answer(kRefused));
  return filter.install();
}

}  // namespace quillmere
