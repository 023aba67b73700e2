#include "model/WindowKnowledge.h"

#include <algorithm>
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
  looks_[id] = std::make_unique<AsyncGate>(0);
  dependencies_.lookAtWindows();
  if (!std::exchange(isRunning_, true)) run(lifetime_.weak(this)).detach();
}

Task<> WindowKnowledge::run(Weak<WindowKnowledge> self) {
  auto pause = self->dependencies_.executor->sleep(kDelay);
  const bool isOver = co_await pause;
  while (isOver && self && !self->waiting_.empty()) {
    Capture capture = std::move(self->waiting_.front());
    self->waiting_.pop_front();
    self->takeNewStates(capture);
    const std::function<std::optional<KnownWindows>()> work = [capture, pictures = self->dependencies_.pictures,
                                                               isDataless = self->dependencies_.isDataless,
                                                               isStopped = self->isStopped_] {
      if (isDataless(capture.url)) return std::optional<KnownWindows>();
      return pictures->knownWindows(capture.url, capture.states, capture.closedAt, *isStopped);
    };
    auto looking = self->dependencies_.executor->background(work);
    const auto known = co_await looking;
    if (!self) co_return;
    if (known) self->keep(capture, *known);
    const auto look = self->looks_.extract(capture.id);
    if (look) look.mapped()->leave();
  }
  if (self) self->isRunning_ = false;
}

/// What was found out since the picture came. What changed after it was taken is told from that by its time.
void WindowKnowledge::takeNewStates(Capture& capture) const {
  const Date last = capture.states.back().since;
  for (WindowStack& state : dependencies_.windowStates()) {
    if (last < state.since) capture.states.push_back(std::move(state));
  }
}

Task<> WindowKnowledge::whenKnown(UUID id) {
  return runWait(lifetime_.weak(this), id);
}

Task<> WindowKnowledge::runWait(Weak<WindowKnowledge> self, UUID id) {
  const auto look = self->looks_.find(id);
  if (look == self->looks_.end()) co_return;
  auto& waiting = self->waiting_;
  const auto place = std::find_if(waiting.begin(), waiting.end(), [&](const Capture& one) { return one.id == id; });
  if (place != waiting.end()) std::rotate(waiting.begin(), place, place + 1);
  AsyncGate& gate = *look->second;
  auto entering = gate.enter();
  const bool isOpen = co_await entering;
  if (isOpen) gate.leave();
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
