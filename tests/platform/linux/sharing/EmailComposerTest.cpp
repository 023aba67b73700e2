#include "platform/linux/sharing/EmailComposer.h"

#include "support/Files.h"
#include "support/MockBus.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::MockBus;
using testing::MockService;

const QString kInterface = QStringLiteral("org.freedesktop.portal.Email");

/// A desktop whose portal writes down of each message where its attachments lie, and no command for mail.
class EmailComposerTest : public ::testing::Test {
 protected:
  EmailComposerTest() {
    ::setenv("PATH", folder.path().c_str(), 1);
    portal->addProperty(kInterface, QStringLiteral("version"), 3u);
  }
  ~EmailComposerTest() override { ::setenv("PATH", path.c_str(), 1); }

  void takeMessages() {
    portal->addMethod(kInterface, QStringLiteral("ComposeEmail"), QStringLiteral("sa{sv}"), QStringLiteral("o"),
                      QStringLiteral(R"(
import os
with open('%1', 'ab') as file:
    file.write(b'message\n')
    for descriptor in args[1]['attachment_fds']:
        number = descriptor.take()
        file.write(os.readlink(b'/proc/self/fd/%d' % number) + b'\0' + os.read(number, 100) + b'\0')
        os.close(number)
ret = dbus.ObjectPath('/request')
)")
                          .arg(written.displayPath()));
  }
  std::vector<FileURL> pictures(const std::vector<std::string>& names) {
    std::vector<FileURL> files;
    for (const std::string& name : names) {
      files.push_back(folder.file(name));
      testing::writeFile(files.back(), "picture " + name);
    }
    return files;
  }
  std::string message(const std::vector<std::string>& names) {
    std::string text = "message\n";
    for (const std::string& name : names) {
      for (const std::string& part : {folder.file(name).path(), "picture " + name}) text += part + '\0';
    }
    return text;
  }

  testing::TemporaryFolder folder;
  FileURL written = folder.file("written");
  std::string path = std::getenv("PATH");
  MockBus bus;
  std::unique_ptr<MockService> portal =
      MockService::bare(bus, QStringLiteral("org.freedesktop.portal.Desktop"),
                        QStringLiteral("/org/freedesktop/portal/desktop"), kInterface);
};

TEST_F(EmailComposerTest, ThePortalGetsOneFile) {
  takeMessages();
  EXPECT_TRUE(EmailComposer::isAvailable(bus.connection()));
  EXPECT_TRUE(EmailComposer::compose(bus.connection(), pictures({"a b.png"})));
  EXPECT_EQ(testing::readBytes(written), message({"a b.png"}));
}

TEST_F(EmailComposerTest, ThePortalGetsSeveralFilesOfAnyNameInOneMessage) {
  takeMessages();
  std::vector<std::string> names{"a b.png", "a\nb.png", "\"a\" 'b'.png", "-o.png", "a\xFF\xFE.png"};
  EXPECT_TRUE(EmailComposer::compose(bus.connection(), pictures(names)));
  EXPECT_EQ(testing::readBytes(written), message(names));
}

TEST_F(EmailComposerTest, ThePortalGetsAsManyAsTheBusTakesAndNoMoreAreTried) {
  takeMessages();
  std::vector<std::string> names;
  for (int i = 0; i < 16; ++i) names.push_back(std::to_string(i) + ".png");
  EXPECT_TRUE(EmailComposer::compose(bus.connection(), pictures(names)));
  EXPECT_EQ(testing::readBytes(written), message(names));
  names.emplace_back("one more.png");
  EXPECT_FALSE(EmailComposer::compose(bus.connection(), pictures(names)));
  EXPECT_TRUE(EmailComposer::isAvailable(bus.connection())) << "this program is still on the bus";
  EXPECT_EQ(testing::readBytes(written), message({names.begin(), names.end() - 1}));
}

TEST_F(EmailComposerTest, OfWhichOneIsNoFileNoneIsSent) {
  takeMessages();
  auto files = pictures({"a.png"});
  files.push_back(folder.file("gone.png"));
  EXPECT_FALSE(EmailComposer::compose(bus.connection(), files));
  files.back() = folder.file("link.png");
  std::filesystem::create_symlink(files.front().path(), files.back().path());
  EXPECT_FALSE(EmailComposer::compose(bus.connection(), files));
  EXPECT_FALSE(std::filesystem::exists(written.path()));
}

TEST_F(EmailComposerTest, WhereThePortalRefusesTheCommandIsAsked) {
  const auto files = pictures({"a.png", "-b.png"});
  EXPECT_FALSE(EmailComposer::compose(bus.connection(), files)) << "there is neither";
  const FileURL command = folder.file("xdg-email");
  testing::writeFile(command, "#!/bin/sh\nprintf '%s ' \"$@\" > '" + folder.path() + "/writing'\n/bin/mv '" +
                                  folder.path() + "/writing' '" + written.path() + "'\n");
  std::filesystem::permissions(command.path(), std::filesystem::perms::owner_all);
  EXPECT_TRUE(EmailComposer::compose(bus.connection(), files));
  ASSERT_TRUE(testing::runLoopUntil([this] { return std::filesystem::exists(written.path()); }));
  EXPECT_EQ(testing::readBytes(written), "--utf8 --attach " + files[0].path() + " --attach " + files[1].path() + " ");
}

TEST_F(EmailComposerTest, WithoutPortalAndCommandThereIsNoMail) {
  portal->stop();
  EXPECT_FALSE(EmailComposer::isAvailable(bus.connection()));
  EXPECT_FALSE(EmailComposer::compose(bus.connection(), pictures({"a.png"})));
}

}  // namespace
}  // namespace quillmere
