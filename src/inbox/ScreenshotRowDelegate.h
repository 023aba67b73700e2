#pragma once

#include <QtWidgets/QStyledItemDelegate>

#include "records/UUID.h"

namespace quillmere {

/// Draws a row: the picture, the name, and the status with the capture time.
class ScreenshotRowDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  /// Before a row's ground, in points, from where reading begins.
  static constexpr int kMargin = 12;

  /// Where the name of a row stands, and its font. A field in its place sits exactly there.
  static QRect nameRect(const QStyleOptionViewItem& option);
  static QFont nameFont(const QStyleOptionViewItem& option);
  /// The record whose name is in a field and not drawn.
  void setRenamed(std::optional<UUID> id) { renamed_ = id; }

 private:
  std::optional<UUID> renamed_;
};

}  // namespace quillmere
