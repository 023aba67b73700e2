#pragma once

#include "model/HotKeys.h"

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

}  // namespace quillmere::interim
