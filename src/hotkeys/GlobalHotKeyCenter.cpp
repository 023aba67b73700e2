#include "hotkeys/GlobalHotKeyCenter.h"

#include <QtCore/QtGlobal>
#include <algorithm>
#include <limits>
#include <utility>

namespace quillmere {

GlobalHotKeyCenter::GlobalHotKeyCenter(HotKeySystem& system, const KeyboardLayout& layout, quint32 firstID)
    : system_(system),
      layout_(layout),
      nextID_(firstID),
      refusals_(system.refusedLater.connect([this](quint32 id, qint32 status) { refuse(id, status); })) {}

GlobalHotKeyCenter::~GlobalHotKeyCenter() {
  for (auto& [id, registration] : registrations_) unregisterWithSystem(registration);
  if (hasHandler_) system_.removeHandler();
}

Result<GlobalHotKeyCenter::Token, GlobalHotKeyError> GlobalHotKeyCenter::registerShortcut(
    const HotKeyShortcut& shortcut, std::function<void()> action) {
  using enum GlobalHotKeyError::Kind;
  if (const auto issue = shortcut.validate()) return GlobalHotKeyError{.kind = invalidShortcut, .issue = issue};
  const bool isKnown = std::any_of(registrations_.begin(), registrations_.end(),
                                   [&](const auto& entry) { return entry.second.shortcut == shortcut; });
  if (isKnown) return GlobalHotKeyError{.kind = unavailable, .shortcut = shortcut.symbols(layout_)};
  if (const auto error = installHandler()) return *error;
  const quint32 id = nextID_;
  Registration registration{shortcut, std::nullopt, std::move(action)};
  if (!isSuspended_) {
    if (const auto error = registerWithSystem(id, registration)) return *error;
  }
  // An id that came back would have presses of the old shortcut run the new one's action.
  if (id == std::numeric_limits<quint32>::max()) qFatal("No ids are left for keyboard shortcuts");
  ++nextID_;
  registrations_.emplace(id, std::move(registration));
  return id;
}

/// At the first registration, and for good.
std::optional<GlobalHotKeyError> GlobalHotKeyCenter::installHandler() {
  if (hasHandler_) return std::nullopt;
  const qint32 status = system_.installHandler([this](const HotKeyPress* press) { return handle(press, this); });
  if (status != hotKeyDone) {
    return GlobalHotKeyError{.kind = GlobalHotKeyError::Kind::handlerInstallationFailed, .status = status};
  }
  hasHandler_ = true;
  return std::nullopt;
}

std::optional<GlobalHotKeyError> GlobalHotKeyCenter::registerWithSystem(quint32 id, Registration& registration) {
  const auto answer = system_.registerHotKey(registration.shortcut, {kHotKeySignature, id});
  if (answer.status != hotKeyDone || !answer.reference) return errorOf(answer.status, registration.shortcut);
  registration.reference = answer.reference;
  return std::nullopt;
}

void GlobalHotKeyCenter::unregisterWithSystem(Registration& registration) {
  if (const auto reference = std::exchange(registration.reference, std::nullopt)) system_.unregisterHotKey(*reference);
}

GlobalHotKeyError GlobalHotKeyCenter::errorOf(qint32 status, const HotKeyShortcut& shortcut) const {
  using enum GlobalHotKeyError::Kind;
  const QString symbols = shortcut.symbols(layout_);
  if (status == hotKeyExists) return {.kind = unavailable, .shortcut = symbols};
  return {.kind = registrationFailed, .shortcut = symbols, .status = status};
}

void GlobalHotKeyCenter::unregister(Token token) {
  const auto found = registrations_.find(token);
  if (found == registrations_.end()) return;
  Registration gone = std::move(found->second);
  registrations_.erase(found);
  unregisterWithSystem(gone);
}

std::optional<GlobalHotKeyError> GlobalHotKeyCenter::setSuspended(bool isSuspended) {
  if (std::exchange(isSuspended_, isSuspended) == isSuspended) return std::nullopt;
  std::optional<GlobalHotKeyError> first;
  for (auto& [id, registration] : registrations_) {  // by id, ascending
    if (isSuspended) {
      unregisterWithSystem(registration);
      continue;
    }
    // One that fails doesn't keep the others from being tried.
    const auto error = registerWithSystem(id, registration);
    if (error && !first) first = error;
  }
  return first;
}

/// A desktop that answers later has said no; what it has of the registration is given back.
void GlobalHotKeyCenter::refuse(quint32 id, qint32 status) {
  const auto found = registrations_.find(id);
  if (found == registrations_.end() || !found->second.reference) return;
  unregisterWithSystem(found->second);
  refusedAfterwards(id, errorOf(status, found->second.shortcut));
}

qint32 GlobalHotKeyCenter::handle(const HotKeyPress* press, GlobalHotKeyCenter* center) {
  if (!press || !center) return hotKeyNotHandled;
  if (press->status != hotKeyDone) return press->status;
  const auto found = center->registrations_.find(press->key.id);
  const bool isOurs = press->key.signature == kHotKeySignature && found != center->registrations_.end();
  if (!isOurs || !found->second.reference) return hotKeyNotHandled;
  const auto action = found->second.action;  // it may unregister itself
  action();
  return hotKeyDone;
}

}  // namespace quillmere
