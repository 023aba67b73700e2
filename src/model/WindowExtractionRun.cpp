#include "model/WindowExtractionRun.h"

#include <utility>

namespace quillmere {

using Extraction = PromptWindowExtraction;
using ImageOperations::OperationError;

WindowExtractionRun::WindowExtractionRun(const AppModelDependencies& dependencies, const PromptQueue& prompts,
                                         Signal<const ModelChange&>& changed)
    : state(changed, ModelField::promptWindowExtraction), dependencies_(dependencies), prompts_(prompts) {}

Task<Result<WindowExtractionRun::Sought, OperationError>> WindowExtractionRun::seek(UUID id, FileURL url, Scan scan) {
  return runSeek(lifetime_.weak(this), id, std::move(url), std::move(scan));
}

Task<Result<WindowExtractionRun::Sought, OperationError>> WindowExtractionRun::runSeek(Weak<WindowExtractionRun> self,
                                                                                       UUID id, FileURL url,
                                                                                       Scan scan) {
  self->state.set(Extraction{id, Extraction::Detecting{}});
  const FileStamp readFrom = fileStamp(url, self->dependencies_.fileIdentity);
  self->scan_ = scan;
  const auto result = co_await scan;
  // The scan's own identity tells whether it is the one that is waited for.
  if (!self || self->scan_ != scan || self->prompts_.front() != id) co_return Sought::overtaken;
  const auto window = result ? ImageOperations::primaryWindow(result->windows) : std::nullopt;
  if (!window) {
    self->clear();
    if (!result) co_return result.reason();
    co_return Sought::nothing;
  }
  self->image_ = result->image;
  self->readFrom_ = readFrom;
  self->state.set(Extraction{id, Extraction::Extracted{window->frame}});
  co_return Sought::found;
}

void WindowExtractionRun::clear() {
  std::exchange(scan_, {}).cancel();
  image_ = {};
  readFrom_ = {};
  state.set(std::nullopt);
}

std::optional<WindowExtractionRun::Crop> WindowExtractionRun::window(const UUID& id) const {
  if (!*state || (*state)->itemID != id || image_.isNull()) return std::nullopt;
  const auto part = Extraction::shownPart((*state)->phase);
  return part ? std::optional(Crop{image_, *part}) : std::nullopt;
}

void WindowExtractionRun::beginSaving(const UUID& id) {
  if (const auto found = window(id)) state.set(Extraction{id, Extraction::Saving{found->rect}});
}

void WindowExtractionRun::returnFromSaving() {
  if (!*state) return;
  if (const auto* saving = std::get_if<Extraction::Saving>(&(*state)->phase)) {
    state.set(Extraction{(*state)->itemID, Extraction::Extracted{saving->crop}});
  }
}

template <typename Phase>
bool WindowExtractionRun::isIn(const UUID& id) const {
  return *state && (*state)->itemID == id && std::holds_alternative<Phase>((*state)->phase);
}

bool WindowExtractionRun::isSeeking(const UUID& id) const {
  return isIn<Extraction::Detecting>(id);
}

bool WindowExtractionRun::isSaving(const UUID& id) const {
  return isIn<Extraction::Saving>(id);
}

}  // namespace quillmere
