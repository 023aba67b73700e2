#pragma once

#include "monitor/ScreenshotInboxMonitor.h"

namespace quillmere {

/// inotify on one folder.
class LiveFolderEventSource final : public FolderEventSource {
 public:
  std::unique_ptr<FolderEventWatch> open(const FileURL& folder, std::function<void(FolderEvent)> onEvent) override;
};

}  // namespace quillmere
