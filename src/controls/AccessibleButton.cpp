#include "controls/AccessibleButton.h"

#include <QtCore/QVariant>
#include <QtGui/QAccessible>
#include <QtGui/QKeySequence>
#include <QtWidgets/QAccessibleWidget>

namespace quillmere {
namespace {

constexpr const char* kProperty = "accessibleKey";

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

QAccessibleInterface* make(const QString&, QObject* object) {
  auto* button = qobject_cast<QPushButton*>(object);
  const QVariant key = button ? button->property(kProperty) : QVariant();
  return key.isValid() ? new ButtonWithKey(button, static_cast<Qt::Key>(key.toInt())) : nullptr;
}

}  // namespace

void setAccessibleKey(QPushButton& button, Qt::Key key) {
  static const bool isInstalled = (QAccessible::installFactory(&make), true);
  Q_UNUSED(isInstalled)
  button.setProperty(kProperty, static_cast<int>(key));
  // It may have been asked for already, and then is another for ever.
  QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&button)));
}

}  // namespace quillmere
