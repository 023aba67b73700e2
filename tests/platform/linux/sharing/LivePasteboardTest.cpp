#include "platform/linux/sharing/LivePasteboard.h"

#include <gtest/gtest.h>
#include <QtCore/QMimeData>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

namespace quillmere {
namespace {

const QMimeData& content() {
  return *QGuiApplication::clipboard()->mimeData();
}

TEST(LivePasteboardTest, APictureIsThereWithItsFile) {
  LivePasteboard().write({FileURL::fromPath("/shots/a b.png"), QStringLiteral("image/png"), "bytes"});
  EXPECT_EQ(content().data(QStringLiteral("image/png")), "bytes");
  EXPECT_EQ(content().data(QStringLiteral("text/uri-list")), "file:///shots/a%20b.png\r\n");
  EXPECT_EQ(content().text(), QStringLiteral("/shots/a b.png"));
}

TEST(LivePasteboardTest, APictureThatIsInNoFileIsThereAlone) {
  LivePasteboard().write({std::nullopt, QStringLiteral("image/png"), "bytes"});
  EXPECT_EQ(content().formats(), QStringList{QStringLiteral("image/png")});
}

TEST(LivePasteboardTest, TextTakesThePlaceOfAPicture) {
  LivePasteboard().write({std::nullopt, QStringLiteral("image/png"), "bytes"});
  LivePasteboard().write(QStringLiteral("“Grüße”"));
  EXPECT_EQ(content().text(), QStringLiteral("“Grüße”"));
  EXPECT_FALSE(content().hasFormat(QStringLiteral("image/png")));
}

}  // namespace
}  // namespace quillmere
