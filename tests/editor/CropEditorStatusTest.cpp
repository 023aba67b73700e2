#include "editor/CropEditorStatus.h"

#include <gtest/gtest.h>
#include <QtWidgets/QLabel>

#include "support/Printing.h"

namespace quillmere {
namespace {

class CropEditorStatusTest : public ::testing::Test {
 protected:
  CropEditorStatusTest() {
    status.resize(300, 20);
    status.QWidget::show();
  }
  QStringList said() const {
    QStringList texts;
    for (const auto* label : status.findChildren<QLabel*>()) {
      if (label->isVisible()) texts << label->accessibleName();
    }
    return texts;
  }
  const QString longText = QStringLiteral("word ").repeated(80).trimmed();
  CropEditorStatus status{nullptr};
};

TEST_F(CropEditorStatusTest, SaysWhatThereIsAndNothingElse) {
  EXPECT_TRUE(said().isEmpty());
  status.show({QStringLiteral("error"), QStringLiteral("message"), {QStringLiteral("one"), QStringLiteral("two")}});
  EXPECT_EQ(said(), (QStringList{QStringLiteral("error"), QStringLiteral("message"), QStringLiteral("one\ntwo")}));
  status.show({{}, QStringLiteral("message"), {}});
  EXPECT_EQ(said(), QStringList{QStringLiteral("message")});
}

TEST_F(CropEditorStatusTest, ALineTakesNoRoomThatWasNotThere) {
  const int before = status.minimumHeight();
  EXPECT_GE(before, status.fontMetrics().lineSpacing());
  status.show({QStringLiteral("Short."), {}, {}});
  EXPECT_EQ(status.minimumHeight(), before);
}

TEST_F(CropEditorStatusTest, RoomThatWasTakenStaysUntilTheWidthChanges) {
  const int before = status.minimumHeight();
  status.show({longText, {}, {}});
  const int taken = status.minimumHeight();
  EXPECT_GT(taken, 3 * before);
  status.show({});
  EXPECT_EQ(status.minimumHeight(), taken);
  status.resize(600, taken);
  EXPECT_EQ(status.minimumHeight(), before);
}

}  // namespace
}  // namespace quillmere
