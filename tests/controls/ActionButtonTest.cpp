#include "controls/ActionButton.h"

#include <QtTest/QTest>

#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

using Role = ActionButton::Role;

class ActionButtonTest : public testing::DesktopLook {};

TEST_F(ActionButtonTest, ThePrimaryButtonHasTheDesktopsAccent) {
  ActionButton button(ActionButton::Role::primary, {}, QStringLiteral("Temporary"));
  button.resize(button.sizeHint());
  for (const QColor& accent : {QColor(0x9141ac), QColor(Qt::yellow)}) {
    Appearance appearance = of(Scheme::dark);
    appearance.accent = accent;
    show(appearance);
    EXPECT_TRUE(shows(button, accent));
    EXPECT_TRUE(shows(button, theme().onAccent));
  }
}

TEST_F(ActionButtonTest, AButtonHasAnOutlineOnlyInHigherContrast) {
  ActionButton button(ActionButton::Role::secondary, {}, {});
  button.resize(button.sizeHint());
  const auto atEdge = [&button] {
    const QImage image = button.grab().toImage();
    return image.pixelColor(image.width() / 2, 0) != image.pixelColor(image.width() / 2, image.height() / 2);
  };
  EXPECT_FALSE(atEdge());
  show(of(Scheme::light, true));
  EXPECT_TRUE(atEdge());
}

TEST_F(ActionButtonTest, IsAsWideAsItsTextAndItsSymbol) {
  const ActionButton plain(Role::secondary, {}, QStringLiteral("Keep"));
  const ActionButton longer(Role::secondary, {}, QStringLiteral("Keep it for ever"));
  const ActionButton withSymbol(Role::secondary, QStringLiteral("checkmark"), QStringLiteral("Keep"));
  EXPECT_EQ(plain.sizeHint().height(), 36);
  EXPECT_GT(longer.sizeHint().width(), plain.sizeHint().width());
  EXPECT_EQ(withSymbol.sizeHint().width(), plain.sizeHint().width() + 18 + 7);
  EXPECT_EQ(ActionButton(Role::icon, QStringLiteral("xmark"), {}).sizeHint(), QSize(28, 28));
}

TEST_F(ActionButtonTest, ANoteStandsForItsTextAndChangesNeitherSizeNorName) {
  ActionButton button(Role::secondary, QStringLiteral("document.on.document"), QStringLiteral("Copy"));
  button.resize(button.sizeHint());
  const QSize size = button.sizeHint();
  const QImage before = button.grab().toImage();
  button.setNote(QStringLiteral("Copied"));
  EXPECT_NE(button.grab().toImage(), before);
  EXPECT_EQ(button.sizeHint(), size);
  EXPECT_EQ(button.text(), QStringLiteral("Copy"));
  button.setNote({});
  EXPECT_EQ(button.grab().toImage(), before);
}

TEST_F(ActionButtonTest, EachRoleHasItsInk) {
  const std::pair<Role, QColor> rows[] = {{Role::primary, theme().onAccent},
                                          {Role::secondary, theme().text},
                                          {Role::destructive, theme().danger},
                                          {Role::icon, theme().secondaryText}};
  for (const auto& [role, ink] : rows) {
    ActionButton button(role, QStringLiteral("checkmark.circle.fill"), {});
    button.resize(80, 40);
    EXPECT_TRUE(shows(button, ink)) << static_cast<int>(role);
  }
}

TEST_F(ActionButtonTest, OneThatCannotBePressedIsFaint) {
  ActionButton button(Role::primary, {}, QStringLiteral("Temporary"));
  button.resize(button.sizeHint());
  EXPECT_TRUE(shows(button, theme().accent));
  button.setEnabled(false);
  EXPECT_FALSE(shows(button, theme().accent));
}

TEST_F(ActionButtonTest, WhenDimmedItLooksUnavailableAndCanStillHaveTheKeyboard) {
  ActionButton button(Role::primary, {}, QStringLiteral("Temporary"));
  button.resize(button.sizeHint());
  button.setDimmed(true);
  EXPECT_FALSE(shows(button, theme().accent));
  EXPECT_TRUE(button.isEnabled());
  button.setDimmed(false);
  EXPECT_TRUE(shows(button, theme().accent));
}

TEST_F(ActionButtonTest, AClickTakesNoKeyboardAndTabDoes) {
  QWidget window;
  ActionButton first(Role::secondary, {}, QStringLiteral("First"), &window);
  ActionButton second(Role::secondary, {}, QStringLiteral("Second"), &window);
  second.move(200, 0);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  first.setFocus();
  QTest::mouseClick(&second, Qt::LeftButton);
  EXPECT_TRUE(first.hasFocus());
  EXPECT_TRUE(shows(first, theme().focusRing));
  QTest::keyClick(&first, Qt::Key_Tab);
  EXPECT_TRUE(second.hasFocus());
  EXPECT_FALSE(shows(first, theme().focusRing));
}

TEST_F(ActionButtonTest, ReturnIsLeftToTheWindow) {
  EXPECT_FALSE(ActionButton(Role::primary, {}, QStringLiteral("Temporary")).autoDefault());
}

}  // namespace
}  // namespace quillmere
