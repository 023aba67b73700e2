#include "platform/linux/files/Bookmark.h"

#include <gtest/gtest.h>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include "support/Printing.h"

namespace quillmere {
namespace {

Bookmark fullBookmark() {
  Bookmark bookmark;
  bookmark.url = FileURL::fromPath("/shots/Größe 100%.png");
  bookmark.volume = "0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0";
  bookmark.file = UINT64_MAX;
  bookmark.creationDate = Date{700000000.1234567};
  bookmark.isDirectory = true;
  bookmark.mountPoint = "/media/My Disk";
  return bookmark;
}

TEST(BookmarkTest, EveryFieldComesBack) {
  const Bookmark bookmark = fullBookmark();
  const auto read = Bookmark::decode(bookmark.encoded());
  ASSERT_TRUE(read);
  EXPECT_EQ(read->url, bookmark.url);
  EXPECT_EQ(read->volume, bookmark.volume);
  EXPECT_EQ(read->file, bookmark.file);
  EXPECT_EQ(read->creationDate, bookmark.creationDate);
  EXPECT_EQ(read->isDirectory, bookmark.isDirectory);
  EXPECT_EQ(read->mountPoint, bookmark.mountPoint);
}

TEST(BookmarkTest, ItIsASmallJsonObject) {
  const QJsonObject object = QJsonDocument::fromJson(fullBookmark().encoded()).object();
  EXPECT_EQ(object[QLatin1String("path")].toString(), QStringLiteral("/shots/Größe 100%.png"));
  EXPECT_EQ(object[QLatin1String("file")].toString(), QStringLiteral("18446744073709551615"));
  EXPECT_TRUE(object[QLatin1String("creationDate")].isDouble());
}

TEST(BookmarkTest, NamesThatAreNotTextKeepTheirBytes) {
  Bookmark bookmark;
  bookmark.url = FileURL::fromPath("/shots/caf\xe9\xff %41.png");
  bookmark.mountPoint = "/media/\xff disk";
  const auto read = Bookmark::decode(bookmark.encoded());
  ASSERT_TRUE(read);
  EXPECT_EQ(read->url, bookmark.url);
  EXPECT_EQ(read->mountPoint, bookmark.mountPoint);
}

TEST(BookmarkTest, APathAloneIsValid) {
  const auto read = Bookmark::decode(R"({"path":"/shots/a.png"})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->url, FileURL::fromPath("/shots/a.png"));
  EXPECT_FALSE(read->volume || read->file || read->creationDate || read->isDirectory || read->mountPoint);
}

TEST(BookmarkTest, FieldsOfAnotherTypeAreAbsent) {
  const auto read = Bookmark::decode(
      R"({"path":"/a","volume":5,"file":"12x","creationDate":"soon","directory":"yes","mountPoint":[]})");
  ASSERT_TRUE(read);
  EXPECT_FALSE(read->volume || read->file || read->creationDate || read->isDirectory || read->mountPoint);
}

class NoBookmarkTest : public ::testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(Bytes, NoBookmarkTest,
                         ::testing::Values("", "null", "[]", "{}", "{", "\"/a\"", R"({"path":""})", R"({"path":5})",
                                           R"({"path":"relative"})", R"({"path":"file://elsewhere/a"})",
                                           R"({"path":"/a\u0000b"})", R"({"path":"file:///a%00b"})", "book\x00\x00mark",
                                           "\xff\xfe\xfd", std::string(100000, '[')));

TEST_P(NoBookmarkTest, AnythingElseIsNone) {
  EXPECT_FALSE(Bookmark::decode(QByteArray::fromStdString(GetParam())));
}

}  // namespace
}  // namespace quillmere
