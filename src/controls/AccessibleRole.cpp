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
    const QString own = QAccessibleWidget::text(kind);
    const auto* label = qobject_cast<QLabel*>(widget());
    return kind == QAccessible::Name && own.isEmpty() && label ? label->text() : own;
  }
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
}

}  // namespace quillmere
