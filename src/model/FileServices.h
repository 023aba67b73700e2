#pragma once

#include <functional>
#include <optional>

#include "model/AppModelDependencies.h"
#include "model/Reconciliation.h"

namespace quillmere {

/// What works on files needs of the world; all of it can be used off the main thread.
struct FileServices {
  FileOperations* operations = nullptr;
  SecurityScopeAccess* scope = nullptr;
  std::function<bool(const FileURL&)> isInTrash;
  std::function<std::optional<FileIdentity>(const FileURL&)> identity;
  std::function<bool(const FileURL&)> isFolderReachable;
  std::function<bool(const FileURL&)> isVolumeMounted;
  std::function<bool(const FileURL&)> isDataless;

  static FileServices of(const AppModelDependencies& dependencies);

  /// Where the file of a record is that is not at `url` any more, as far as its bookmark finds it outside Trash.
  std::optional<ResolvedBookmark> relocated(const std::optional<QByteArray>& bookmark, const FileURL& url,
                                            const std::optional<WatchFolderPaths>& watchFolder) const;
};

}  // namespace quillmere
