#include "inbox/DetailNotes.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

QStringList symbols(const ScreenshotItem& item, const DetailState& state) {
  QStringList found;
  for (const DetailNote& note : detailNotes(item, state)) found += note.symbol;
  return found;
}

ScreenshotItem readItem() {
  ScreenshotItem item;
  item.recognizedText = QByteArray();
  return item;
}

TEST(DetailNotes, AnUnremarkableScreenshotHasNone) {
  EXPECT_TRUE(detailNotes(readItem(), {}).empty());
}

TEST(DetailNotes, AllOfThemStandInOrder) {
  ScreenshotItem item = readItem();
  item.arrivedFromElsewhere = true;
  item.sourceItemID = UUID::createUuid();
  DetailState state;
  state.isUnavailable = true;
  const auto notes = detailNotes(item, state);
  ASSERT_EQ(notes.size(), 3U);
  EXPECT_EQ(notes[0],
            (DetailNote{DetailNote::Kind::warning,
                        {},
                        QStringLiteral("Unavailable. The file can’t be found or its folder isn’t accessible.")}));
  EXPECT_EQ(notes[1].text, QStringLiteral("Arrived in your screenshot folder instead of being taken on this computer, "
                                          "so Quillmere saved it without asking."));
  EXPECT_EQ(notes[2].text, QStringLiteral("Cropped from a screenshot that’s no longer in the Inbox."));
  EXPECT_EQ(symbols(item, state),
            (QStringList{QString(), QStringLiteral("tray.and.arrow.down"), QStringLiteral("crop")}));
}

TEST(DetailNotes, TheSourceIsNamedWithoutItsExtension) {
  ScreenshotItem source;
  source.url = FileURL::fromPath("/shots/The whole.png");
  ScreenshotItem item = readItem();
  item.sourceItemID = source.id;
  DetailState state;
  state.source = &source;
  EXPECT_EQ(detailNotes(item, state),
            (std::vector{DetailNote{DetailNote::Kind::original, QStringLiteral("crop"), QStringLiteral("The whole")}}));
}

TEST(DetailNotes, ThatNoTextWasReadIsSaidOnlyWhereItCanBeRead) {
  const ScreenshotItem unread;
  const QStringList note{QStringLiteral("text.viewfinder")};
  EXPECT_EQ(symbols(unread, {}), note);
  EXPECT_EQ(symbols(unread, {.isEvicted = true}), QStringList());
  EXPECT_EQ(symbols(unread, {.isReadingText = true}), QStringList());
  EXPECT_EQ(symbols(unread, {.isUnavailable = true}), QStringList(QString())) << "only that it is unavailable";
}

}  // namespace
}  // namespace quillmere
