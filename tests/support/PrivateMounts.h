#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cstdlib>
#include <functional>
#include <string>

namespace quillmere::testing {

/// In the work of a child process: ends it with the condition that does not hold.
#define MUST(condition)                                                                         \
  do {                                                                                          \
    if (!(condition)) return std::string("line ") + std::to_string(__LINE__) + ": " #condition; \
  } while (false)

/// Runs `work` in a forked child whose mounts nobody else sees and that vanish with it. Gives the failure that `work`
/// told; empty when all was well. Nothing of the test framework may be used in `work`.
inline std::string failureWithPrivateMounts(const std::function<std::string()>& work) {
  int ends[2];
  if (::pipe(ends) != 0) return "no pipe";
  const pid_t child = ::fork();
  if (child < 0) return "no child process";
  if (child == 0) {
    std::string failure = "no private mount namespace: run the tests as root";
    if (::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0) {
      failure = work();
    }
    const bool isTold = ::write(ends[1], failure.data(), failure.size()) == static_cast<ssize_t>(failure.size());
    ::_exit(isTold ? 0 : 1);
  }
  ::close(ends[1]);
  std::string failure;
  char buffer[512];
  for (ssize_t count = 0; (count = ::read(ends[0], buffer, sizeof buffer)) > 0;) {
    failure.append(buffer, static_cast<size_t>(count));
  }
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) failure += " (the child process died)";
  return failure;
}

inline bool run(const std::string& command) {
  return std::system(("PATH=$PATH:/usr/sbin:/sbin; { " + command + "; } >/dev/null 2>&1").c_str()) == 0;
}

/// Makes a disk in an image file of this size; `make` is the command that does so, less the image.
inline bool makeDisk(const std::string& image, const std::string& size, const std::string& make) {
  return run("rm -f '" + image + "' && truncate -s " + size + " '" + image + "' && " + make + " '" + image + "'");
}

/// Mounts such a disk at `folder`; for the work of a child process.
inline bool connectDisk(const std::string& image, const std::string& folder) {
  return run("mount -o loop '" + image + "' '" + folder + "'");
}

/// A small ext4 disk made from an image file and mounted at `folder`; for the work of a child process.
inline bool mountDisk(const std::string& image, const std::string& folder, const std::string& uuid = {}) {
  const std::string withUUID = uuid.empty() ? std::string() : " -U " + uuid;
  return makeDisk(image, "8M", "mkfs.ext4 -q -F -I 256 -O ^has_journal" + withUUID) && connectDisk(image, folder);
}

}  // namespace quillmere::testing
