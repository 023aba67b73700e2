#pragma once

#include <chrono>

#include "platform/linux/choosing/DocumentPaths.h"
#include "platform/linux/common/BusService.h"
#include "shell/DesktopFileDialogs.h"

namespace quillmere {

/// The file dialogs of the desktop's portal. As everywhere the program starts no service for it: a portal that does not
/// run has no dialogs. Main thread.
class PortalFileDialogs final : public DesktopFileDialogs {
 public:
  /// `patience`: how long it may take to say which version it is of.
  explicit PortalFileDialogs(const QDBusConnection& bus,
                             std::chrono::milliseconds patience = std::chrono::milliseconds(1000));
  ~PortalFileDialogs() override;

  std::unique_ptr<Dialog> open(const FileDialogRequest& request,
                               std::function<void(const FileDialogEnd&)> ended) override;

 private:
  class Request;

  void lose();

  QString busName_;  ///< ours, as it stands in the paths of requests
  std::chrono::milliseconds patience_;
  int count_ = 0;
  BusService* running_ = nullptr;
  std::vector<std::weak_ptr<Request>> requests_;
  DocumentPaths documents_;
  BusService portal_;
};

}  // namespace quillmere
