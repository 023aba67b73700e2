#pragma once

#include "model/AppModelDependencies.h"
#include "shell/DesktopFileDialogs.h"

namespace quillmere {

/// Folder and save dialogs: the desktop's own where it has them, else Qt's in our style.
class FilePanels final : public FileChoosing {
 public:
  explicit FilePanels(DesktopFileDialogs* desktop = nullptr) : desktop_(desktop) {}

  std::optional<FileURL> chooseFolder(const FolderPanelStart& start) override;
  std::optional<FileURL> chooseDestination(const SavePanelStart& start) override;

 private:
  FileDialogEnd askDesktop(FileDialogRequest request, const QString& message);

  DesktopFileDialogs* desktop_;
};

}  // namespace quillmere
