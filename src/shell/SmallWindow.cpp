#include "shell/SmallWindow.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QLayout>
#include <algorithm>

#include "controls/Symbol.h"

namespace quillmere {

SmallWindow::SmallWindow(const QString& title, int letters)
    : QDialog(nullptr, Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                           Qt::WindowCloseButtonHint),
      letters_(letters) {
  setWindowTitle(title);
}

bool SmallWindow::event(QEvent* event) {
  const bool isHandled = QDialog::event(event);
  // Another font, or something in it that came or went.
  if (event->type() == QEvent::LayoutRequest && isVisible()) fit();
  return isHandled;
}

void SmallWindow::showEvent(QShowEvent* event) {
  fit();
  QDialog::showEvent(event);
}

/// Texts that wrap tell no layout above them how high they become.
void SmallWindow::fit() {
  ensurePolished();
  layout()->activate();
  const int lines = letters_ * QFontMetrics(font()).averageCharWidth() + 2 * kMargin;
  const int width = std::max(lines, layout()->totalMinimumSize().width());
  setFixedSize(width, layout()->totalHeightForWidth(width));
}

ApplicationIconView::ApplicationIconView(int points, QWidget* parent) : QWidget(parent) {
  setFixedSize(points, points);
}

void ApplicationIconView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.drawPixmap(QPointF(), applicationPixmap(width(), devicePixelRatioF()));
}

}  // namespace quillmere
