#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "model/LoginItem.h"

namespace quillmere {

class ActionButton;
class SymbolNote;

/// What a status makes of the toggle, and what the row below it says.
struct LoginItemContent {
  bool isOn = false;
  bool canBeTurned = true;
  QString symbol;  ///< none when empty
  QString text;    ///< no row when empty
  bool offersSettings = false;

  /// `asked` is what the desktop was asked for and seemed to take, if it was.
  static LoginItemContent make(LoginItemStatus status, bool hasSystemSettings,
                               std::optional<bool> asked = std::nullopt);
  bool operator==(const LoginItemContent&) const = default;
};

/// Why the program does not open at login although it was told to, or still does, or cannot.
class LoginItemStatusRow final : public QWidget {
 public:
  explicit LoginItemStatusRow(QWidget* parent);
  void show(const LoginItemContent& content);

  std::function<void()> onOpenSettings;

 private:
  SymbolNote* note_;
  ActionButton* settings_;
};

}  // namespace quillmere
