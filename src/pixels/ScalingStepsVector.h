#pragma once

#include "pixels/ScalingSteps.h"

namespace quillmere {

/// Null on processors of an architecture for which there are none.
const ScalingSteps* vectorScalingSteps(Instructions instructions);

}  // namespace quillmere
