#pragma once

#include <atomic>

#include "model/Reconciliation.h"

namespace quillmere {

/// Like `resolveOutcomes`, until it is told to stop: what has not been looked at by then has no outcome.
UUIDMap<ReconcileOutcome> resolveOutcomes(const std::vector<ReconcileInput>& inputs,
                                          const ReconcileEnvironment& environment, const std::atomic<bool>& isStopped);

}  // namespace quillmere
