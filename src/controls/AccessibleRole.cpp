#include "controls/AccessibleRole.h"

#include <QtCore/QVariant>
#include <QtWidgets/QAccessibleWidget>
#include <QtWidgets/QLabel>

namespace quillmere {
namespace {

constexpr const char* kProperty = "accessibleRole";

class WidgetOfRole final : public QAccessibleWidget {
 public:
  WidgetOfRole(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}
  QString text(QAccessible::Text kind) const override {
    if (isHidden()) return {};
    const QString own = QAccessibleWidget::text(kind);
    const auto* label = qobject_cast<QLabel*>(widget());
    return kind == QAccessible::Name && own.isEmpty() && label ? label->text() : own;
  }
  /// What is told to be invisible is passed over.
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    if (isHidden()) state.invisible = true;
    return state;
  }

 private:
  bool isHidden() const { return role() == QAccessible::NoRole; }
};

QAccessibleInterface* make(const QString&, QObject* object) {
  auto* widget = qobject_cast<QWidget*>(object);
  const QVariant role = widget ? widget->property(kProperty) : QVariant();
  return role.isValid() ? new WidgetOfRole(widget, static_cast<QAccessible::Role>(role.toInt())) : nullptr;
}

}  // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
  static const bool isInstalled = (QAccessible::installFactory(&make), true);
  Q_UNUSED(isInstalled)
  widget.setProperty(kProperty, static_cast<int>(role));
  // It may have been asked for already, for a label with its first text, and then is another for ever.
  QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&widget)));
}

}  // namespace quillmere
