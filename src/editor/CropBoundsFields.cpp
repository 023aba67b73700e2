#include "editor/CropBoundsFields.h"

#include <QtWidgets/QHBoxLayout>
#include <algorithm>

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "controls/ThemedLabel.h"
#include "controls/WrappingRow.h"
#include "foundation/Localized.h"

namespace quillmere {

CropBoundsFields::CropBoundsFields(QWidget* parent) : QWidget(parent) {
  auto* row = new WrappingRow(10);
  row->addWidget(new ThemedLabel(Ink::text, this, localized("Crop bounds in pixels")));
  const std::array names{localized("X"), localized("Y"), localized("Width"), localized("Height")};
  for (size_t i = 0; i < fields_.size(); ++i) row->addWidget(makeField(i, names[i]));
  whole_ = new ActionButton(ActionButton::Role::secondary, {}, localized("Select Whole Image"), this);
  setPlainToolTip(*whole_, localized("Set the crop area to the whole screenshot"));
  connect(whole_, &QPushButton::clicked, this, [this] {
    showNumbers();
    if (onSelectWholeImage) onSelectWholeImage();
  });
  row->addWidget(whole_);
  setLayout(row);
}

QWidget* CropBoundsFields::makeField(size_t index, const QString& name) {
  auto* pair = new QWidget(this);
  auto* label = new ThemedLabel(Ink::text, pair, name);
  auto* field = new PixelField(name, pair);
  label->setBuddy(field);
  field->setAccessibleDescription(localized("Crop bounds in pixels"));
  field->onCommit = [this](PixelField::Commit how) { commit(how); };
  field->onStep = [this, index](int by) { step(index, by); };
  field->onHold = [this](bool isHeld) {
    isHeld_ = isHeld;
    if (onHeldChanged) onHeldChanged();
  };
  fields_[index] = field;
  auto* row = new QHBoxLayout(pair);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(6);
  row->addWidget(label);
  row->addWidget(field);
  return pair;
}

// --- What they show ---

void CropBoundsFields::show(const CropSelection& selection) {
  const bool isSame = selection.selection() == shown_.selection() && selection.imageSize() == shown_.imageSize();
  shown_ = selection;
  if (!isSame) showNumbers();
}

void CropBoundsFields::showNumbers() {
  const QRect& rect = shown_.selection();
  const std::array numbers{rect.x(), rect.y(), rect.width(), rect.height()};
  for (size_t i = 0; i < fields_.size(); ++i) {
    fields_[i]->setNumber(shown_.isEmpty() ? std::nullopt : std::optional<qint64>(numbers[i]));
  }
  setProblem({});
}

void CropBoundsFields::setProblem(const QString& problem) {
  if (problem == problem_) return;
  problem_ = problem;
  if (onProblemChanged) onProblemChanged();
}

// --- What is typed ---

CropBoundsFields::Numbers CropBoundsFields::numbers() const {
  Numbers numbers;
  std::transform(fields_.begin(), fields_.end(), numbers.begin(),
                 [](const PixelField* field) { return field->number(); });
  return numbers;
}

bool CropBoundsFields::areBounds(const Numbers& numbers) const {
  const bool isWhole =
      std::all_of(numbers.begin(), numbers.end(), [](const auto& number) { return number.has_value(); });
  CropSelection copy(shown_.imageSize());
  return isWhole && copy.setBounds(*numbers[0], *numbers[1], *numbers[2], *numbers[3]);
}

void CropBoundsFields::commit(PixelField::Commit how) {
  const auto isBlank = [](const PixelField* field) { return field->text().isEmpty(); };
  // Where nothing is selected the four are filled in one after another.
  const bool isUnfinished = shown_.isEmpty() && std::any_of(fields_.begin(), fields_.end(), isBlank);
  if (isUnfinished && how == PixelField::Commit::byLeaving) return;
  const Numbers typed = numbers();
  if (!areBounds(typed)) {
    setProblem(localized("Enter bounds inside the image."));
    return;
  }
  const QRect bounds(static_cast<int>(*typed[0]), static_cast<int>(*typed[1]), static_cast<int>(*typed[2]),
                     static_cast<int>(*typed[3]));
  // What is only left as it was is still the window that it stood for.
  if (bounds == shown_.selection()) return showNumbers();
  setProblem({});
  if (onEdit) onEdit(bounds);
}

bool CropBoundsFields::takeTyped() {
  commit(PixelField::Commit::byLeaving);
  return problem_.isEmpty();
}

/// From bounds that are valid no step leads out of the picture.
void CropBoundsFields::step(size_t index, int by) {
  Numbers stepped = numbers();
  const bool isValid = areBounds(stepped);
  stepped[index] = stepped[index].value_or(0) + by;
  if (isValid && !areBounds(stepped)) return;
  fields_[index]->setNumber(stepped[index]);
  commit(PixelField::Commit::byReturn);
}

}  // namespace quillmere
