#include "settings/PanePage.h"

#include <QtCore/QEvent>
#include <QtWidgets/QLayout>
#include <QtWidgets/QScrollBar>
#include <algorithm>

namespace quillmere {

PanePage::PanePage(QWidget* pane, QWidget* parent) : QScrollArea(parent) {
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  setWidget(pane);
  // The ground is the window's.
  viewport()->setAutoFillBackground(false);
  pane->setAutoFillBackground(false);
}

bool PanePage::eventFilter(QObject* watched, QEvent* event) {
  const bool isTaken = QScrollArea::eventFilter(watched, event);
  if (watched == widget() && event->type() == QEvent::LayoutRequest) fit();
  return isTaken;
}

void PanePage::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  fit();
}

void PanePage::showEvent(QShowEvent* event) {
  QScrollArea::showEvent(event);
  fit();
}

void PanePage::fit() {
  const QSize room = maximumViewportSize();
  const QLayout& layout = *widget()->layout();
  int width = room.width();
  if (layout.totalHeightForWidth(width) > room.height()) width -= verticalScrollBar()->sizeHint().width();
  widget()->resize(width, std::max(room.height(), layout.totalHeightForWidth(width)));
}

}  // namespace quillmere
