#pragma once

#include "model/AppModel.h"
#include "platform/linux/files/CloudFiles.h"
#include "platform/linux/files/LiveFileIdentity.h"
#include "platform/linux/files/LiveFileOperations.h"
#include "platform/linux/files/MountTable.h"

namespace quillmere::testing {

/// Has a model ask the real file system. The mounts outlive it.
inline void askFileSystem(AppModelDependencies& world, const MountTable& mounts) {
  world.isInTrash = [&mounts](const FileURL& url) { return isInTrash(url, mounts); };
  world.fileIdentity = [&mounts](const FileURL& url) { return liveFileIdentity(url, mounts); };
  world.isFolderReachable = [&mounts](const FileURL& url) {
    return isReadableDirectory(url) && mounts.isVolumeMounted(url);
  };
  world.isDataless = &CloudFiles::isDataless;
  world.isUbiquitous = [](const FileURL& url) { return CloudFiles::isSynced(url.parent()); };
  world.startDownload = [](const FileURL&) { return false; };
  world.isVolumeMounted = [&mounts](const FileURL& url) { return mounts.isVolumeMounted(url); };
  world.captureKind = [](const FileURL&) { return std::optional<CaptureKind>(); };
  world.defaultScreenshotFolder = [] { return std::optional<FileURL>(); };
}

}  // namespace quillmere::testing
