#include "inbox/DetailMetadata.h"

#include <gtest/gtest.h>
#include <QtCore/QLocale>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

class DetailMetadataTest : public ::testing::Test {
 protected:
  DetailMetadataTest() {
    item.recognizedText = QByteArray();
    item.createdAt = Date{700000000};
  }
  QStringList shown(const DetailState& state = {}) {
    metadata.show(item, state);
    QStringList texts;
    for (const auto* label : metadata.findChildren<QLabel*>()) {
      if (label->isVisibleTo(&metadata)) texts += label->text();
    }
    return texts;
  }
  static QString time(double seconds) {
    return QLocale().toString(Date{seconds}.toDateTime().toLocalTime(), QLocale::ShortFormat);
  }
  ScreenshotItem item;
  QWidget window;
  DetailMetadata metadata{&window};
};

TEST_F(DetailMetadataTest, TellsDateStatusAndKind) {
  EXPECT_EQ(shown(), (QStringList{time(700000000), QStringLiteral("Pending decision")}));
  item.captureKind = CaptureKind::selection;
  EXPECT_EQ(shown(),
            (QStringList{time(700000000), QStringLiteral("Pending decision"), QStringLiteral("Selected portion")}));
}

TEST_F(DetailMetadataTest, AnUnavailableTemporaryOneKeepsItsExpiry) {
  item.state = ScreenshotItem::State::temporary;
  item.expiresAt = Date{700003600};
  EXPECT_EQ(shown({.isUnavailable = true}),
            (QStringList{time(700000000), QStringLiteral("Temporary until ") + time(700003600),
                         QStringLiteral("Unavailable. The file can’t be found or its folder isn’t accessible.")}));
}

TEST_F(DetailMetadataTest, TheSourceIsAButtonNamedAfterTheSentence) {
  ScreenshotItem source;
  source.url = FileURL::fromPath("/shots/The whole.png");
  item.sourceItemID = source.id;
  DetailState state;
  state.source = &source;
  metadata.show(item, state);
  auto* button = metadata.findChild<QPushButton*>();
  ASSERT_TRUE(button);
  EXPECT_EQ(button->accessibleName(), QStringLiteral("Cropped from “The whole”."));
  int shows = 0;
  metadata.onShowOriginal = [&] { ++shows; };
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(shows, 1);
  metadata.show(item, state);
  EXPECT_EQ(metadata.findChild<QPushButton*>(), button) << "what says the same stays";
}

}  // namespace
}  // namespace quillmere
