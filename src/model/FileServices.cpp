#include "model/FileServices.h"

#include "foundation/FileStatus.h"

namespace quillmere {

FileServices FileServices::of(const AppModelDependencies& dependencies) {
  FileServices services;
  services.operations = dependencies.fileOperations;
  services.scope = dependencies.securityScope;
  services.isInTrash = dependencies.isInTrash;
  services.identity = dependencies.fileIdentity;
  services.isFolderReachable = dependencies.isFolderReachable;
  services.isVolumeMounted = dependencies.isVolumeMounted;
  services.isDataless = dependencies.isDataless;
  return services;
}

std::optional<ResolvedBookmark> FileServices::relocated(const std::optional<QByteArray>& bookmark, const FileURL& url,
                                                        const std::optional<WatchFolderPaths>& watchFolder) const {
  auto resolved = resolveBookmark(*scope, bookmark);
  if (!resolved || isInTrash(resolved->url) || pathKey(resolved->url, watchFolder) == pathKey(url, watchFolder) ||
      !fileExists(resolved->url)) {
    return std::nullopt;
  }
  return resolved;
}

}  // namespace quillmere
