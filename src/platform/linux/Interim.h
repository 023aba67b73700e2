#pragma once

#include "model/LoginItem.h"

namespace quillmere::interim {

class LoginItem final : public LoginItemService {
 public:
  LoginItemStatus status() const override { return LoginItemStatus::notFound; }
  std::optional<QString> registerItem() override { return std::nullopt; }
  std::optional<QString> unregisterItem() override { return std::nullopt; }
  void openSystemSettings() override {}
};

}  // namespace quillmere::interim
