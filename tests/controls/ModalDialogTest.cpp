#include "controls/ModalDialog.h"

#include <gtest/gtest.h>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>

namespace quillmere {
namespace {

class Window final : public QPushButton {
 public:
  Window() {
    show();
    connect(this, &QPushButton::clicked, [this] { ++clicks; });
  }
  /// By way of the window system, as the person does it.
  void click() { QTest::mouseClick(windowHandle(), Qt::LeftButton, {}, QPoint(2, 2)); }
  int clicks = 0;
};

/// Clicks both windows while a dialog shows.
void run(QWidget* parent, Window& first, Window& second) {
  QDialog dialog(parent);
  QTimer::singleShot(0, &dialog, [&] {
    first.click();
    second.click();
    dialog.accept();
  });
  EXPECT_EQ(runModal(dialog), QDialog::Accepted);
}

TEST(ModalDialogTest, TheWindowThatItBelongsToWaitsAndNoOther) {
  Window owner, other;
  run(&owner, owner, other);
  EXPECT_EQ(owner.clicks, 0);
  EXPECT_EQ(other.clicks, 1);
}

TEST(ModalDialogTest, OneOfNoWindowHoldsUpAll) {
  Window first, second;
  run(nullptr, first, second);
  EXPECT_EQ(first.clicks + second.clicks, 0);
}

TEST(ModalDialogTest, OneWhoseWindowGoesIsRejectedAndStays) {
  auto* owner = new QWidget;
  owner->show();
  QDialog dialog(owner);
  QTimer::singleShot(0, owner, [owner] { delete owner; });
  EXPECT_EQ(runModal(dialog), QDialog::Rejected);
  EXPECT_EQ(dialog.parentWidget(), nullptr);
  EXPECT_FALSE(dialog.isVisible());
}

}  // namespace
}  // namespace quillmere
