#include "editor/ReplaceabilityWatch.h"

namespace quillmere {

ReplaceabilityWatch::ReplaceabilityWatch(AppModel& model, Executor& executor, UUID id, FileURL opened,
                                         FileStamp readFrom)
    : model_(model),
      executor_(executor),
      id_(id),
      opened_(std::move(opened)),
      readFrom_(std::move(readFrom)),
      isKnown_(model.isReplaceableAsFarAsKnown(id_, opened_)) {
  changes_ = model.changed.connect([this](const ModelChange& change) {
    const bool concernsFiles = change.field == ModelField::items || change.field == ModelField::unavailableItemIDs ||
                               change.field == ModelField::evictedItemIDs;
    if (concernsFiles) follow();
  });
  watching_ = watch(lifetime_.weak(this));
}

ReplaceabilityWatch::~ReplaceabilityWatch() {
  watching_.cancel();
}

void ReplaceabilityWatch::follow() {
  const bool isKnown = model_.isReplaceableAsFarAsKnown(id_, opened_);
  if (isKnown == isKnown_) return;
  set(isSame_, isKnown);
  // It may be another file that has come under its name.
  if (isKnown) look().detach();
}

void ReplaceabilityWatch::set(bool isSame, bool isKnown) {
  const bool was = isReplaceable();
  isSame_ = isSame;
  isKnown_ = isKnown;
  if (was != isReplaceable() && onChanged) onChanged();
}

Task<bool> ReplaceabilityWatch::look() {
  if (!looking_ || looking_.isDone()) looking_ = runLook(lifetime_.weak(this));
  return looking_;
}

Task<bool> ReplaceabilityWatch::runLook(Weak<ReplaceabilityWatch> self) {
  const auto looking = self->model_.isReplaceable(self->id_, self->opened_, self->readFrom_);
  const bool isReplaceable = co_await looking;
  if (!self) co_return false;
  self->set(isReplaceable, self->isKnown_);
  // Whoever was told of it may have ended the watch.
  if (!self) co_return false;
  co_return isReplaceable;
}

Task<> ReplaceabilityWatch::watch(Weak<ReplaceabilityWatch> self) {
  for (;;) {
    auto pause = self->executor_.sleep(kPause);
    const bool isOver = co_await pause;
    if (!self || !isOver) co_return;
    const auto looking = self->look();
    co_await looking;
    if (!self) co_return;
  }
}

}  // namespace quillmere
