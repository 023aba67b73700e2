#include "controls/MenuStyle.h"

#include <QtGui/QPainter>

#include "controls/DesktopLook.h"
#include "controls/Symbol.h"

namespace quillmere {
namespace {

class MenuStyleTest : public testing::DesktopLook {
 protected:
  MenuStyleTest() {
    item.menuHasCheckableItems = false;
    item.rect = QRect(0, 0, 200, 30);
    item.state = QStyle::State_Enabled;
    item.font = QApplication::font();
    item.fontMetrics = QFontMetrics(item.font);
    item.text = QStringLiteral("Open");
    item.palette = QApplication::palette();
  }
  QImage drawn() {
    QImage image(item.rect.size(), QImage::Format_RGB32);
    image.fill(theme().card);
    QPainter painter(&image);
    MenuStyle::paintItem(item, painter);
    return image;
  }
  /// Where anything is drawn, from left to right.
  std::pair<int, int> extent() {
    const QImage image = drawn();
    int first = image.width(), last = -1;
    for (int x = 0; x < image.width(); ++x) {
      for (int y = 0; y < image.height(); ++y) {
        if (image.pixelColor(x, y) == theme().card) continue;
        first = std::min(first, x);
        last = x;
      }
    }
    return {first, last};
  }
  int width() const { return MenuStyle::itemSize(item, QSize(40, 14)).width(); }
  QStyleOptionMenuItem item;
};

TEST_F(MenuStyleTest, TheRowUnderThePointerHasTheAccent) {
  EXPECT_EQ(drawn().pixelColor(100, 3), theme().card);
  item.state |= QStyle::State_Selected;
  EXPECT_EQ(drawn().pixelColor(100, 3), theme().accent);
  EXPECT_EQ(drawn().pixelColor(0, 0), theme().card) << "round";
  item.state &= ~QStyle::State_Enabled;
  EXPECT_EQ(drawn().pixelColor(100, 3), theme().card) << "none that cannot be chosen";
}

TEST_F(MenuStyleTest, ARowHasRoomForAllThatStandsInIt) {
  const int plain = width();
  item.menuHasCheckableItems = true;
  const int withMark = width();
  EXPECT_GT(withMark, plain);
  item.maxIconWidth = 20;
  EXPECT_GT(width(), withMark);
  item.menuHasCheckableItems = false;
  item.maxIconWidth = 0;
  item.menuItemType = QStyleOptionMenuItem::SubMenu;
  EXPECT_GT(width(), plain);
  item.menuItemType = QStyleOptionMenuItem::Normal;
  item.text = QStringLiteral("Open\tCtrl+O");
  EXPECT_GT(width(), plain);
}

TEST_F(MenuStyleTest, FromRightToLeftItIsMirrored) {
  item.maxIconWidth = 20;
  item.icon = QIcon(symbolPixmap(QStringLiteral("photo"), 16, Qt::black, 1));
  const auto left = extent();
  EXPECT_LT(left.first, 30);
  item.direction = Qt::RightToLeft;
  const auto right = extent();
  EXPECT_GT(right.second, 170);
  EXPECT_GT(right.first, 100);
}

TEST_F(MenuStyleTest, AMarkAppearsWhereItIsChecked) {
  item.menuHasCheckableItems = true;
  item.checkType = QStyleOptionMenuItem::NonExclusive;
  const QImage off = drawn();
  item.checked = true;
  const QImage on = drawn();
  EXPECT_NE(on, off);
  item.checkType = QStyleOptionMenuItem::Exclusive;
  EXPECT_NE(drawn(), on) << "one of several has another";
}

TEST_F(MenuStyleTest, ASubMenuAndAShortcutStandAtTheEnd) {
  const int before = extent().second;
  item.menuItemType = QStyleOptionMenuItem::SubMenu;
  EXPECT_GT(extent().second, 175);
  item.menuItemType = QStyleOptionMenuItem::Normal;
  item.text = QStringLiteral("Open\tCtrl+O");
  EXPECT_GT(extent().second, 175);
  EXPECT_LT(before, 100);
}

TEST_F(MenuStyleTest, ASeparatorIsALowRowWithALine) {
  item.menuItemType = QStyleOptionMenuItem::Separator;
  item.text.clear();
  EXPECT_LT(MenuStyle::itemSize(item, {}).height(), 12);
  item.rect.setHeight(9);
  EXPECT_NE(drawn().pixelColor(100, 4), theme().card);
  EXPECT_EQ(drawn().pixelColor(100, 1), theme().card);
}

TEST_F(MenuStyleTest, TheIconOfTheChosenRowIsThatForItsGround) {
  const QColor forTheAccent(0xff00ff);
  item.icon = QIcon(symbolPixmap(QStringLiteral("photo"), 16, Qt::black, 1));
  item.icon.addPixmap(symbolPixmap(QStringLiteral("photo"), 16, forTheAccent, 1), QIcon::Active);
  item.maxIconWidth = 20;
  const auto shows = [this, &forTheAccent] {
    const QImage image = drawn();
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < 40; ++x) {
        if (image.pixelColor(x, y) == forTheAccent) return true;
      }
    }
    return false;
  };
  EXPECT_FALSE(shows());
  item.state |= QStyle::State_Selected;
  EXPECT_TRUE(shows());
}

}  // namespace
}  // namespace quillmere
