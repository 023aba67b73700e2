#include "controls/InputStyle.h"

#include <QtGui/QPainter>

#include "controls/DesktopLook.h"
#include "controls/Metrics.h"
#include "controls/PopupSurface.h"

namespace quillmere {
namespace {

constexpr QRect kPlace(0, 0, 160, 36);

class InputStyleTest : public testing::DesktopLook {
 protected:
  template <typename Option>
  static Option made(QStyle::State state = QStyle::State_Enabled) {
    Option option;
    option.rect = kPlace;
    option.state = state;
    option.palette = QApplication::palette();
    return option;
  }
  template <typename Option>
  static QImage drawn(const Option& option, void (*paint)(const Option&, QPainter&)) {
    QImage image(kPlace.size(), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    paint(option, painter);
    return image;
  }
};

TEST_F(InputStyleTest, AFieldHasAnEdgeThatIsItsFocusRing) {
  auto field = made<QStyleOptionFrame>();
  field.lineWidth = 1;
  EXPECT_EQ(drawn(field, &InputStyle::paintField).pixelColor(80, 0), theme().fieldBorder);
  EXPECT_EQ(drawn(field, &InputStyle::paintField).pixelColor(80, 18), theme().field);
  EXPECT_EQ(drawn(field, &InputStyle::paintField).pixelColor(0, 0), QColor(Qt::magenta)) << "round";
  field.state |= QStyle::State_HasFocus;
  EXPECT_EQ(drawn(field, &InputStyle::paintField).pixelColor(80, 1), theme().focusRing);
}

TEST_F(InputStyleTest, AFieldInsideAnotherControlHasNone) {
  auto field = made<QStyleOptionFrame>();
  field.lineWidth = 0;
  EXPECT_EQ(drawn(field, &InputStyle::paintField).pixelColor(80, 0), QColor(Qt::magenta));
  EXPECT_EQ(InputStyle::fieldContents(field), kPlace);
  field.lineWidth = 1;
  EXPECT_GT(InputStyle::fieldContents(field).left(), 5);
}

TEST_F(InputStyleTest, ThePartsOfANumberStandSideBySide) {
  const auto number = made<QStyleOptionSpinBox>();
  const QRect up = InputStyle::numberPart(number, QStyle::SC_SpinBoxUp);
  const QRect down = InputStyle::numberPart(number, QStyle::SC_SpinBoxDown);
  const QRect text = InputStyle::numberPart(number, QStyle::SC_SpinBoxEditField);
  EXPECT_FALSE(up.intersects(down));
  EXPECT_EQ(up.bottom() + 1, down.top());
  EXPECT_FALSE(text.intersects(up));
  for (const QRect& part : {up, down, text}) EXPECT_TRUE(kPlace.contains(part));
}

TEST_F(InputStyleTest, AStepThatCannotBeTakenLooksSo) {
  auto number = made<QStyleOptionSpinBox>();
  number.stepEnabled = QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled;
  const QImage both = drawn(number, &InputStyle::paintNumber);
  number.stepEnabled = QAbstractSpinBox::StepDownEnabled;
  const QImage down = drawn(number, &InputStyle::paintNumber);
  const QRect up = InputStyle::numberPart(number, QStyle::SC_SpinBoxUp);
  EXPECT_NE(both.copy(up), down.copy(up));
  EXPECT_EQ(both.copy(kPlace.adjusted(0, 18, 0, 0)), down.copy(kPlace.adjusted(0, 18, 0, 0)));
}

TEST_F(InputStyleTest, TheTextOfAChoiceEndsBeforeItsArrow) {
  const auto choice = made<QStyleOptionComboBox>();
  const QRect arrow = InputStyle::choicePart(choice, QStyle::SC_ComboBoxArrow);
  EXPECT_FALSE(InputStyle::choicePart(choice, QStyle::SC_ComboBoxEditField).intersects(arrow));
  EXPECT_TRUE(kPlace.contains(arrow));
  EXPECT_EQ(drawn(choice, &InputStyle::paintChoice).pixelColor(80, 0), theme().fieldBorder);
}

TEST_F(InputStyleTest, TheListsSurfaceIsAsWideAsTheChoiceAndBelowIt) {
  const QRect list = InputStyle::choicePart(made<QStyleOptionComboBox>(), QStyle::SC_ComboBoxListBoxPopup);
  EXPECT_EQ(list.left() + PopupSurface::kReach, kPlace.left());
  EXPECT_EQ(list.right() - PopupSurface::kReach, kPlace.right());
  EXPECT_GT(list.bottom() + PopupSurface::kReach, kPlace.bottom());
}

TEST_F(InputStyleTest, AllHaveTheHeightOfButtons) {
  for (const auto type : {QStyle::CT_LineEdit, QStyle::CT_SpinBox, QStyle::CT_ComboBox}) {
    EXPECT_EQ(InputStyle::inputSize(type, QSize(50, 16)).height(), Metrics::kControlHeight);
    EXPECT_GT(InputStyle::inputSize(type, QSize(50, 16)).width(), 50);
    EXPECT_GT(InputStyle::inputSize(type, QSize(50, 60)).height(), 60) << "with a large font";
  }
}

}  // namespace
}  // namespace quillmere
