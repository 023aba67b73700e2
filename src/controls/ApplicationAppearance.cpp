#include "controls/ApplicationAppearance.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QToolTip>

#include "controls/AppearanceStyle.h"

namespace quillmere {
namespace {

/// What the desktop's theme for Qt brought; without any, Qt takes the style's own colours.
std::optional<QPalette> themedPalette() {
  const QPalette palette = QApplication::palette();
  const QPalette plain = QApplication::style()->standardPalette();
  for (const auto role : {QPalette::Window, QPalette::WindowText, QPalette::Highlight}) {
    if (palette.color(role) != plain.color(role)) return palette;
  }
  return std::nullopt;
}

/// Some desktops' themes bring colours for single kinds of controls, which would stay behind at every change.
void setPaletteOfThemedClasses(const QPalette& palette) {
  for (const char* name : {"QMenu", "QMenuBar", "QToolButton", "QAbstractButton", "QCheckBox", "QRadioButton",
                           "QHeaderView", "QAbstractItemView", "QTabBar", "QLabel", "QGroupBox", "QLineEdit"}) {
    if (QApplication::palette(name) != palette) QApplication::setPalette(palette, name);
  }
  if (QToolTip::palette() != palette) QToolTip::setPalette(palette);
}

}  // namespace

ApplicationAppearance::ApplicationAppearance()
    : style_(new AppearanceStyle), themed_(themedPalette()), font_(QApplication::font()) {
  QApplication::setStyle(style_);
  show({});
}

void ApplicationAppearance::show(const Appearance& appearance) {
  // Setting even the same makes every widget look again.
  if (appearance == shown_) return;
  shown_ = appearance;
  style_->setMotionReduced(appearance.isMotionReduced);
  if (const QFont font = appearance.font.value_or(font_); font != QApplication::font()) QApplication::setFont(font);
  const QPalette palette = paletteFor(appearance, themed_);
  if (palette != QApplication::palette()) QApplication::setPalette(palette);
  setPaletteOfThemedClasses(palette);
}

void ApplicationAppearance::setCompositing(std::function<bool()> isCompositing) {
  style_->setCompositing(std::move(isCompositing));
}

}  // namespace quillmere
