#include "controls/WrappingRow.h"

#include <QtWidgets/QStyle>
#include <QtWidgets/QWidget>
#include <algorithm>

namespace quillmere {

WrappingRow::WrappingRow(int spacing, Qt::Alignment alignment) : alignment_(alignment), lineSpacing_(spacing) {
  setContentsMargins(0, 0, 0, 0);
  setSpacing(spacing);
}

WrappingRow::~WrappingRow() = default;

void WrappingRow::addItem(QLayoutItem* item) {
  items_.emplace_back(item);
}

QLayoutItem* WrappingRow::itemAt(int index) const {
  return index >= 0 && index < count() ? items_[static_cast<size_t>(index)].get() : nullptr;
}

QLayoutItem* WrappingRow::takeAt(int index) {
  if (index < 0 || index >= count()) return nullptr;
  QLayoutItem* item = items_[static_cast<size_t>(index)].release();
  items_.erase(items_.begin() + index);
  return item;
}

/// As it likes to be, or as high as it must be where there is too little room for that.
QSize WrappingRow::sizeOf(QLayoutItem& item, int available) {
  const QSize size = item.sizeHint();
  if (size.width() <= available) return size;
  return {available, item.hasHeightForWidth() ? item.heightForWidth(available) : size.height()};
}

std::vector<WrappingRow::Line> WrappingRow::lines(int available) const {
  std::vector<Line> lines;
  for (const auto& item : items_) {
    if (item->isEmpty()) continue;
    const QSize size = sizeOf(*item, available);
    if (lines.empty() || lines.back().width + spacing() + size.width() > available) lines.emplace_back();
    Line& line = lines.back();
    line.width += size.width() + (line.items.empty() ? 0 : spacing());
    line.height = std::max(line.height, size.height());
    line.items.push_back(item.get());
  }
  return lines;
}

QSize WrappingRow::sizeHint() const {
  const auto all = lines(QWIDGETSIZE_MAX);
  return all.empty() ? QSize(0, 0) : QSize(all[0].width, all[0].height);
}

QSize WrappingRow::minimumSize() const {
  QSize size(0, 0);
  for (const auto& item : items_) {
    if (!item->isEmpty()) size = size.expandedTo(item->minimumSize());
  }
  return size;
}

int WrappingRow::heightForWidth(int width) const {
  int height = 0;
  for (const Line& line : lines(width)) height += line.height + (height > 0 ? lineSpacing_ : 0);
  return height;
}

int WrappingRow::startOf(const Line& line, int available) const {
  if (alignment_.testFlag(Qt::AlignHCenter)) return (available - line.width) / 2;
  return alignment_.testFlag(Qt::AlignTrailing) ? available - line.width : 0;
}

int WrappingRow::placeOf(const QLayoutItem& item, int x, int width, int available) const {
  return alignment_.testFlag(Qt::AlignJustify) && &item == items_.back().get() ? available - width : x;
}

void WrappingRow::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  const auto direction = parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
  int y = rect.y();
  for (const Line& line : lines(rect.width())) {
    int x = startOf(line, rect.width());
    for (QLayoutItem* item : line.items) {
      const QSize size = sizeOf(*item, rect.width());
      x = placeOf(*item, x, size.width(), rect.width());
      const QRect place(QPoint(rect.x() + x, y + (line.height - size.height()) / 2), size);
      item->setGeometry(QStyle::visualRect(direction, rect, place));
      x += size.width() + spacing();
    }
    y += line.height + lineSpacing_;
  }
}

}  // namespace quillmere
