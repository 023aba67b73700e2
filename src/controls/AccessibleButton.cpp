#include "controls/AccessibleButton.h"

#include <QtCore/QVariant>
#include <QtGui/QAccessible>
#include <QtGui/QKeySequence>
#include <QtWidgets/QAccessibleWidget>

namespace quillmere {
namespace {

constexpr const char* kProperty = "accessibleKey";
constexpr const char* kMenuProperty = "accessibleMenu";

/// As the keyboard's own symbols are called, which readers know how to say.
QString symbolOf(const QKeySequence& key) {
  return key == QKeySequence(Qt::Key_Escape) ? QStringLiteral("Escape") : key.toString(QKeySequence::PortableText);
}

class ButtonWithKey final : public QAccessibleWidget {
 public:
  ButtonWithKey(QPushButton* button, Qt::Key key)
      : QAccessibleWidget(button, QAccessible::Button), button_(*button), key_(key) {}

  QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    if (kind == QAccessible::Accelerator) return key_.toString(QKeySequence::NativeText);
    return kind == QAccessible::Name && own.isEmpty() ? button_.text() : own;
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.pressed = button_.isDown();
    state.defaultButton = button_.isDefault();
    return state;
  }
  QStringList actionNames() const override {
    return button_.isEnabled() ? QStringList(pressAction()) + QAccessibleWidget::actionNames() : QStringList();
  }
  void doAction(const QString& name) override {
    if (name != pressAction()) return QAccessibleWidget::doAction(name);
    button_.click();
  }
  /// As the accessibility bus has them: a letter in the menu, the way there by letters, and the key from anywhere.
  QStringList keyBindingsForAction(const QString& name) const override {
    if (name != pressAction()) return QAccessibleWidget::keyBindingsForAction(name);
    return {QStringLiteral(";;") + symbolOf(key_)};
  }

 private:
  QPushButton& button_;
  QKeySequence key_;
};

class ButtonWithMenu final : public QAccessibleWidget {
 public:
  explicit ButtonWithMenu(QPushButton* button) : QAccessibleWidget(button, QAccessible::ButtonMenu), button_(*button) {}

  QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    return kind == QAccessible::Name && own.isEmpty() ? button_.text() : own;
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.hasPopup = true;
    state.pressed = button_.isDown();
    return state;
  }
  QStringList actionNames() const override {
    return button_.isEnabled() ? QStringList(showMenuAction()) + QAccessibleWidget::actionNames() : QStringList();
  }
  void doAction(const QString& name) override {
    if (name != showMenuAction()) return QAccessibleWidget::doAction(name);
    QMetaObject::invokeMethod(&button_, &QPushButton::showMenu, Qt::QueuedConnection);
  }

 private:
  QPushButton& button_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
  auto* button = qobject_cast<QPushButton*>(object);
  if (button && button->property(kMenuProperty).toBool()) return new ButtonWithMenu(button);
  const QVariant key = button ? button->property(kProperty) : QVariant();
  return key.isValid() ? new ButtonWithKey(button, static_cast<Qt::Key>(key.toInt())) : nullptr;
}

void setProperty(QPushButton& button, const char* name, const QVariant& value) {
  static const bool isInstalled = (QAccessible::installFactory(&make), true);
  Q_UNUSED(isInstalled)
  button.setProperty(name, value);
  // It may have been asked for already, and then is another for ever.
  QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&button)));
}

}  // namespace

void setAccessibleKey(QPushButton& button, Qt::Key key) {
  setProperty(button, kProperty, static_cast<int>(key));
}

void setAccessibleMenu(QPushButton& button) {
  setProperty(button, kMenuProperty, true);
}

}  // namespace quillmere
