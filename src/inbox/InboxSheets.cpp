#include "inbox/InboxSheets.h"

#include "inbox/DeletionQuestion.h"

namespace quillmere {
namespace {

/// It may be in the middle of telling that it is done.
template <typename Sheet>
void discard(QPointer<Sheet>& sheet) {
  if (!sheet) return;
  // That alone: Qt's accessibility, too, follows a widget by its signals.
  QObject::disconnect(sheet, &QDialog::finished, nullptr, nullptr);
  sheet->hide();
  sheet->deleteLater();
  sheet = nullptr;
}

}  // namespace

InboxSheets::InboxSheets(InboxPresentation& presentation, QWidget& window)
    : presentation_(presentation), window_(window) {
  requests_ = presentation.changed.connect([this](const InboxChange& change) { follow(change.field); });
  records_ = presentation.model().changed.connect([this](const ModelChange& change) { follow(change); });
}

InboxSheets::~InboxSheets() {
  closeQuestion();
  closeText();
  closeEditor();
}

void InboxSheets::follow(InboxField field) {
  switch (field) {
    case InboxField::deletionCandidate:
    case InboxField::batchDeletion:
      askWhetherToDelete();
      return;
    case InboxField::recognizedText:
      showText();
      return;
    case InboxField::editor:
      showEditor();
      return;
    case InboxField::extractingTextIDs:
      refreshText();
      return;
    default:
      return;
  }
}

void InboxSheets::follow(const ModelChange& change) {
  if (change.field == ModelField::items) refreshText();
  // A file that was to go to Trash would be deleted, or the reverse: that was not what was asked.
  if (change.field == ModelField::deletesChosenImmediately && question_) presentation_.cancelDeletion();
}

// --- The deletion confirmation ---

void InboxSheets::askWhetherToDelete() {
  const auto content = deletionQuestion(presentation_);
  if (!content) {
    closeQuestion();
    return;
  }
  closeQuestion();
  question_ = new Alert(*content, &window_);
  QObject::connect(question_, &QDialog::finished, question_, [this](int result) {
    closeQuestion();
    result == QDialog::Accepted ? presentation_.confirmDeletion() : presentation_.cancelDeletion();
  });
  question_->open();
}

void InboxSheets::closeQuestion() {
  discard(question_);
}

// --- The recognized text ---

void InboxSheets::showText() {
  if (!*presentation_.recognizedText) {
    closeText();
    return;
  }
  if (!text_) {
    text_ = new RecognizedTextSheet(&window_);
    text_->onCopy = [this](const QString& text) { presentation_.model().copyText(text); };
    QObject::connect(text_, &QDialog::finished, text_, [this] { presentation_.closeRecognizedText(); });
  }
  refreshText();
  text_->open();
}

/// With its record gone it keeps what it shows.
void InboxSheets::refreshText() {
  if (!text_ || !*presentation_.recognizedText) return;
  const UUID& id = (*presentation_.recognizedText)->itemID;
  const ScreenshotItem* item = presentation_.model().items().find(id);
  if (!item) return;
  const auto text = item->recognizedText ? std::optional(QString::fromUtf8(*item->recognizedText)) : std::nullopt;
  text_->show(text, !text && presentation_.extractingTextIDs->contains(id));
}

void InboxSheets::closeText() {
  discard(text_);
}

// --- The crop editor ---

void InboxSheets::showEditor() {
  closeEditor();
  const auto request = *presentation_.editor;
  if (!request) return;
  editor_ = new ImageEditorView(presentation_.model(), *presentation_.services().executor, request->item,
                                request->detectWindow, &window_);
  editor_->onSaved = [this](const UUID& saved) { presentation_.select(saved); };
  QObject::connect(editor_, &QDialog::finished, editor_, [this] { presentation_.closeEditor(); });
  editor_->open();
}

void InboxSheets::closeEditor() {
  discard(editor_);
}

}  // namespace quillmere
