#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/TemporaryFolder.h"

namespace quillmere::testing {

/// A home of its own for a test program, so that nothing of the person who runs the tests is read or written. Must be
/// made before any library looks at the environment.
class PrivateEnvironment {
 public:
  PrivateEnvironment() {
    set("HOME", "home");
    set("XDG_DATA_HOME", "home/data");
    set("XDG_CONFIG_HOME", "home/config");
    set("XDG_CACHE_HOME", "home/cache");
    set("XDG_STATE_HOME", "home/state");
    set("XDG_RUNTIME_DIR", "run");
    std::filesystem::permissions(folder_.file("run").path(), std::filesystem::perms::owner_all);
    // Nobody listens there until a test starts a bus of its own.
    ::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + folder_.file("run/bus").path()).c_str(), 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_PICTURES_DIR", "GIO_USE_VFS"}) ::unsetenv(name);
  }

 private:
  void set(const char* name, const char* subfolder) {
    const FileURL folder = folder_.file(subfolder);
    std::filesystem::create_directories(folder.path());
    ::setenv(name, folder.c_str(), 1);
  }
  TemporaryFolder folder_;
};

}  // namespace quillmere::testing
