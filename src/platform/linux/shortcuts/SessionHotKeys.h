#pragma once

#include <memory>

#include "foundation/Executor.h"
#include "model/HotKeys.h"

namespace quillmere {

/// The shortcuts of the session that the program runs in: by the X server, by the portal of a Wayland desktop, or by
/// the X server beside that. Where the program shows its windows to nobody there are none.
std::unique_ptr<HotKeyRegistering> sessionHotKeys(Executor& executor);

}  // namespace quillmere
