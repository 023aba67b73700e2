#include "inbox/QuickLookFooter.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

class QuickLookFooterTest : public ::testing::Test {
 protected:
  QuickLookFooterTest() {
    footer.resize(600, footer.sizeHint().height());
    footer.show();
  }
  QPushButton* button(const QString& name) const {
    for (auto* found : footer.findChildren<QPushButton*>()) {
      if (found->accessibleName() == name) return found;
    }
    return nullptr;
  }
  QStringList texts() const {
    QStringList all;
    for (const auto* label : footer.findChildren<QLabel*>()) {
      if (label->isVisible()) all << label->text();
    }
    return all;
  }

  QuickLookFooter footer{nullptr};
};

TEST_F(QuickLookFooterTest, TellsNameSizeAndScale) {
  footer.setName(QStringLiteral("a.png"));
  footer.setPictureSize(QSize(2560, 1440));
  footer.setScale(0.376);
  EXPECT_EQ(texts(), QStringList({QStringLiteral("a.png"), QStringLiteral("2560 × 1440"), QStringLiteral("38%")}));
  footer.setPictureSize(std::nullopt);
  footer.setScale(std::nullopt);
  EXPECT_EQ(texts(), QStringList(QStringLiteral("a.png")));
}

TEST_F(QuickLookFooterTest, ALongNameIsElidedInItsMiddle) {
  const QString name = QStringLiteral("Screenshot ") + QString(200, QLatin1Char('a')) + QStringLiteral(" 09-41.png");
  footer.setName(name);
  const QString shown = texts().first();
  EXPECT_TRUE(shown.startsWith(QStringLiteral("Screen")));
  EXPECT_TRUE(shown.endsWith(QStringLiteral(".png")));
  EXPECT_LT(shown.size(), name.size());
  footer.resize(4000, footer.height());
  EXPECT_EQ(texts().first(), name);
  const auto* label = footer.findChild<QLabel*>();
  EXPECT_EQ(label->accessibleName(), name);
}

TEST_F(QuickLookFooterTest, ANameIsNoMarkup) {
  footer.setName(QStringLiteral("<b>a</b>.png"));
  EXPECT_EQ(texts().first(), QStringLiteral("<b>a</b>.png"));
  EXPECT_EQ(footer.findChild<QLabel*>()->textFormat(), Qt::PlainText);
}

TEST_F(QuickLookFooterTest, ButtonsDoWhatTheySay) {
  QStringList done;
  footer.onFit = [&] { done << QStringLiteral("fit"); };
  footer.onRealSize = [&] { done << QStringLiteral("real size"); };
  footer.onOpenElsewhere = [&] { done << QStringLiteral("open"); };
  footer.setScale(1);
  footer.setOffersOpening(true);
  for (const QString& name : {localized("Fit to Window"), localized("Real Size"), localized("Open in Image Viewer")}) {
    ASSERT_TRUE(button(name));
    QTest::mouseClick(button(name), Qt::LeftButton);
  }
  EXPECT_EQ(done, QStringList({QStringLiteral("fit"), QStringLiteral("real size"), QStringLiteral("open")}));
}

TEST_F(QuickLookFooterTest, WithoutAPictureNothingCanBeZoomed) {
  footer.setScale(std::nullopt);
  EXPECT_FALSE(button(localized("Fit to Window"))->isEnabled());
  EXPECT_FALSE(button(localized("Real Size"))->isEnabled());
  footer.setScale(1);
  EXPECT_TRUE(button(localized("Fit to Window"))->isEnabled());
  EXPECT_FALSE(button(localized("Open in Image Viewer"))->isVisible()) << "only where it was asked for";
}

}  // namespace
}  // namespace quillmere
