#include "controls/ViewStyle.h"

#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

class ViewStyleTest : public testing::DesktopLook {
 protected:
  template <typename Option>
  static Option made() {
    Option option;
    option.rect = QRect(0, 0, 120, 40);
    option.state = QStyle::State_Enabled;
    option.palette = QApplication::palette();
    return option;
  }
};

TEST_F(ViewStyleTest, AChosenRowHasTheAccentOnARoundGround) {
  auto row = made<QStyleOptionViewItem>();
  EXPECT_EQ(drawn(row, &ViewStyle::paintRow).pixelColor(60, 20), QColor(Qt::magenta));
  row.state |= QStyle::State_Selected;
  EXPECT_EQ(drawn(row, &ViewStyle::paintRow).pixelColor(60, 20), theme().accent);
  EXPECT_EQ(drawn(row, &ViewStyle::paintRow).pixelColor(0, 0), QColor(Qt::magenta));
}

TEST_F(ViewStyleTest, ARowOfSeveralColumnsIsRoundAtItsEndsOnly) {
  using Position = QStyleOptionViewItem::ViewItemPosition;
  auto row = made<QStyleOptionViewItem>();
  row.state |= QStyle::State_Selected;
  const auto corners = [&](Position position) {
    row.viewItemPosition = position;
    const QImage image = drawn(row, &ViewStyle::paintRow);
    return std::pair(image.pixelColor(0, 0) != theme().accent, image.pixelColor(119, 0) != theme().accent);
  };
  EXPECT_EQ(corners(Position::OnlyOne), std::pair(true, true));
  EXPECT_EQ(corners(Position::Beginning), std::pair(true, false));
  EXPECT_EQ(corners(Position::Middle), std::pair(false, false));
  EXPECT_EQ(corners(Position::End), std::pair(false, true));
  row.direction = Qt::RightToLeft;
  EXPECT_EQ(corners(Position::Beginning), std::pair(false, true));
}

TEST_F(ViewStyleTest, TheRowUnderThePointerIsTinted) {
  auto row = made<QStyleOptionViewItem>();
  row.state |= QStyle::State_MouseOver;
  EXPECT_NE(drawn(row, &ViewStyle::paintRow).pixelColor(60, 20), QColor(Qt::magenta));
  row.state &= ~QStyle::State_Enabled;
  EXPECT_EQ(drawn(row, &ViewStyle::paintRow).pixelColor(60, 20), QColor(Qt::magenta));
}

TEST_F(ViewStyleTest, AListStandsInAFramesCorners) {
  const auto frame = made<QStyleOption>();
  const QImage image = drawn(frame, &ViewStyle::paintFrame);
  EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::magenta));
  EXPECT_EQ(image.pixelColor(ViewStyle::kFrame, ViewStyle::kFrame), QApplication::palette().color(QPalette::Base));
}

TEST_F(ViewStyleTest, AHeaderEndsInALine) {
  const QImage image = drawn(made<QStyleOption>(), &ViewStyle::paintHeader);
  EXPECT_NE(image.pixelColor(60, 39), image.pixelColor(60, 38));
}

TEST_F(ViewStyleTest, TheArrowOfASortedColumnPointsItsWay) {
  auto header = made<QStyleOptionHeader>();
  const QImage none = drawn(header, &ViewStyle::paintSortArrow);
  header.sortIndicator = QStyleOptionHeader::SortUp;
  const QImage up = drawn(header, &ViewStyle::paintSortArrow);
  header.sortIndicator = QStyleOptionHeader::SortDown;
  EXPECT_NE(up, none);
  EXPECT_NE(drawn(header, &ViewStyle::paintSortArrow), up);
}

TEST_F(ViewStyleTest, AGroupsTitleStandsAboveItsGround) {
  auto group = made<QStyleOptionGroupBox>();
  group.fontMetrics = QFontMetrics(QApplication::font());
  EXPECT_EQ(ViewStyle::groupPart(group, QStyle::SC_GroupBoxFrame), group.rect) << "without a title";
  group.text = QStringLiteral("Folder");
  const QRect title = ViewStyle::groupPart(group, QStyle::SC_GroupBoxLabel);
  const QRect frame = ViewStyle::groupPart(group, QStyle::SC_GroupBoxFrame);
  EXPECT_EQ(title.bottom() + 1, frame.top());
  EXPECT_TRUE(frame.contains(ViewStyle::groupPart(group, QStyle::SC_GroupBoxContents)));
  EXPECT_EQ(drawn(group, &ViewStyle::paintGroup).pixelColor(60, frame.bottom() - 3), theme().card);
}

}  // namespace
}  // namespace quillmere
