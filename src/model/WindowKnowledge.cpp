#include "model/WindowKnowledge.h"

#include <utility>

namespace quillmere {

std::optional<KnownWindows> knownWindows(const ScreenshotItem& item) {
  return item.knownWindows ? KnownWindows::fromCoded(*item.knownWindows) : std::nullopt;
}

WindowKnowledge::WindowKnowledge(const AppModelDependencies& dependencies, CaptureRecords& records)
    : dependencies_(dependencies), records_(records) {}

WindowKnowledge::~WindowKnowledge() {
  *isStopped_ = true;
}

void WindowKnowledge::noteCapture(const UUID& id) {
  const ScreenshotItem* item = records_.find(id);
  if (!item || waiting_.size() >= kMostWaiting) return;
  auto states = dependencies_.windowStates();
  if (states.empty()) return;
  const auto& identity = item->fileIdentity;
  const Date closedAt = identity && identity->modificationDate ? *identity->modificationDate : dependencies_.now();
  waiting_.push_back({id, item->url, identity, closedAt, std::move(states)});
  if (!std::exchange(isRunning_, true)) run(lifetime_.weak(this)).detach();
}

Task<> WindowKnowledge::run(Weak<WindowKnowledge> self) {
  auto pause = self->dependencies_.executor->sleep(kDelay);
  const bool isOver = co_await pause;
  while (isOver && self && !self->waiting_.empty()) {
    const Capture capture = std::move(self->waiting_.front());
    self->waiting_.pop_front();
    const std::function<std::optional<KnownWindows>()> work = [capture, pictures = self->dependencies_.pictures,
                                                               isDataless = self->dependencies_.isDataless,
                                                               isStopped = self->isStopped_] {
      if (isDataless(capture.url)) return std::optional<KnownWindows>();
      return pictures->knownWindows(capture.url, capture.states, capture.closedAt, *isStopped);
    };
    auto looking = self->dependencies_.executor->background(work);
    const auto known = co_await looking;
    if (self && known) self->keep(capture, *known);
  }
  if (self) self->isRunning_ = false;
}

/// What a tool marked its picture as counts more than what is found out.
void WindowKnowledge::keep(const Capture& capture, const KnownWindows& known) {
  const ScreenshotItem* item = records_.find(capture.id);
  if (!item || item->fileIdentity != capture.identity || item->url != capture.url) return;
  records_.change(capture.id, [&](ScreenshotItem& record) {
    if (!record.captureKind) record.captureKind = known.kind;
    record.knownWindows = known.coded();
  });
  records_.saveRecordsSoon();
}

}  // namespace quillmere
