#include "hotkeys/LiveHotKeys.h"

namespace quillmere {

LiveHotKeys::LiveHotKeys(std::unique_ptr<HotKeySystem> system, std::unique_ptr<ChangingKeyboardLayout> layout)
    : layout_(std::move(layout)), system_(std::move(system)), center_(*system_, *layout_) {
  observers_.push_back(layout_->changed.connect([this] { changed(); }));
  observers_.push_back(system_->changed.connect([this] { changed(); }));
  observers_.push_back(center_.refusedAfterwards.connect(
      [this](Token token, const GlobalHotKeyError& error) { refusedAfterwards(token, error); }));
}

Result<HotKeyRegistering::Token, GlobalHotKeyError> LiveHotKeys::registerShortcut(const HotKeyShortcut& shortcut,
                                                                                  std::function<void()> action) {
  return center_.registerShortcut(shortcut, std::move(action));
}

void LiveHotKeys::unregister(Token token) {
  center_.unregister(token);
}

std::optional<GlobalHotKeyError> LiveHotKeys::setSuspended(bool isSuspended) {
  return center_.setSuspended(isSuspended);
}

}  // namespace quillmere
