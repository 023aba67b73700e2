#include "shell/FilePanels.h"

#include <QtCore/QFile>
#include <QtCore/QMimeDatabase>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

#include "controls/ModalDialog.h"
#include "controls/PlainText.h"
#include "foundation/Localized.h"
#include "shell/QuestionPlace.h"

namespace quillmere {
namespace {

/// A line below the dialog's own controls.
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
std::optional<QMimeType> typeOf(const std::string& pathExtension) {
  if (pathExtension.empty()) return std::nullopt;
  const QString name = QStringLiteral("x.") + QString::fromStdString(pathExtension);
  const QMimeType type = QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension);
  return type.isDefault() ? std::nullopt : std::optional(type);
}

/// One of our own style: a theme of the desktop's would bring another look.
class OwnDialog final : public QFileDialog {
 public:
  OwnDialog(const QString& title, const QString& accept) : QFileDialog(placeForQuestionOverActive(), title) {
    setOption(DontUseNativeDialog);
    setLabelText(Accept, accept);
  }
};

/// As an own dialog would do: where none was typed.
FileURL withExtension(const FileURL& url, const std::string& pathExtension) {
  const bool isMissing = !pathExtension.empty() && url.pathExtension().empty();
  return isMissing ? url.parent().appending(url.lastPathComponent() + "." + pathExtension) : url;
}

}  // namespace

FileDialogEnd FilePanels::askDesktop(FileDialogRequest request, const QString& message) {
  if (!desktop_) return {};
  // Nobody sees this one, but it holds up its window as long as the desktop's stands before that.
  QDialog waiting(placeForQuestionOverActive());
  waiting.setAttribute(Qt::WA_DontShowOnScreen);
  // The one place that the desktop's dialogs have for a word of ours.
  request.title += message.isEmpty() ? QString() : QStringLiteral(" – ") + message;
  if (waiting.parentWidget()) request.owner = waiting.parentWidget()->window()->winId();
  FileDialogEnd end;
  const auto dialog = desktop_->open(request, [&](const FileDialogEnd& how) {
    end = how;
    waiting.accept();
  });
  if (!dialog) return {};
  // Closed without an answer only when the program ends.
  end.kind = FileDialogEnd::Kind::cancelled;
  runModal(waiting);
  return end;
}

std::optional<FileURL> FilePanels::chooseFolder(const FolderPanelStart& start) {
  const QString title = localized("Choose Screenshot Folder");
  const QString accept = localized("Choose");
  const FileDialogEnd end = askDesktop(
      {.kind = FileDialogRequest::Kind::folder, .title = title, .accept = accept, .directory = start.directory},
      start.message);
  if (end.kind == FileDialogEnd::Kind::chosen) return end.chosen;
  if (end.kind == FileDialogEnd::Kind::cancelled) return std::nullopt;
  OwnDialog dialog(title, accept);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  if (start.directory) dialog.setDirectory(QFile::decodeName(start.directory->c_str()));
  explain(dialog, start.message);
  return chosen(dialog);
}

std::optional<FileURL> FilePanels::chooseDestination(const SavePanelStart& start) {
  const QString title = localized("Move and Rename Screenshot");
  const QString accept = localized("Move");
  const QString message = localized("The screenshot will be kept permanently at the location you choose.");
  const auto type = typeOf(start.pathExtension);
  const FileDialogEnd end = askDesktop({.kind = FileDialogRequest::Kind::destination,
                                        .title = title,
                                        .accept = accept,
                                        .directory = start.directory,
                                        .name = QString::fromStdString(start.name),
                                        .typeName = type ? type->comment() : QString(),
                                        .globs = type ? type->globPatterns() : QStringList()},
                                       message);
  if (end.kind == FileDialogEnd::Kind::chosen) return withExtension(end.chosen, start.pathExtension);
  if (end.kind == FileDialogEnd::Kind::cancelled) return std::nullopt;
  OwnDialog dialog(title, accept);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  // Nothing is ever replaced; a name that is taken is told after the attempt, so the dialog must not offer to.
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  if (type) {
    dialog.setNameFilter(type->filterString());
    // Only where none was typed.
    dialog.setDefaultSuffix(QString::fromStdString(start.pathExtension));
  }
  dialog.setDirectory(QFile::decodeName(start.directory.c_str()));
  dialog.selectFile(QFile::decodeName(QByteArray::fromStdString(start.name)));
  explain(dialog, message);
  return chosen(dialog);
}

}  // namespace quillmere
