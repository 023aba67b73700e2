#include "popup/CapturePromptView.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/AnalysisStatusRow.h"
#include "controls/Grounds.h"
#include "controls/Theme.h"
#include "foundation/Localized.h"
#include "popup/DurationPicker.h"
#include "popup/PromptErrorBanner.h"
#include "popup/PromptThumbnail.h"

namespace quillmere {
namespace {

constexpr int kPadding = 16;
constexpr int kRowSpacing = 12;
constexpr int kActionSpacing = 8;
constexpr int kContentWidth = 408;

/// Of the same family as the buttons around it.
QString nameFieldStyle(const Theme& theme) {
  return QStringLiteral(
             "QLineEdit { border: 1px solid %1; border-radius: 8px; padding: 0 8px; background: %2; color: %3;"
             " selection-background-color: %4; selection-color: white; }"
             "QLineEdit:focus { border: 2px solid %4; padding: 0 7px; }")
      .arg(theme.fieldBorder.name(), theme.field.name(), theme.text.name(), theme.accent.name());
}

}  // namespace

CapturePromptView::CapturePromptView(AppModel& model, Executor& executor, ThumbnailLoader& thumbnails, QWidget* parent)
    : QWidget(parent), model_(model), executor_(executor) {
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  rows->setSpacing(kRowSpacing);
  rows->addWidget(makeHeader());
  thumbnail_ = new PromptThumbnail(thumbnails, this);
  thumbnail_->setFixedWidth(kContentWidth);
  rows->addWidget(thumbnail_);
  analysis_ = new AnalysisStatusRow(this);
  analysis_->onAnalyze = [this] {
    if (content_) model_.startAnalysis(content_->item.id);
  };
  rows->addWidget(analysis_);
  rows->addWidget(makeNameBlock());
  errorBanner_ = new PromptErrorBanner(this);
  errorBanner_->onDismiss = [this] { runGated([this] { model_.dismissError(ErrorScope::popup); }); };
  rows->addWidget(errorBanner_);
  rows->addWidget(makeActions());
  setTabOrder(closeButton_, analysis_->control());
  setTabOrder(analysis_->control(), nameField_);
  setTabOrder(nameField_, temporaryButton_);
  setTabOrder(temporaryButton_, keepButton_);
  setTabOrder(keepButton_, durationPicker_);
  setTabOrder(durationPicker_, trashButton_);
}

QWidget* CapturePromptView::makeHeader() {
  const Theme theme(palette());
  auto* header = new QWidget(this);
  auto* title = new QLabel(localized("Screenshot Captured"), header);
  title->setFont(scaled(font(), 1.1, QFont::DemiBold));
  setTextColor(*title, theme.text);
  queueCount_ = new QLabel(header);
  setTextColor(*queueCount_, theme.secondaryText);
  closeButton_ = new ActionButton(ActionButton::Role::icon, QStringLiteral("xmark"), {}, header);
  closeButton_->setAccessibleName(localized("Dismiss Screenshot Popup"));
  closeButton_->setToolTip(localized("Dismiss. The screenshot stays in the Inbox."));
  connect(closeButton_, &QPushButton::clicked, this, [this] { runGated([this] { model_.dismissPrompt(); }); });

  auto* row = new QHBoxLayout(header);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  row->addWidget(title);
  row->addWidget(queueCount_);
  row->addStretch();
  row->addWidget(closeButton_);
  return header;
}

QWidget* CapturePromptView::makeNameBlock() {
  const Theme theme(palette());
  auto* block = new QWidget(this);
  caption_ = new QLabel(block);
  caption_->setFont(scaled(font(), 0.9));
  setTextColor(*caption_, theme.secondaryText);
  nameField_ = new QLineEdit(block);
  nameField_->setAccessibleName(localized("Filename"));
  nameField_->setAccessibleDescription(localized(
      "Return saves this screenshot as Temporary with this name. Escape puts back the name it started with."));
  nameField_->setToolTip(localized("Rename this screenshot. Keep and Temporary save it with this name."));
  nameField_->setFixedHeight(34);
  nameField_->setStyleSheet(nameFieldStyle(theme));
  nameField_->setFocusPolicy(Qt::StrongFocus);
  nameField_->installEventFilter(this);
  connect(nameField_, &QLineEdit::textChanged, this, [this] {
    refreshCaption();
    reportEdit();
  });
  extension_ = new QLabel(block);
  setTextColor(*extension_, theme.secondaryText);

  auto* field = new QHBoxLayout;
  field->setSpacing(6);
  field->addWidget(nameField_, 1);
  field->addWidget(extension_);
  auto* column = new QVBoxLayout(block);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(5);
  column->addWidget(caption_);
  column->addLayout(field);
  return block;
}

QWidget* CapturePromptView::makeActions() {
  using Role = ActionButton::Role;
  auto* actions = new QWidget(this);
  temporaryButton_ = new ActionButton(Role::primary, QStringLiteral("clock"), localized("Temporary"), actions);
  temporaryButton_->setToolTip(localized("Keep for the selected time, then move to Trash"));
  keepButton_ = new ActionButton(Role::secondary, QStringLiteral("checkmark"), localized("Keep"), actions);
  keepButton_->setToolTip(localized("Keep this screenshot without a deletion timer"));
  trashButton_ = new ActionButton(Role::destructive, QStringLiteral("trash"), localized("Move to Trash"), actions);
  durationPicker_ = new DurationPicker(actions);
  connect(temporaryButton_, &QPushButton::clicked, this, [this] { chooseTemporary(); });
  connect(keepButton_, &QPushButton::clicked, this, [this] { chooseKeep(); });
  connect(trashButton_, &QPushButton::clicked, this, [this] { chooseTrash(); });
  connect(durationPicker_, &QComboBox::currentIndexChanged, this, [this] { refreshTexts(); });

  auto* decisions = new QHBoxLayout;
  decisions->setSpacing(kActionSpacing);
  decisions->addWidget(temporaryButton_, 1);
  decisions->addWidget(keepButton_, 1);
  auto* others = new QHBoxLayout;
  others->setSpacing(kActionSpacing);
  others->addWidget(durationPicker_);
  others->addStretch();
  others->addWidget(trashButton_);
  auto* rows = new QVBoxLayout(actions);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(kActionSpacing);
  rows->addLayout(decisions);
  rows->addLayout(others);
  return actions;
}

void CapturePromptView::show(const CapturePromptContent& content) {
  const bool isNewItem = !content_ || content_->item.id != content.item.id;
  const bool isFocusRequested = !isNewItem && content_->focusRequest != content.focusRequest;
  content_ = content;
  if (isNewItem) {
    beginItem();
  } else {
    gate_.observe(content.contentGeneration, executor_.instant());
    followStartingName();
  }
  if (isFocusRequested) temporaryButton_->setFocus(Qt::OtherFocusReason);
  thumbnail_->setVisible(content.showThumbnail);
  if (content.showThumbnail) {
    thumbnail_->setFixedHeight(content.thumbnailHeight);
    thumbnail_->show(content.item.url, content.item.fileIdentity, content.canReadImage);
  }
  const AnalysisStatus status = analysisStatus(content.item, content.isAnalyzing, content.availability);
  analysis_->show(status.text, status.isFailure, status.offersAnalysis);
  if (content.error) errorBanner_->show(*content.error);
  errorBanner_->setVisible(content.error.has_value());
  refreshTexts();
  refreshCaption();
}

void CapturePromptView::beginItem() {
  durationPicker_->setDuration(*model_.lastTemporaryDuration);
  gate_ = {content_->contentGeneration, executor_.instant()};
  nameSeed_ = displayName(content_->item, content_->naming);
  nameField_->setText(nameSeed_);
  nameField_->setCursorPosition(0);
  // Also without a request: the keyboard, once it is here, starts at the main button.
  temporaryButton_->setFocus(Qt::OtherFocusReason);
  reportEdit();
}

/// A suggestion that comes late takes the place of the name only while nobody has typed.
void CapturePromptView::followStartingName() {
  const QString name = displayName(content_->item, content_->naming);
  if (name == nameSeed_ || nameField_->text() != nameSeed_) return;
  nameSeed_ = name;
  nameField_->setText(name);
  reportEdit();
}

void CapturePromptView::refreshTexts() {
  if (!content_) return;
  queueCount_->setVisible(content_->queuedCount > 0);
  queueCount_->setText(localized("%lld more", {content_->queuedCount}));
  queueCount_->setAccessibleName(localized("%lld more screenshots waiting", {content_->queuedCount}));
  const std::string extension = content_->item.url.pathExtension();
  extension_->setVisible(!extension.empty());
  extension_->setText(QLatin1Char('.') + QString::fromStdString(extension));
  temporaryButton_->setAccessibleDescription(temporaryHint(durationPicker_->duration()));
  trashButton_->setText(content_->deletesChosen ? localized("Delete") : localized("Move to Trash"));
  trashButton_->setToolTip(content_->deletesChosen ? localized("Delete this screenshot’s file")
                                                   : localized("Move this screenshot to Trash"));
  trashButton_->setAccessibleDescription(
      content_->deletesChosen
          ? localized("Deletes only this image, asking first. It can’t be recovered.")
          : localized("Moves only this image to Trash, without asking. You can restore it from Trash in Finder."));
}

void CapturePromptView::refreshCaption() {
  const QString caption = nameCaption(nameField_->text());
  caption_->setText(caption_->fontMetrics().elidedText(caption, Qt::ElideRight, kContentWidth));
}

void CapturePromptView::reportEdit() {
  if (!content_) return;
  model_.setPromptNameEdit(AppModel::PromptNameEdit{content_->item.id, nameField_->text(),
                                                    nameField_->text() != nameSeed_, nameField_->hasFocus()});
}

bool CapturePromptView::gateAllows() const {
  // The model may have gone on while the card still shows the last screenshot.
  return content_ && content_->contentGeneration == *model_.promptContentGeneration &&
         gate_.allows(executor_.instant());
}

void CapturePromptView::runGated(const std::function<void()>& action) {
  if (gateAllows()) action();
}

/// None for the name that the file has: one that no person chose is not to be cleaned, nor one that is not text
/// mangled.
std::optional<QString> CapturePromptView::newName() const {
  const QString name = nameField_->text();
  return name == content_->item.url.displayStem() ? std::nullopt : std::optional(name);
}

void CapturePromptView::chooseTemporary() {
  if (!gateAllows()) return;
  const UUID id = content_->item.id;
  model_.markTemporary(id, durationPicker_->duration(), newName()).detach();
  const ScreenshotItem* item = model_.items().find(id);
  if (item && item->state == ScreenshotItem::State::temporary) {
    model_.announce(localized("Screenshot marked as temporary."), AnnouncementPriority::low);
  }
}

void CapturePromptView::chooseKeep() {
  if (!gateAllows()) return;
  const UUID id = content_->item.id;
  model_.keepPrompt(id, newName()).detach();
  const ScreenshotItem* item = model_.items().find(id);
  if (item && item->state == ScreenshotItem::State::permanent) {
    model_.announce(localized("Screenshot kept."), AnnouncementPriority::low);
  }
}

void CapturePromptView::chooseTrash() {
  if (!gateAllows()) return;
  const ScreenshotItem item = content_->item;
  const bool isDeleting = *model_.deletesChosenImmediately;
  if (isDeleting && !confirmDeletion(item.url.displayName())) return;
  model_.disposeItem(item, ErrorScope::popup, AppModel::DisposalReason::chosen);
  if (model_.items().find(item.id)) return;  // refused: the banner says why
  model_.announce(isDeleting ? localized("Screenshot deleted.") : localized("Screenshot moved to Trash."),
                  AnnouncementPriority::low);
}

void CapturePromptView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    chooseTemporary();
  } else if (event->key() == Qt::Key_Escape) {
    runGated([this] { model_.dismissPrompt(); });
  } else {
    QWidget::keyPressEvent(event);
  }
}

/// The first Escape in the name field undoes typing; the next closes the popup.
bool CapturePromptView::handleNameKey(int key) {
  if (key == Qt::Key_Return || key == Qt::Key_Enter) {
    chooseTemporary();
    return true;
  }
  if (key != Qt::Key_Escape) return false;
  if (nameField_->text() != nameSeed_) {
    nameField_->setText(nameSeed_);
  } else {
    runGated([this] { model_.dismissPrompt(); });
  }
  return true;
}

bool CapturePromptView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == nameField_) {
    switch (event->type()) {
      case QEvent::MouseButtonPress:
        if (onKeyboardWanted) onKeyboardWanted();
        break;
      case QEvent::FocusIn:
      case QEvent::FocusOut:
        QMetaObject::invokeMethod(
            this, [this] { reportEdit(); }, Qt::QueuedConnection);
        break;
      case QEvent::KeyPress:
        if (handleNameKey(static_cast<QKeyEvent*>(event)->key())) return true;
        break;
      default:
        break;
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace quillmere
