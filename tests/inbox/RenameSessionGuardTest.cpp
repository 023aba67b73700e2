#include "inbox/RenameSessionGuard.h"

#include <QtTest/QTest>

#include "fakes/ModelFixture.h"

namespace quillmere {
namespace {

class RenameSessionGuardTest : public testing::ModelFixture {
 protected:
  RenameSessionGuardTest() {
    launchWatching();
    id = arrive("Shot.png");
    presentation = std::make_unique<InboxPresentation>(*model, InboxServices{});
    guard = std::make_unique<RenameSessionGuard>(*presentation, window);
  }
  void begin() {
    presentation->beginRename(item(id));
    presentation->setRenameText(QStringLiteral("Typed"));
  }
  bool isOpen() const { return presentation->renameSession->has_value(); }

  UUID id;
  QWidget window;
  std::unique_ptr<InboxPresentation> presentation;
  std::unique_ptr<RenameSessionGuard> guard;
};

TEST_F(RenameSessionGuardTest, WithoutASessionThereIsNoSubject) {
  EXPECT_EQ(RenameSubject::of(*presentation), RenameSubject());
  begin();
  const RenameSubject subject = RenameSubject::of(*presentation);
  EXPECT_EQ(subject.name, QStringLiteral("Shot"));
  EXPECT_EQ(subject.url, item(id).url);
  EXPECT_TRUE(subject.isAvailable);
}

TEST_F(RenameSessionGuardTest, TypingAndOtherRecordsLeaveItOpen) {
  begin();
  arrive("2.png");
  model->keepBatch({id});
  presentation->setRenameText(QStringLiteral("Typed on"));
  EXPECT_TRUE(isOpen());
}

TEST_F(RenameSessionGuardTest, ARenameFromElsewhereDropsWhatWasTyped) {
  begin();
  ASSERT_TRUE(finish(model->rename(id, QStringLiteral("Elsewhere"), ErrorScope::inbox)));
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(item(id).url.displayStem(), QStringLiteral("Elsewhere"));
}

TEST_F(RenameSessionGuardTest, AFileThatCannotBeReachedEndsIt) {
  begin();
  makeUnavailable(id);
  EXPECT_FALSE(isOpen());
}

TEST_F(RenameSessionGuardTest, ARecordThatGoesEndsIt) {
  begin();
  model->removeRecords({id});
  EXPECT_FALSE(isOpen());
}

TEST_F(RenameSessionGuardTest, AnotherWindowEndsItAndOnlyIt) {
  QWidget second;
  InboxPresentation secondPresentation(*model, InboxServices{});
  const RenameSessionGuard secondGuard(secondPresentation, second);
  begin();
  secondPresentation.beginRename(item(id));
  QEvent left(QEvent::WindowDeactivate);
  QCoreApplication::sendEvent(&window, &left);
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(*secondPresentation.renameSession) << "the other window's is its own";
  EXPECT_EQ(item(id).url.displayStem(), QStringLiteral("Shot"));
}

TEST_F(RenameSessionGuardTest, ASecondSessionHasASubjectOfItsOwn) {
  const UUID second = arrive("2.png");
  begin();
  presentation->beginRename(item(second));
  ASSERT_TRUE(finish(model->rename(id, QStringLiteral("Elsewhere"), ErrorScope::inbox)));
  EXPECT_TRUE(isOpen());
  model->removeRecords({second});
  EXPECT_FALSE(isOpen());
}

}  // namespace
}  // namespace quillmere
