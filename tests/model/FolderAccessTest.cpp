#include "model/FolderAccess.h"

#include <gtest/gtest.h>

#include "fakes/ModelFakes.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

class FolderAccessTest : public ::testing::Test {
 protected:
  FolderAccessTest() {
    for (const FileURL& url : {first, second}) std::filesystem::create_directories(url.path());
  }
  TemporaryFolder home;
  const FileURL first = home.file("first");
  const FileURL second = home.file("second");
  CallLog log;
  FakeSecurityScope scope{log};
  std::unique_ptr<FolderAccess> access = std::make_unique<FolderAccess>(scope);
};

TEST_F(FolderAccessTest, AnOpenFolderIsHeldUntilTheEnd) {
  EXPECT_TRUE(access->openFolder(first));
  EXPECT_EQ(access->folder(), first);
  EXPECT_TRUE(scope.isOpen(first));
  access.reset();
  EXPECT_EQ(scope.openCount(), 0);
}

TEST_F(FolderAccessTest, ARefusedFolderIsNotHeld) {
  scope.refusesAccess.insert(first.path());
  EXPECT_FALSE(access->openFolder(first));
  EXPECT_EQ(access->folder(), std::nullopt);
  access.reset();
  EXPECT_EQ(scope.stops, 0);
}

TEST_F(FolderAccessTest, ARetiredFolderStaysOpenUntilItIsEnded) {
  access->openFolder(first);
  access->retireFolder();
  EXPECT_EQ(access->folder(), std::nullopt);
  access->openFolder(second);
  EXPECT_TRUE(scope.isOpen(first));
  access->endRetired();
  EXPECT_FALSE(scope.isOpen(first));
  EXPECT_TRUE(scope.isOpen(second));
  access->endRetired();
  EXPECT_EQ(scope.stopsWithoutStart, 0);
}

TEST_F(FolderAccessTest, WithoutAFolderNothingIsRetired) {
  access->retireFolder();
  access->endRetired();
  EXPECT_EQ(scope.stops, 0);
}

TEST_F(FolderAccessTest, ARetiredFolderEndsWithTheRest) {
  access->openFolder(first);
  access->retireFolder();
  access.reset();
  EXPECT_EQ(scope.openCount(), 0);
}

TEST_F(FolderAccessTest, AnItemHasOneAccessAtATime) {
  access->openItem(uuid(1), first);
  access->openItem(uuid(1), second);
  EXPECT_EQ(access->item(uuid(1)), second);
  EXPECT_FALSE(scope.isOpen(first));
  access->openItem(uuid(1), second);
  EXPECT_EQ(scope.open[second.path()], 1);
  access->closeItem(uuid(1));
  access->closeItem(uuid(1));
  EXPECT_EQ(access->item(uuid(1)), std::nullopt);
  EXPECT_EQ(scope.openCount(), 0);
  EXPECT_EQ(scope.stopsWithoutStart, 0);
}

TEST_F(FolderAccessTest, ARefusedItemKeepsTheAccessItHad) {
  access->openItem(uuid(1), first);
  scope.refusesAccess.insert(second.path());
  access->openItem(uuid(1), second);
  EXPECT_EQ(access->item(uuid(1)), first);
  EXPECT_TRUE(scope.isOpen(first));
}

TEST_F(FolderAccessTest, ItemsAreClosedAtTheEnd) {
  access->openItem(uuid(1), first);
  access->openItem(uuid(2), first);
  EXPECT_EQ(scope.open[first.path()], 2);
  access.reset();
  EXPECT_EQ(scope.openCount(), 0);
}

}  // namespace
}  // namespace quillmere::testing
