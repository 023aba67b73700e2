#include "update/library/Relaunch.h"

#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>

namespace quillmere {
namespace {

/// Waits for the end of its input, which is the end of whoever holds the other side. A line calls it off.
constexpr const char* kWaiter = "read -r line || exec \"$0\" </dev/null";
/// The shell in between ends at once, so that nobody has to wait for the other.
constexpr const char* kDetacher = "/bin/sh -c \"$1\" \"$0\" <&3 3<&- &";

}  // namespace

void WaitingStart::callOff() const {
  // Somebody may have ended it, which must not end this one too.
  TEMP_FAILURE_RETRY(::send(waiter_, "\n", 1, MSG_NOSIGNAL));
  ::close(waiter_);
}

std::optional<WaitingStart> startWhenThisEnds(const FileURL& program) {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return std::nullopt;
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
  int status = 0;
  if (failure == 0) TEMP_FAILURE_RETRY(::waitpid(child, &status, 0));
  if (failure != 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    ::close(ends[1]);
    return std::nullopt;
  }
  // The other end stays open for as long as this process runs.
  return WaitingStart(ends[1]);
}

}  // namespace quillmere
