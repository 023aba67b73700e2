#include "platform/linux/windows/WindowWatch.h"

#include <utility>

#include "platform/linux/windows/SwayWindowWatch.h"
#include "platform/linux/windows/X11WindowWatch.h"

namespace quillmere {

std::unique_ptr<WindowWatch> WindowWatch::ofSession(std::function<Date()> now) {
  if (auto sway = SwayConnection::ofSession()) {
    return std::make_unique<SwayWindowWatch>(std::move(now), std::move(*sway));
  }
  return std::make_unique<X11WindowWatch>(std::move(now), X11WindowWatch::baseOfApplication());
}

}  // namespace quillmere
