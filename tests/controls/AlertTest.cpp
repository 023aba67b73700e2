#include "controls/Alert.h"

#include <QtGui/private/qguiapplication_p.h>
#include <QtGui/qpa/qplatformtheme.h>
#include <QtCore/QTimer>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>

#include "controls/ActionButton.h"
#include "controls/DesktopLook.h"
#include "controls/PopupSurface.h"

namespace quillmere {
namespace {

const QString kHeading = QStringLiteral("Delete <b>Screenshot</b>?");
const QString kMessage = QStringLiteral("“<b>1</b>.png” will be deleted from its folder. This can’t be undone.");

/// As on desktops whose theme has Return press the button with the focus.
class ReturnPressesButtons final : public QPlatformTheme {
 public:
  ReturnPressesButtons() : before_(std::exchange(QGuiApplicationPrivate::platform_theme, this)) {}
  ~ReturnPressesButtons() override { QGuiApplicationPrivate::platform_theme = before_; }
  ReturnPressesButtons(const ReturnPressesButtons&) = delete;
  ReturnPressesButtons& operator=(const ReturnPressesButtons&) = delete;
  QVariant themeHint(ThemeHint hint) const override {
    if (hint != ButtonPressKeys) return QPlatformTheme::themeHint(hint);
    return QVariant::fromValue(QList<Qt::Key>{Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Select});
  }

 private:
  QPlatformTheme* before_;
};

class AlertTest : public testing::DesktopLook {
 protected:
  static AlertContent question() {
    return {.symbol = QStringLiteral("trash"),
            .ink = Ink::danger,
            .heading = kHeading,
            .message = kMessage,
            .safe = QStringLiteral("Cancel"),
            .action = QStringLiteral("Delete"),
            .isDestructive = true};
  }
  /// What is asked, answered so.
  static bool answer(const std::function<void(Alert&)>& how) {
    Alert alert(question(), nullptr);
    QTimer::singleShot(0, &alert, [&] { how(alert); });
    const bool isDone = alert.ask();
    EXPECT_FALSE(alert.isVisible());
    return isDone;
  }
  static void shownBy(QWidget* parent, const std::function<void(Alert&)>& look) {
    bool isSeen = false;
    QTimer::singleShot(0, [&] {
      auto* alert = dynamic_cast<Alert*>(QApplication::activeModalWidget());
      ASSERT_TRUE(alert);
      isSeen = true;
      look(*alert);
      QTest::mouseClick(&alert->safeButton(), Qt::LeftButton);
    });
    showAlert(parent, QStringLiteral("Couldn’t Move Screenshot"), kMessage);
    EXPECT_TRUE(isSeen);
  }
};

TEST_F(AlertTest, AMessageSaysItsTitleOnceAndWaitsUntilItIsRead) {
  shownBy(nullptr, [](const Alert& alert) {
    EXPECT_EQ(alert.content().heading, QStringLiteral("Couldn’t Move Screenshot"));
    EXPECT_EQ(alert.content().message, kMessage);
    EXPECT_FALSE(alert.actionButton());
    EXPECT_TRUE(alert.windowFlags().testFlag(Qt::FramelessWindowHint)) << "no title bar that says it again";
    int headings = 0;
    for (const QLabel* label : alert.findChildren<QLabel*>()) headings += label->text() == alert.content().heading;
    EXPECT_EQ(headings, 1);
  });
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(AlertTest, TextsAreShownAsTheyAre) {
  const Alert alert(question(), nullptr);
  for (const QLabel* label : alert.findChildren<QLabel*>()) {
    EXPECT_TRUE(label->text().isEmpty() || label->textFormat() == Qt::PlainText) << label->text().toStdString();
  }
}

TEST_F(AlertTest, AScreenReaderHearsAnAlertOfThisName) {
  Alert alert(question(), nullptr);
  const auto* heard = QAccessible::queryAccessibleInterface(&alert);
  EXPECT_EQ(heard->role(), QAccessible::AlertMessage);
  EXPECT_EQ(heard->text(QAccessible::Name), kHeading);
  EXPECT_EQ(alert.windowTitle(), kHeading) << "for lists of windows";
  QStringList read;
  for (int i = 0; i < heard->childCount(); ++i) read += heard->child(i)->text(QAccessible::Name);
  read.removeAll(QString());
  EXPECT_EQ(read, (QStringList{kHeading, kMessage, QStringLiteral("Delete"), QStringLiteral("Cancel")}));
}

TEST_F(AlertTest, StandsAboveAWindowThatIsShownOnly) {
  QWidget window;
  shownBy(&window, [](const Alert& alert) { EXPECT_EQ(alert.parentWidget(), nullptr); });
  window.show();
  shownBy(&window, [&](const Alert& alert) { EXPECT_EQ(alert.parentWidget(), &window); });
}

TEST_F(AlertTest, ItsActionIsDoneByClickAndBySpace) {
  EXPECT_TRUE(answer([](Alert& alert) { QTest::mouseClick(alert.actionButton(), Qt::LeftButton); }));
  EXPECT_TRUE(answer([](Alert& alert) {
    alert.actionButton()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(alert.actionButton(), Qt::Key_Space);
  }));
  EXPECT_FALSE(answer([](Alert& alert) { QTest::mouseClick(&alert.safeButton(), Qt::LeftButton); }));
  EXPECT_FALSE(answer([](Alert& alert) { alert.close(); }));
}

void neverByReturnOrEscape(bool (*answer)(const std::function<void(Alert&)>&)) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
    EXPECT_FALSE(answer([key](Alert& alert) { QTest::keyClick(&alert, key); })) << key;
    EXPECT_FALSE(answer([key](Alert& alert) { QTest::keyClick(&alert.safeButton(), key); })) << key;
    EXPECT_FALSE(answer([key](Alert& alert) {
      alert.actionButton()->setFocus(Qt::TabFocusReason);
      QTest::keyClick(alert.actionButton(), key);
    })) << key
        << " on the action";
  }
}

TEST_F(AlertTest, ItsActionIsNeverDoneByReturn) {
  neverByReturnOrEscape(&AlertTest::answer);
}

TEST_F(AlertTest, NorWhereReturnPressesTheButtonWithTheFocus) {
  const ReturnPressesButtons theme;
  QPushButton other;
  bool isPressed = false;
  QObject::connect(&other, &QPushButton::clicked, [&] { isPressed = true; });
  QTest::keyClick(&other, Qt::Key_Return);
  ASSERT_TRUE(isPressed) << "the theme stands";
  neverByReturnOrEscape(&AlertTest::answer);
}

TEST_F(AlertTest, TheSafeAnswerHasTheFocusAndTheAccent) {
  answer([](Alert& alert) {
    EXPECT_EQ(alert.focusWidget(), &alert.safeButton());
    EXPECT_TRUE(shows(alert.safeButton(), theme().accent));
    EXPECT_FALSE(shows(*alert.actionButton(), theme().accent));
    alert.reject();
  });
}

TEST_F(AlertTest, ItsLinesAreEasilyRead) {
  const int letter = QFontMetrics(QApplication::font()).averageCharWidth();
  AlertContent content = question();
  const auto widest = [&content] {
    const Alert alert(content, nullptr);
    int width = 0;
    for (const QLabel* label : alert.findChildren<QLabel*>()) width = std::max(width, label->maximumWidth());
    return width;
  };
  content.message = QStringLiteral("Short.");
  EXPECT_GE(widest(), 30 * letter);
  content.message = kMessage.repeated(10);
  EXPECT_EQ(widest(), 60 * letter);
  Alert tall(content, nullptr);
  EXPECT_GT(tall.sizeHint().height(), 200) << "every line has room";
}

TEST_F(AlertTest, ItIsACardWithItsShadow) {
  Alert alert(question(), nullptr);
  EXPECT_TRUE(PopupSurface::isOne(alert));
  EXPECT_TRUE(alert.testAttribute(Qt::WA_TranslucentBackground));
  alert.show();
  QCoreApplication::processEvents();
  const QImage image = alert.grab().toImage();
  EXPECT_EQ(image.pixelColor(image.width() / 2, PopupSurface::kReach + 5), theme().card);
}

TEST_F(AlertTest, TheEndOfALongNameIsSeen) {
  AlertContent content = question();
  content.message = QString(200, QLatin1Char('n')) + QStringLiteral(".png will be deleted.");
  Alert alert(content, nullptr);
  QLabel* message = nullptr;
  for (auto* label : alert.findChildren<QLabel*>()) {
    if (label->accessibleName() == content.message) message = label;
  }
  ASSERT_TRUE(message) << "read out as it is";
  const QRect needed =
      message->fontMetrics().boundingRect(QRect(0, 0, message->width(), 10000), Qt::TextWordWrap, message->text());
  EXPECT_LE(needed.width(), message->width());
}

}  // namespace
}  // namespace quillmere
