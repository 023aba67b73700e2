#pragma once

#include "model/HotKeys.h"
#include "model/LoginItem.h"

namespace quillmere::interim {

class KeyboardLayout final : public quillmere::KeyboardLayout {
 public:
  QStringList texts(quint32) const override { return {}; }
  std::optional<quint32> keyCode(quint32) const override { return std::nullopt; }
};
class HotKeys final : public HotKeyRegistering {
 public:
  Result<Token, GlobalHotKeyError> registerShortcut(const HotKeyShortcut&, std::function<void()>) override {
    return Token{0};
  }
  void unregister(Token) override {}
  std::optional<GlobalHotKeyError> setSuspended(bool) override { return std::nullopt; }
  const quillmere::KeyboardLayout& layout() const override { return layout_; }

 private:
  KeyboardLayout layout_;
};
class LoginItem final : public LoginItemService {
 public:
  LoginItemStatus status() const override { return LoginItemStatus::notFound; }
  std::optional<QString> registerItem() override { return std::nullopt; }
  std::optional<QString> unregisterItem() override { return std::nullopt; }
  void openSystemSettings() override {}
};

}  // namespace quillmere::interim
