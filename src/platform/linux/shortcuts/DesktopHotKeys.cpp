#include "platform/linux/shortcuts/DesktopHotKeys.h"

#include <utility>

#include "platform/linux/shortcuts/DesktopShortcuts.h"
#include "platform/linux/shortcuts/PortalHotKeys.h"

namespace quillmere {

DesktopHotKeys::DesktopHotKeys(Parts parts) : parts_(std::move(parts)) {
  const auto tellRefusals = [this](HotKeySystem& system) {
    observers_.push_back(system.refusedLater.connect([this](quint32 id, qint32 status) { refusedLater(id, status); }));
  };
  if (parts_.display) tellRefusals(*parts_.display);
  if (!parts_.portal) return;
  tellRefusals(*parts_.portal);
  observers_.push_back(parts_.portal->changed.connect([this] { settle(); }));
  observers_.push_back(
      parts_.portal->leftWithoutKeys.connect([this](Reference reference) { watchKeyless(reference); }));
}

DesktopHotKeys::~DesktopHotKeys() = default;

qint32 DesktopHotKeys::installHandler(Handler handler) {
  for (HotKeySystem* system : {parts_.display.get(), static_cast<HotKeySystem*>(parts_.portal.get())}) {
    const qint32 status = system ? system->installHandler(handler) : qint32{hotKeyDone};
    if (status != hotKeyDone) return status;
  }
  return hotKeyDone;
}

void DesktopHotKeys::removeHandler() {
  if (parts_.display) parts_.display->removeHandler();
  if (parts_.portal) parts_.portal->removeHandler();
}

bool DesktopHotKeys::hasPortal() const {
  return parts_.portal && parts_.portal->reach() == HotKeyReach::everywhere;
}

/// The one that hears keys now; none where nobody does.
HotKeySystem* DesktopHotKeys::system() const {
  return usesPortal_ ? static_cast<HotKeySystem*>(parts_.portal.get()) : parts_.display.get();
}

HotKeyReach DesktopHotKeys::reach() const {
  if (usesPortal_) return HotKeyReach::everywhere;
  return parts_.display ? parts_.displayReach : HotKeyReach::nowhere;
}

QString DesktopHotKeys::chosenByDesktop() const {
  return usesPortal_ ? parts_.portal->chosenByDesktop() : QString();
}

HotKeySystem::Answer DesktopHotKeys::registerHotKey(const HotKeyShortcut& shortcut, HotKeyID key) {
  Wanted wanted{shortcut, key};
  const Reference reference = ++lastReference_;
  if (const qint32 status = enter(reference, wanted); status != hotKeyDone) return {status, std::nullopt};
  wanted_.emplace(reference, wanted);
  return {hotKeyDone, reference};
}

void DesktopHotKeys::unregisterHotKey(Reference reference) {
  const auto found = wanted_.find(reference);
  if (found == wanted_.end()) return;
  leave(reference, found->second);
  wanted_.erase(found);
}

/// Where nobody hears keys it is kept all the same: `reach` says so, and a portal may come.
qint32 DesktopHotKeys::enter(Reference reference, Wanted& wanted) {
  HotKeySystem* system = this->system();
  if (!system) return hotKeyDone;
  const Answer answer = system->registerHotKey(wanted.shortcut, wanted.key);
  if (answer.status != hotKeyDone || !answer.reference) return answer.status;
  wanted.system = system;
  wanted.reference = *answer.reference;
  // A portal asks the desktop itself.
  if (!usesPortal_) watch(reference, wanted);
  return hotKeyDone;
}

void DesktopHotKeys::leave(Reference reference, Wanted& wanted) {
  parts_.desktop->forget(reference);
  if (HotKeySystem* system = std::exchange(wanted.system, nullptr)) system->unregisterHotKey(wanted.reference);
}

void DesktopHotKeys::watch(Reference reference, const Wanted& wanted) {
  parts_.desktop->watch(reference, KeyCombination::of(wanted.shortcut, parts_.layout),
                        [this, id = wanted.key.id] { refusedLater(id, hotKeyExists); });
}

/// Some desktops leave a shortcut without keys where somebody has them already, others until the person gives it some.
void DesktopHotKeys::watchKeyless(Reference portalReference) {
  for (const auto& [reference, wanted] : wanted_) {
    if (wanted.system == parts_.portal.get() && wanted.reference == portalReference) watch(reference, wanted);
  }
}

/// The portal has come or gone, or has something to tell.
void DesktopHotKeys::settle() {
  if (std::exchange(usesPortal_, hasPortal()) != hasPortal()) {
    std::vector<std::pair<quint32, qint32>> refused;
    for (auto& [reference, wanted] : wanted_) {
      leave(reference, wanted);
      if (const qint32 status = enter(reference, wanted); status != hotKeyDone) {
        refused.emplace_back(wanted.key.id, status);
      }
    }
    for (const auto& [id, status] : refused) refusedLater(id, status);
  }
  changed();
}

}  // namespace quillmere
