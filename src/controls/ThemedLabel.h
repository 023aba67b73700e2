#pragma once

#include "controls/PlainText.h"
#include "controls/Theme.h"

namespace quillmere {

/// A label in one of the theme's colours and of a size that goes by the desktop's font, whichever they are now.
class ThemedLabel : public PlainLabel {
 public:
  using Ink = quillmere::Ink;
  ThemedLabel(Ink ink, QWidget* parent, const QString& text = {});
  /// Of so many times the font's size.
  void setTextSize(qreal factor, QFont::Weight weight = QFont::Normal);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void followTheme();
  void followFont();
  Ink ink_;
  qreal textSize_ = 1;
  QFont::Weight weight_ = QFont::Normal;
};

}  // namespace quillmere
