#pragma once

#include "model/AppModelDependencies.h"

namespace quillmere {

/// The desktop's own folder and save dialogs.
class FilePanels final : public FileChoosing {
 public:
  std::optional<FileURL> chooseFolder(const FolderPanelStart& start) override;
  std::optional<FileURL> chooseDestination(const SavePanelStart& start) override;
};

}  // namespace quillmere
