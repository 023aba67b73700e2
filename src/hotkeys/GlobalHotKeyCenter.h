#pragma once

#include <map>

#include "hotkeys/HotKeySystem.h"

namespace quillmere {

/// Owns what is registered with the system. Main thread.
class GlobalHotKeyCenter {
 public:
  using Token = HotKeyRegistering::Token;

  /// Both outlive it.
  GlobalHotKeyCenter(HotKeySystem& system, const KeyboardLayout& layout, quint32 firstID = 1);
  ~GlobalHotKeyCenter();
  GlobalHotKeyCenter(const GlobalHotKeyCenter&) = delete;
  GlobalHotKeyCenter& operator=(const GlobalHotKeyCenter&) = delete;

  Result<Token, GlobalHotKeyError> registerShortcut(const HotKeyShortcut& shortcut, std::function<void()> action);
  void unregister(Token token);
  std::optional<GlobalHotKeyError> setSuspended(bool isSuspended);

  /// What the system calls at a press; the status tells whether it was one of ours.
  static qint32 handle(const HotKeyPress* press, GlobalHotKeyCenter* center);

  Signal<Token, const GlobalHotKeyError&> refusedAfterwards;

 private:
  struct Registration {
    HotKeyShortcut shortcut;
    std::optional<HotKeySystem::Reference> reference;  ///< none while it isn't registered with the system
    std::function<void()> action;
  };

  std::optional<GlobalHotKeyError> installHandler();
  std::optional<GlobalHotKeyError> registerWithSystem(quint32 id, Registration& registration);
  void unregisterWithSystem(Registration& registration);
  GlobalHotKeyError errorOf(qint32 status, const HotKeyShortcut& shortcut) const;
  void refuse(quint32 id, qint32 status);

  HotKeySystem& system_;
  const KeyboardLayout& layout_;
  bool hasHandler_ = false;
  std::map<quint32, Registration> registrations_;
  quint32 nextID_;
  bool isSuspended_ = false;
  Connection refusals_;
};

}  // namespace quillmere
