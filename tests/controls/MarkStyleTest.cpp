#include "controls/MarkStyle.h"

#include <QtGui/QPainter>

#include "controls/Contrast.h"
#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

class MarkStyleTest : public testing::DesktopLook {
 protected:
  static QImage drawn(QStyle::State state, void (*paint)(const QStyleOption&, QPainter&)) {
    QStyleOption option;
    option.rect = QRect(0, 0, MarkStyle::kSide, MarkStyle::kSide);
    option.state = state;
    option.palette = QApplication::palette();
    QImage image(option.rect.size(), QImage::Format_RGB32);
    image.fill(option.palette.color(QPalette::Window));
    QPainter painter(&image);
    paint(option, painter);
    return image;
  }
  static constexpr auto kEach = {&MarkStyle::paintCheckBox, &MarkStyle::paintRadioButton};
};

TEST_F(MarkStyleTest, OnHasTheAccentAndOffAFieldsEdge) {
  for (const auto paint : kEach) {
    EXPECT_EQ(drawn(QStyle::State_Enabled | QStyle::State_On, paint).pixelColor(9, 3), theme().accent);
    EXPECT_EQ(drawn(QStyle::State_Enabled, paint).pixelColor(9, 3), theme().field);
    // A little lighter where it is round.
    EXPECT_GE(contrastRatio(drawn(QStyle::State_Enabled, paint).pixelColor(9, 0), theme().field), 2.8);
  }
}

TEST_F(MarkStyleTest, OnIsSeenWhateverTheAccent) {
  Appearance appearance = of(Scheme::light);
  appearance.accent = Qt::yellow;
  show(appearance);
  for (const auto paint : kEach) {
    const QColor edge = drawn(QStyle::State_Enabled | QStyle::State_On, paint).pixelColor(9, 0);
    EXPECT_GE(contrastRatio(edge, QApplication::palette().color(QPalette::Window)), kMarkContrast);
  }
}

TEST_F(MarkStyleTest, EachStateLooksAnother) {
  for (const auto paint : kEach) {
    std::vector<QImage> seen;
    for (const QStyle::State state :
         {QStyle::State(QStyle::State_Enabled), QStyle::State_Enabled | QStyle::State_MouseOver,
          QStyle::State_Enabled | QStyle::State_Sunken, QStyle::State_Enabled | QStyle::State_On,
          QStyle::State_Enabled | QStyle::State_On | QStyle::State_MouseOver, QStyle::State(QStyle::State_On),
          QStyle::State(QStyle::State_None)}) {
      const QImage image = drawn(state, paint);
      EXPECT_EQ(std::count(seen.begin(), seen.end(), image), 0) << int(state);
      seen.push_back(image);
    }
  }
}

TEST_F(MarkStyleTest, InBetweenIsNeitherOnNorOff) {
  const QImage half = drawn(QStyle::State_Enabled | QStyle::State_NoChange, &MarkStyle::paintCheckBox);
  EXPECT_NE(half, drawn(QStyle::State_Enabled | QStyle::State_On, &MarkStyle::paintCheckBox));
  EXPECT_NE(half, drawn(QStyle::State_Enabled, &MarkStyle::paintCheckBox));
}

}  // namespace
}  // namespace quillmere
