#include "popup/PromptFilenameField.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>

#include "controls/Appearance.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

class PromptFilenameFieldTest : public ::testing::Test {
 protected:
  PromptFilenameFieldTest() { field.setGeometry(10, 10, 200, field.sizeHint().height()); }
  void show(Appearance::Scheme scheme) {
    Appearance appearance;
    appearance.scheme = scheme;
    window.setPalette(paletteFor(appearance, std::nullopt));
  }
  Theme theme() const { return Theme(window.palette()); }
  /// In the middle of its left side.
  QColor edge() { return window.grab(field.geometry()).toImage().pixelColor(0, field.height() / 2); }

  QWidget window;
  PromptFilenameField field{&window};
};

TEST_F(PromptFilenameFieldTest, IsAsHighAsTheButtonsWhateverItsFont) {
  EXPECT_EQ(field.height(), 36);
  QFont large = field.font();
  large.setPointSize(30);
  field.setFont(large);
  EXPECT_EQ(field.sizeHint().height(), 36);
  EXPECT_EQ(field.height(), 36);
}

TEST_F(PromptFilenameFieldTest, ShowsTheLettersOfTheNameWhateverItsFont) {
  for (const char* family : {"Inter", "Sans"}) {
    window.setFont(QFont(QString::fromLatin1(family)));
    EXPECT_EQ(field.font().family(), QString::fromLatin1(family));
    EXPECT_TRUE(field.font().styleStrategy() & QFont::PreferNoShaping);
  }
}

TEST_F(PromptFilenameFieldTest, ItsColoursFollowTheDesktop) {
  for (const auto scheme : {Appearance::Scheme::dark, Appearance::Scheme::light}) {
    show(scheme);
    EXPECT_EQ(field.palette().color(QPalette::Text), theme().text);
    EXPECT_EQ(field.palette().color(QPalette::Base).alpha(), 0) << "its ground is its own";
    EXPECT_EQ(window.grab(field.geometry()).toImage().pixelColor(100, 18), theme().field);
  }
}

TEST_F(PromptFilenameFieldTest, ANoteStandsInThePlaceOfWhatItIsFor) {
  const QString hint = field.accessibleDescription();
  EXPECT_TRUE(hint.startsWith(QStringLiteral("Return saves")));
  field.setNote(QStringLiteral("Not this one."));
  EXPECT_EQ(field.accessibleDescription(), QStringLiteral("Not this one."));
  field.setNote(std::nullopt);
  EXPECT_EQ(field.accessibleDescription(), hint);
}

TEST_F(PromptFilenameFieldTest, TheOneWithTheKeyboardHasARing) {
  show(Appearance::Scheme::light);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  field.clearFocus();
  const QColor plain = edge();
  field.setFocus();
  EXPECT_EQ(edge(), theme().focusRing);
  EXPECT_NE(edge(), plain);
}

}  // namespace
}  // namespace quillmere
