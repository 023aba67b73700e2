#include "platform/linux/login/LiveLoginItem.h"

#include "platform/linux/common/Sandbox.h"
#include "platform/linux/login/PortalLoginItem.h"
#include "platform/linux/login/XdgLoginItem.h"

namespace quillmere {

std::unique_ptr<LoginItemService> liveLoginItem(const QDBusConnection& bus, UserDefaults& defaults) {
  LoginSettings settings(LoginSettings::World::live());
  if (isSandboxed()) return std::make_unique<PortalLoginItem>(bus, defaults, std::move(settings));
  return std::make_unique<XdgLoginItem>(AutostartPlaces::live(), ProgramPlaces::live(), std::move(settings));
}

}  // namespace quillmere
