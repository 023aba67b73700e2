#pragma once

#include <QtWidgets/QScrollArea>

namespace quillmere {

/// A pane as a page of the window: as wide as that, and as high as its texts then need. It scrolls where that is more
/// than there is. Qt's own way of resizing keeps the height of the first moment, when nothing has its style yet.
class PanePage final : public QScrollArea {
 public:
  PanePage(QWidget* pane, QWidget* parent);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void fit();
};

}  // namespace quillmere
