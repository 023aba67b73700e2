#include "foundation/Localized.h"
#include "model/AppModel.h"

namespace quillmere {

void AppModel::setHotKeyShortcut(const std::optional<HotKeyShortcut>& shortcut) {
  // The same one again is a new try where the last one failed.
  if (shortcut == *settings_.hotKeyShortcut && !*hotKeyError) return;
  if (const auto token = std::exchange(hotKeyToken_, std::nullopt)) dependencies_.hotKeys->unregister(*token);
  settings_.hotKeyShortcut.choose(shortcut);
  registerHotKey();
}

void AppModel::registerHotKey() {
  hotKeyError.set(std::nullopt);
  const auto& shortcut = *settings_.hotKeyShortcut;
  if (!shortcut) return;
  const auto registered = dependencies_.hotKeys->registerShortcut(*shortcut, [self = weak()] {
    if (self) self->reviewPending(FocusNews::silent);
  });
  if (registered) {
    hotKeyToken_ = *registered;
  } else {
    hotKeyError.set(message(registered.reason()));
  }
}

void AppModel::observeHotKeys() {
  observers_.push_back(dependencies_.hotKeys->refusedAfterwards.connect(
      [this](HotKeyRegistering::Token token, const GlobalHotKeyError& error) {
        if (token == hotKeyToken_) hotKeyError.set(message(error));
      }));
  // Whoever hears shortcuts now has not refused any yet.
  observers_.push_back(dependencies_.hotKeys->changed.connect([this, reach = dependencies_.hotKeys->reach()]() mutable {
    if (const HotKeyReach now = dependencies_.hotKeys->reach(); std::exchange(reach, now) != now) tryHotKeyAgain();
  }));
}

void AppModel::tryHotKeyAgain() {
  if (!*hotKeyError) return;
  if (const auto token = std::exchange(hotKeyToken_, std::nullopt)) dependencies_.hotKeys->unregister(*token);
  registerHotKey();
}

void AppModel::setHotKeysSuspended(bool isSuspended) {
  if (std::exchange(hotKeysSuspended_, isSuspended) == isSuspended) return;
  if (const auto error = dependencies_.hotKeys->setSuspended(isSuspended)) hotKeyError.set(message(*error));
}

/// Keys that are not heard are not told.
std::optional<QString> AppModel::spokenReviewShortcut() const {
  const auto& shortcut = *settings_.hotKeyShortcut;
  if (!shortcut || *hotKeyError || hotKeys().reach() == HotKeyReach::nowhere) return std::nullopt;
  const QString chosen = hotKeys().chosenByDesktop();
  return chosen.isEmpty() ? shortcut->spelledOut(hotKeys().layout()) : chosen;
}

}  // namespace quillmere
