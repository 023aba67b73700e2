#include "update/UpdateLibrary.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "update/Installation.h"

namespace quillmere {
namespace {

class UpdateLibraryTest : public ::testing::Test {
 protected:
  UpdateLibraryTest() { installation.configure(testing::Installation::good()); }
  bool load() { return library->load(UpdateConfiguration::ofProgram(installation.program())); }
  void expectNone() {
    EXPECT_FALSE(load());
    EXPECT_FALSE(model.canCheckForUpdates());
    model.checkForUpdates();
    model.setChecksForUpdatesAutomatically(true);
    EXPECT_FALSE(model.checksForUpdatesAutomatically());
  }

  testing::Installation installation;
  SoftwareUpdateModel model;
  UserDefaults defaults{QString::fromStdString(installation.file("settings.json").path())};
  std::unique_ptr<UpdateLibrary> library =
      std::make_unique<UpdateLibrary>(model, defaults, UpdateLibrary::Services{[] {}, [] {}, [] { return true; }});
};

TEST_F(UpdateLibraryTest, WithTheLibraryBesideTheProgramUpdatesCanBeChecked) {
  installation.install(QUILLMERE_UPDATE_LIBRARY);
  EXPECT_TRUE(load());
  EXPECT_TRUE(model.canCheckForUpdates());
  EXPECT_TRUE(model.checksForUpdatesAutomatically());
  library.reset();
  EXPECT_FALSE(model.canCheckForUpdates());
  EXPECT_FALSE(model.checkForUpdatesAction);
}

TEST_F(UpdateLibraryTest, WhetherItChecksByItselfIsRemembered) {
  installation.install(QUILLMERE_UPDATE_LIBRARY);
  ASSERT_TRUE(load());
  model.setChecksForUpdatesAutomatically(false);
  EXPECT_FALSE(model.checksForUpdatesAutomatically());
  EXPECT_EQ(defaults.boolean(QLatin1String(UpdateLibrary::kAutomaticKey)), false);
  library =
      std::make_unique<UpdateLibrary>(model, defaults, UpdateLibrary::Services{[] {}, [] {}, [] { return true; }});
  ASSERT_TRUE(load());
  EXPECT_FALSE(model.checksForUpdatesAutomatically());
}

TEST_F(UpdateLibraryTest, WithoutAConfigurationNothingIsLoaded) {
  installation.install(QUILLMERE_UPDATE_LIBRARY);
  EXPECT_FALSE(library->load(std::nullopt));
  EXPECT_FALSE(model.canCheckForUpdates());
}

TEST_F(UpdateLibraryTest, WithoutTheLibraryNothingCanBeChecked) {
  expectNone();
}

TEST_F(UpdateLibraryTest, ALibraryOfAnotherInterfaceIsNotUsed) {
  installation.install(QUILLMERE_OTHER_LIBRARY);
  expectNone();
}

TEST_F(UpdateLibraryTest, ALibraryThatCannotUpdateThisWayLeavesTheModelAlone) {
  installation.install(QUILLMERE_UPDATE_LIBRARY);
  // Nobody could be believed by it.
  std::ofstream(installation.file("share/quillmere/authority.pem").path()) << "no certificate";
  QByteArray configuration = testing::Installation::good();
  configuration.replace("}", R"(,"authority":"authority.pem"})");
  installation.configure(configuration);
  expectNone();
  EXPECT_FALSE(model.checkForUpdatesAction);
  EXPECT_FALSE(model.setChecksForUpdatesAutomaticallyAction);
}

TEST_F(UpdateLibraryTest, WhatIsNoUpdateLibraryIsNotUsed) {
  std::ofstream(installation.library().path()) << "no library";
  expectNone();
}

TEST_F(UpdateLibraryTest, ALibraryThatOthersCanReplaceIsNotLoaded) {
  installation.install(QUILLMERE_UPDATE_LIBRARY);
  ::chmod(installation.file("lib").c_str(), 0777);
  expectNone();
  ::chmod(installation.file("lib").c_str(), 0755);
  std::filesystem::remove(installation.library().path());
  std::filesystem::create_symlink(QUILLMERE_UPDATE_LIBRARY, installation.library().path());
  expectNone();
}

}  // namespace
}  // namespace quillmere
