#include "editor/CropEditorStatus.h"

#include <QtGui/QResizeEvent>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>

#include "controls/ThemedLabel.h"

namespace quillmere {
namespace {

constexpr int kSpacing = 4;

void set(ThemedLabel& label, const QString& text) {
  // A failure may name a file.
  label.setText(breakable(text));
  label.setAccessibleName(text);
  label.setVisible(!text.isEmpty());
}

}  // namespace

CropEditorStatus::CropEditorStatus(QWidget* parent)
    : QWidget(parent),
      error_(new ThemedLabel(Ink::warning, this)),
      message_(new ThemedLabel(Ink::text, this)),
      notes_(new ThemedLabel(Ink::secondary, this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  for (ThemedLabel* label : {error_, message_, notes_}) {
    label->setWordWrap(true);
    column->addWidget(label);
  }
  // Room that is left over stays below.
  column->setAlignment(Qt::AlignTop);
  show({});
}

void CropEditorStatus::show(const Content& content) {
  set(*error_, content.error);
  set(*message_, content.message);
  set(*notes_, content.notes.join(QLatin1Char('\n')));
  keepRoom();
}

void CropEditorStatus::keepRoom() {
  room_ = std::max({room_, fontMetrics().lineSpacing(), layout()->totalHeightForWidth(width())});
  setFixedHeight(room_);
}

void CropEditorStatus::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (event->size().width() == event->oldSize().width()) return;
  room_ = 0;
  keepRoom();
}

}  // namespace quillmere
