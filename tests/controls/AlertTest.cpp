#include "controls/Alert.h"

#include <gtest/gtest.h>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

namespace quillmere {
namespace {

/// Shows an alert about a file with a telling name, looks at it, and reads it.
void showAndRead(QWidget* parent, const std::function<void(QMessageBox&)>& look) {
  bool isSeen = false;
  QTimer::singleShot(0, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_TRUE(box);
    isSeen = true;
    look(*box);
    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
  });
  showAlert(parent, QStringLiteral("Couldn’t Move Screenshot"), QStringLiteral("“<b>1</b>.png” is gone."));
  EXPECT_TRUE(isSeen);
}

TEST(Alert, TellsTitleAndMessageAndWaitsUntilItIsRead) {
  showAndRead(nullptr, [](const QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), QStringLiteral("Couldn’t Move Screenshot"));
    EXPECT_EQ(box.text(), QStringLiteral("Couldn’t Move Screenshot"));
    EXPECT_EQ(box.informativeText(), QStringLiteral("“<b>1</b>.png” is gone."));
    EXPECT_EQ(box.buttons().size(), 1);
  });
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST(Alert, AFileNameIsTextAndNothingElse) {
  showAndRead(nullptr, [](const QMessageBox& box) {
    const auto labels = box.findChildren<QLabel*>();
    EXPECT_FALSE(labels.isEmpty());
    for (const QLabel* label : labels) {
      EXPECT_TRUE(label->text().isEmpty() || label->textFormat() == Qt::PlainText) << label->text().toStdString();
    }
  });
}

TEST(Alert, StandsAboveAWindowThatIsShownOnly) {
  QWidget window;
  showAndRead(&window, [](const QMessageBox& box) { EXPECT_EQ(box.parentWidget(), nullptr); });
  window.show();
  showAndRead(&window, [&](const QMessageBox& box) { EXPECT_EQ(box.parentWidget(), &window); });
}

}  // namespace
}  // namespace quillmere
