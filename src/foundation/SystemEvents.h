#pragma once

#include "foundation/Signal.h"

namespace quillmere {

/// What the machine and the session tell everyone. All on the main thread.
struct SystemEvents {
  Signal<> didBecomeActive;  ///< one of this application's windows took the focus
  Signal<> didWake;          ///< the machine woke from sleep
  Signal<> screensDidSleep;
  Signal<> screensDidWake;
  Signal<> sessionDidResign;  ///< locked, or another person's session is shown
  Signal<> sessionDidBecomeActive;
  Signal<> volumesDidChange;  ///< a file system was mounted or unmounted
};

}  // namespace quillmere
