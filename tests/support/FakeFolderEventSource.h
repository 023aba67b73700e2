#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "monitor/ScreenshotInboxMonitor.h"

namespace quillmere::testing {

/// A folder event source that tells what the test wants told, and refuses to open when the test wants it to.
class FakeFolderEventSource final : public FolderEventSource {
 public:
  std::unique_ptr<FolderEventWatch> open(const FileURL& folder, std::function<void(FolderEvent)> onEvent) override {
    ++attempts;
    if (!canOpen) return nullptr;
    opened.push_back(folder);
    return std::make_unique<Watch>(*this, std::move(onEvent));
  }

  /// Tells the watch that is open. It may be destroyed meanwhile, as a real one must bear.
  void tell(FolderEvent event) {
    if (!watch_) return;
    const auto onEvent = watch_->onEvent;
    onEvent(event);
  }
  bool isWatching() const { return watch_ != nullptr; }

  bool canOpen = true;
  int attempts = 0;
  std::vector<FileURL> opened;

 private:
  struct Watch final : FolderEventWatch {
    Watch(FakeFolderEventSource& owner, std::function<void(FolderEvent)> event)
        : source(owner), onEvent(std::move(event)) {
      source.watch_ = this;
    }
    ~Watch() override {
      if (source.watch_ == this) source.watch_ = nullptr;
    }
    FakeFolderEventSource& source;
    std::function<void(FolderEvent)> onEvent;
  };
  Watch* watch_ = nullptr;
};

}  // namespace quillmere::testing
