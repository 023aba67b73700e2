#pragma once

#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QPalette>

namespace quillmere {

/// What a text or symbol is written in.
enum class Ink { text, secondary, warning, danger };

/// The colours of the program's own surfaces, from the desktop's palette: of its own are light or dark (Window), the
/// accent (Highlight) and the contrast. Texts keep a contrast of at least 4.5:1 on every ground here; the focus ring,
/// the edge of fields and the text of what cannot be used one of 3:1.
///
/// A palette asks for higher contrast by having its Window and its ButtonText as far apart as black and white, as the
/// desktops' own high-contrast themes do: so the choice reaches every widget with the colours themselves. ButtonText,
/// since WindowText may be a label's own.
struct Theme {
  explicit Theme(const QPalette& palette);

  bool isDark = false;
  bool isHighContrast = false;
  QColor card;  ///< the ground of the card; opaque
  QColor text;
  QColor secondaryText;
  QColor disabledText;
  QColor hairline;
  QColor field;  ///< an input's ground
  QColor fieldBorder;
  QColor fill;  ///< a quiet button or a well
  QColor fillHover;
  QColor fillPressed;
  QColor accent;  ///< the ground of what is chosen or comes first, under texts in onAccent
  QColor accentHover;
  QColor accentPressed;
  QColor onAccent;
  QColor focusRing;  ///< the accent, as far from the grounds as a ring must be
  QColor danger;     ///< text of what throws away
  QColor warning;
  QColor warningGround;

  QColor color(Ink ink) const;
};

/// The font at another size and weight.
QFont scaled(QFont font, qreal factor, QFont::Weight weight = QFont::Normal);
/// For names of files, which are shown letter by letter: some fonts make a multiplication sign of an x between digits.
QFont fileNameFont(QFont font);

}  // namespace quillmere
