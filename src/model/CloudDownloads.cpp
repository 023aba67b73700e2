#include "model/CloudDownloads.h"

#include "model/Reconciliation.h"

namespace quillmere {
namespace {

struct DownloadRequest {
  bool isAccepted = false;
  FileURL url;
};

/// Off the main thread. The file may have moved since its record was written.
DownloadRequest request(SecurityScopeAccess& scope, const std::function<bool(const FileURL&)>& startDownload,
                        const FileURL& url, const std::optional<QByteArray>& bookmark) {
  const auto resolved = resolveBookmark(scope, bookmark);
  DownloadRequest made;
  made.url = resolved ? resolved->url : url;
  const bool hasAccess = resolved && scope.start(made.url);
  made.isAccepted = startDownload(made.url);
  if (hasAccess) scope.stop(made.url);
  return made;
}

}  // namespace

CloudDownloads::CloudDownloads(const AppModelDependencies& dependencies, OnState onState)
    : dependencies_(dependencies), onState_(std::move(onState)) {}

CloudDownloads::~CloudDownloads() {
  for (auto& [id, task] : watches_) task.cancel();
}

void CloudDownloads::start(const UUID& id, const FileURL& url, const std::optional<QByteArray>& bookmark) {
  if (isRunning(id)) return;
  onState_(id, DownloadState::requesting);
  watches_[id] = watch(lifetime_.weak(this), id, url, bookmark);
}

void CloudDownloads::cancel(const UUID& id) {
  const auto found = watches_.find(id);
  if (found == watches_.end()) return;
  const Task<> task = found->second;
  watches_.erase(found);
  task.cancel();
}

void CloudDownloads::finish(const UUID& id, std::optional<DownloadState> state) {
  watches_.erase(id);
  onState_(id, state);
}

Task<> CloudDownloads::watch(Weak<CloudDownloads> self, UUID id, FileURL url, std::optional<QByteArray> bookmark) {
  const AppModelDependencies& dependencies = self->dependencies_;
  Executor& executor = *dependencies.executor;
  const std::function<DownloadRequest()> ask = [scope = dependencies.securityScope,
                                                startDownload = dependencies.startDownload, url,
                                                bookmark] { return request(*scope, startDownload, url, bookmark); };
  auto asking = executor.background(ask);
  const DownloadRequest made = co_await asking;
  if (co_await isCancelled || !self) co_return;
  if (!made.isAccepted) {
    self->finish(id, DownloadState::refused);
    co_return;
  }
  self->onState_(id, DownloadState::downloading);
  const Duration poll = dependencies.downloadPollInterval;
  const Duration timeout = dependencies.downloadStallTimeout;
  const std::function<bool()> look = [isDataless = dependencies.isDataless, place = made.url] {
    return isDataless(place);
  };
  for (Duration elapsed{0}; elapsed < timeout; elapsed += poll) {
    auto pause = executor.sleep(poll);
    const bool elapsedPoll = co_await pause;
    if (!elapsedPoll) co_return;
    auto looking = executor.background(look);
    const bool isStillAway = co_await looking;
    if (co_await isCancelled || !self) co_return;
    if (!isStillAway) {
      self->finish(id, std::nullopt);
      co_return;
    }
  }
  self->finish(id, DownloadState::stalled);
}

}  // namespace quillmere
