#include "shell/QuestionPlace.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

namespace quillmere {

QWidget* placeForQuestionOver(QWidget* window) {
  while (window && window->windowType() == Qt::Dialog && !window->isModal()) {
    QWidget* below = window->parentWidget();
    window = below ? below->window() : nullptr;
  }
  return window;
}

QWidget* placeForQuestionOverActive() {
  return placeForQuestionOver(QApplication::activeWindow());
}

}  // namespace quillmere
