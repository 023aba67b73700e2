#include "editor/ImageEditor.h"

#include "editor/WindowCandidate.h"
#include "foundation/Localized.h"
#include "foundation/OnCancel.h"
#include "reading/ScreenPicture.h"

namespace quillmere {

ImageEditor::ImageEditor(AppModel& model, Executor& executor, ScreenshotItem item, bool detectWindow)
    : model_(model), executor_(executor), item_(std::move(item)), detectsWindow_(detectWindow) {
  protection_ = std::make_unique<Protection>(model, std::vector{item_.id});
  changes_ = model.changed.connect([this](const ModelChange& change) {
    const bool concernsDecision = change.field == ModelField::items || change.field == ModelField::unavailableItemIDs ||
                                  change.field == ModelField::promptWindowExtraction;
    if (concernsDecision) follow();
  });
  follow();
}

ImageEditor::~ImageEditor() {
  close();
}

void ImageEditor::close() {
  isOpen_ = false;
  isConfirmingReplace_ = false;
  opening_.cancel();
  hidingMessage_.cancel();
  changes_.reset();
  watch_.reset();
  protection_.reset();
}

void ImageEditor::tell() const {
  if (isOpen_ && onChanged) onChanged();
}

// --- Opening ---

void ImageEditor::open() {
  situation_.isLoading = true;
  message_ = detectsWindow_ ? localized("Finding possible windows…") : localized("Loading image…");
  opening_ = runOpening(lifetime_.weak(this));
  tell();
}

Task<> ImageEditor::runOpening(Weak<ImageEditor> self) {
  Executor& executor = self->executor_;
  const auto reading = self->model_.openPicture(self->item_, self->detectsWindow_);
  OnCancel stopping([reading] { reading.cancel(); });
  co_await stopping;
  const auto opened = co_await reading;
  if (!self || !self->isOpen_) co_return;
  if (!opened) {
    self->failToOpen();
    co_return;
  }
  auto converting = executor.background([image = opened->image] { return pictureForScreen(image); });
  QImage shown = co_await converting;
  if (self && self->isOpen_) self->show(*opened, std::move(shown));
}

void ImageEditor::show(const AppModel::OpenedPicture& opened, QImage shown) {
  // There was no memory for it.
  if (shown.isNull()) return failToOpen();
  image_ = opened.image;
  shown_ = std::move(shown);
  readFrom_ = opened.readFrom;
  situation_.isLoading = false;
  message_.reset();
  CropSelection selection(image_.size(), windowCandidates(opened.windows));
  if (detectsWindow_) {
    situation_.detection = opened.windows.empty() ? WindowDetection::noneFound : WindowDetection::found;
    const WindowCandidate* primary = primaryCandidate(selection.candidates(), opened.windows);
    if (primary) selection.pick(primary->id);
    model_.announce(CropNotes::detectionNote(situation_), AnnouncementPriority::low);
  }
  history_ = CropHistory(std::move(selection));
  watch_ = std::make_unique<ReplaceabilityWatch>(model_, executor_, item_.id, item_.url, readFrom_);
  watch_->onChanged = [this] { followFile(); };
  situation_.isReplaceable = watch_->isReplaceable();
  tell();
}

void ImageEditor::failToOpen() {
  situation_.isLoading = false;
  message_.reset();
  error_ = CropNotes::loadFailure();
  model_.announce(*error_, AnnouncementPriority::high);
  tell();
}

// --- What it follows ---

void ImageEditor::follow() {
  const ScreenshotItem* item = model_.items().find(item_.id);
  const bool offersKeep =
      item && item->state == ScreenshotItem::State::pending && !model_.unavailableItemIDs->contains(item_.id);
  const bool isBeingDecided = model_.windowExtraction().isSaving(item_.id);
  if (offersKeep == situation_.offersKeep && isBeingDecided == isBeingDecided_) return;
  situation_.offersKeep = offersKeep;
  isBeingDecided_ = isBeingDecided;
  tell();
}

void ImageEditor::followFile() {
  situation_.isReplaceable = watch_->isReplaceable();
  if (const auto obstacle = CropNotes::replaceObstacle(situation_)) {
    isConfirmingReplace_ = false;
    model_.announce(*obstacle, AnnouncementPriority::low);
  }
  tell();
}

// --- The selection ---

void ImageEditor::change(const std::function<void(CropSelection&)>& something) {
  if (canSelect() && history_.change(something)) selectionChanged();
}

void ImageEditor::undo() {
  if (!canSelect() || !history_.canUndo()) return;
  history_.undo();
  selectionChanged();
}

void ImageEditor::redo() {
  if (!canSelect() || !history_.canRedo()) return;
  history_.redo();
  selectionChanged();
}

void ImageEditor::selectionChanged() {
  message_.reset();
  tell();
}

void ImageEditor::showMessage(const QString& text) {
  message_ = text;
  hidingMessage_.cancel();
  hidingMessage_ = hideMessage(lifetime_.weak(this));
  tell();
}

Task<> ImageEditor::hideMessage(Weak<ImageEditor> self) {
  auto showing = self->executor_.sleep(kMessageTime);
  const bool isOver = co_await showing;
  if (!self || !isOver) co_return;
  self->message_.reset();
  self->tell();
}

}  // namespace quillmere
