#pragma once

#include <functional>
#include <optional>

#include "foundation/Weak.h"
#include "model/AppModelDependencies.h"

namespace quillmere {

/// Asks the sync client for the data of evicted files and waits for it. One download a record; the model is told of
/// every state. Main thread.
class CloudDownloads {
 public:
  /// The state that a download has reached; none when its data is here.
  using OnState = std::function<void(const UUID&, std::optional<DownloadState>)>;
  /// The dependencies outlive this.
  CloudDownloads(const AppModelDependencies& dependencies, OnState onState);
  ~CloudDownloads();

  bool isRunning(const UUID& id) const { return watches_.contains(id); }
  void start(const UUID& id, const FileURL& url, const std::optional<QByteArray>& bookmark);
  /// Ends the waiting and tells nothing. The client's own work goes on.
  void cancel(const UUID& id);

 private:
  static Task<> watch(Weak<CloudDownloads> self, UUID id, FileURL url, std::optional<QByteArray> bookmark);
  void finish(const UUID& id, std::optional<DownloadState> state);

  const AppModelDependencies& dependencies_;
  OnState onState_;
  UUIDMap<Task<>> watches_;
  Lifetime lifetime_;
};

}  // namespace quillmere
