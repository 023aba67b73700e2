#include "platform/linux/choosing/PortalOptions.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

TEST(PortalOptionsTest, AFolderHasNoNameAndNoType) {
  const QVariantMap options = portalOptions(
      {.kind = FileDialogRequest::Kind::folder, .title = {}, .accept = QStringLiteral("Choose"), .directory = {}},
      QStringLiteral("t1"));
  EXPECT_EQ(options.value(QStringLiteral("directory")), true);
  EXPECT_EQ(options.value(QStringLiteral("modal")), true);
  EXPECT_EQ(options.value(QStringLiteral("handle_token")), QStringLiteral("t1"));
  for (const char* none : {"current_name", "filters", "current_folder"}) {
    EXPECT_FALSE(options.contains(QLatin1String(none))) << none;
  }
}

TEST(PortalOptionsTest, ADestinationOfNoKnownTypeTakesEveryName) {
  const QVariantMap options = portalOptions({.kind = FileDialogRequest::Kind::destination,
                                             .title = {},
                                             .accept = {},
                                             .directory = FileURL::fromPath("/tmp"),
                                             .name = QStringLiteral("1")},
                                            {});
  EXPECT_EQ(options.value(QStringLiteral("current_name")), QStringLiteral("1"));
  EXPECT_EQ(options.value(QStringLiteral("current_folder")).toByteArray(), QByteArray("/tmp\0", 5));
  EXPECT_FALSE(options.contains(QStringLiteral("filters")));
}

TEST(PortalOptionsTest, WithoutX11WindowsHaveNoNumber) {
  EXPECT_EQ(portalWindow(0x1200001), QString()) << "here, without a display";
  EXPECT_EQ(portalWindow(0), QString());
}

}  // namespace
}  // namespace quillmere
