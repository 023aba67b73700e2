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

std::vector<int> AdaptiveActionRow::widths(int available) const {
  std::vector<int> widths;
  int sum = kSpacing * (count() - 1);
  int widest = 0;
  for (const auto& item : items_) {
    widths.push_back(item->sizeHint().width());
    sum += widths.back();
    widest = std::max(widest, widths.back());
  }
  if (items_.empty() || sum > available) return {};
  if (distribution_ == Distribution::leadingAndTrailing) return widths;

  const int forButtons = available - kSpacing * (count() - 1);
  const bool canBeEqual = widest * count() <= forButtons;
  int left = canBeEqual ? forButtons : available - sum;
  for (int i = 0; i < count(); ++i) {
    int& width = widths[static_cast<size_t>(i)];
    const int share = left / (count() - i);
    width = canBeEqual ? share : width + share;
    left -= share;
  }
  return widths;
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
  if (!widths(width).empty()) return sizeHint().height();
  int height = kSpacing * std::max(0, count() - 1);
  for (const auto& item : items_) height += item->sizeHint().height();
  return height;
}

void AdaptiveActionRow::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  const auto direction = parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
  const auto place = [&](QLayoutItem& item, const QRect& leftToRight) {
    item.setGeometry(QStyle::visualRect(direction, rect, leftToRight));
  };
  const std::vector<int> widths = this->widths(rect.width());
  if (widths.empty()) {
    int y = rect.y();
    for (const auto& item : items_) {
      place(*item, QRect(rect.x(), y, rect.width(), item->sizeHint().height()));
      y += item->sizeHint().height() + kSpacing;
    }
    return;
  }
  int x = rect.x();
  for (size_t i = 0; i < items_.size(); ++i) {
    const bool isTrailing = distribution_ == Distribution::leadingAndTrailing && i > 0 && i + 1 == items_.size();
    if (isTrailing) x = rect.x() + rect.width() - widths[i];
    place(*items_[i], QRect(x, rect.y(), widths[i], rect.height()));
    x += widths[i] + kSpacing;
  }
}

}  // namespace quillmere
