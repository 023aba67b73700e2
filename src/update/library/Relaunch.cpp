#include "update/library/Relaunch.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>

namespace quillmere {
namespace {

/// Waits for the end of its input, which is the end of whoever holds the other side.
constexpr const char* kWaiter = "read -r line; exec \"$0\" </dev/null";
/// The shell in between ends at once, so that nobody has to wait for the other.
constexpr const char* kDetacher = "/bin/sh -c \"$1\" \"$0\" <&3 3<&- &";

}  // namespace

bool startWhenThisEnds(const FileURL& program) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[0], 3);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  // A session of its own: what ends this one's terminal doesn't end the other.
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
  std::string path = program.path();
  std::string shell = "sh", option = "-c", detacher = kDetacher, waiter = kWaiter;
  const std::array<char*, 6> arguments{shell.data(), option.data(), detacher.data(),
                                       path.data(),  waiter.data(), nullptr};
  pid_t child = 0;
  const int failure = ::posix_spawn(&child, "/bin/sh", &actions, &attributes, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  ::close(ends[0]);
  if (failure != 0) {
    ::close(ends[1]);
    return false;
  }
  int status = 0;
  TEMP_FAILURE_RETRY(::waitpid(child, &status, 0));
  // The other end stays open for as long as this process runs.
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace quillmere
