#pragma once

#include <memory>

#include "hotkeys/GlobalHotKeyCenter.h"

namespace quillmere {

/// A keyboard whose layout the person may change at any time.
class ChangingKeyboardLayout : public KeyboardLayout {
 public:
  Signal<> changed;
};

/// The shortcuts of the running program.
class LiveHotKeys final : public HotKeyRegistering {
 public:
  LiveHotKeys(std::unique_ptr<HotKeySystem> system, std::unique_ptr<ChangingKeyboardLayout> layout);

  Result<Token, GlobalHotKeyError> registerShortcut(const HotKeyShortcut& shortcut,
                                                    std::function<void()> action) override;
  void unregister(Token token) override;
  std::optional<GlobalHotKeyError> setSuspended(bool isSuspended) override;
  const KeyboardLayout& layout() const override { return *layout_; }
  HotKeyReach reach() const override { return system_->reach(); }
  QString chosenByDesktop() const override { return system_->chosenByDesktop(); }

 private:
  std::unique_ptr<ChangingKeyboardLayout> layout_;
  std::unique_ptr<HotKeySystem> system_;
  GlobalHotKeyCenter center_;
  std::vector<Connection> observers_;
};

}  // namespace quillmere
