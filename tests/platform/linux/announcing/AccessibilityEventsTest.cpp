#include "platform/linux/announcing/AccessibilityEvents.h"

#include <QtGui/private/qguiapplication_p.h>
#include <gtest/gtest.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>
#include <QtGui/QAccessible>

#include "support/Printing.h"

namespace quillmere {
namespace {

struct Told {
  QAccessible::Event event;
  QAccessible::Role role;
  QString name;
  QAccessible::Id id;
};
std::vector<Told> told;

void note(QAccessibleEvent* event) {
  QAccessibleInterface* interface = event->accessibleInterface();
  ASSERT_TRUE(interface);
  told.push_back({event->type(), interface->role(), interface->text(QAccessible::Name), event->uniqueId()});
}

class AccessibilityEventsTest : public ::testing::Test {
 protected:
  AccessibilityEventsTest() {
    told.clear();
    setReading(true);
    before_ = QAccessible::installUpdateHandler(&note);
  }
  ~AccessibilityEventsTest() override {
    QAccessible::installUpdateHandler(before_);
    setReading(false);
  }

 private:
  /// As the platform notices that a reader runs.
  static void setReading(bool isReading) {
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(isReading);
  }
  QAccessible::UpdateHandler before_;
};

TEST_F(AccessibilityEventsTest, ANotificationShowsWithItsTextEachTime) {
  AccessibilityEvents events;
  events.notify(QStringLiteral("Screenshot kept."));
  events.notify(QStringLiteral("Screenshot kept."));
  events.notify(QStringLiteral("Moved to Trash."));
  ASSERT_EQ(told.size(), 3u);
  for (const Told& one : told) {
    EXPECT_EQ(one.event, QAccessible::ObjectShow);
    EXPECT_EQ(one.role, QAccessible::Notification);
    EXPECT_EQ(one.id, told[0].id) << "the same that says another thing";
  }
  EXPECT_EQ(told[1].name, QStringLiteral("Screenshot kept."));
  EXPECT_EQ(told[2].name, QStringLiteral("Moved to Trash."));
}

TEST_F(AccessibilityEventsTest, WithoutItsBusNothingIsPossibleAndNobodyHarmed) {
  EXPECT_FALSE(AccessibilityEvents::isPossible());
  AccessibilityEvents::announce(QStringLiteral("Screenshot kept."), AnnouncementPriority::high);
  EXPECT_TRUE(told.empty());
}

}  // namespace
}  // namespace quillmere
