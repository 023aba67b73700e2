#include "inbox/ScreenshotRowDelegate.h"

#include <gtest/gtest.h>
#include <QtGui/QPainter>
#include <QtGui/QStandardItemModel>
#include <QtWidgets/QApplication>

#include "controls/Appearance.h"
#include "controls/Theme.h"
#include "inbox/InboxListModel.h"

namespace quillmere {
namespace {

constexpr QRect kRow(0, 0, 320, 64);
constexpr QRect kPicture(20, 10, 64, 44);

class ScreenshotRowDelegateTest : public ::testing::Test {
 protected:
  ScreenshotRowDelegateTest() {
    set(InboxListModel::nameRole, QStringLiteral("Screenshot 1"));
    set(InboxListModel::statusRole, QStringLiteral("Waiting"));
    set(InboxListModel::symbolRole, QStringLiteral("checkmark.circle.fill"));
    model.appendRow(item);
  }
  void set(int role, const QVariant& value) { item->setData(value, role); }
  QImage painted(QStyle::State state = QStyle::State_None) {
    QImage image(kRow.size(), QImage::Format_RGB32);
    image.fill(palette.color(QPalette::Base));
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = kRow;
    option.palette = palette;
    option.font = QApplication::font();
    option.state = state;
    ScreenshotRowDelegate().paint(&painter, option, model.index(0, 0));
    return image;
  }
  static bool shows(const QImage& image, const QColor& color, const QRect& part = kRow) {
    for (int y = part.top(); y <= part.bottom(); ++y) {
      for (int x = part.left(); x <= part.right(); ++x) {
        if (image.pixel(x, y) == color.rgb()) return true;
      }
    }
    return false;
  }

  QPalette palette = paletteFor({}, std::nullopt);
  Theme theme{palette};
  QStandardItemModel model;
  QStandardItem* item = new QStandardItem;
};

TEST_F(ScreenshotRowDelegateTest, EveryRowIsAsHigh) {
  EXPECT_EQ(ScreenshotRowDelegate().sizeHint({}, model.index(0, 0)).height(), 64);
}

TEST_F(ScreenshotRowDelegateTest, APictureFillsItsPlaceWhateverItsShape) {
  for (const QSize size : {QSize(200, 20), QSize(20, 200), QSize(64, 44)}) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::red);
    set(InboxListModel::thumbnailRole, picture);
    const QImage row = painted();
    EXPECT_EQ(row.pixelColor(kPicture.left() + 1, kPicture.center().y()), QColor(Qt::red));
    EXPECT_EQ(row.pixelColor(kPicture.right() - 1, kPicture.center().y()), QColor(Qt::red));
    EXPECT_EQ(row.pixelColor(kPicture.center().x(), kPicture.top() + 1), QColor(Qt::red));
    EXPECT_FALSE(shows(row, Qt::red, {kPicture.right() + 1, 0, 100, 64})) << "and nothing beside it";
    EXPECT_NE(row.pixelColor(kPicture.topLeft()), QColor(Qt::red)) << "its corners are round";
  }
}

TEST_F(ScreenshotRowDelegateTest, AWhitePageHasAnEdgeOnAWhiteGround) {
  QImage picture(64, 44, QImage::Format_RGB32);
  picture.fill(palette.color(QPalette::Base));
  set(InboxListModel::thumbnailRole, picture);
  const QImage row = painted();
  EXPECT_NE(row.pixelColor(kPicture.left(), kPicture.center().y()), palette.color(QPalette::Base));
  EXPECT_EQ(row.pixelColor(kPicture.left() + 1, kPicture.center().y()), palette.color(QPalette::Base));
}

TEST_F(ScreenshotRowDelegateTest, WithoutAPictureThereIsAPlaceholder) {
  const QImage row = painted();
  const QRect middle(kPicture.center() - QPoint(12, 12), QSize(24, 24));
  EXPECT_TRUE(shows(row, theme.secondaryText, middle));
}

TEST_F(ScreenshotRowDelegateTest, OneThatIsAwayIsMarkedUnlessItIsSelected) {
  EXPECT_FALSE(shows(painted(), theme.warning));
  set(InboxListModel::unavailableRole, true);
  EXPECT_TRUE(shows(painted(), theme.warning));
  EXPECT_FALSE(shows(painted(QStyle::State_Selected), theme.warning)) << "it would not be seen on the accent";
}

TEST_F(ScreenshotRowDelegateTest, TheSelectedStandsOnTheAccentAndTheOneUnderThePointerOnAFill) {
  constexpr QPoint kInside(16, 32);
  EXPECT_EQ(painted().pixelColor(kInside), palette.color(QPalette::Base));
  const QImage selected = painted(QStyle::State_Selected | QStyle::State_MouseOver);
  EXPECT_EQ(selected.pixelColor(kInside), theme.accent);
  EXPECT_TRUE(shows(selected, theme.onAccent));
  EXPECT_FALSE(shows(selected, theme.text, {90, 0, 230, 64}));
  EXPECT_NE(painted(QStyle::State_MouseOver).pixelColor(kInside), palette.color(QPalette::Base));
}

TEST_F(ScreenshotRowDelegateTest, ALongNameStaysInItsRowAndShowsItsEnd) {
  set(InboxListModel::nameRole, QStringLiteral("A name\nof two lines ").repeated(20) + QStringLiteral("1"));
  const QImage one = painted();
  EXPECT_FALSE(shows(one, theme.text, {312, 0, 8, 64})) << "it keeps off the edge";
  set(InboxListModel::nameRole, QStringLiteral("A name\nof two lines ").repeated(20) + QStringLiteral("2"));
  EXPECT_NE(painted(), one) << "the number at its end is seen";
}

}  // namespace
}  // namespace quillmere
