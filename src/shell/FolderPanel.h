#pragma once

#include "model/AppModelDependencies.h"

namespace quillmere {

/// The folder dialog, by way of Qt the desktop's own where it has one.
class FolderPanel final : public FolderChoosing {
 public:
  std::optional<FileURL> chooseFolder(const FolderPanelStart& start) override;
};

}  // namespace quillmere
