#include "model/DecisionsUnderWay.h"

#include <utility>

namespace quillmere {

void DecisionsUnderWay::begin(const UUID& id) {
  Decision& decision = deciding_[id];
  if (decision.count++ == 0 && records_.isInPopups(id)) decision.leaving = leavePopupSoon(lifetime_.weak(this), id);
}

Task<> DecisionsUnderWay::leavePopupSoon(Weak<DecisionsUnderWay> self, UUID id) {
  constexpr Duration kLongestWait = std::chrono::milliseconds(250);
  auto pause = self->executor_.sleep(kLongestWait);
  const bool elapsed = co_await pause;
  if (!elapsed || !self) co_return;
  self->deciding_.at(id).ended.hasLeftPopup = true;
  self->records_.leavePopup(id);
}

void DecisionsUnderWay::end(const UUID& id) {
  const auto found = deciding_.find(id);
  if (found == deciding_.end() || --found->second.count > 0) return;
  const Decision decision = std::move(found->second);
  deciding_.erase(found);
  decision.leaving.cancel();
  records_.decisionEnded(id, decision.ended);
}

void DecisionsUnderWay::keepAfterwards(const UUID& id) {
  if (const auto found = deciding_.find(id); found != deciding_.end()) found->second.ended.isKept = true;
}

void DecisionsUnderWay::unprotect(const UUID& id) {
  const auto found = protected_.find(id);
  if (found != protected_.end() && --found->second == 0) protected_.erase(found);
}

}  // namespace quillmere
