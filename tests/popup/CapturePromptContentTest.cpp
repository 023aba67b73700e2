#include "popup/CapturePromptContent.h"

#include "fakes/ModelFixture.h"

namespace quillmere {
namespace {

// --- Thumbnail height ---

TEST(HeightOfThumbnailTest, KeepsThePicturesShape) {
  EXPECT_EQ(CapturePromptContent::heightOfThumbnail(QSize(408, 200)), 200);
  EXPECT_EQ(CapturePromptContent::heightOfThumbnail(QSize(2560, 1000)), 159) << "159.375";
  EXPECT_EQ(CapturePromptContent::heightOfThumbnail(QSize(816, 301)), 151) << "150.5 goes up";
}

TEST(HeightOfThumbnailTest, IsHeldBetween96And230) {
  EXPECT_EQ(CapturePromptContent::heightOfThumbnail(QSize(408, 3000)), 230);
  EXPECT_EQ(CapturePromptContent::heightOfThumbnail(QSize(3000, 100)), 96);
  EXPECT_EQ(CapturePromptContent::heightOfThumbnail(QSize(1, 2000000000)), 230);
}

TEST(HeightOfThumbnailTest, OfAnUnknownSizeIs160) {
  for (const auto& size : {std::optional<QSizeF>(), std::optional(QSizeF(0, 100)), std::optional(QSizeF(100, 0)),
                           std::optional(QSizeF(-5, 100)), std::optional(QSizeF())}) {
    EXPECT_EQ(CapturePromptContent::heightOfThumbnail(size), 160);
  }
}

// --- Caption ---

TEST(NameCaptionTest, ANameThatCanBeUsedIsAFilename) {
  EXPECT_EQ(nameCaption(QStringLiteral("A name")), QStringLiteral("Filename"));
}

TEST(NameCaptionTest, NoNameKeepsTheFilesOwn) {
  for (const char* text : {"", "   ", "\t\n"}) {
    EXPECT_EQ(nameCaption(QLatin1String(text)),
              QStringLiteral("No name typed, so the screenshot keeps its current filename."));
  }
}

TEST(NameCaptionTest, ANameThatCannotBeUsedSaysSo) {
  for (const char* text : {"///", " / "}) {
    EXPECT_EQ(nameCaption(QLatin1String(text)),
              QStringLiteral("That name can’t be used, so the screenshot keeps its current filename."));
  }
}

// --- make ---

class CapturePromptContentTest : public testing::ModelFixture {
 protected:
  CapturePromptContentTest() { launchWatching(); }
  std::optional<CapturePromptContent> make() const {
    return CapturePromptContent::make(*model, [](const ScreenshotItem&) { return QSize(408, 123); });
  }
};

TEST_F(CapturePromptContentTest, AnEmptyQueueHasNoContent) {
  EXPECT_EQ(make(), std::nullopt);
}

TEST_F(CapturePromptContentTest, TheHeadOfTheQueueIsShownAndTheRestIsCounted) {
  const UUID first = arrive("1.png");
  arrive("2.png");
  arrive("3.png");
  const auto content = make();
  ASSERT_TRUE(content);
  EXPECT_EQ(content->item, item(first));
  EXPECT_EQ(content->queuedCount, 2);
  EXPECT_EQ(content->thumbnailHeight, 123);
  EXPECT_TRUE(content->canReadImage);
  EXPECT_FALSE(content->scrolls);
  EXPECT_FALSE(content->error);
  EXPECT_EQ(content->contentGeneration, *model->prompts().contentGeneration);
}

TEST_F(CapturePromptContentTest, SettingsShowAtOnce) {
  arrive("1.png");
  model->setShowPopupThumbnail(false);
  model->setDeletesChosenImmediately(true);
  model->setScreenshotNaming(ScreenshotNaming::suggested);
  const auto content = make();
  EXPECT_FALSE(content->showThumbnail);
  EXPECT_TRUE(content->deletesChosen);
  EXPECT_EQ(content->naming, ScreenshotNaming::suggested);
}

TEST_F(CapturePromptContentTest, AnErrorAndARequestForTheKeyboardShow) {
  arrive("1.png");
  model->show(ErrorScope::popup, QStringLiteral("Title"), QStringLiteral("Message"));
  model->reviewPending(FocusNews::silent);
  const auto content = make();
  ASSERT_TRUE(content->error);
  EXPECT_EQ(content->error->title, QStringLiteral("Title"));
  EXPECT_EQ(content->focusRequest, 1);
}

TEST_F(CapturePromptContentTest, AnImageThatIsAwayCannotBeRead) {
  const UUID id = arrive("1.png");
  makeUnavailable(id);
  const auto content = make();
  ASSERT_TRUE(content);
  EXPECT_FALSE(content->canReadImage);
}

TEST_F(CapturePromptContentTest, AnEvictedImageCannotBeRead) {
  const UUID id = arrive("1.png");
  dataless.insert(item(id).url.path());
  reconcileAll();
  ASSERT_TRUE(model->evictedItemIDs->contains(id));
  EXPECT_FALSE(make()->canReadImage);
}

}  // namespace
}  // namespace quillmere
