#include "inbox/ScreenshotNameEditor.h"

#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include "fakes/ModelFixture.h"
#include "inbox/NameField.h"

namespace quillmere {
namespace {

class ScreenshotNameEditorTest : public testing::ModelFixture,
                                 public ::testing::WithParamInterface<ScreenshotNameEditor::Lines> {
 protected:
  void open(const std::string& name = "Hidden.png") {
    launchWatching();
    id = arrive(name);
    presentation = std::make_unique<InboxPresentation>(*model, InboxServices{});
    auto* column = new QVBoxLayout(&window);
    editor = new ScreenshotNameEditor(*presentation, GetParam(), &window);
    editor->setTextSize(1.3, QFont::DemiBold);
    other->setFocusPolicy(Qt::StrongFocus);
    column->addWidget(editor);
    column->addWidget(other);
    column->addStretch();
    window.resize(400, 200);
    editor->show(item(id));
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    other->setFocus();
  }
  /// Where dark letters are, of the line with the stem's.
  QRect letters() {
    QCoreApplication::processEvents();
    const QImage image = editor->grab().toImage();
    const int most = QFontMetrics(editor->label().font()).horizontalAdvance(QStringLiteral("Hidden"));
    const QRect room(NameField::kBeside - 2, NameField::kAbove, most + 2, editor->label().fontMetrics().height());
    QRect found;
    for (int y = room.top(); y <= room.bottom(); ++y) {
      for (int x = room.left(); x <= room.right(); ++x) {
        if (image.pixelColor(x, y).lightness() < 100) found |= QRect(x, y, 1, 1);
      }
    }
    return found;
  }

  UUID id;
  std::unique_ptr<InboxPresentation> presentation;
  QWidget window;
  QWidget* other = new QWidget;
  ScreenshotNameEditor* editor = nullptr;
};
INSTANTIATE_TEST_SUITE_P(Of, ScreenshotNameEditorTest,
                         ::testing::Values(ScreenshotNameEditor::Lines::one, ScreenshotNameEditor::Lines::all));

TEST_P(ScreenshotNameEditorTest, NothingJumpsWhenTheFieldComes) {
  open();
  const QRect before = letters();
  const QRect place = editor->geometry();
  ASSERT_GT(before.height(), 5);
  presentation->beginRename(item(id));
  ASSERT_TRUE(editor->field());
  editor->field()->deselect();
  editor->field()->setCursorPosition(6);
  EXPECT_EQ(editor->field()->font(), editor->label().font());
  EXPECT_EQ(letters().topLeft(), before.topLeft());
  EXPECT_EQ(letters().bottom(), before.bottom());
  EXPECT_EQ(editor->geometry(), place);
}

TEST_P(ScreenshotNameEditorTest, TheFieldTakesTheKeyboardAndGivesItBack) {
  open();
  presentation->beginRename(item(id));
  EXPECT_TRUE(editor->field()->hasFocus());
  EXPECT_EQ(editor->field()->selectedText(), QStringLiteral("Hidden"));
  EXPECT_FALSE(editor->label().isVisible());
  QTest::keyClick(editor->field(), Qt::Key_Escape);
  EXPECT_FALSE(editor->field());
  EXPECT_TRUE(editor->label().isVisible());
  EXPECT_TRUE(other->hasFocus());
}

TEST_P(ScreenshotNameEditorTest, ASessionOfAnotherScreenshotOrAnotherPlaceIsNotItsOwn) {
  open();
  const UUID second = arrive("2.png");
  presentation->beginRename(item(second));
  EXPECT_FALSE(editor->field());
  editor->setEditable(false);
  presentation->beginRename(item(id));
  EXPECT_FALSE(editor->field());
  editor->setEditable(true);
  EXPECT_TRUE(editor->field());
}

TEST_P(ScreenshotNameEditorTest, ShowingAnotherOneEndsTheSession) {
  open();
  const UUID second = arrive("2.png");
  presentation->beginRename(item(id));
  QTest::keyClicks(editor->field(), QStringLiteral("Typed"));
  editor->show(item(second));
  EXPECT_FALSE(*presentation->renameSession);
  EXPECT_FALSE(editor->field());
  EXPECT_EQ(editor->label().accessibleName(), QStringLiteral("2.png"));
  EXPECT_EQ(item(id).url.displayStem(), QStringLiteral("Hidden"));
}

TEST_P(ScreenshotNameEditorTest, ALongNameIsWholeToAScreenReaderAndFits) {
  const std::string name = std::string(150, 'n') + "-the-end.png";
  open(name);
  QCoreApplication::processEvents();
  EXPECT_EQ(editor->label().accessibleName(), QString::fromStdString(name));
  EXPECT_LE(editor->width(), window.width());
  if (GetParam() == ScreenshotNameEditor::Lines::one) {
    EXPECT_TRUE(editor->label().text().endsWith(QStringLiteral("end.png"))) << "its end is seen";
  } else {
    EXPECT_GT(editor->label().height(), 2 * editor->label().fontMetrics().height());
  }
}

}  // namespace
}  // namespace quillmere
