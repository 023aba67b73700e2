#pragma once

#include <QtWidgets/QStyledItemDelegate>

namespace quillmere {

/// Draws a row: the picture, the name, and the status with the capture time.
class ScreenshotRowDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace quillmere
