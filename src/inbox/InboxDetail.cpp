#include "inbox/InboxDetail.h"

#include <QtWidgets/QScrollBar>
#include <QtWidgets/QVBoxLayout>

#include "controls/AnalysisStatusRow.h"
#include "controls/Metrics.h"
#include "foundation/Localized.h"
#include "inbox/DetailActions.h"
#include "inbox/DetailHeader.h"
#include "inbox/DetailPreview.h"
#include "inbox/DownloadStatusRow.h"
#include "inbox/MessageView.h"
#include "inbox/NameField.h"
#include "inbox/ScreenshotActionsMenu.h"

namespace quillmere {
namespace {

constexpr int kPictureSide = 1400;  // points; larger than the view is on most screens
constexpr int kPadding = 20;
constexpr int kSpacing = 16;
/// Longer lines are hard to read.
constexpr int kTextWidth = 720;

/// No wider than texts are read with ease, where the language's lines begin.
QLayout* readable(QWidget* widget, int beside) {
  widget->setMaximumWidth(kTextWidth);
  auto* row = new QHBoxLayout;
  row->setContentsMargins(beside, 0, beside, 0);
  row->setSpacing(0);
  row->addWidget(widget, 1);
  row->addStretch();
  return row;
}

}  // namespace

InboxDetail::InboxDetail(AppModel& model, InboxPresentation& presentation, QWidget* parent)
    : QScrollArea(parent), model_(model), presentation_(presentation) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  auto* page = new QWidget;
  header_ = new DetailHeader(model, presentation, page);
  picture_ = new DetailPreview(*presentation.services().thumbnails, page);
  unavailable_ = new MessageView(
      {QStringLiteral("exclamationmark.triangle"),
       localized("Screenshot Unavailable"),
       localized(
           "The file can’t be found, or Quillmere doesn’t have access to its folder. Choose the screenshot folder "
           "again in Settings, or remove this screenshot from the Inbox."),
       {}},
      page);
  unavailable_->setMinimumWidth(1);
  download_ = new DownloadStatusRow(page);
  analysis_ = new AnalysisStatusRow(page);
  actions_ = new DetailActions(model, presentation, page);
  picture_->onDrag = [this] {
    if (onDrag) onDrag(id_);
  };
  picture_->onOpen = [this] { openInQuickLook(); };
  download_->onDownload = [this] { model_.download(id_); };
  download_->onShowInFinder = [this] {
    const ScreenshotItem* item = model_.items().find(id_);
    FileRevealing* files = presentation_.services().fileManager;
    if (item && files) files->reveal(item->url);
  };
  analysis_->onAnalyze = [this] { model_.startAnalysis(id_); };

  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(0, kPadding - NameField::kAbove, 0, kPadding);
  column->setSpacing(kSpacing);
  column->addLayout(readable(header_, kPadding - NameField::kBeside));
  auto* pictures = new QVBoxLayout;
  pictures->setContentsMargins(kPadding, 0, kPadding, 0);
  pictures->addWidget(picture_, 1);
  pictures->addWidget(unavailable_, 1);
  column->addLayout(pictures, 1);
  for (QWidget* row :
       {static_cast<QWidget*>(download_), static_cast<QWidget*>(analysis_), static_cast<QWidget*>(actions_)}) {
    column->addLayout(readable(row, kPadding));
  }
  setWidget(page);
  changes_ = presentation.changed.connect([this](const InboxChange& change) { follow(change.field); });
}

QImage InboxDetail::picture(const ScreenshotItem& item) const {
  return item.id == id_ && !picture_->isHidden() ? picture_->image() : QImage();
}

ScreenshotNameEditor& InboxDetail::name() const {
  return header_->name();
}

void InboxDetail::follow(InboxField field) {
  if (field != InboxField::extractingTextIDs) return;
  if (const ScreenshotItem* item = model_.items().find(id_)) show(*item);
}

void InboxDetail::openInQuickLook() {
  ScreenshotActionsMenu({id_}, model_, presentation_).perform(ScreenshotCommand::quickLook);
}

void InboxDetail::show(const ScreenshotItem& item) {
  if (item.id != id_) verticalScrollBar()->setValue(0);
  id_ = item.id;
  DetailState state;
  state.isUnavailable = model_.unavailableItemIDs->contains(item.id);
  state.isEvicted = model_.evictedItemIDs->contains(item.id);
  state.isReadingText = presentation_.extractingTextIDs->contains(item.id);
  state.source = item.sourceItemID ? model_.items().find(*item.sourceItemID) : nullptr;
  header_->show(item, state);
  showPicture(item, state.isUnavailable, state.isEvicted);
  showDownload(item, state.isEvicted);
  showAnalysis(item, !state.isUnavailable && !state.isEvicted);
  actions_->show(item.id);
}

void InboxDetail::showPicture(const ScreenshotItem& item, bool isUnavailable, bool isEvicted) {
  picture_->setVisible(!isUnavailable);
  unavailable_->setVisible(isUnavailable);
  ScreenshotThumbnail::Content picture;
  picture.url = item.url;
  picture.maxPointSize = kPictureSide;
  picture.accessibilityLabel = localized("Screenshot preview");
  picture.identity = item.fileIdentity;
  picture.hasImageData = !isEvicted;
  picture.cornerRadius = Radius::kControl;
  picture.alignment = (isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
  picture_->ScreenshotThumbnail::show(picture);
}

void InboxDetail::showDownload(const ScreenshotItem& item, bool isEvicted) {
  if (!isEvicted) {
    download_->hide();
    return;
  }
  const auto state = model_.downloadStates->find(item.id);
  const bool hasState = state != model_.downloadStates->end();
  download_->show(
      DownloadStatusContent::make(model_.canDownload(item.id), hasState ? std::optional(state->second) : std::nullopt));
}

void InboxDetail::showAnalysis(const ScreenshotItem& item, bool canRead) {
  // A picture that cannot be read waits for its analysis, however long that takes.
  const bool isAnalyzing = model_.analyzingIDs->contains(item.id) && canRead;
  const AnalysisStatus status = analysisStatus(item, isAnalyzing, model_.analysisAvailability());
  analysis_->show({status.text, status.isFailure, status.offersAnalysis, status.isDescription});
}

}  // namespace quillmere
