#include "inbox/DownloadStatusRow.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

using Offer = DownloadStatusContent::Offer;

TEST(DownloadStatusContent, TellsWhereTheImageIsAndWhatCanBeDone) {
  struct Row {
    const char* when;
    bool canDownload;
    std::optional<DownloadState> state;
    const char* symbol;
    const char* text;
    Offer offer;
  };
  const Row rows[] = {
      {"no client can be asked", false, std::nullopt, "icloud",
       "Not downloaded. The image isn’t on this computer, so it can’t be shown or copied here. Open it in your file "
       "manager to download it.",
       Offer::nothing},
      {"nobody has asked", true, std::nullopt, "icloud",
       "Not downloaded. The image is in your cloud folder, not on this computer, so it can’t be shown or copied here.",
       Offer::download},
      {"it was asked for", true, DownloadState::requesting, "icloud", "Downloading from the cloud…", Offer::nothing},
      {"it comes", true, DownloadState::downloading, "icloud", "Downloading from the cloud…", Offer::nothing},
      {"it takes long", true, DownloadState::stalled, "exclamationmark.icloud",
       "The image hasn’t arrived yet. Your sync client still has the request, so it will finish downloading once this "
       "computer is back online.",
       Offer::nothing},
      {"it was refused", true, DownloadState::refused, "exclamationmark.icloud",
       "Your sync client couldn’t start the download, so the image is still in the cloud. Try again, or open the "
       "screenshot in your file manager to download it.",
       Offer::retry},
      {"the client went meanwhile", false, DownloadState::downloading, "icloud",
       "Not downloaded. The image isn’t on this computer, so it can’t be shown or copied here. Open it in your file "
       "manager to download it.",
       Offer::nothing},
  };
  for (const Row& row : rows) {
    const DownloadStatusContent content = DownloadStatusContent::make(row.canDownload, row.state);
    EXPECT_EQ(content.symbol, QLatin1String(row.symbol)) << row.when;
    EXPECT_EQ(content.text, QString::fromUtf8(row.text)) << row.when;
    EXPECT_EQ(content.offer, row.offer) << row.when;
  }
}

class DownloadStatusRowTest : public ::testing::Test {
 protected:
  QPushButton& button() const { return *row.findChild<QPushButton*>(); }
  void show(Offer offer) { row.show({QStringLiteral("icloud"), QStringLiteral("Not downloaded."), offer}); }
  QWidget window;
  DownloadStatusRow row{&window};
};

TEST_F(DownloadStatusRowTest, OffersNothingWhereNothingCanBeDone) {
  show(Offer::nothing);
  EXPECT_FALSE(button().isVisibleTo(&row));
  EXPECT_EQ(row.findChild<QLabel*>()->text(), QStringLiteral("Not downloaded."));
}

TEST_F(DownloadStatusRowTest, OffersToDownloadAndToTryAgain) {
  int downloads = 0;
  row.onDownload = [&] { ++downloads; };
  show(Offer::download);
  EXPECT_EQ(button().text(), QStringLiteral("Download"));
  EXPECT_EQ(button().toolTip(),
            QStringLiteral("Ask your sync client to download this screenshot’s image to this computer"));
  QTest::mouseClick(&button(), Qt::LeftButton);
  show(Offer::retry);
  EXPECT_TRUE(button().isVisibleTo(&row));
  EXPECT_EQ(button().text(), QStringLiteral("Try Again"));
  EXPECT_EQ(button().toolTip(), QString());
  QTest::mouseClick(&button(), Qt::LeftButton);
  EXPECT_EQ(downloads, 2);
}

TEST_F(DownloadStatusRowTest, ComesBackWhenItHasSomethingToSay) {
  row.hide();
  show(Offer::nothing);
  EXPECT_TRUE(row.isVisibleTo(&window));
}

}  // namespace
}  // namespace quillmere
