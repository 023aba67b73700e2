#pragma once

#include "foundation/FileURL.h"

namespace quillmere {

/// Has the program started as soon as this one has ended, however it ends: two at once would take each other for the
/// one that runs already. False where no process can be made.
bool startWhenThisEnds(const FileURL& program);

}  // namespace quillmere
