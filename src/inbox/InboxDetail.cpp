#include "inbox/InboxDetail.h"

#include <QtCore/QLocale>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/AnalysisStatusRow.h"
#include "controls/PlainText.h"
#include "controls/ScreenshotThumbnail.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"
#include "inbox/DownloadStatusRow.h"
#include "inbox/MessageView.h"

namespace quillmere {
namespace {

constexpr int kPictureSide = 1400;  // points; larger than the view is on most screens
constexpr int kPadding = 20;

QString shortTime(Date date) {
  return QLocale().toString(date.toDateTime().toLocalTime(), QLocale::ShortFormat);
}

/// The date of capture and what becomes of the file.
QString metadata(const ScreenshotItem& item) {
  const bool isTemporary = item.state == ScreenshotItem::State::temporary && item.expiresAt;
  const QString status =
      isTemporary ? localized("Temporary until %@", {shortTime(*item.expiresAt)}) : statusText(item.state);
  return localized("%@ · %@", {status, shortTime(item.createdAt)});
}

}  // namespace

InboxDetail::InboxDetail(AppModel& model, ThumbnailLoader& thumbnails, QWidget* parent)
    : QWidget(parent), model_(model) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->setSpacing(14);
  column->addWidget(makeHeader());
  picture_ = new ScreenshotThumbnail(thumbnails, this);
  column->addWidget(picture_, 1);
  unavailable_ = new MessageView(
      {QStringLiteral("exclamationmark.triangle"),
       localized("Screenshot Unavailable"),
       localized(
           "The file can’t be found, or Quillmere doesn’t have access to its folder. Choose the screenshot folder "
           "again in Settings, or remove this screenshot from the Inbox."),
       {}},
      this);
  column->addWidget(unavailable_, 1);
  download_ = new DownloadStatusRow(this);
  download_->onDownload = [this] { model_.download(id_); };
  column->addWidget(download_);
  analysis_ = new AnalysisStatusRow(this);
  analysis_->onAnalyze = [this] { model_.startAnalysis(id_); };
  column->addWidget(analysis_);
}

QWidget* InboxDetail::makeHeader() {
  auto* header = new QWidget(this);
  name_ = new PlainLabel(header);
  name_->setFont(fileNameFont(scaled(font(), 1.2, QFont::DemiBold)));
  name_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  name_->setWordWrap(true);
  status_ = new ThemedLabel(Ink::secondary, header);
  note_ = new ThemedLabel(Ink::warning, header,
                          localized("Unavailable. The file can’t be found or its folder isn’t accessible."));
  note_->setWordWrap(true);

  using Role = ActionButton::Role;
  keep_ = new ActionButton(Role::secondary, QStringLiteral("checkmark"), localized("Keep"), header);
  keep_->setToolTip(localized("Keep this screenshot without a deletion timer"));
  connect(keep_, &QPushButton::clicked, this, [this] { model_.keepBatch({id_}); });
  move_ = new ActionButton(Role::secondary, QStringLiteral("folder"), localized("Move and Rename…"), header);
  move_->setToolTip(localized("Choose a new name and location, and keep the screenshot"));
  connect(move_, &QPushButton::clicked, this, [this] { model_.moveAndRename(id_); });
  trash_ = new ActionButton(Role::destructive, QStringLiteral("trash"), {}, header);
  trash_->setToolTip(localized("Move this screenshot to Trash"));
  connect(trash_, &QPushButton::clicked, this, [this] { model_.disposeChosen(id_, ErrorScope::inbox); });

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  for (ActionButton* button : {keep_, move_, trash_}) buttons->addWidget(button);
  buttons->addStretch();
  auto* column = new QVBoxLayout(header);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  for (QLabel* label : {name_, status_, note_}) column->addWidget(label);
  column->addSpacing(6);
  column->addLayout(buttons);
  return header;
}

void InboxDetail::show(const ScreenshotItem& item) {
  const bool isUnavailable = model_.unavailableItemIDs->contains(item.id);
  const bool isEvicted = model_.evictedItemIDs->contains(item.id);
  id_ = item.id;
  name_->setText(item.url.displayName());
  status_->setText(metadata(item));
  note_->setVisible(isUnavailable);
  keep_->setVisible(item.state != ScreenshotItem::State::permanent && !isUnavailable);
  move_->setVisible(!isUnavailable);
  trash_->setText(*model_.settings().deletesChosenImmediately ? localized("Delete") : localized("Move to Trash"));
  if (isEvicted) {
    const auto state = model_.downloadStates->find(item.id);
    const bool hasState = state != model_.downloadStates->end();
    download_->show(DownloadStatusContent::make(model_.canDownload(item.id),
                                                hasState ? std::optional(state->second) : std::nullopt));
  } else {
    download_->hide();
  }

  const bool isAnalyzing = model_.analyzingIDs->contains(item.id) && !isUnavailable && !isEvicted;
  const AnalysisStatus status = analysisStatus(item, isAnalyzing, model_.analysisAvailability());
  analysis_->show({status.text, status.isFailure, status.offersAnalysis, status.isDescription});

  picture_->setVisible(!isUnavailable);
  unavailable_->setVisible(isUnavailable);
  ScreenshotThumbnail::Content picture;
  picture.url = item.url;
  picture.maxPointSize = kPictureSide;
  picture.accessibilityLabel = localized("Screenshot preview");
  picture.identity = item.fileIdentity;
  picture.hasImageData = !isEvicted;
  picture_->show(picture);
}

}  // namespace quillmere
