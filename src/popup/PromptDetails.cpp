#include "popup/PromptDetails.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "controls/AccessibleRole.h"
#include "controls/AnalysisStatusRow.h"
#include "controls/ThemedLabel.h"
#include "popup/PromptFilenameField.h"

namespace quillmere {
namespace {

/// Of a description, until all of it is asked for.
constexpr int kDescriptionLines = 3;
constexpr int kBlockSpacing = 12;
constexpr int kCaptionSpacing = 4;
constexpr int kExtensionSpacing = 6;
/// In points: the name needs the room.
constexpr int kLongestExtension = 96;

}  // namespace

PromptDetails::PromptDetails(QWidget* parent) : QWidget(parent), analysis_(new AnalysisStatusRow(this)) {
  analysis_->onAnalyze = [this] { onAnalyze(); };
  analysis_->onMore = [this] { onMore(); };
  analysis_->setLimit(kDescriptionLines, kPreviewWidth);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(kBlockSpacing);
  rows->addWidget(analysis_);
  rows->addWidget(makeNameBlock());
}

QWidget* PromptDetails::makeNameBlock() {
  auto* block = new QWidget(this);
  caption_ = new ThemedLabel(Ink::secondary, block);
  caption_->setTextSize(0.9);
  nameField_ = new PromptFilenameField(block);
  extension_ = new ThemedLabel(Ink::secondary, block);
  // Whoever hears the name hears the field; the extension can't be changed.
  setAccessibleRole(*extension_, QAccessible::NoRole);
  connect(nameField_, &QLineEdit::textChanged, this, [this] {
    refreshCaption();
    refreshNote();
    onNameChanged();
  });

  // A name and its extension read from the left in every language.
  auto* fileName = new QWidget(block);
  fileName->setLayoutDirection(Qt::LeftToRight);
  auto* field = new QHBoxLayout(fileName);
  field->setContentsMargins(0, 0, 0, 0);
  field->setSpacing(kExtensionSpacing);
  field->addWidget(nameField_, 1);
  field->addWidget(extension_);
  auto* column = new QVBoxLayout(block);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kCaptionSpacing);
  column->addWidget(caption_);
  column->addWidget(fileName);
  return block;
}

void PromptDetails::show(const CapturePromptContent& content) {
  // A picture that cannot be read waits for its analysis, however long that takes.
  const bool isAnalyzing = content.isAnalyzing && content.canReadImage;
  const AnalysisStatus status = analysisStatus(content.item, isAnalyzing, content.availability);
  analysis_->show(
      {status.text, status.isFailure, status.offersAnalysis, status.isDescription, content.showsWholeDescription});
  // Whoever has no model is told so in Settings, once.
  const bool hasNoModel = content.availability == AnalysisAvailability::unavailable;
  analysis_->setVisible(!hasNoModel || isAnalyzing || status.isFailure || status.isDescription);
  const std::string extension = content.item.url.pathExtension();
  extension_->setVisible(!extension.empty());
  const QString text = QLatin1Char('.') + QString::fromStdString(extension);
  extension_->setText(extension_->fontMetrics().elidedText(text, Qt::ElideMiddle, kLongestExtension));
  refreshCaption();
}

void PromptDetails::refreshCaption() {
  const QString caption = nameCaption(nameField_->text());
  caption_->setText(caption_->fontMetrics().elidedText(caption, Qt::ElideRight, kPreviewWidth));
  caption_->setAccessibleName(caption);
}

void PromptDetails::refreshNote() {
  const auto note = nameNote(nameField_->text());
  if (std::exchange(note_, note) == note) return;
  nameField_->setNote(note);
  if (note && nameField_->hasFocus()) onNameRefused(*note);
}

QLineEdit& PromptDetails::nameField() const {
  return *nameField_;
}

QWidget& PromptDetails::description() const {
  return analysis_->text();
}

QWidget& PromptDetails::moreButton() const {
  return analysis_->moreButton();
}

QWidget& PromptDetails::analysisButton() const {
  return analysis_->button();
}

}  // namespace quillmere
