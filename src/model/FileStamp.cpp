#include "model/FileStamp.h"

#include "foundation/FileStatus.h"

namespace quillmere {

FileStamp fileStamp(const FileURL& url, const std::function<std::optional<FileIdentity>(const FileURL&)>& identity) {
  const auto status = fileStatus(url);
  return {identity(url), status ? status->modified : Date{}};
}

}  // namespace quillmere
