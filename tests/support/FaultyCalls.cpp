#include "support/FaultyCalls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>

namespace quillmere::testing {
namespace {

struct Rule {
  std::optional<Call> call;  ///< none: of any kind
  size_t number = 0;         ///< among the calls of that kind; 0: every one
  std::string pathEnd;
  int error = 0;
  bool isShort = false;
  bool isDone = false;
  std::optional<FaultyCalls::Moment> end;
};

struct Plan {
  std::string folder;
  std::vector<Rule> rules;
  std::vector<FaultyCalls::Made> made;
};

std::mutex planMutex;
Plan plan;
// Asked first by every call of the process, long before and after any plan.
std::atomic<bool> isActive = false;

/// Where a descriptor leads. Straight to the kernel: `readlink` is one of ours.
std::string placeOf(const std::string& link) {
  std::array<char, PATH_MAX> place{};
  const long length = ::syscall(SYS_readlink, link.c_str(), place.data(), place.size());
  return length > 0 ? std::string(place.data(), static_cast<size_t>(length)) : std::string();
}
std::string placeOf(int descriptor) {
  return placeOf("/proc/self/fd/" + std::to_string(descriptor));
}
std::string placeOf(int folder, const char* path) {
  const std::string name = path;
  if (name.starts_with('/')) return name;
  const std::string base = folder == AT_FDCWD ? placeOf(std::string("/proc/self/cwd")) : placeOf(folder);
  return name.empty() ? base : base + "/" + name;
}

/// What is to become of one call.
struct Verdict {
  int error = 0;
  bool isShort = false;
  bool isDone = false;
  bool endsAfter = false;
};

template <typename... Place>
Verdict judge(Call call, Place... place) {
  if (!isActive) return {};
  const int error = errno;
  const std::string path = placeOf(place...);
  Verdict verdict;
  bool endsNow = false;
  {
    const std::lock_guard lock(planMutex);
    if (isActive && (path == plan.folder || path.starts_with(plan.folder + "/"))) {
      plan.made.push_back({call, path});
      size_t ofItsKind = 0;
      for (const auto& made : plan.made) ofItsKind += made.call == call ? 1 : 0;
      for (const Rule& rule : plan.rules) {
        if (rule.call && *rule.call != call) continue;
        if (rule.number != 0 && rule.number != (rule.call ? ofItsKind : plan.made.size())) continue;
        if (!path.ends_with(rule.pathEnd)) continue;
        if (rule.error != 0) verdict.error = rule.error;
        verdict.isShort = verdict.isShort || rule.isShort;
        verdict.isDone = verdict.isDone || rule.isDone;
        endsNow = endsNow || rule.end == FaultyCalls::Moment::before;
        verdict.endsAfter = verdict.endsAfter || rule.end == FaultyCalls::Moment::after;
      }
    }
  }
  if (endsNow) ::_exit(FaultyCalls::kEnded);
  errno = error;
  return verdict;
}

template <typename Result>
Result failure(int error) {
  errno = error;
  if constexpr (std::is_pointer_v<Result>) {
    return nullptr;
  } else {
    return Result(-1);
  }
}

/// Makes the call, unless it is to fail.
template <typename Result, typename... Parameters, typename... Arguments>
Result carryOut(const Verdict& verdict, Result (*real)(Parameters...), Arguments... arguments) {
  const bool isMade = verdict.error == 0 || verdict.isDone;
  Result result = isMade ? real(arguments...) : Result();
  if (verdict.error != 0) result = failure<Result>(verdict.error);
  if (verdict.endsAfter) ::_exit(FaultyCalls::kEnded);
  return result;
}

size_t allowed(const Verdict& verdict, size_t count) {
  return verdict.isShort && count > 1 ? count / 2 : count;
}

void add(Rule rule) {
  const std::lock_guard lock(planMutex);
  plan.rules.push_back(std::move(rule));
}

}  // namespace

std::string nameOf(Call call) {
  constexpr std::array kNames{
      "access",     "changeDates",    "changeMode",   "close",      "copyRange",     "flush", "ioctl",
      "link",       "listAttributes", "listFolder",   "makeFolder", "open",          "read",  "readAttribute",
      "readFolder", "readLink",       "removeFolder", "rename",     "resolvePath",   "seek",  "status",
      "truncate",   "unlink",         "volumeStatus", "write",      "writeAttribute"};
  static_assert(kNames.size() == static_cast<size_t>(Call::writeAttribute) + 1);
  return kNames.at(static_cast<size_t>(call));
}

FaultyCalls::FaultyCalls(const FileURL& folder) {
  const std::lock_guard lock(planMutex);
  if (isActive) std::abort();
  plan = {folder.path(), {}, {}};
  isActive = true;
}
FaultyCalls::~FaultyCalls() {
  isActive = false;
}

void FaultyCalls::fail(size_t number, int error) {
  add({.call = {}, .number = number, .pathEnd = {}, .error = error, .isShort = false, .isDone = false, .end = {}});
}
void FaultyCalls::failOnly(Call call, size_t nth, int error) {
  add({.call = call, .number = nth, .pathEnd = {}, .error = error, .isShort = false, .isDone = false, .end = {}});
}
void FaultyCalls::failEvery(Call call, int error, std::string pathEnd) {
  add({.call = call,
       .number = 0,
       .pathEnd = std::move(pathEnd),
       .error = error,
       .isShort = false,
       .isDone = false,
       .end = {}});
}
void FaultyCalls::refuseAfterTheDeed(Call call, int error, std::string pathEnd) {
  add({.call = call,
       .number = 0,
       .pathEnd = std::move(pathEnd),
       .error = error,
       .isShort = false,
       .isDone = true,
       .end = {}});
}
void FaultyCalls::shorten(size_t number) {
  add({.call = {}, .number = number, .pathEnd = {}, .error = 0, .isShort = true, .isDone = false, .end = {}});
}
void FaultyCalls::endProcess(size_t number, Moment moment) {
  add({.call = {}, .number = number, .pathEnd = {}, .error = 0, .isShort = false, .isDone = false, .end = moment});
}

std::vector<FaultyCalls::Made> FaultyCalls::made() const {
  const std::lock_guard lock(planMutex);
  return plan.made;
}

std::vector<FaultyCalls::Made> callsMade(const FileURL& folder, const std::function<void()>& operation) {
  const FaultyCalls calls(folder);
  operation();
  return calls.made();
}

}  // namespace quillmere::testing

// --- libc's functions ---
//
// Each asks for the verdict on its place and forwards. That a function of this name stands in the executable is enough
// for the dynamic linker to bind every library's calls to it.

using quillmere::testing::allowed;
using quillmere::testing::Call;
using quillmere::testing::carryOut;
using quillmere::testing::judge;

/// libc's own function of this type and name; a type in parentheses would be none, which the check here does not see.
#define REAL(type, name) \
  static const auto real = reinterpret_cast<type>(::dlsym(RTLD_NEXT, name));  // NOLINT(bugprone-macro-parentheses)

namespace {

bool takesMode(int flags) {
  return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

using Open = int (*)(const char*, int, mode_t);
using OpenAt = int (*)(int, const char*, int, mode_t);
using OnPath = int (*)(const char*);
using OnPathWithMode = int (*)(const char*, mode_t);
using OnDescriptor = int (*)(int);

/// The mode stands among the variable arguments only where a file may be made.
#define MODE_AFTER(flags)        \
  mode_t mode = 0;               \
  if (takesMode(flags)) {        \
    va_list rest;                \
    va_start(rest, flags);       \
    mode = va_arg(rest, mode_t); \
    va_end(rest);                \
  }

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  MODE_AFTER(flags)
  REAL(Open, "open")
  return carryOut(judge(Call::open, AT_FDCWD, path), real, path, flags, mode);
}
int open64(const char* path, int flags, ...) {
  MODE_AFTER(flags)
  REAL(Open, "open64")
  return carryOut(judge(Call::open, AT_FDCWD, path), real, path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {
  MODE_AFTER(flags)
  REAL(OpenAt, "openat")
  return carryOut(judge(Call::open, folder, path), real, folder, path, flags, mode);
}
int openat64(int folder, const char* path, int flags, ...) {
  MODE_AFTER(flags)
  REAL(OpenAt, "openat64")
  return carryOut(judge(Call::open, folder, path), real, folder, path, flags, mode);
}
int creat(const char* path, mode_t mode) {
  REAL(OnPathWithMode, "creat")
  return carryOut(judge(Call::open, AT_FDCWD, path), real, path, mode);
}
int creat64(const char* path, mode_t mode) {
  REAL(OnPathWithMode, "creat64")
  return carryOut(judge(Call::open, AT_FDCWD, path), real, path, mode);
}
FILE* fopen(const char* path, const char* modes) {
  REAL(FILE * (*)(const char*, const char*), "fopen")
  return carryOut(judge(Call::open, AT_FDCWD, path), real, path, modes);
}
FILE* fopen64(const char* path, const char* modes) {
  REAL(FILE * (*)(const char*, const char*), "fopen64")
  return carryOut(judge(Call::open, AT_FDCWD, path), real, path, modes);
}
int mkostemp(char* path, int flags) {
  REAL(int (*)(char*, int), "mkostemp")
  return carryOut(judge(Call::open, AT_FDCWD, path), real, path, flags);
}
int mkostemp64(char* path, int flags) {
  REAL(int (*)(char*, int), "mkostemp64")
  return carryOut(judge(Call::open, AT_FDCWD, path), real, path, flags);
}
int close(int descriptor) {
  REAL(OnDescriptor, "close")
  const auto verdict = judge(Call::close, descriptor);
  if (verdict.error == 0) return carryOut(verdict, real, descriptor);
  real(descriptor);
  errno = verdict.error;
  return -1;
}

ssize_t read(int descriptor, void* bytes, size_t count) {
  REAL(ssize_t(*)(int, void*, size_t), "read")
  const auto verdict = judge(Call::read, descriptor);
  return carryOut(verdict, real, descriptor, bytes, allowed(verdict, count));
}
ssize_t pread(int descriptor, void* bytes, size_t count, off_t offset) {
  REAL(ssize_t(*)(int, void*, size_t, off_t), "pread")
  const auto verdict = judge(Call::read, descriptor);
  return carryOut(verdict, real, descriptor, bytes, allowed(verdict, count), offset);
}
ssize_t pread64(int descriptor, void* bytes, size_t count, off64_t offset) {
  REAL(ssize_t(*)(int, void*, size_t, off64_t), "pread64")
  const auto verdict = judge(Call::read, descriptor);
  return carryOut(verdict, real, descriptor, bytes, allowed(verdict, count), offset);
}
ssize_t write(int descriptor, const void* bytes, size_t count) {
  REAL(ssize_t(*)(int, const void*, size_t), "write")
  const auto verdict = judge(Call::write, descriptor);
  return carryOut(verdict, real, descriptor, bytes, allowed(verdict, count));
}
ssize_t pwrite(int descriptor, const void* bytes, size_t count, off_t offset) {
  REAL(ssize_t(*)(int, const void*, size_t, off_t), "pwrite")
  const auto verdict = judge(Call::write, descriptor);
  return carryOut(verdict, real, descriptor, bytes, allowed(verdict, count), offset);
}
ssize_t pwrite64(int descriptor, const void* bytes, size_t count, off64_t offset) {
  REAL(ssize_t(*)(int, const void*, size_t, off64_t), "pwrite64")
  const auto verdict = judge(Call::write, descriptor);
  return carryOut(verdict, real, descriptor, bytes, allowed(verdict, count), offset);
}
ssize_t writev(int descriptor, const iovec* pieces, int count) {
  REAL(ssize_t(*)(int, const iovec*, int), "writev")
  const auto verdict = judge(Call::write, descriptor);
  if (!verdict.isShort || count < 1) return carryOut(verdict, real, descriptor, pieces, count);
  const iovec half{pieces->iov_base, allowed(verdict, pieces->iov_len)};
  return carryOut(verdict, real, descriptor, &half, 1);
}
ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t count, unsigned flags) {
  REAL(ssize_t(*)(int, off64_t*, int, off64_t*, size_t, unsigned), "copy_file_range")
  const auto verdict = judge(Call::copyRange, to);
  return carryOut(verdict, real, from, fromOffset, to, toOffset, allowed(verdict, count), flags);
}
int fsync(int descriptor) {
  REAL(OnDescriptor, "fsync")
  return carryOut(judge(Call::flush, descriptor), real, descriptor);
}
int fdatasync(int descriptor) {
  REAL(OnDescriptor, "fdatasync")
  return carryOut(judge(Call::flush, descriptor), real, descriptor);
}
int ftruncate(int descriptor, off_t length) noexcept {
  REAL(int (*)(int, off_t), "ftruncate")
  return carryOut(judge(Call::truncate, descriptor), real, descriptor, length);
}
int ftruncate64(int descriptor, off64_t length) noexcept {
  REAL(int (*)(int, off64_t), "ftruncate64")
  return carryOut(judge(Call::truncate, descriptor), real, descriptor, length);
}
off_t lseek(int descriptor, off_t offset, int whence) noexcept {
  REAL(off_t(*)(int, off_t, int), "lseek")
  return carryOut(judge(Call::seek, descriptor), real, descriptor, offset, whence);
}
off64_t lseek64(int descriptor, off64_t offset, int whence) noexcept {
  REAL(off64_t(*)(int, off64_t, int), "lseek64")
  return carryOut(judge(Call::seek, descriptor), real, descriptor, offset, whence);
}
int ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list rest;
  va_start(rest, request);
  void* argument = va_arg(rest, void*);
  va_end(rest);
  REAL(int (*)(int, unsigned long, void*), "ioctl")
  return carryOut(judge(Call::ioctl, descriptor), real, descriptor, request, argument);
}

int mkdir(const char* path, mode_t mode) noexcept {
  REAL(OnPathWithMode, "mkdir")
  return carryOut(judge(Call::makeFolder, AT_FDCWD, path), real, path, mode);
}
int mkdirat(int folder, const char* path, mode_t mode) noexcept {
  REAL(int (*)(int, const char*, mode_t), "mkdirat")
  return carryOut(judge(Call::makeFolder, folder, path), real, folder, path, mode);
}
int rmdir(const char* path) noexcept {
  REAL(OnPath, "rmdir")
  return carryOut(judge(Call::removeFolder, AT_FDCWD, path), real, path);
}
int rename(const char* from, const char* to) noexcept {
  REAL(int (*)(const char*, const char*), "rename")
  return carryOut(judge(Call::rename, AT_FDCWD, from), real, from, to);
}
int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  REAL(int (*)(int, const char*, int, const char*), "renameat")
  return carryOut(judge(Call::rename, fromFolder, from), real, fromFolder, from, toFolder, to);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  REAL(int (*)(int, const char*, int, const char*, unsigned), "renameat2")
  return carryOut(judge(Call::rename, fromFolder, from), real, fromFolder, from, toFolder, to, flags);
}
int link(const char* from, const char* to) noexcept {
  REAL(int (*)(const char*, const char*), "link")
  return carryOut(judge(Call::link, AT_FDCWD, to), real, from, to);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
  REAL(int (*)(int, const char*, int, const char*, int), "linkat")
  return carryOut(judge(Call::link, toFolder, to), real, fromFolder, from, toFolder, to, flags);
}
int symlink(const char* target, const char* path) noexcept {
  REAL(int (*)(const char*, const char*), "symlink")
  return carryOut(judge(Call::link, AT_FDCWD, path), real, target, path);
}
int unlink(const char* path) noexcept {
  REAL(OnPath, "unlink")
  return carryOut(judge(Call::unlink, AT_FDCWD, path), real, path);
}
int unlinkat(int folder, const char* path, int flags) noexcept {
  REAL(int (*)(int, const char*, int), "unlinkat")
  return carryOut(judge(Call::unlink, folder, path), real, folder, path, flags);
}
int remove(const char* path) noexcept {
  REAL(OnPath, "remove")
  return carryOut(judge(Call::unlink, AT_FDCWD, path), real, path);
}
int chmod(const char* path, mode_t mode) noexcept {
  REAL(OnPathWithMode, "chmod")
  return carryOut(judge(Call::changeMode, AT_FDCWD, path), real, path, mode);
}
int fchmod(int descriptor, mode_t mode) noexcept {
  REAL(int (*)(int, mode_t), "fchmod")
  return carryOut(judge(Call::changeMode, descriptor), real, descriptor, mode);
}

int stat(const char* path, struct stat* status) noexcept {
  REAL(int (*)(const char*, struct stat*), "stat")
  return carryOut(judge(Call::status, AT_FDCWD, path), real, path, status);
}
int stat64(const char* path, struct stat64* status) noexcept {
  REAL(int (*)(const char*, struct stat64*), "stat64")
  return carryOut(judge(Call::status, AT_FDCWD, path), real, path, status);
}
int lstat(const char* path, struct stat* status) noexcept {
  REAL(int (*)(const char*, struct stat*), "lstat")
  return carryOut(judge(Call::status, AT_FDCWD, path), real, path, status);
}
int lstat64(const char* path, struct stat64* status) noexcept {
  REAL(int (*)(const char*, struct stat64*), "lstat64")
  return carryOut(judge(Call::status, AT_FDCWD, path), real, path, status);
}
int fstat(int descriptor, struct stat* status) noexcept {
  REAL(int (*)(int, struct stat*), "fstat")
  return carryOut(judge(Call::status, descriptor), real, descriptor, status);
}
int fstat64(int descriptor, struct stat64* status) noexcept {
  REAL(int (*)(int, struct stat64*), "fstat64")
  return carryOut(judge(Call::status, descriptor), real, descriptor, status);
}
int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
  REAL(int (*)(int, const char*, struct stat*, int), "fstatat")
  return carryOut(judge(Call::status, folder, path), real, folder, path, status, flags);
}
int fstatat64(int folder, const char* path, struct stat64* status, int flags) noexcept {
  REAL(int (*)(int, const char*, struct stat64*, int), "fstatat64")
  return carryOut(judge(Call::status, folder, path), real, folder, path, status, flags);
}
int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) noexcept {
  REAL(int (*)(int, const char*, int, unsigned, struct statx*), "statx")
  return carryOut(judge(Call::status, folder, path), real, folder, path, flags, mask, status);
}
int statfs(const char* path, struct statfs* status) noexcept {
  REAL(int (*)(const char*, struct statfs*), "statfs")
  return carryOut(judge(Call::volumeStatus, AT_FDCWD, path), real, path, status);
}
int statfs64(const char* path, struct statfs64* status) noexcept {
  REAL(int (*)(const char*, struct statfs64*), "statfs64")
  return carryOut(judge(Call::volumeStatus, AT_FDCWD, path), real, path, status);
}
int statvfs(const char* path, struct statvfs* status) noexcept {
  REAL(int (*)(const char*, struct statvfs*), "statvfs")
  return carryOut(judge(Call::volumeStatus, AT_FDCWD, path), real, path, status);
}
int statvfs64(const char* path, struct statvfs64* status) noexcept {
  REAL(int (*)(const char*, struct statvfs64*), "statvfs64")
  return carryOut(judge(Call::volumeStatus, AT_FDCWD, path), real, path, status);
}
int access(const char* path, int mode) noexcept {
  REAL(int (*)(const char*, int), "access")
  return carryOut(judge(Call::access, AT_FDCWD, path), real, path, mode);
}
int faccessat(int folder, const char* path, int mode, int flags) noexcept {
  REAL(int (*)(int, const char*, int, int), "faccessat")
  return carryOut(judge(Call::access, folder, path), real, folder, path, mode, flags);
}
ssize_t getxattr(const char* path, const char* name, void* value, size_t size) noexcept {
  REAL(ssize_t(*)(const char*, const char*, void*, size_t), "getxattr")
  return carryOut(judge(Call::readAttribute, AT_FDCWD, path), real, path, name, value, size);
}
ssize_t lgetxattr(const char* path, const char* name, void* value, size_t size) noexcept {
  REAL(ssize_t(*)(const char*, const char*, void*, size_t), "lgetxattr")
  return carryOut(judge(Call::readAttribute, AT_FDCWD, path), real, path, name, value, size);
}
ssize_t fgetxattr(int descriptor, const char* name, void* value, size_t size) noexcept {
  REAL(ssize_t(*)(int, const char*, void*, size_t), "fgetxattr")
  return carryOut(judge(Call::readAttribute, descriptor), real, descriptor, name, value, size);
}
ssize_t flistxattr(int descriptor, char* names, size_t size) noexcept {
  REAL(ssize_t(*)(int, char*, size_t), "flistxattr")
  return carryOut(judge(Call::listAttributes, descriptor), real, descriptor, names, size);
}
int fsetxattr(int descriptor, const char* name, const void* value, size_t size, int flags) noexcept {
  REAL(int (*)(int, const char*, const void*, size_t, int), "fsetxattr")
  return carryOut(judge(Call::writeAttribute, descriptor), real, descriptor, name, value, size, flags);
}
int futimens(int descriptor, const timespec* dates) noexcept {
  REAL(int (*)(int, const timespec*), "futimens")
  return carryOut(judge(Call::changeDates, descriptor), real, descriptor, dates);
}
ssize_t readlink(const char* path, char* target, size_t size) noexcept {
  REAL(ssize_t(*)(const char*, char*, size_t), "readlink")
  return carryOut(judge(Call::readLink, AT_FDCWD, path), real, path, target, size);
}
char* realpath(const char* path, char* resolved) noexcept {
  REAL(char* (*)(const char*, char*), "realpath")
  return carryOut(judge(Call::resolvePath, AT_FDCWD, path), real, path, resolved);
}

DIR* opendir(const char* path) {
  REAL(DIR * (*)(const char*), "opendir")
  return carryOut(judge(Call::listFolder, AT_FDCWD, path), real, path);
}
DIR* fdopendir(int descriptor) {
  REAL(DIR * (*)(int), "fdopendir")
  return carryOut(judge(Call::listFolder, descriptor), real, descriptor);
}
dirent* readdir(DIR* stream) {
  REAL(dirent * (*)(DIR*), "readdir")
  return carryOut(judge(Call::readFolder, ::dirfd(stream)), real, stream);
}
dirent64* readdir64(DIR* stream) {
  REAL(dirent64 * (*)(DIR*), "readdir64")
  return carryOut(judge(Call::readFolder, ::dirfd(stream)), real, stream);
}

// What the program calls instead where the compiler knows the size of its memory, and some libraries.
// NOLINTBEGIN(bugprone-reserved-identifier,clang-diagnostic-reserved-identifier)
int __open_2(const char* path, int flags) {
  return open(path, flags);
}
int __open64_2(const char* path, int flags) {
  return open64(path, flags);
}
int __openat_2(int folder, const char* path, int flags) {
  return openat(folder, path, flags);
}
int __openat64_2(int folder, const char* path, int flags) {
  return openat64(folder, path, flags);
}
ssize_t __read_chk(int descriptor, void* bytes, size_t count, size_t room) {
  if (count > room) std::abort();
  return read(descriptor, bytes, count);
}
ssize_t __pread_chk(int descriptor, void* bytes, size_t count, off_t offset, size_t room) {
  if (count > room) std::abort();
  return pread(descriptor, bytes, count, offset);
}
ssize_t __pread64_chk(int descriptor, void* bytes, size_t count, off64_t offset, size_t room) {
  if (count > room) std::abort();
  return pread64(descriptor, bytes, count, offset);
}
ssize_t __readlink_chk(const char* path, char* target, size_t size, size_t room) noexcept {
  if (size > room) std::abort();
  return readlink(path, target, size);
}
char* __realpath_chk(const char* path, char* resolved, size_t room) noexcept {
  if (room < PATH_MAX) std::abort();
  return realpath(path, resolved);
}
// NOLINTEND(bugprone-reserved-identifier,clang-diagnostic-reserved-identifier)

}  // extern "C"
