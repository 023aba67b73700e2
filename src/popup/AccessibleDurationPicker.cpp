#include "popup/AccessibleDurationPicker.h"

#include <QtGui/QAccessible>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QAccessibleWidget>

#include "popup/DurationPicker.h"

namespace quillmere {
namespace {

/// Its text is the chosen time, all of it selected, since a choice replaces it as a whole.
class Interface final : public QAccessibleWidget, public QAccessibleTextInterface {
 public:
  explicit Interface(DurationPicker* picker) : QAccessibleWidget(picker, QAccessible::ComboBox), picker_(*picker) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Value ? value() : QAccessibleWidget::text(kind);
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = true;
    state.hasPopup = true;
    state.expanded = isOpen();
    state.collapsed = !isOpen();
    return state;
  }

  int childCount() const override { return isOpen() ? 1 : 0; }
  QAccessibleInterface* child(int index) const override { return isOpen() && index == 0 ? list() : nullptr; }
  int indexOfChild(const QAccessibleInterface* child) const override { return isOpen() && child == list() ? 0 : -1; }
  QAccessibleInterface* focusChild() const override {
    return picker_.hasFocus() ? const_cast<Interface*>(this) : nullptr;
  }

  QStringList actionNames() const override { return QStringList(showMenuAction()) + QAccessibleWidget::actionNames(); }
  void doAction(const QString& name) override {
    if (name != showMenuAction()) return QAccessibleWidget::doAction(name);
    if (isOpen()) {
      picker_.hidePopup();
    } else {
      picker_.showPopup();
    }
  }

  void selection(int index, int* start, int* end) const override {
    *start = 0;
    *end = index == 0 ? characterCount() : 0;
  }
  int selectionCount() const override { return 1; }
  void addSelection(int, int) override {}
  void removeSelection(int) override {}
  void setSelection(int, int, int) override {}
  int cursorPosition() const override { return 0; }
  void setCursorPosition(int) override {}
  QString text(int start, int end) const override { return value().mid(start, end < 0 ? -1 : end - start); }
  int characterCount() const override { return static_cast<int>(value().size()); }
  QRect characterRect(int) const override { return rect(); }
  int offsetAtPoint(const QPoint&) const override { return 0; }
  void scrollToSubstring(int, int) override {}
  QString attributes(int, int* start, int* end) const override {
    *start = 0;
    *end = characterCount();
    return {};
  }

 private:
  QString value() const { return picker_.currentText(); }
  bool isOpen() const { return picker_.view()->isVisible(); }
  QAccessibleInterface* list() const { return QAccessible::queryAccessibleInterface(picker_.view()); }

  DurationPicker& picker_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
  auto* picker = dynamic_cast<DurationPicker*>(object);
  return picker ? new Interface(picker) : nullptr;
}

}  // namespace

void makeAccessible(DurationPicker& picker) {
  static const bool isInstalled = (QAccessible::installFactory(&make), true);
  Q_UNUSED(isInstalled)
  // Qt tells that the value changed, which readers do not look for in a menu. Of a text they say what is new in it.
  QObject::connect(&picker, &QComboBox::currentTextChanged, &picker, [&picker](const QString& text) {
    QAccessibleTextInsertEvent changed(&picker, 0, text);
    if (picker.hasFocus()) QAccessible::updateAccessibility(&changed);
  });
}

}  // namespace quillmere
