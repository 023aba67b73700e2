#include "shell/FolderPanel.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>

#include "foundation/Localized.h"

namespace quillmere {

std::optional<FileURL> FolderPanel::chooseFolder(const FolderPanelStart& start) {
  QFileDialog dialog(QApplication::activeWindow(), localized("Choose Screenshot Folder"));
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  dialog.setLabelText(QFileDialog::Accept, localized("Choose"));
  dialog.setWhatsThis(start.message);
  if (start.directory) dialog.setDirectory(start.directory->displayPath());
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const FileURL chosen = FileURL::fromPath(dialog.selectedFiles().first()).standardized();
  return chosen.isEmpty() ? std::nullopt : std::optional(chosen);
}

}  // namespace quillmere
