#include "platform/linux/files/LiveFileIdentity.h"

#include "foundation/FileStatus.h"

namespace quillmere {

std::optional<FileIdentity> liveFileIdentity(const FileURL& url, const MountTable& mounts) {
  const auto status = fileStatus(url);
  if (!status || !status->isRegular()) return std::nullopt;
  FileIdentity identity;
  identity.volume = mounts.volume(url);
  identity.file = status->inode;
  identity.creationDate = status->created;
  identity.size = status->size;
  if (!status->created) identity.modificationDate = status->modified;
  return identity;
}

bool keepsIdentities(const FileURL& folder, const MountTable& mounts) {
  const auto status = fileStatus(folder);
  if (!status) return true;
  const auto volume = mounts.volume(folder);
  return status->created && volume && isStableVolume(*volume);
}

}  // namespace quillmere
