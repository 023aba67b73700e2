#include "fakes/ModelFixture.h"
#include "formats/ImageOperations.h"

namespace quillmere::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;
using Notice = PromptPreviewNotice;

class AppModelTransfer : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }

  void extract(const UUID& id, const QRectF& window) {
    model->setPromptWindowExtraction(item(id), true).detach();
    QImage image(60, 50, QImage::Format_RGB32);
    image.fill(Qt::blue);
    scanner.answer(scanner.calls.size() - 1, image, window);
  }
  void copy(const UUID& id) {
    model->copy(item(id), ErrorScope::popup).detach();
    executor.drain();
  }
  void expectError(const char* message) {
    ASSERT_TRUE(model->promptError->has_value());
    EXPECT_EQ((*model->promptError)->title, "Couldn’t Copy Screenshot");
    EXPECT_EQ((*model->promptError)->message, message);
    EXPECT_THAT(pasteboard.items, IsEmpty());
  }
};

TEST_F(AppModelTransfer, CopiesTheBytesAndTheFile) {
  const UUID id = arrive("shot.png");
  copy(id);
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].url, item(id).url);
  EXPECT_EQ(pasteboard.items[0].contentType, "image/png");
  EXPECT_EQ(pasteboard.items[0].data, "shot.png");
  EXPECT_EQ(announcer.said.back().text, "Screenshot copied.");
  EXPECT_EQ(announcer.said.back().priority, AnnouncementPriority::low);
  EXPECT_EQ(stateOf(id), State::pending) << "the popup stays";
}

TEST_F(AppModelTransfer, CopiesUnderTheTypeOfTheExtension) {
  const UUID id = arrive("shot.jpg");
  copy(id);
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].contentType, "image/jpeg");
}

TEST_F(AppModelTransfer, ReadsInTheBackground) {
  const UUID id = arrive("shot.png");
  model->copy(item(id), ErrorScope::popup).detach();
  EXPECT_THAT(pasteboard.items, IsEmpty());
  executor.drain();
  EXPECT_THAT(pasteboard.items, SizeIs(1));
}

TEST_F(AppModelTransfer, CopiesTheExtractedWindowAsAPngOfNoFile) {
  const UUID id = arrive("shot.jpg");
  extract(id, QRectF(1, 2, 30, 20));
  copy(id);
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].url, std::nullopt);
  EXPECT_EQ(pasteboard.items[0].contentType, "image/png");
  EXPECT_EQ(QImage::fromData(pasteboard.items[0].data, "PNG").size(), QSize(30, 20));
  EXPECT_EQ(announcer.said.back().text, "Window copied.");
  EXPECT_EQ(readBytes(item(id).url), "shot.jpg") << "nothing on disk changes";
}

TEST_F(AppModelTransfer, CopiesTheWholeScreenshotWhileItsWindowIsSought) {
  const UUID id = arrive("shot.png");
  model->setPromptWindowExtraction(item(id), true).detach();
  copy(id);
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].data, "shot.png");
}

TEST_F(AppModelTransfer, TellsThatAnUnavailableFileWasNotCopied) {
  const UUID id = arrive("shot.png");
  makeUnavailable(id);
  copy(id);
  expectError(
      "“shot.png” can’t be found, or Quillmere doesn’t have access to its folder. Nothing was copied. Choose the "
      "screenshot folder again in Settings, then try again.");
}

TEST_F(AppModelTransfer, TellsThatAnEvictedFileWasNotCopiedAndAsksForNoDownload) {
  const UUID id = arrive("shot.png");
  dataless.insert(item(id).url.path());
  reconcileAll();
  ASSERT_TRUE(model->evictedItemIDs->contains(id));
  copy(id);
  expectError(
      "“shot.png” isn’t on this computer, so nothing was copied. Choose Download, or open it in your file manager, "
      "then "
      "try again.");
  EXPECT_THAT(downloads, IsEmpty());
}

TEST_F(AppModelTransfer, TellsThatAFileCouldNotBeRead) {
  const UUID id = arrive("shot.png");
  deleteFile(item(id).url);
  copy(id);
  expectError(
      "“shot.png” couldn’t be read, so nothing was copied. Check that the file is still in its folder, then try "
      "again.");
}

TEST_F(AppModelTransfer, AFileWhoseEvictionIsNotKnownYetIsNotRead) {
  const UUID id = arrive("shot.png");
  dataless.insert(item(id).url.path());
  copy(id);
  expectError(
      "“shot.png” isn’t on this computer, so nothing was copied. Choose Download, or open it in your file manager, "
      "then "
      "try again.");
}

TEST_F(AppModelTransfer, AFileThatADecisionNamedMeanwhileIsCopiedAllTheSame) {
  const UUID id = arrive("shot.png");
  model->keepPrompt(id, QStringLiteral("Invoice")).detach();
  model->copy(item(id), ErrorScope::popup).detach();
  executor.drain();
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].url, shots.appending("Invoice.png"));
  EXPECT_EQ(pasteboard.items[0].data, "shot.png");
}

TEST_F(AppModelTransfer, AFailureIsNotShownOnAnotherScreenshot) {
  const UUID id = arrive("shot.png");
  arrive("next.png");
  model->copy(item(id), ErrorScope::popup).detach();
  deleteFile(item(id).url);
  model->dismissPrompt();
  executor.drain();
  EXPECT_FALSE(model->promptError->has_value());
  EXPECT_TRUE(model->inboxError->has_value());
}

TEST_F(AppModelTransfer, OfTwoCopiesTheLastCounts) {
  const UUID first = arrive("first.png");
  const UUID second = arrive("second.png");
  model->copy(item(first), ErrorScope::popup).detach();
  model->copy(item(second), ErrorScope::popup).detach();
  executor.drain();
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].data, "second.png");
}

TEST_F(AppModelTransfer, PreparesTheWholeScreenshotWhileItsWindowIsSought) {
  const UUID id = arrive("shot.png");
  model->setPromptWindowExtraction(item(id), true).detach();
  const auto prepared = model->prepareTransfer(item(id), std::nullopt);
  executor.drain();
  ASSERT_TRUE(prepared.await_resume());
  EXPECT_EQ(prepared.await_resume()->file, item(id).url);
}

TEST_F(AppModelTransfer, CopiesTheTextInAScreenshot) {
  analyzer.text = QStringLiteral("two\nlines");
  const UUID id = arrive("shot.png");
  const auto copied = model->copyRecognizedText(item(id));
  executor.drain();
  EXPECT_EQ(copied.await_resume(), Notice::textCopied);
  EXPECT_EQ(pasteboard.texts, std::vector<QString>{QStringLiteral("two\nlines")});
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("Text copied")));
}

TEST_F(AppModelTransfer, TellsThatThereIsNoTextAndLeavesTheClipboardAlone) {
  analyzer.text = QString();
  const UUID id = arrive("shot.png");
  const auto copied = model->copyRecognizedText(item(id));
  executor.drain();
  EXPECT_EQ(copied.await_resume(), Notice::noText);
  EXPECT_THAT(pasteboard.texts, IsEmpty());
  EXPECT_TRUE(announcer.hasSaid(QStringLiteral("No text found")));
}

TEST_F(AppModelTransfer, HasNothingToTellOfAReadingThatFailed) {
  analyzer.text = std::nullopt;
  const UUID id = arrive("shot.png");
  const auto copied = model->copyRecognizedText(item(id));
  executor.drain();
  ASSERT_TRUE(copied.isDone());
  EXPECT_EQ(copied.await_resume(), std::nullopt);
  EXPECT_THAT(pasteboard.texts, IsEmpty());
}

TEST_F(AppModelTransfer, PreparesTheFileItself) {
  const UUID id = arrive("shot.png");
  const auto prepared = model->prepareTransfer(item(id), QStringLiteral("shot"));
  executor.drain();
  ASSERT_TRUE(prepared.await_resume());
  EXPECT_EQ(prepared.await_resume()->file, item(id).url);
}

TEST_F(AppModelTransfer, PreparesACopyUnderATypedName) {
  const UUID id = arrive("shot.png");
  const auto prepared = model->prepareTransfer(item(id), QStringLiteral("Invoice"));
  executor.drain();
  ASSERT_TRUE(prepared.await_resume());
  EXPECT_EQ(prepared.await_resume()->file.lastPathComponent(), "Invoice.png");
  EXPECT_EQ(readBytes(prepared.await_resume()->file), "shot.png");
}

TEST_F(AppModelTransfer, PreparesTheExtractedWindowAsAPng) {
  const UUID id = arrive("shot.jpg");
  extract(id, QRectF(1, 2, 30, 20));
  const auto prepared = model->prepareTransfer(item(id), QStringLiteral("Invoice"));
  executor.drain();
  ASSERT_TRUE(prepared.await_resume());
  EXPECT_EQ(prepared.await_resume()->file.lastPathComponent(), "Invoice.png");
  EXPECT_EQ(prepared.await_resume()->contentType, "image/png");
}

TEST_F(AppModelTransfer, TellsWhyNothingCouldBePrepared) {
  const UUID id = arrive("shot.png");
  writeFile(transfers, "a file where the folder should be");
  const auto prepared = model->prepareTransfer(item(id), QStringLiteral("Invoice"));
  executor.drain();
  ASSERT_TRUE(prepared.isDone());
  EXPECT_FALSE(prepared.await_resume());
  ASSERT_TRUE(model->promptError->has_value());
  EXPECT_EQ((*model->promptError)->title, "Couldn’t Share Screenshot");
}

}  // namespace
}  // namespace quillmere::testing
