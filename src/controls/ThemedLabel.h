#pragma once

#include <QtWidgets/QLabel>

#include "controls/Theme.h"

namespace quillmere {

/// A label in one of the theme's colours, whichever the desktop has now.
class ThemedLabel final : public QLabel {
 public:
  using Ink = quillmere::Ink;
  ThemedLabel(Ink ink, QWidget* parent, const QString& text = {});

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void followTheme();
  Ink ink_;
};

}  // namespace quillmere
