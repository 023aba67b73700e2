#include "platform/linux/reader/Confinement.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <linux/landlock.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <array>
#include <cstdio>
#include <optional>

#include "platform/linux/reader/SystemCallFilter.h"

namespace quillmere {
namespace {

/// The largest picture with its file, and what is made of it on the way.
constexpr rlim_t kMostMemory = rlim_t{8} << 30;
constexpr rlim_t kMostFiles = 64;

void limit(int resource, rlim_t value) {
  const rlimit both{value, value};
  ::setrlimit(static_cast<__rlimit_resource>(resource), &both);
}

/// What landlock of a version can forbid; the header may be older or younger than the kernel.
uint64_t fileRights(long version) {
  constexpr int kFirst = 13;
  constexpr int kNewest = 16;
  // 2: to move between folders; 3: to cut off; 5: to command devices.
  const int rights = version >= 5 ? kNewest : version >= 3 ? kNewest - 1 : version >= 2 ? kFirst + 1 : kFirst;
  return (uint64_t{1} << rights) - 1;
}

/// The fields as far as kernels have them; one that knows fewer takes them when they are zero.
struct Ruleset {
  uint64_t files;
  uint64_t network;
  uint64_t scopes;
};

bool forbidFiles() {
  const long version =
      ::syscall(SYS_landlock_create_ruleset, nullptr, size_t{0}, uint32_t{LANDLOCK_CREATE_RULESET_VERSION});
  if (version < 1) return false;
  constexpr uint64_t kBindAndConnect = 3;
  constexpr uint64_t kSocketsAndSignals = 3;
  const Ruleset rules{fileRights(version), version >= 4 ? kBindAndConnect : 0, version >= 6 ? kSocketsAndSignals : 0};
  const size_t size = version >= 6 ? sizeof rules : version >= 4 ? 2 * sizeof(uint64_t) : sizeof(uint64_t);
  const long ruleset = ::syscall(SYS_landlock_create_ruleset, &rules, size, uint32_t{0});
  if (ruleset < 0) return false;
  const bool isClosed = ::syscall(SYS_landlock_restrict_self, ruleset, uint32_t{0}) == 0;
  ::close(static_cast<int>(ruleset));
  return isClosed;
}

/// In the mounts that are ours alone, something empty lies over a folder that every system has.
bool enterEmptyRoot() {
  constexpr unsigned long kFlags = MS_NOSUID | MS_NODEV | MS_NOEXEC | MS_RDONLY;
  return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("none", "/tmp", "tmpfs", kFlags, "size=4k") == 0 && ::chroot("/tmp") == 0 && ::chdir("/") == 0;
}

/// The rights over its own namespaces, too.
void dropCapabilities() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3]{};
  ::syscall(SYS_capset, &header, none);
}

/// Sanitizers lay claim to terabytes that they never use.
constexpr bool isWatched() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return true;
#else
  return false;
#endif
}

/// The kernel's table of this process's memory, which cannot be opened any more when it is needed.
int memoryTable = -1;

/// Of its own, that can be written to: what its limit counts.
std::optional<int64_t> memoryNow() {
  std::array<char, 256> line{};
  if (::pread(memoryTable, line.data(), line.size() - 1, 0) <= 0) return std::nullopt;
  long long pages = 0;
  // The sixth of its numbers.
  if (std::sscanf(line.data(), "%*s %*s %*s %*s %*s %lld", &pages) != 1) return std::nullopt;
  return pages * ::sysconf(_SC_PAGESIZE);
}

void limitMemory(rlim_t bytes) {
  rlimit present{};
  if (::getrlimit(RLIMIT_DATA, &present) != 0) return;
  present.rlim_cur = bytes < present.rlim_max ? bytes : present.rlim_max;
  ::setrlimit(RLIMIT_DATA, &present);
}

}  // namespace

Confinement::MemoryAllowance::MemoryAllowance(int64_t bytes) {
  const auto now = memoryNow();
  if (!isWatched() && now) limitMemory(static_cast<rlim_t>(*now + bytes));
}

Confinement::MemoryAllowance::~MemoryAllowance() {
  limitMemory(RLIM_INFINITY);
}

uint32_t Confinement::begin() {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  ::prctl(PR_SET_DUMPABLE, 0);
  limit(RLIMIT_CORE, 0);
  limit(RLIMIT_NOFILE, kMostFiles);
  if (!isWatched()) limit(RLIMIT_AS, kMostMemory);
  return ::unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS | CLONE_NEWIPC | CLONE_NEWUTS) == 0
             ? 0
             : Protections::namespaces | Protections::emptyRoot;
}

bool Confinement::close(uint32_t& missing) {
  memoryTable = ::open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
  if ((missing & Protections::namespaces) == 0 && !enterEmptyRoot()) missing |= Protections::emptyRoot;
  dropCapabilities();
  if (!forbidFiles()) missing |= Protections::landlock;
  return installSystemCallFilter();
}

void Confinement::allowSeconds(unsigned seconds) {
  rusage used{};
  rlimit present{};
  if (::getrusage(RUSAGE_SELF, &used) != 0 || ::getrlimit(RLIMIT_CPU, &present) != 0) return;
  present.rlim_cur = static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec + 1) + seconds;
  ::setrlimit(RLIMIT_CPU, &present);
}

}  // namespace quillmere
