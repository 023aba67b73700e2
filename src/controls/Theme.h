#pragma once

#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QPalette>

namespace quillmere {

/// The colours of the program's own surfaces, from the desktop's palette. Text keeps a contrast of at least 4.5:1.
struct Theme {
  explicit Theme(const QPalette& palette);

  bool isDark = false;
  QColor card;  ///< the popup's and the panels' ground
  QColor text;
  QColor secondaryText;
  QColor hairline;
  QColor field;  ///< an input's ground
  QColor fieldBorder;
  QColor fill;  ///< a quiet button or a well
  QColor fillHover;
  QColor fillPressed;
  QColor accent;
  QColor accentHover;
  QColor accentPressed;
  QColor onAccent;
  QColor danger;  ///< text of what throws away
  QColor warning;
};

/// The font at another size and weight.
QFont scaled(QFont font, qreal factor, QFont::Weight weight = QFont::Normal);

}  // namespace quillmere
