#include "platform/linux/choosing/DocumentPaths.h"

#include <sys/xattr.h>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusVirtualObject>

#include "support/MockBus.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::runLoopUntil;

/// The portal that lends documents.
class FakeDocuments final : public QDBusVirtualObject {
 public:
  explicit FakeDocuments(QDBusConnection& bus) : bus_(bus) {
    qDBusRegisterMetaType<QMap<QString, QByteArray>>();
    bus_.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/documents"), this);
    bus_.registerService(QStringLiteral("org.freedesktop.portal.Documents"));
  }
  ~FakeDocuments() override {
    bus_.unregisterService(QStringLiteral("org.freedesktop.portal.Documents"));
    bus_.unregisterObject(QStringLiteral("/org/freedesktop/portal/documents"));
  }
  QMap<QString, QByteArray> paths;
  int questions = 0;

 protected:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    ++questions;
    connection.send(message.createReply(QVariant::fromValue(paths)));
    return true;
  }

 private:
  QDBusConnection bus_;
};

class DocumentPathsTest : public ::testing::Test {
 protected:
  static constexpr auto kOwn = "under test";

  DocumentPathsTest() { std::filesystem::create_directories(lent("Shots/inner").path()); }
  ~DocumentPathsTest() override {
    paths.reset();
    QDBusConnection::disconnectFromBus(QLatin1String(kOwn));
  }
  FileURL lent(const std::string& rest) const { return folder.file("doc/1a2b/" + rest); }
  void connect() {
    paths = std::make_unique<DocumentPaths>(QDBusConnection::connectToBus(bus.address(), QLatin1String(kOwn)),
                                            folder.file("doc"));
  }
  FileURL resolved(const FileURL& file) {
    std::optional<FileURL> told;
    paths->resolve(file, [&](const FileURL& real) { told = real; });
    EXPECT_TRUE(runLoopUntil([&] { return told.has_value(); }));
    return told.value_or(FileURL());
  }
  /// As the portal's file system has it.
  bool mark(const FileURL& file, const std::string& host) {
    return ::setxattr(file.c_str(), "user.document-portal.host-path", host.data(), host.size(), 0) == 0;
  }

  testing::TemporaryFolder folder;
  testing::MockBus bus;
  std::unique_ptr<DocumentPaths> paths;
};

TEST_F(DocumentPathsTest, WhatIsNotLentIsWhereItIs) {
  connect();
  EXPECT_EQ(resolved(FileURL::fromPath("/home/p/Shots")).path(), "/home/p/Shots");
  EXPECT_EQ(resolved(folder.file("documents/1")), folder.file("documents/1")) << "a like name";
}

TEST_F(DocumentPathsTest, ALentFolderIsKnownByItsOwnPlace) {
  connect();
  if (!mark(lent("Shots"), "/home/p/Shots \xE9")) GTEST_SKIP() << "no attributes here";
  EXPECT_EQ(resolved(lent("Shots")).path(), "/home/p/Shots \xE9");
  EXPECT_EQ(resolved(lent("Shots/inner")).path(), "/home/p/Shots \xE9/inner") << "a folder below it";
  EXPECT_EQ(resolved(lent("Shots/inner/new.png")).path(), "/home/p/Shots \xE9/inner/new.png") << "not there yet";
}

TEST_F(DocumentPathsTest, AnEndingZeroBelongsToNoName) {
  connect();
  if (!mark(lent("Shots"), std::string("/home/p/Shots\0", 14))) GTEST_SKIP() << "no attributes here";
  EXPECT_EQ(resolved(lent("Shots")).path(), "/home/p/Shots");
}

TEST_F(DocumentPathsTest, WithoutAttributesThePortalIsAsked) {
  FakeDocuments documents(bus.connection());
  documents.paths[QStringLiteral("1a2b")] = QByteArray("/home/p/Shots\0", 14);
  connect();
  ASSERT_TRUE(runLoopUntil([&] { return resolved(lent("Shots")) != lent("Shots"); }));
  EXPECT_EQ(resolved(lent("Shots")).path(), "/home/p/Shots");
  EXPECT_EQ(resolved(lent("Shots/inner/new.png")).path(), "/home/p/Shots/inner/new.png");
  EXPECT_GT(documents.questions, 0);
  documents.paths.clear();
  EXPECT_EQ(resolved(lent("Shots")), lent("Shots")) << "it does not know it either";
}

TEST_F(DocumentPathsTest, WhereNobodyKnowsItStays) {
  connect();
  EXPECT_EQ(resolved(lent("Shots")), lent("Shots"));
}

}  // namespace
}  // namespace quillmere
