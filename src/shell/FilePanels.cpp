#include "shell/FilePanels.h"

#include <QtCore/QFile>
#include <QtCore/QMimeDatabase>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

#include "controls/ModalDialog.h"
#include "controls/PlainText.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

/// A line above the dialog's own controls. A dialog of the desktop has no place for it; its title has to do there.
void explain(QFileDialog& dialog, const QString& message) {
  auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
  if (!grid) return;
  auto* line = new PlainLabel(message, &dialog);
  line->setWordWrap(true);
  line->setContentsMargins(0, 4, 0, 2);
  grid->addWidget(line, grid->rowCount(), 0, 1, grid->columnCount());
}

/// What the person chose, in the bytes of the file system.
std::optional<FileURL> chosen(QFileDialog& dialog) {
  if (runModal(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const QByteArray path = QFile::encodeName(dialog.selectedFiles().first());
  const FileURL url = FileURL::fromPath(std::string_view(path.data(), static_cast<size_t>(path.size()))).standardized();
  return url.isEmpty() ? std::nullopt : std::optional(url);
}

/// The one type that the extension gives.
QString nameFilter(const std::string& pathExtension) {
  if (pathExtension.empty()) return {};
  const QString name = QStringLiteral("x.") + QString::fromStdString(pathExtension);
  const QMimeType type = QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension);
  return type.isDefault() ? QString() : type.filterString();
}

}  // namespace

std::optional<FileURL> FilePanels::chooseFolder(const FolderPanelStart& start) {
  QFileDialog dialog(QApplication::activeWindow(), localized("Choose Screenshot Folder"));
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  dialog.setLabelText(QFileDialog::Accept, localized("Choose"));
  if (start.directory) dialog.setDirectory(QFile::decodeName(start.directory->c_str()));
  explain(dialog, start.message);
  return chosen(dialog);
}

std::optional<FileURL> FilePanels::chooseDestination(const SavePanelStart& start) {
  QFileDialog dialog(QApplication::activeWindow(), localized("Move and Rename Screenshot"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  // Nothing is ever replaced; a name that is taken is told after the attempt, so the dialog must not offer to.
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.setLabelText(QFileDialog::Accept, localized("Move"));
  const QString filter = nameFilter(start.pathExtension);
  if (!filter.isEmpty()) {
    dialog.setNameFilter(filter);
    // Only where none was typed.
    dialog.setDefaultSuffix(QString::fromStdString(start.pathExtension));
  }
  dialog.setDirectory(QFile::decodeName(start.directory.c_str()));
  dialog.selectFile(QFile::decodeName(QByteArray::fromStdString(start.name)));
  explain(dialog, localized("The screenshot will be kept permanently at the location you choose."));
  return chosen(dialog);
}

}  // namespace quillmere
