#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>
#include <array>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <thread>

#include "platform/linux/reader/Confinement.h"
#include "platform/linux/reader/SystemCallFilter.h"

using namespace quillmere;

namespace {

void tell(const char* what, bool isDone) {
  const std::string line = std::string(what) + (isDone ? " succeeds\n" : " fails\n");
  [[maybe_unused]] const auto written = ::write(STDOUT_FILENO, line.data(), line.size());
}

bool opens(const char* path, int flags) {
  return ::open(path, flags, 0600) >= 0;
}

}  // namespace

/// Tries what a decoder's hole would be used for, locked in as a reader is, or only as far as the kernel's filter of
/// system calls goes; `argv[1]` says which, `argv[2]` is a folder with a file named "file".
int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::string folder = argv[2];
  const std::string file = folder + "/file";
  const std::string other = folder + "/other";
  const pid_t parent = ::getppid();
  const int given = ::open(file.c_str(), O_RDONLY);
  if (std::strcmp(argv[1], "filter") == 0) {
    ::syscall(SYS_prctl, 38, 1, 0, 0, 0);  // no new privileges, which a filter needs
    if (!installSystemCallFilter()) return 3;
  } else if (std::strcmp(argv[1], "all") == 0) {
    uint32_t missing = Confinement::begin();
    if (!Confinement::close(missing)) return 3;
    std::array<char, 64> line{};
    const int size = std::snprintf(line.data(), line.size(), "missing: %s\n", Protections::names(missing).c_str());
    [[maybe_unused]] const auto written = ::write(STDOUT_FILENO, line.data(), static_cast<size_t>(size));
  } else if (std::strcmp(argv[1], "nothing") != 0) {
    return 2;
  }
  std::array<char, 4> bytes{};
  tell("reading what was given", ::read(given, bytes.data(), bytes.size()) == 4);
  tell("memory", ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED);
  const auto takes = [](size_t size) {
    void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED && ::munmap(memory, size) == 0;
  };
  {
    constexpr int64_t kAllowed = 64 << 20;
    const Confinement::MemoryAllowance allowance(kAllowed);
    tell("memory that is allowed", takes(kAllowed / 2));
    tell("more memory than is allowed", takes(2 * kAllowed));
  }
  tell("memory afterwards", takes(size_t{256} << 20));
  bool hasRun = false;
  std::thread([&] { hasRun = true; }).join();
  tell("a thread", hasRun);

  tell("opening a file", opens(file.c_str(), O_RDONLY));
  tell("opening a file for writing", opens(file.c_str(), O_WRONLY));
  tell("making a file", opens(other.c_str(), O_WRONLY | O_CREAT));
  tell("listing a folder", opens(folder.c_str(), O_RDONLY | O_DIRECTORY));
  struct stat status {};
  tell("looking for a file", ::stat(file.c_str(), &status) == 0);
  tell("removing a file", ::unlink(file.c_str()) == 0);
  tell("a connection", ::socket(AF_INET, SOCK_STREAM, 0) >= 0);
  tell("a local connection", ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0);
  std::array<char*, 2> arguments{const_cast<char*>("/bin/true"), nullptr};
  pid_t child = 0;
  tell("a program", ::posix_spawn(&child, "/bin/true", nullptr, nullptr, arguments.data(), environ) == 0);
  const pid_t copy = ::fork();
  if (copy == 0) ::_exit(0);
  tell("a process", copy > 0);
  tell("a signal to another process", ::kill(parent, 0) == 0);
  tell("a look into another process", ::ptrace(PTRACE_SEIZE, parent, nullptr, nullptr) == 0);
  tell("executable memory",
       ::mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED);
  const rlimit core{1, 1};
  tell("a core file", ::setrlimit(RLIMIT_CORE, &core) == 0 && std::strcmp(argv[1], "all") == 0);
  ::_exit(0);
}
