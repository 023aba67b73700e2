#include "editor/CropCanvasAccessible.h"

#include <QtWidgets/QAccessibleWidget>

#include "editor/CropCanvas.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kStep = 10;
constexpr const char* kUp = "Move Selection Up";
constexpr const char* kDown = "Move Selection Down";

/// Its text is the value too: on some buses values are numbers, and this one is not.
class Interface final : public QAccessibleWidget, public QAccessibleTextInterface {
 public:
  explicit Interface(CropCanvas* canvas) : QAccessibleWidget(canvas, QAccessible::Graphic), canvas_(*canvas) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Value ? value() : QAccessibleWidget::text(kind);
  }

  QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (canMove()) names = QStringList{QLatin1String(kUp), QLatin1String(kDown)} + names;
    return names;
  }
  QString localizedActionName(const QString& name) const override {
    if (name == QLatin1String(kUp)) return localized("Move Selection Up");
    if (name == QLatin1String(kDown)) return localized("Move Selection Down");
    return QAccessibleWidget::localizedActionName(name);
  }
  void doAction(const QString& name) override {
    if (name == QLatin1String(kUp)) return canvas_.moveSelection(0, -kStep);
    if (name == QLatin1String(kDown)) return canvas_.moveSelection(0, kStep);
    QAccessibleWidget::doAction(name);
  }

  void selection(int, int* start, int* end) const override { *start = *end = 0; }
  int selectionCount() const override { return 0; }
  void addSelection(int, int) override {}
  void removeSelection(int) override {}
  void setSelection(int, int, int) override {}
  int cursorPosition() const override { return 0; }
  void setCursorPosition(int) override {}
  QString text(int start, int end) const override { return value().mid(start, end < 0 ? -1 : end - start); }
  int characterCount() const override { return static_cast<int>(value().size()); }
  QRect characterRect(int) const override { return rect(); }
  int offsetAtPoint(const QPoint&) const override { return -1; }
  void scrollToSubstring(int, int) override {}
  QString attributes(int, int* start, int* end) const override {
    *start = 0;
    *end = characterCount();
    return {};
  }

 private:
  QString value() const { return CropCanvas::valueInWords(canvas_.selection()); }
  bool canMove() const { return !canvas_.isLocked() && !canvas_.selection().isEmpty(); }

  CropCanvas& canvas_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
  auto* canvas = dynamic_cast<CropCanvas*>(object);
  return canvas ? new Interface(canvas) : nullptr;
}

}  // namespace

void makeAccessible(CropCanvas& canvas) {
  static const bool isInstalled = (QAccessible::installFactory(&make), true);
  Q_UNUSED(isInstalled)
  // It may have been asked for already, as a canvas of the base.
  QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&canvas)));
}

void tellValue(CropCanvas& canvas) {
  if (!QAccessible::isActive()) return;
  QAccessibleValueChangeEvent event(&canvas, CropCanvas::valueInWords(canvas.selection()));
  QAccessible::updateAccessibility(&event);
}

}  // namespace quillmere
