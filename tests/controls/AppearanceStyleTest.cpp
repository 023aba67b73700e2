#include "controls/AppearanceStyle.h"

#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

#include "controls/ActionButton.h"
#include "controls/DesktopLook.h"
#include "controls/Metrics.h"

namespace quillmere {
namespace {

class AppearanceStyleTest : public testing::DesktopLook {
 protected:
  AppearanceStyleTest() {
    for (QWidget* control : controls()) {
      control->resize(control->sizeHint());
      // No letters, whose colour may be the edge's.
      control->setFont(QFont(QStringLiteral("no font has this name"), 1));
    }
  }
  std::vector<QWidget*> inputs() { return {&box, &number, &choice, &field}; }
  std::vector<QWidget*> controls() { return {&box, &number, &choice, &field, &button}; }

  QCheckBox box;
  QSpinBox number;
  QComboBox choice;
  QPushButton button;
  QLineEdit field;
};

TEST_F(AppearanceStyleTest, InputsHaveTheSameEdgeInEveryLook) {
  for (const Appearance& appearance :
       {of(Scheme::light), of(Scheme::dark), of(Scheme::dark, true), of(Scheme::light, true)}) {
    show(appearance);
    for (QWidget* control : inputs()) {
      EXPECT_TRUE(shows(*control, theme().fieldBorder))
          << control->metaObject()->className() << (theme().isDark ? ", dark" : ", light");
    }
  }
}

TEST_F(AppearanceStyleTest, AButtonOfQtsIsDrawnAsTheProgramsOwn) {
  const QString text = QStringLiteral("Choose");
  QPushButton plain(text);
  ActionButton own(ActionButton::Role::secondary, {}, text);
  for (const Appearance& appearance : {of(Scheme::light), of(Scheme::dark), of(Scheme::dark, true)}) {
    show(appearance);
    for (const bool isEnabled : {true, false}) {
      for (QPushButton* each : {&plain, static_cast<QPushButton*>(&own)}) {
        each->resize(120, 36);
        each->setEnabled(isEnabled);
      }
      const QColor ground = picture(own).pixelColor(8, 18);
      EXPECT_EQ(picture(plain).pixelColor(8, 18), ground);
      EXPECT_EQ(picture(plain).pixelColor(60, 0), picture(own).pixelColor(60, 0)) << "its outline";
      EXPECT_EQ(picture(plain).pixelColor(0, 0), picture(own).pixelColor(0, 0)) << "its corner";
    }
  }
  EXPECT_EQ(plain.sizeHint().height(), own.sizeHint().height());
}

TEST_F(AppearanceStyleTest, ControlsLookTheSameOverEveryStyleOfTheDesktop) {
  EXPECT_EQ(AppearanceStyle().baseStyle()->name(), QStringLiteral("fusion"));
}

TEST_F(AppearanceStyleTest, ControlsInARowAreOfOneHeight) {
  field.setFont({});
  for (QWidget* control : {static_cast<QWidget*>(&number), static_cast<QWidget*>(&choice),
                           static_cast<QWidget*>(&field), static_cast<QWidget*>(&button)}) {
    EXPECT_EQ(control->sizeHint().height(), Metrics::kControlHeight) << control->metaObject()->className();
  }
}

TEST_F(AppearanceStyleTest, AListOfChoicesOpensBelowItsChoice) {
  choice.addItems({QStringLiteral("One"), QStringLiteral("Two")});
  choice.setCurrentIndex(1);
  choice.show();
  choice.move(100, 100);
  choice.showPopup();
  const QWidget* list = choice.view()->window();
  EXPECT_GE(list->y() + PopupSurface::kReach, choice.mapToGlobal(QPoint(0, choice.height())).y());
  EXPECT_EQ(list->x() + PopupSurface::kReach, choice.mapToGlobal(QPoint()).x());
  EXPECT_EQ(list->width() - 2 * PopupSurface::kReach, choice.width());
  choice.hidePopup();
}

TEST_F(AppearanceStyleTest, TheChosenRowOfAListHasTheAccent) {
  choice.addItems({QStringLiteral("One"), QStringLiteral("Two")});
  choice.show();
  choice.showPopup();
  EXPECT_TRUE(shows(*choice.view()->window(), theme().accent));
  choice.hidePopup();
}

TEST_F(AppearanceStyleTest, FocusThatKeysBroughtIsShownAtACheckBox) {
  box.setText(QStringLiteral("Box"));
  box.setFont({});
  box.resize(box.sizeHint());
  QWidget window;
  box.setParent(&window);
  window.show();
  const QImage before = picture(box);
  window.activateWindow();
  box.setFocus(Qt::TabFocusReason);
  window.setAttribute(Qt::WA_KeyboardFocusChange);
  QCoreApplication::processEvents();
  EXPECT_NE(picture(box), before);
  box.setParent(nullptr);
}

TEST_F(AppearanceStyleTest, AFieldThatShallHaveNoFrameGetsNone) {
  show(of(Scheme::dark, true));
  EXPECT_TRUE(shows(field, theme().fieldBorder));
  field.setFrame(false);
  EXPECT_FALSE(shows(field, theme().fieldBorder));
}

TEST_F(AppearanceStyleTest, OnlyLessMotionEndsAnimations) {
  AppearanceStyle style;
  EXPECT_NE(style.styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, nullptr, nullptr), 0);
  const int other = style.styleHint(QStyle::SH_ToolTip_WakeUpDelay, nullptr, nullptr, nullptr);
  style.setMotionReduced(true);
  EXPECT_EQ(style.styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(style.styleHint(QStyle::SH_ToolTip_WakeUpDelay, nullptr, nullptr, nullptr), other);
}

}  // namespace
}  // namespace quillmere
