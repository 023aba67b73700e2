#include "editor/CropEditorHeading.h"

#include <QtCore/QEvent>
#include <QtWidgets/QHBoxLayout>

#include "controls/AccessibleRole.h"
#include "controls/ActionButton.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kGap = 10;
constexpr int kButtonGap = 4;
/// Between what takes back and what only looks closer.
constexpr int kGroupGap = 12;

}  // namespace

CropEditorHeading::CropEditorHeading(const QString& title, const QString& fileName, QWidget* parent)
    : QWidget(parent), fileName_(fileName), name_(new ThemedLabel(Ink::secondary, this)) {
  auto* heading = new ThemedLabel(Ink::text, this, title);
  heading->setTextSize(1.12, QFont::DemiBold);
  setAccessibleRole(*heading, QAccessible::Heading);
  heading->lower();
  name_->setFont(fileNameFont(font()));
  // A name stands beside the heading, in whichever script it is.
  name_->setAlignment((isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute | Qt::AlignVCenter);
  name_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  name_->setAccessibleName(fileName);
  undo_ = makeButton(QStringLiteral("arrow.uturn.backward"), localized("Undo"), &CropEditorHeading::onUndo);
  redo_ = makeButton(QStringLiteral("arrow.uturn.forward"), localized("Redo"), &CropEditorHeading::onRedo);
  fit_ = makeButton(QStringLiteral("picture.fit"), localized("Fit to Window"), &CropEditorHeading::onFit);
  realSize_ = makeButton(QStringLiteral("picture.real.size"), localized("Real Size"), &CropEditorHeading::onRealSize);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kButtonGap);
  row->addWidget(heading);
  row->addSpacing(kGap - kButtonGap);
  row->addWidget(name_, 1);
  row->addSpacing(kGap - kButtonGap);
  row->addWidget(undo_);
  row->addWidget(redo_);
  row->addSpacing(kGroupGap - kButtonGap);
  row->addWidget(fit_);
  row->addWidget(realSize_);
}

ActionButton* CropEditorHeading::makeButton(const QString& symbol, const QString& name,
                                            std::function<void()> CropEditorHeading::*action) {
  auto* button = new ActionButton(ActionButton::Role::icon, symbol, {}, this);
  button->setAccessibleName(name);
  setPlainToolTip(*button, name);
  button->setEnabled(false);
  connect(button, &QPushButton::clicked, this, [this, action] {
    if (this->*action) (this->*action)();
  });
  return button;
}

void CropEditorHeading::setCanUndo(bool canUndo, bool canRedo) {
  undo_->setEnabled(canUndo);
  redo_->setEnabled(canRedo);
}

void CropEditorHeading::setCanZoom(bool canZoom) {
  fit_->setEnabled(canZoom);
  realSize_->setEnabled(canZoom);
}

/// Names of screenshots differ at their ends.
void CropEditorHeading::elideName() {
  const QString shown = name_->fontMetrics().elidedText(fileName_, Qt::ElideMiddle, name_->width());
  if (shown == name_->text()) return;
  name_->setText(shown);
  setPlainToolTip(*name_, shown == fileName_ ? QString() : fileName_);
}

void CropEditorHeading::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  layout()->activate();
  elideName();
}

bool CropEditorHeading::event(QEvent* event) {
  if (event->type() == QEvent::FontChange) name_->setFont(fileNameFont(font()));
  const bool isTaken = QWidget::event(event);
  // Its place is known once what stands beside it has been laid out.
  if (event->type() == QEvent::LayoutRequest) elideName();
  return isTaken;
}

}  // namespace quillmere
