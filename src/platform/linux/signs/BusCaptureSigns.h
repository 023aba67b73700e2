#pragma once

#include <memory>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "popup/CaptureSigns.h"

namespace quillmere {

/// What the session bus tells of captures: a tool that takes its name there, and requests to make one, to a tool, to
/// the desktop or to its portal. All of it is heard as a monitor of the bus, which is told of these alone; where the
/// bus allows no monitor there are no signs.
class BusCaptureSigns final : public CaptureSigns {
 public:
  explicit BusCaptureSigns(Executor& executor);
  ~BusCaptureSigns() override;

 private:
  struct Watch;
  std::shared_ptr<Watch> watch_;  // none where there is no bus; a thread of the bus may still hold it
  Lifetime lifetime_;
};

}  // namespace quillmere
