#include "editor/CropEditorHeading.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

const QString kName = QStringLiteral("<b>Screenshot from 2026-11-21 09-41-07 with a long name</b>.png");

class CropEditorHeadingTest : public ::testing::Test {
 protected:
  CropEditorHeadingTest() {
    heading.resize(900, 40);
    heading.show();
  }
  QPushButton& button(const char* name) const {
    for (auto* found : heading.findChildren<QPushButton*>()) {
      if (found->accessibleName() == QString::fromUtf8(name)) return *found;
    }
    throw std::out_of_range(name);
  }
  QLabel& name() const {
    for (auto* label : heading.findChildren<QLabel*>()) {
      if (label->accessibleName() == kName) return *label;
    }
    throw std::out_of_range("name");
  }
  CropEditorHeading heading{QStringLiteral("Crop"), kName, nullptr};
};

TEST_F(CropEditorHeadingTest, TheNameIsShownAsItIsAndShortenedInItsMiddle) {
  QCoreApplication::processEvents();
  EXPECT_EQ(name().text(), kName);
  EXPECT_EQ(name().textFormat(), Qt::PlainText);
  heading.resize(420, 40);
  QCoreApplication::processEvents();
  EXPECT_TRUE(name().text().contains(QChar(0x2026)));
  EXPECT_TRUE(name().text().endsWith(QStringLiteral(".png")));
  EXPECT_TRUE(name().toolTip().contains(kName.toHtmlEscaped()));
}

TEST_F(CropEditorHeadingTest, EachButtonDoesItsOwnWhereItCan) {
  QStringList done;
  heading.onUndo = [&] { done << QStringLiteral("Undo"); };
  heading.onRedo = [&] { done << QStringLiteral("Redo"); };
  heading.onFit = [&] { done << QStringLiteral("Fit to Window"); };
  heading.onRealSize = [&] { done << QStringLiteral("Real Size"); };
  const auto press = [&] {
    done.clear();
    for (const char* name : {"Undo", "Redo", "Fit to Window", "Real Size"}) {
      QTest::mouseClick(&button(name), Qt::LeftButton);
    }
    return done.join(QStringLiteral(", "));
  };
  EXPECT_EQ(press(), QString());
  heading.setCanUndo(true, false);
  EXPECT_EQ(press(), QStringLiteral("Undo"));
  heading.setCanUndo(false, true);
  heading.setCanZoom(true);
  EXPECT_EQ(press(), QStringLiteral("Redo, Fit to Window, Real Size"));
}

}  // namespace
}  // namespace quillmere
