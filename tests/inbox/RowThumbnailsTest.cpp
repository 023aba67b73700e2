#include "inbox/RowThumbnails.h"

#include <gtest/gtest.h>

#include "fakes/DecodedPictures.h"
#include "foundation/ManualExecutor.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class RowThumbnailsTest : public ::testing::Test {
 protected:
  RowThumbnailsTest() {
    pictures.onLoaded = [this](const UUID& id) { loaded.push_back(id); };
  }
  ScreenshotItem picture(int number) {
    ScreenshotItem item;
    item.id = UUID::createUuid();
    item.url = folder.url().appending(std::to_string(number) + ".png");
    QImage image(20 + number, 20, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    EXPECT_TRUE(image.save(item.url.displayPath()));
    return item;
  }

  testing::TemporaryFolder folder;
  ManualExecutor executor;
  ThumbnailLoader loader{executor, testing::decodedPictures(), [](const FileURL&) { return false; }};
  RowThumbnails pictures{loader, 128};
  std::vector<UUID> loaded;
};

TEST_F(RowThumbnailsTest, APictureComesOnceAndIsThereAfterwards) {
  const ScreenshotItem item = picture(1);
  EXPECT_TRUE(pictures.image(item).isNull());
  EXPECT_TRUE(pictures.image(item).isNull());
  executor.drain();
  EXPECT_EQ(loaded, std::vector<UUID>{item.id});
  EXPECT_EQ(pictures.image(item).width(), 21);
}

TEST_F(RowThumbnailsTest, OneThatWasReplacedIsReadAnew) {
  ScreenshotItem item = picture(1);
  pictures.image(item);
  executor.drain();
  item.fileIdentity = FileIdentity();
  item.fileIdentity->file = 7;
  EXPECT_TRUE(pictures.image(item).isNull());
  executor.drain();
  EXPECT_EQ(loaded.size(), 2u);
}

TEST_F(RowThumbnailsTest, TheRowsSeenLastComeFirstAndThoseLongGoneAreNotRead) {
  std::vector<ScreenshotItem> items;
  for (int i = 0; i < 200; ++i) items.push_back(picture(i));
  executor.holdBackground();
  for (const ScreenshotItem& item : items) pictures.image(item);
  while (executor.heldBackground() > 0) executor.runHeldBackground();
  EXPECT_EQ(loaded.size(), 50u) << "two that had begun, and what fits on a screen";
  EXPECT_EQ(loaded[2], items.back().id);
  EXPECT_TRUE(pictures.image(items[20]).isNull()) << "asked for again when it is seen again";
  while (executor.heldBackground() > 0) executor.runHeldBackground();
  EXPECT_FALSE(pictures.image(items[20]).isNull());
}

TEST_F(RowThumbnailsTest, WhatWasShownLastIsKeptAndTheRestIsBounded) {
  const ScreenshotItem first = picture(1);
  pictures.image(first);
  executor.drain();
  for (int i = 2; i < 700; ++i) {
    pictures.image(picture(i % 50));
    executor.drain();
    ASSERT_FALSE(pictures.image(first).isNull()) << "shown all the while";
  }
  EXPECT_LE(pictures.count(), 402u);
}

TEST_F(RowThumbnailsTest, ALoadMayOutliveThem) {
  auto own = std::make_unique<RowThumbnails>(loader, 128);
  executor.holdBackground();
  own->image(picture(1));
  own.reset();
  while (executor.heldBackground() > 0) executor.runHeldBackground();
}

}  // namespace
}  // namespace quillmere
