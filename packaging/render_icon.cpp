/// render-icon SVG SIZE PNG: the drawing as a square picture of that many pixels.

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
  constexpr int kArguments = 4;
  if (argc != kArguments) return EXIT_FAILURE;
  QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
  const int size = QByteArray(argv[2]).toInt();
  QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  drawing.render(&painter);
  painter.end();
  if (drawing.isValid() && picture.save(QString::fromLocal8Bit(argv[3]), "PNG")) return EXIT_SUCCESS;
  std::fprintf(stderr, "render-icon: %s cannot be drawn into %s\n", argv[1], argv[3]);
  return EXIT_FAILURE;
}
