#pragma once

#include "foundation/FileURL.h"
#include "platform/linux/common/BusService.h"

namespace quillmere {

/// Portals may lend a file under a path of their own, below /run/user/UID/doc. That path is good for as long as it is
/// lent; the file's own place is what a folder to watch, or a record, must be known by.
class DocumentPaths {
 public:
  explicit DocumentPaths(const QDBusConnection& bus,
                         FileURL mountPoint = FileURL::fromPath(qEnvironmentVariable("XDG_RUNTIME_DIR") + "/doc"));
  /// Tells the real place of the file, which need not exist yet in its folder; the same path where there is no other.
  void resolve(const FileURL& file, const std::function<void(const FileURL&)>& told);

 private:
  FileURL mountPoint_;
  BusService* running_ = nullptr;
  BusService portal_;
};

}  // namespace quillmere
