#include "inbox/DownloadStatusRow.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "controls/WorkIndicator.h"
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
  QPushButton* button(const char* text) const {
    for (auto* found : row.findChildren<QPushButton*>()) {
      if (found->text() == QLatin1String(text)) return found;
    }
    return nullptr;
  }
  QStringList offered() const {
    QStringList texts;
    for (const auto* found : row.findChildren<QPushButton*>()) {
      if (found->isVisibleTo(&row)) texts += found->text();
    }
    return texts;
  }
  void show(Offer offer) { row.show({QStringLiteral("icloud"), QStringLiteral("Not downloaded."), offer}); }
  QWidget window;
  DownloadStatusRow row{&window};
};

TEST_F(DownloadStatusRowTest, TheFileItselfCanAlwaysBeShown) {
  int shown = 0;
  row.onShowInFinder = [&] { ++shown; };
  show(Offer::nothing);
  EXPECT_EQ(offered(), QStringList{QStringLiteral("Show in File Manager")});
  EXPECT_EQ(row.findChild<QLabel*>()->text(), QStringLiteral("Not downloaded."));
  QTest::mouseClick(button("Show in File Manager"), Qt::LeftButton);
  EXPECT_EQ(shown, 1);
}

TEST_F(DownloadStatusRowTest, OffersToDownloadAndToTryAgain) {
  int downloads = 0;
  row.onDownload = [&] { ++downloads; };
  show(Offer::download);
  EXPECT_EQ(offered(), (QStringList{QStringLiteral("Download"), QStringLiteral("Show in File Manager")}));
  EXPECT_EQ(button("Download")->toolTip(),
            QStringLiteral("Ask your sync client to download this screenshot’s image to this computer"));
  QTest::mouseClick(button("Download"), Qt::LeftButton);
  show(Offer::retry);
  EXPECT_EQ(offered(), (QStringList{QStringLiteral("Try Again"), QStringLiteral("Show in File Manager")}));
  QTest::mouseClick(button("Try Again"), Qt::LeftButton);
  EXPECT_EQ(downloads, 2);
}

TEST_F(DownloadStatusRowTest, ARingTurnsWhileDataComes) {
  const auto* ring = [this]() -> WorkIndicator* {
    for (auto* child : row.findChildren<QWidget*>()) {
      if (auto* found = dynamic_cast<WorkIndicator*>(child)) return found;
    }
    return nullptr;
  }();
  row.show(DownloadStatusContent::make(true, DownloadState::downloading));
  EXPECT_TRUE(ring->isVisibleTo(&row));
  row.show(DownloadStatusContent::make(true, DownloadState::stalled));
  EXPECT_FALSE(ring->isVisibleTo(&row));
}

TEST_F(DownloadStatusRowTest, ComesBackWhenItHasSomethingToSay) {
  row.hide();
  show(Offer::nothing);
  EXPECT_TRUE(row.isVisibleTo(&window));
}

}  // namespace
}  // namespace quillmere
