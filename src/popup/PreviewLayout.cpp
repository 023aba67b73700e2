#include "popup/PreviewLayout.h"

namespace quillmere {
namespace {

constexpr int kInset = 8;

/// Never enlarged.
QSizeF fitted(const QSizeF& picture, const QSizeF& area) {
  const bool isSmaller = picture.width() <= area.width() && picture.height() <= area.height();
  return isSmaller ? picture : picture.scaled(area, Qt::KeepAspectRatio);
}

QRectF centred(const QSizeF& picture, const QRectF& area) {
  QRectF place({}, fitted(picture, area.size()));
  place.moveCenter(area.center());
  return place;
}

}  // namespace

PreviewLayout PreviewLayout::of(QSize well, QSize actions, const std::optional<QSizeF>& screenshot,
                                const std::optional<QSizeF>& window) {
  const QRect all(QPoint(), well);
  const QRectF whole = screenshot ? centred(*screenshot, all) : all;
  PreviewLayout layout{all, {{}, actions}};
  const auto placeActions = [&](double right) {
    layout.actions.moveTopRight({static_cast<int>(right) - kInset - 1, kInset});
  };
  placeActions(well.width());
  const auto beside = [&] { return all.adjusted(0, 0, layout.actions.left() - kInset - well.width(), 0); };
  const auto below = [&] { return all.adjusted(0, layout.actions.bottom() + 1 + kInset, 0, 0); };
  const auto widthIn = [](const QSizeF& size, const QRect& area) { return fitted(size, area.size()).width(); };
  const auto meetsActions = [&](const QRectF& place) {
    return place.intersects(QRectF(layout.actions).adjusted(-kInset, 0, 0, kInset));
  };

  if (meetsActions(whole)) {
    const QSizeF size = screenshot.value_or(QSizeF(well));
    if (widthIn(size, below()) >= whole.width()) {
      layout.picture = below();
    } else if (widthIn(size, beside()) >= whole.width()) {
      layout.picture = beside();
    } else {
      placeActions(whole.right());
    }
  }
  if (window) {
    const bool isClear = !meetsActions(centred(*window, all));
    const bool isLargerBeside = widthIn(*window, beside()) > widthIn(*window, below());
    layout.picture = isClear ? all : isLargerBeside ? beside() : below();
  }
  return layout;
}

}  // namespace quillmere
