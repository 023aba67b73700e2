#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>
#include <functional>
#include <string>

namespace quillmere::testing {

/// Runs `work` in a forked child and gives its exit code: what `work` returned, or -1 when it died of a signal. Nothing
/// of the test framework may be used in `work`.
inline int exitCodeOfChild(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = 0;
  EXPECT_GT(child, 0);
  if (child < 0 || ::waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// What a child answers when the situation that a test needs could not be made.
inline constexpr int kCannotSetUp = 99;

/// Makes the calling process an ordinary user, for whom permissions count.
inline bool becomeOrdinaryUser() {
  constexpr uid_t kNobody = 65534;
  if (::geteuid() != 0) return true;
  return ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

/// Mounts a small file system over `folder`, seen by the calling process alone.
inline bool mountSmallDisk(const std::string& folder, const std::string& size) {
  const bool isPrivileged = ::geteuid() == 0;
  if (::unshare(CLONE_NEWNS | (isPrivileged ? 0 : CLONE_NEWUSER)) != 0) return false;
  ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
  return ::mount("tmpfs", folder.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
}

}  // namespace quillmere::testing
