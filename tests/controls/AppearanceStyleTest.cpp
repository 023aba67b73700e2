#include "controls/AppearanceStyle.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

#include "controls/DesktopLook.h"

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
  std::vector<QWidget*> controls() { return {&box, &number, &choice, &button, &field}; }

  QCheckBox box;
  QSpinBox number;
  QComboBox choice;
  QPushButton button;
  QLineEdit field;
};

TEST_F(AppearanceStyleTest, ControlsHaveAnEdgeInTheDarkAndInHigherContrast) {
  for (const Appearance& appearance : {of(Scheme::dark), of(Scheme::dark, true), of(Scheme::light, true)}) {
    show(appearance);
    for (QWidget* control : controls()) {
      EXPECT_TRUE(shows(*control, theme().fieldBorder))
          << control->metaObject()->className() << (theme().isDark ? ", dark" : ", light");
    }
  }
}

TEST_F(AppearanceStyleTest, OtherwiseTheyAreAsTheDesktopsStyleDrawsThem) {
  show(of(Scheme::light));
  QProxyStyle plain;
  for (QWidget* control : controls()) {
    const QImage drawn = picture(*control);
    control->setStyle(&plain);
    EXPECT_EQ(drawn, picture(*control)) << control->metaObject()->className();
    control->setStyle(nullptr);
  }
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
