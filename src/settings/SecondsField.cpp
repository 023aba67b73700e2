#include "settings/SecondsField.h"

#include <QtGui/QWheelEvent>
#include <algorithm>

namespace quillmere {
namespace {

/// More digits are a slip of the hand.
constexpr qsizetype kMostDigits = 6;

}  // namespace

SecondsField::SecondsField(int shortest, int longest, const QString& name, QWidget* parent) : QSpinBox(parent) {
  setRange(shortest, longest);
  setAccessibleName(name);
  // Each digit on the way to a number is no setting.
  setKeyboardTracking(false);
  setFocusPolicy(Qt::StrongFocus);
}

QValidator::State SecondsField::validate(QString& text, int& position) const {
  const QValidator::State state = QSpinBox::validate(text, position);
  if (state != QValidator::Invalid || text.size() > kMostDigits) return state;
  const bool isNumber = std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.isDigit(); });
  return isNumber ? QValidator::Intermediate : QValidator::Invalid;
}

void SecondsField::fixup(QString& text) const {
  bool isNumber = false;
  const int number = locale().toInt(text, &isNumber);
  text = textFromValue(isNumber ? std::clamp(number, minimum(), maximum()) : value());
}

void SecondsField::wheelEvent(QWheelEvent* event) {
  hasFocus() ? QSpinBox::wheelEvent(event) : event->ignore();
}

}  // namespace quillmere
