#include "popup/AdaptiveActionRow.h"

#include <QtWidgets/QStyle>
#include <QtWidgets/QWidget>
#include <algorithm>

namespace quillmere {

AdaptiveActionRow::~AdaptiveActionRow() = default;

void AdaptiveActionRow::addItem(QLayoutItem* item) {
  items_.emplace_back(item);
}

QLayoutItem* AdaptiveActionRow::itemAt(int index) const {
  return index >= 0 && index < count() ? items_[static_cast<size_t>(index)].get() : nullptr;
}

QLayoutItem* AdaptiveActionRow::takeAt(int index) {
  if (index < 0 || index >= count()) return nullptr;
  QLayoutItem* item = items_[static_cast<size_t>(index)].release();
  items_.erase(items_.begin() + index);
  return item;
}

std::vector<int> AdaptiveActionRow::widths(size_t first, size_t count, int available) const {
  std::vector<int> widths;
  const int number = static_cast<int>(count);
  int sum = kSpacing * (number - 1);
  int widest = 0;
  for (size_t i = first; i < first + count; ++i) {
    widths.push_back(items_[i]->sizeHint().width());
    sum += widths.back();
    widest = std::max(widest, widths.back());
  }
  if (count == 0 || sum > available) return {};
  if (distribution_ == Distribution::leadingAndTrailing) return widths;

  const int forButtons = available - kSpacing * (number - 1);
  const bool canBeEqual = widest * number <= forButtons;
  int left = canBeEqual ? forButtons : available - sum;
  for (int i = 0; i < number; ++i) {
    int& width = widths[static_cast<size_t>(i)];
    const int share = left / (number - i);
    width = canBeEqual ? share : width + share;
    left -= share;
  }
  return widths;
}

std::vector<std::vector<int>> AdaptiveActionRow::lines(int available) const {
  if (auto all = widths(0, items_.size(), available); !all.empty()) return {all};
  std::vector<std::vector<int>> columns;
  if (items_.size() % 2 == 1) columns.push_back({available});
  for (size_t i = items_.size() % 2; i < items_.size(); i += 2) {
    auto pair = widths(i, 2, available);
    if (pair.empty()) return std::vector(items_.size(), std::vector{available});
    columns.push_back(std::move(pair));
  }
  return columns;
}

int AdaptiveActionRow::heightOfLine(size_t first, size_t count) const {
  int height = 0;
  for (size_t i = first; i < first + count; ++i) height = std::max(height, items_[i]->sizeHint().height());
  return height;
}

QSize AdaptiveActionRow::sizeHint() const {
  QSize size(kSpacing * std::max(0, count() - 1), 0);
  for (const auto& item : items_) {
    size.rwidth() += item->sizeHint().width();
    size.setHeight(std::max(size.height(), item->sizeHint().height()));
  }
  return size;
}

QSize AdaptiveActionRow::minimumSize() const {
  QSize size;
  for (const auto& item : items_) size = size.expandedTo(item->minimumSize());
  return size;
}

int AdaptiveActionRow::heightForWidth(int width) const {
  int height = 0;
  size_t first = 0;
  for (const auto& line : lines(width)) {
    height += heightOfLine(first, line.size()) + (first > 0 ? kSpacing : 0);
    first += line.size();
  }
  return height;
}

void AdaptiveActionRow::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  const auto direction = parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
  size_t next = 0;
  int y = rect.y();
  for (const auto& line : lines(rect.width())) {
    const int height = heightOfLine(next, line.size());
    int x = rect.x();
    for (size_t i = 0; i < line.size(); ++i, ++next) {
      const bool isTrailing = distribution_ == Distribution::leadingAndTrailing && i > 0 && i + 1 == line.size();
      if (isTrailing) x = rect.x() + rect.width() - line[i];
      items_[next]->setGeometry(QStyle::visualRect(direction, rect, QRect(x, y, line[i], height)));
      x += line[i] + kSpacing;
    }
    y += height + kSpacing;
  }
}

}  // namespace quillmere
