#include "inbox/ScreenshotDrag.h"

#include <QtGui/QDrag>
#include <QtGui/QPainter>
#include <QtWidgets/QWidget>

#include "controls/PictureMimeData.h"
#include "controls/Theme.h"
#include "model/Protection.h"

namespace quillmere {
namespace {

/// The picture with the number of files at its lower trailing corner.
QPixmap withCount(const QPixmap& picture, size_t count, const QWidget& source) {
  constexpr int kSide = 26;
  QPixmap result = picture;
  const QSizeF size = picture.deviceIndependentSize();
  const Theme theme(source.palette());
  QPainter painter(&result);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(scaled(source.font(), 0.92, QFont::DemiBold));
  const QString text = QString::number(count);
  const qreal width = std::max<qreal>(kSide, painter.fontMetrics().horizontalAdvance(text) + 14);
  const QRectF badge(size.width() - width - 4, size.height() - kSide - 4, width, kSide);
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme.accent);
  painter.drawRoundedRect(badge, kSide / 2.0, kSide / 2.0);
  painter.setPen(theme.onAccent);
  painter.drawText(badge, Qt::AlignCenter, text);
  return result;
}

}  // namespace

void dragScreenshots(QWidget& source, AppModel& model, const std::vector<UUID>& ids, const QPixmap& picture) {
  std::vector<UUID> dragged;
  std::vector<FileURL> files;
  for (const UUID& id : ids) {
    const ScreenshotItem* item = model.items().find(id);
    if (!item || model.unavailableItemIDs->contains(id) || model.evictedItemIDs->contains(id)) continue;
    dragged.push_back(id);
    files.push_back(item->url);
  }
  if (files.empty()) return;
  const Protection protection(model, dragged);
  auto* drag = new QDrag(&source);
  const size_t count = files.size();
  drag->setMimeData(count == 1 ? new PictureMimeData(files.front(), imageContentType(files.front()), std::nullopt)
                               : new PictureMimeData(std::move(files)));
  if (!picture.isNull()) {
    const QPixmap shown = count == 1 ? picture : withCount(picture, count, source);
    drag->setPixmap(shown);
    drag->setHotSpot(QRectF(QPointF(), shown.deviceIndependentSize()).center().toPoint());
  }
  drag->exec(Qt::CopyAction);
}

}  // namespace quillmere
