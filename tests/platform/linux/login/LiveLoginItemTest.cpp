#include "platform/linux/login/LiveLoginItem.h"

#include <gtest/gtest.h>

#include "platform/linux/login/PortalLoginItem.h"
#include "platform/linux/login/XdgLoginItem.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class LiveLoginItemTest : public ::testing::Test {
 protected:
  ~LiveLoginItemTest() override { qunsetenv("SNAP"); }
  template <typename Kind>
  bool isA() {
    const auto item = liveLoginItem(QDBusConnection(QStringLiteral("none")), defaults);
    return dynamic_cast<Kind*>(item.get());
  }
  testing::TemporaryFolder folder;
  UserDefaults defaults{folder.file("settings.json").displayPath()};
};

TEST_F(LiveLoginItemTest, IsAnEntryOfTheSessionAndInASandboxThePortals) {
  qunsetenv("SNAP");
  EXPECT_TRUE(isA<XdgLoginItem>());
  qputenv("SNAP", "/snap/quillmere/1");
  EXPECT_TRUE(isA<PortalLoginItem>());
}

}  // namespace
}  // namespace quillmere
