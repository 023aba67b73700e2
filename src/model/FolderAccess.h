#pragma once

#include <optional>
#include <vector>

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
  /// Starts access; the folder is held if that succeeds. Any folder held before must have been retired.
  bool openFolder(const FileURL& folder);
  /// Sets the held folder aside; its access goes on until `endRetired`, when nothing needs it any more.
  void retireFolder();
  void endRetired();

  std::optional<FileURL> item(const UUID& id) const;
  void openItem(const UUID& id, const FileURL& url);
  void closeItem(const UUID& id);

 private:
  SecurityScopeAccess& scope_;
  std::optional<FileURL> folder_;
  std::vector<FileURL> retired_;
  UUIDMap<FileURL> items_;
};

}  // namespace quillmere
