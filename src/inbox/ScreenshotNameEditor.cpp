#include "inbox/ScreenshotNameEditor.h"

#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "controls/AccessibleRole.h"
#include "controls/PlainText.h"
#include "controls/ThemedLabel.h"
#include "inbox/NameField.h"

namespace quillmere {
namespace {

constexpr int kExtensionGap = 4;
/// In points: the name needs the room.
constexpr int kLongestExtension = 96;

/// A name may have line breaks in it, which would make two of it.
QString inOneLine(QString name) {
  for (QChar& character : name) {
    if (character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
        character == QChar::ParagraphSeparator) {
      character = QLatin1Char(' ');
    }
  }
  return name;
}

}  // namespace

ScreenshotNameEditor::ScreenshotNameEditor(InboxPresentation& presentation, Lines lines, QWidget* parent)
    : QWidget(parent),
      presentation_(presentation),
      lines_(lines),
      label_(new PlainLabel(this)),
      extension_(new ThemedLabel(Ink::secondary, this)) {
  label_->setWordWrap(lines == Lines::all);
  label_->setLayoutDirection(Qt::LeftToRight);
  label_->setMinimumWidth(1);
  if (lines == Lines::one) label_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  QSizePolicy keepsItsPlace = label_->sizePolicy();
  keepsItsPlace.setRetainSizeWhenHidden(true);
  label_->setSizePolicy(keepsItsPlace);
  setAccessibleRole(*extension_, QAccessible::NoRole);
  extension_->hide();
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(NameField::kBeside, NameField::kAbove, NameField::kBeside, NameField::kAbove);
  column->addWidget(label_);
  followFont();
  followDirection();
  changes_ = presentation.changed.connect([this](const InboxChange& change) {
    if (change.field == InboxField::renameSession) follow();
  });
}

void ScreenshotNameEditor::setTextSize(qreal factor, QFont::Weight weight) {
  textSize_ = factor;
  weight_ = weight;
  followFont();
}

void ScreenshotNameEditor::followFont() {
  const QFont font = fileNameFont(scaled(this->font(), textSize_, weight_));
  label_->setFont(font);
  extension_->setFont(font);
  if (field_) field_->setFont(font);
  showName();
  placeField();
}

/// The letters go from the left; the line as a whole stands where the language's lines begin.
void ScreenshotNameEditor::followDirection() {
  const auto side = layoutDirection() == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
  label_->setAlignment(side | Qt::AlignTop);
  if (field_) field_->setAlignment(side | Qt::AlignVCenter);
}

void ScreenshotNameEditor::show(const ScreenshotItem& item) {
  if (item.id != id_) cancel();
  id_ = item.id;
  name_ = inOneLine(item.url.displayName());
  const std::string extension = item.url.pathExtension();
  const QString ending = extension.empty() ? QString() : QLatin1Char('.') + QString::fromStdString(extension);
  extension_->setText(extension_->fontMetrics().elidedText(ending, Qt::ElideMiddle, kLongestExtension));
  label_->setAccessibleName(name_);
  showName();
  follow();
}

void ScreenshotNameEditor::setEditable(bool isEditable) {
  isEditable_ = isEditable;
  follow();
}

void ScreenshotNameEditor::showName() {
  const int room = width() - 2 * NameField::kBeside;
  label_->setText(lines_ == Lines::all ? breakable(name_)
                                       : label_->fontMetrics().elidedText(name_, Qt::ElideMiddle, room));
}

void ScreenshotNameEditor::placeField() {
  const QMargins margins = layout()->contentsMargins();
  const QRect room = rect().marginsRemoved(margins);
  const int ending =
      extension_->text().isEmpty() ? 0 : extension_->sizeHint().width() + kExtensionGap + NameField::kBeside;
  const QRect line(room.topLeft(), QSize(room.width() - ending, label_->fontMetrics().height()));
  if (field_) field_->placeOver(line);
  extension_->setGeometry(line.right() + 1 + NameField::kBeside + kExtensionGap, line.y(),
                          extension_->sizeHint().width(), line.height());
}

void ScreenshotNameEditor::follow() {
  const auto& session = *presentation_.renameSession;
  const bool isHere = isEditable_ && session && session->id == id_;
  if (field_ && (!isHere || session->token != token_)) end();
  if (isHere && !field_) begin(*session);
}

void ScreenshotNameEditor::begin(const Session& session) {
  before_ = QApplication::focusWidget();
  token_ = session.token;
  field_ = new NameField(presentation_, session, this);
  followFont();
  followDirection();
  label_->hide();
  extension_->setVisible(!extension_->text().isEmpty());
  field_->show();
  field_->setFocus(Qt::OtherFocusReason);
}

void ScreenshotNameEditor::end() {
  // Whoever clicked elsewhere has the keyboard there already.
  const bool hadKeyboard = field_->hasFocus();
  if (hadKeyboard && before_ && before_->isVisible()) before_->setFocus(Qt::OtherFocusReason);
  field_->hide();
  field_->deleteLater();
  field_ = nullptr;
  extension_->hide();
  label_->show();
}

/// The session, if the field is of it.
void ScreenshotNameEditor::cancel() {
  const auto& session = *presentation_.renameSession;
  if (field_ && session && session->token == token_) presentation_.cancelRename();
}

void ScreenshotNameEditor::mouseDoubleClickEvent(QMouseEvent* event) {
  const bool isOnName = label_->isVisible() && label_->geometry().contains(event->position().toPoint());
  if (event->button() != Qt::LeftButton || !isOnName || !onRename) return QWidget::mouseDoubleClickEvent(event);
  onRename();
}

void ScreenshotNameEditor::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (lines_ == Lines::one) showName();
  placeField();
}

void ScreenshotNameEditor::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange) followFont();
  if (event->type() == QEvent::LayoutDirectionChange) followDirection();
}

/// Nobody could see what they type.
void ScreenshotNameEditor::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  cancel();
}

}  // namespace quillmere
