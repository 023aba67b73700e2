#include "controls/ThemedLabel.h"

#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

class ThemedLabelTest : public testing::DesktopLook {};

TEST_F(ThemedLabelTest, ALabelKeepsItsInk) {
  for (const Ink ink : {Ink::text, Ink::secondary, Ink::warning, Ink::danger}) {
    ThemedLabel label(ink, nullptr, QStringLiteral("text"));
    for (const Appearance& appearance :
         {of(Scheme::dark), of(Scheme::light, true), of(Scheme::dark, true), of(Scheme::light)}) {
      show(appearance);
      EXPECT_EQ(label.palette().color(QPalette::WindowText), theme().color(ink));
    }
  }
}

TEST_F(ThemedLabelTest, ALabelOfAnotherSizeGoesByTheNewFont) {
  QWidget window;
  ThemedLabel label(Ink::text, &window, QStringLiteral("Title"));
  label.setTextSize(1.5, QFont::DemiBold);
  const QFont before = QApplication::font();
  QFont large = before;
  large.setPointSizeF(20);
  QApplication::setFont(large);
  QCoreApplication::processEvents();
  EXPECT_EQ(label.font().pointSizeF(), 30);
  EXPECT_EQ(label.font().weight(), QFont::DemiBold);
  QApplication::setFont(before);
  QCoreApplication::processEvents();
  EXPECT_EQ(label.font().pointSizeF(), before.pointSizeF() * 1.5);
}

}  // namespace
}  // namespace quillmere
