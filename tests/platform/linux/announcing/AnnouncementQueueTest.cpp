#include "platform/linux/announcing/AnnouncementQueue.h"

#include <gtest/gtest.h>

#include "foundation/ManualExecutor.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

using Priority = AnnouncementPriority;

class AnnouncementQueueTest : public ::testing::Test {
 protected:
  /// What a window that opens tells is over.
  void settle() { executor.advance(AnnouncementQueue::kSettling); }
  void add(const char* text, Priority priority = Priority::low) { queue.add(QString::fromLatin1(text), priority); }
  /// All that was said by now.
  QString said() const { return texts.join(QLatin1Char(' ')); }

  ManualExecutor executor;
  QStringList texts;
  AnnouncementQueue queue{executor, [this](const QString& text) { texts += text; }};
};

TEST_F(AnnouncementQueueTest, TheFirstIsSaidAfterTheFloodAndTheNextWhenItWasHeard) {
  add("one");
  add("two", Priority::high);
  executor.advance(AnnouncementQueue::kSettling - Duration(1));
  EXPECT_EQ(said(), QString());
  executor.advance(Duration(1));
  EXPECT_EQ(said(), QStringLiteral("one"));
  executor.advance(AnnouncementQueue::timeToSay(QStringLiteral("one")) - Duration(1));
  EXPECT_EQ(said(), QStringLiteral("one"));
  executor.advance(Duration(1));
  EXPECT_EQ(said(), QStringLiteral("one two"));
}

TEST_F(AnnouncementQueueTest, ALongerTextTakesLonger) {
  EXPECT_EQ(AnnouncementQueue::timeToSay(QString()), std::chrono::milliseconds(500));
  EXPECT_EQ(AnnouncementQueue::timeToSay(QStringLiteral("Screenshot kept.")), std::chrono::milliseconds(1620));
}

TEST_F(AnnouncementQueueTest, AfterASilenceOnlyTheFloodIsWaitedFor) {
  add("one");
  executor.advance(seconds(5));
  add("two");
  EXPECT_EQ(said(), QStringLiteral("one"));
  settle();
  EXPECT_EQ(said(), QStringLiteral("one two"));
}

TEST_F(AnnouncementQueueTest, HighOnesComeFirstInTheirOwnOrder) {
  add("now");
  add("low1");
  add("high1", Priority::high);
  add("low2");
  add("high2", Priority::high);
  executor.advance(seconds(30));
  EXPECT_EQ(said(), QStringLiteral("now high1 high2 low1 low2"));
}

TEST_F(AnnouncementQueueTest, WhatWaitsAlreadyIsNotSaidTwice) {
  add("now");
  add("ready");
  add("ready");
  executor.advance(seconds(30));
  EXPECT_EQ(said(), QStringLiteral("now ready"));
  add("ready");
  add("ready");
  executor.advance(seconds(30));
  EXPECT_EQ(said(), QStringLiteral("now ready ready")) << "it is news again, once";
}

TEST_F(AnnouncementQueueTest, OfTooManyTheOldestLowOnesAreLeftOut) {
  add("now");
  add("high", Priority::high);
  for (const char* text : {"1", "2", "3", "4", "5", "6", "7", "8", "9"}) add(text);
  executor.advance(seconds(60));
  EXPECT_EQ(said(), QStringLiteral("now high 3 4 5 6 7 8 9"));
}

TEST_F(AnnouncementQueueTest, OfTooManyHighOnesTheOldestIsLeftOut) {
  add("now");
  for (const char* text : {"1", "2", "3", "4", "5", "6", "7", "8", "9"}) add(text, Priority::high);
  executor.advance(seconds(60));
  EXPECT_EQ(said(), QStringLiteral("now 2 3 4 5 6 7 8 9"));
}

}  // namespace
}  // namespace quillmere
