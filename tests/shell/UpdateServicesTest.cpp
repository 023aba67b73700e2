#include "shell/UpdateServices.h"

#include <gtest/gtest.h>
#include <QtWidgets/QWidget>

#include "update/Installation.h"

namespace quillmere {
namespace {

/// A library that shows no windows but asks for all that they need.
class UpdateServicesTest : public ::testing::Test {
 protected:
  UpdateServicesTest() {
    installation.configure(testing::Installation::good());
    installation.install(QUILLMERE_UPDATE_LIBRARY_WITHOUT_WINDOWS);
    EXPECT_TRUE(library.load(UpdateConfiguration::ofProgram(installation.program())));
  }
  void showUpdate() const { updates.checkForUpdates(); }
  void closeUpdate() const { updates.setChecksForUpdatesAutomatically(false); }

  testing::Installation installation;
  SoftwareUpdateModel updates;
  UserDefaults defaults{QString::fromStdString(installation.file("settings.json").path())};
  ApplicationWindows windows;
  ActivationPolicyLoan loan{windows};
  bool quits = true;
  UpdateLibrary library{updates, defaults, updateServices(loan, [this] { return quits; })};
};

TEST_F(UpdateServicesTest, AnUpdateHasAPlaceAsLongAsItShows) {
  showUpdate();
  EXPECT_EQ(windows.policy(), ActivationPolicy::regular);
  closeUpdate();
  EXPECT_EQ(windows.policy(), ActivationPolicy::accessory);
}

TEST_F(UpdateServicesTest, AWindowThatIsOpenedMeanwhileKeepsThePlace) {
  showUpdate();
  QWidget window;
  windows.open(window);
  closeUpdate();
  EXPECT_EQ(windows.policy(), ActivationPolicy::regular);
  window.close();
  EXPECT_EQ(windows.policy(), ActivationPolicy::accessory);
}

TEST_F(UpdateServicesTest, TheUpdaterLearnsWhetherTheProgramEnds) {
  updates.setChecksForUpdatesAutomatically(true);
  EXPECT_FALSE(updates.checksForUpdatesAutomatically()) << "it ends";
  quits = false;
  updates.setChecksForUpdatesAutomatically(true);
  EXPECT_TRUE(updates.checksForUpdatesAutomatically()) << "it goes on";
}

}  // namespace
}  // namespace quillmere
