#include "settings/IntelligencePane.h"

#include <QtWidgets/QLineEdit>

#include "settings/SettingsFixture.h"

namespace quillmere {
namespace {

class IntelligencePaneTest : public testing::SettingsFixture {
 protected:
  IntelligencePaneTest() { showPane(std::make_unique<IntelligencePane>(*model, nullptr)); }
  QLineEdit& address() const { return find<QLineEdit>(QStringLiteral("Model server address")); }
};

TEST_F(IntelligencePaneTest, AnalysisIsTurnedOnAndOff) {
  expectToWriteAndFollow({{"Analyze screenshots", [&] { return *model->settings().analyzeScreenshots; },
                           [&](bool isOn) { model->setAnalyzeScreenshots(isOn); }}});
}

TEST_F(IntelligencePaneTest, WhyThereAreNoDescriptionsIsSaidWhileTheyAreWanted) {
  struct Row {
    AnalysisError::Unavailability reason;
    const char* text;
  };
  for (const Row& row :
       {Row{AnalysisError::Unavailability::appleIntelligenceNotEnabled,
            "The model server on this computer has no model that can see pictures, so screenshots aren’t described. "
            "Text extraction still works."},
        Row{AnalysisError::Unavailability::deviceNotEligible,
            "No model server was found on this computer, so screenshots aren’t described. Text extraction still "
            "works."},
        Row{AnalysisError::Unavailability::modelNotReady,
            "The model is still loading. Descriptions start once it has finished."}}) {
    model->setAnalyzeScreenshots(true);
    EXPECT_FALSE(says(row.text));
    analyzer.unavailability = row.reason;
    systemEvents.didBecomeActive();
    executor.drain();
    EXPECT_TRUE(says(row.text)) << row.text;
    model->setAnalyzeScreenshots(false);
    EXPECT_FALSE(says(row.text));
  }
}

TEST_F(IntelligencePaneTest, TheAddressIsSetWhenItIsWhole) {
  shown->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(shown.get()));
  address().setFocus();
  QTest::keyClicks(&address(), QStringLiteral("localhost:8080"));
  EXPECT_EQ(*model->settings().modelAddress, QString());
  model->setAnalyzeScreenshots(!*model->settings().analyzeScreenshots);
  EXPECT_EQ(address().text(), QStringLiteral("localhost:8080")) << "what is being typed stays";
  QTest::keyClick(&address(), Qt::Key_Return);
  EXPECT_EQ(*model->settings().modelAddress, QStringLiteral("localhost:8080"));
}

TEST_F(IntelligencePaneTest, AnotherUsersServerIsUsedOnlyOnceItIsAllowed) {
  constexpr auto kQuestion =
      "“someone”, another user of this computer, runs a model server at there. It would see your screenshots and their "
      "text.";
  constexpr auto kWarning =
      "Screenshots and their text are sent to the model server of “someone”, another user of this computer, at there.";
  EXPECT_FALSE(says(kQuestion));
  const auto found = [&](std::optional<ForeignModelServer> server) {
    analyzer.foreign = std::move(server);
    model->refreshModelAvailability();
  };
  const ForeignModelServer server{QStringLiteral("someone"), QStringLiteral("there"), QStringLiteral("1001@there")};
  found(server);
  EXPECT_TRUE(says(kQuestion));
  EXPECT_FALSE(model->isAllowed(server));

  button("Use It").click();
  EXPECT_TRUE(model->isAllowed(server));
  EXPECT_EQ(Settings::storedForeignModelServers(*defaults), QStringList{QStringLiteral("1001@there")});
  EXPECT_TRUE(says(kWarning));
  const ForeignModelServer another{QStringLiteral("else"), QStringLiteral("there"), QStringLiteral("1002@there")};
  EXPECT_FALSE(model->isAllowed(another));
  model->setAllowed(another, true);
  button("Don’t Use").click();
  EXPECT_FALSE(model->isAllowed(server));
  EXPECT_TRUE(model->isAllowed(another)) << "each by itself";
  EXPECT_TRUE(says(kQuestion));

  model->setAnalyzeScreenshots(false);
  EXPECT_FALSE(says(kQuestion)) << "nothing is described";
  model->setAnalyzeScreenshots(true);
  found(std::nullopt);
  EXPECT_FALSE(says(kQuestion));
}

}  // namespace
}  // namespace quillmere
