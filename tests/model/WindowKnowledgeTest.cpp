#include "model/WindowKnowledge.h"

#include <QtGui/QPainter>
#include <algorithm>

#include "fakes/PictureFixture.h"
#include "formats/ImageEncoding.h"

namespace quillmere::testing {
namespace {

const QRect kFrame(40, 30, 300, 220);

class WindowKnowledgeTest : public PictureFixture {
 protected:
  /// A desktop with one window.
  static QImage desktop() {
    QImage image(640, 480, QImage::Format_RGB32);
    image.fill(QColor(60, 110, 165));
    QPainter(&image).fillRect(kFrame, Qt::white);
    return image;
  }
  static WindowStack state() {
    WindowStack state;
    state.root = QSize(640, 480);
    state.monitors = {QRect(QPoint(), state.root)};
    WindowStack::Window window;
    window.id = 7;
    window.frame = window.client = window.outer = kFrame;
    state.windows = {window};
    return state;
  }

  UUID arriveDesktop(std::string_view name) {
    const FileURL url = shots.appending(name);
    writeFile(url, ImageOperations::encode(desktop(), PictureFormat::png)->toStdString());
    monitor.onScreenshot(url);
    return model->items()[0].id;
  }
  std::optional<KnownWindows> knownOf(const UUID& id) { return knownWindows(item(id)); }
};

TEST_F(WindowKnowledgeTest, WhatTheWindowSystemKnewIsKeptWithTheRecord) {
  windowStates = {state()};
  const UUID id = arriveDesktop("shot.png");
  EXPECT_FALSE(knownOf(id)) << "first the popup";
  advance(0.3);
  ASSERT_TRUE(knownOf(id));
  ASSERT_EQ(knownOf(id)->windows.size(), 1u);
  EXPECT_EQ(knownOf(id)->windows[0].frame, kFrame);
  EXPECT_EQ(item(id).captureKind, CaptureKind::display);
  advance(5);
  EXPECT_EQ(savedRecord(id)->knownWindows, item(id).knownWindows);
}

TEST_F(WindowKnowledgeTest, WhatAToolSaidOfItsPictureCountsMore) {
  windowStates = {state()};
  captureKinds[shots.appending("shot.png").path()] = CaptureKind::selection;
  const UUID id = arriveDesktop("shot.png");
  advance(0.3);
  EXPECT_TRUE(knownOf(id));
  EXPECT_EQ(item(id).captureKind, CaptureKind::selection);
}

TEST_F(WindowKnowledgeTest, WhatIsShownLaterIsNotInThePicture) {
  windowStates = {state()};
  const UUID id = arriveDesktop("shot.png");
  windowStates = {};
  advance(0.3);
  EXPECT_TRUE(knownOf(id)) << "the states are those of its arrival";
  const UUID other = arriveDesktop("other.png");
  advance(0.3);
  EXPECT_FALSE(knownOf(other));
  EXPECT_EQ(item(other).captureKind, std::nullopt);
}

TEST_F(WindowKnowledgeTest, OfFilesFromElsewhereNothingIsAsked) {
  windowStates = {state()};
  const UUID id = arriveFromElsewhere("shot.png");
  advance(1);
  EXPECT_EQ(item(id).captureKind, std::nullopt);
}

TEST_F(WindowKnowledgeTest, OneAfterTheOtherAndOfABurstTheFirst) {
  windowStates = {state()};
  std::vector<UUID> ids;
  for (size_t i = 0; i < WindowKnowledge::kMostWaiting + 3; ++i) {
    ids.push_back(arriveDesktop("shot " + std::to_string(i) + ".png"));
  }
  advance(0.3);
  for (size_t i = 0; i < ids.size(); ++i) {
    EXPECT_EQ(knownOf(ids[i]).has_value(), i < WindowKnowledge::kMostWaiting) << i;
  }
  const UUID later = arriveDesktop("later.png");
  advance(0.3);
  EXPECT_TRUE(knownOf(later));
}

TEST_F(WindowKnowledgeTest, ExtractWindowAndTheCropEditorAreToldOfThem) {
  windowStates = {state()};
  const UUID id = arriveDesktop("shot.png");
  advance(0.3);
  model->setPromptWindowExtraction(item(id), true).detach();
  executor.drain();
  ASSERT_EQ(scanner.calls.size(), 1u);
  EXPECT_EQ(scanner.calls[0]->known, knownOf(id));
  model->openPicture(item(id), true).detach();
  executor.drain();
  ASSERT_EQ(scanner.calls.size(), 2u);
  EXPECT_EQ(scanner.calls[1]->known, knownOf(id));
}

TEST_F(WindowKnowledgeTest, ExtractWindowWaitsUntilTheyAreKnown) {
  windowStates = {state()};
  const UUID id = arriveDesktop("shot.png");
  model->setPromptWindowExtraction(item(id), true).detach();
  const auto opening = model->openPicture(item(id), true);
  executor.drain();
  EXPECT_TRUE(scanner.calls.empty());
  EXPECT_TRUE(model->isPopupPaused(id));
  advance(0.3);
  ASSERT_EQ(scanner.calls.size(), 2u);
  ASSERT_TRUE(knownOf(id));
  EXPECT_EQ(scanner.calls[0]->known, knownOf(id));
  EXPECT_EQ(scanner.calls[1]->known, knownOf(id));
}

TEST_F(WindowKnowledgeTest, APictureThatIsWaitedForIsTheNext) {
  windowStates = {state()};
  std::vector<UUID> ids;
  for (int i = 0; i < 3; ++i) ids.push_back(arriveDesktop("shot " + std::to_string(i) + ".png"));
  std::vector<UUID> order;
  const Connection following = model->changed.connect([&](const ModelChange& change) {
    if (change.field != ModelField::items) return;
    for (const UUID& one : ids) {
      if (knownOf(one) && std::find(order.begin(), order.end(), one) == order.end()) order.push_back(one);
    }
  });
  model->openPicture(item(ids[2]), true).detach();
  advance(0.3);
  EXPECT_THAT(order, ::testing::ElementsAre(ids[2], ids[0], ids[1]));
}

TEST_F(WindowKnowledgeTest, WhoeverWaitsInVainGoesOn) {
  windowStates = {state()};
  const UUID id = arriveDesktop("shot.png");
  const ScreenshotItem before = item(id);
  const auto opening = model->openPicture(before, true);
  executor.drain();
  model->removeRecords({id});
  advance(0.3);
  ASSERT_EQ(scanner.calls.size(), 1u);
  EXPECT_EQ(scanner.calls[0]->known, std::nullopt);
}

TEST_F(WindowKnowledgeTest, AWaitThatIsGivenUpAsksNothing) {
  windowStates = {state()};
  const UUID id = arriveDesktop("shot.png");
  const auto opening = model->openPicture(item(id), true);
  executor.drain();
  opening.cancel();
  advance(0.3);
  EXPECT_TRUE(scanner.calls.empty());
  EXPECT_TRUE(knownOf(id));
}

TEST_F(WindowKnowledgeTest, WhatTheDesktopDoesNotTellByItselfIsAskedFor) {
  windowStates = {state()};
  WindowStack before = state();
  before.windows[0].frame.translate(90, 60);
  WindowStack found = state();
  found.since = before.since + 1;
  windowStates = {before};
  onLookAtWindows = [&] { windowStates.push_back(found); };
  const UUID id = arriveDesktop("shot.png");
  advance(0.3);
  ASSERT_TRUE(knownOf(id));
  EXPECT_EQ(knownOf(id)->windows[0].frame, kFrame);
}

TEST_F(WindowKnowledgeTest, TheyStayOverARestart) {
  windowStates = {state()};
  const UUID id = arriveDesktop("shot.png");
  advance(0.3);
  const auto known = knownOf(id);
  advance(5);
  launch();
  EXPECT_TRUE(knownOf(id));
  EXPECT_EQ(knownOf(id), known);
}

TEST_F(WindowKnowledgeTest, ARecordThatIsGoneMeanwhileStaysGone) {
  windowStates = {state()};
  const UUID id = arriveDesktop("shot.png");
  model->removeRecords({id});
  advance(0.3);
  EXPECT_EQ(model->items().find(id), nullptr);
}

}  // namespace
}  // namespace quillmere::testing
