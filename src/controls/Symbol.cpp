#include "controls/Symbol.h"

#include <QtCore/QFile>
#include <QtGui/QPainter>
#include <QtGui/QPixmapCache>
#include <QtSvg/QSvgRenderer>

#include "controls/Contrast.h"

static void loadSymbolResource() {
  Q_INIT_RESOURCE(symbols);
  Q_INIT_RESOURCE(application_icon);
}

namespace quillmere {

QPixmap symbolPixmap(const QString& name, int points, const QColor& color, qreal devicePixelRatio) {
  static const bool isLoaded = (loadSymbolResource(), true);
  Q_UNUSED(isLoaded)
  const QString key =
      QStringLiteral("symbol|%1|%2|%3|%4").arg(name).arg(points).arg(color.rgba()).arg(devicePixelRatio);
  QPixmap pixmap;
  if (QPixmapCache::find(key, &pixmap)) return pixmap;

  QFile file(QStringLiteral(":/symbols/%1.svg").arg(name));
  if (!file.open(QIODevice::ReadOnly)) return {};
  // Opaque in the drawing, faded as a whole: overlapping strokes must not show.
  const QColor opaque(color.red(), color.green(), color.blue());
  // The drawings have white marks on filled grounds; on a light ground they are black.
  const bool isLight = contrastRatio(opaque, Qt::white) < contrastRatio(opaque, Qt::black);
  QSvgRenderer renderer(
      file.readAll().replace("#fff", isLight ? "#000" : "#fff").replace("currentColor", opaque.name().toLatin1()));
  pixmap = QPixmap(QSize(points, points) * devicePixelRatio);
  pixmap.setDevicePixelRatio(devicePixelRatio);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  renderer.render(&painter, QRectF(0, 0, points, points));
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  painter.fillRect(QRect(0, 0, points, points), color);
  painter.end();
  QPixmapCache::insert(key, pixmap);
  return pixmap;
}

QPixmap applicationPixmap(int points, qreal devicePixelRatio) {
  loadSymbolResource();
  QPixmap pixmap(QSize(points, points) * devicePixelRatio);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  QSvgRenderer(QStringLiteral(":/icons/com.quillmere.app.svg")).render(&painter);
  painter.end();
  pixmap.setDevicePixelRatio(devicePixelRatio);
  return pixmap;
}

QIcon applicationIcon() {
  QIcon icon;
  for (const int side : {16, 24, 32, 48, 64, 128}) icon.addPixmap(applicationPixmap(side, 1));
  return icon;
}

}  // namespace quillmere
