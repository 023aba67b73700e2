#pragma once

#include <optional>

#include "foundation/FileURL.h"
#include "model/AppModelDependencies.h"
#include "records/UUID.h"

namespace quillmere {

/// Holds access to the watched folder and to files outside it, and balances every start with one stop.
class FolderAccess {
 public:
  explicit FolderAccess(SecurityScopeAccess& scope) : scope_(scope) {}
  FolderAccess(const FolderAccess&) = delete;
  FolderAccess& operator=(const FolderAccess&) = delete;
  ~FolderAccess();

  const std::optional<FileURL>& folder() const { return folder_; }
  /// Starts access; the folder is held if that succeeds. Any folder held before must have been taken aside.
  bool openFolder(const FileURL& folder);
  /// Gives up the held folder to the caller, who ends its access when nothing needs it any more.
  std::optional<FileURL> takeFolder();
  void endAccess(const std::optional<FileURL>& folder);

  std::optional<FileURL> item(const UUID& id) const;
  void openItem(const UUID& id, const FileURL& url);
  void closeItem(const UUID& id);

 private:
  SecurityScopeAccess& scope_;
  std::optional<FileURL> folder_;
  UUIDMap<FileURL> items_;
};

}  // namespace quillmere
