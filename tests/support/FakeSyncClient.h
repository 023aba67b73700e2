#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "foundation/FileURL.h"

namespace quillmere::testing {

/// A sync client that listens where the real one does below a runtime folder of the test's, and keeps the commands.
class FakeSyncClient {
 public:
  explicit FakeSyncClient(const FileURL& runtime) {
    const FileURL folder = runtime.appending("Nextcloud");
    std::filesystem::create_directories(folder.path());
    const std::string path = folder.appending("socket").path();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) std::abort();
    ::listen(listener_, 8);
    thread_ = std::thread([this] { serve(); });
  }
  ~FakeSyncClient() {
    ::shutdown(listener_, SHUT_RDWR);
    thread_.join();
    ::close(listener_);
  }

  /// Waits until so many commands have come, and gives them.
  std::vector<std::string> commands(size_t count) {
    std::unique_lock lock(mutex_);
    came_.wait_for(lock, std::chrono::seconds(20), [&] { return commands_.size() >= count; });
    return commands_;
  }

 private:
  void serve() {
    for (;;) {
      const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (connection < 0) return;
      std::string bytes;
      char buffer[512];
      for (ssize_t count = 0; (count = ::read(connection, buffer, sizeof buffer)) > 0;) {
        bytes.append(buffer, static_cast<size_t>(count));
      }
      ::close(connection);
      const std::lock_guard lock(mutex_);
      commands_.push_back(bytes);
      came_.notify_all();
    }
  }

  int listener_ = -1;
  std::mutex mutex_;
  std::condition_variable came_;
  std::vector<std::string> commands_;
  std::thread thread_;
};

}  // namespace quillmere::testing
