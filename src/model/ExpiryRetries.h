#pragma once

#include <optional>
#include <vector>

#include "records/UUID.h"

namespace quillmere {

/// Counts in vain attempts to throw screenshots away whose time is up, and says when the next one is due.
class ExpiryRetries {
 public:
  /// The delay after which a file is looked for again that could not be reached once, in seconds.
  explicit ExpiryRetries(double unreachableDelay) : unreachableDelay_(unreachableDelay) {}

  /// Seconds until the next look at a file that could not be reached.
  double afterUnreachable(const UUID& id);
  /// Seconds until the next attempt after a refusal; none once there have been so many that only the person or the next
  /// launch asks again.
  std::optional<double> afterRefusal(const UUID& id);
  /// How many records have been refused.
  int refusedCount() const { return static_cast<int>(refusals_.size()); }
  /// Those records, each with all its attempts before it again.
  std::vector<UUID> restart();
  /// The record is gone or has been decided anew. Answers whether it had been refused.
  bool forget(const UUID& id);

 private:
  double unreachableDelay_;
  UUIDMap<int> refusals_;
  UUIDMap<int> unreachable_;  ///< attempts made while the file could not be reached
};

}  // namespace quillmere
