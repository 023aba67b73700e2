#include "shell/FilePanels.h"

#include <gtest/gtest.h>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class FilePanelsTest : public ::testing::Test {
 protected:
  FilePanelsTest() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
  ~FilePanelsTest() override { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false); }

  /// Has the person do so with the dialog that comes next.
  static void next(const std::function<void(QFileDialog&)>& work) {
    QTimer::singleShot(0, [work] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      ASSERT_TRUE(dialog);
      work(*dialog);
      if (dialog->isVisible()) dialog->reject();
    });
  }
  static void choose(QFileDialog& dialog, const QString& path) {
    dialog.findChild<QLineEdit*>()->setText(path);
    dialog.QDialog::accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
  }
  static bool says(const QFileDialog& dialog, const QString& text) {
    for (const auto* label : dialog.findChildren<QLabel*>()) {
      if (label->text() == text) return true;
    }
    return false;
  }

  testing::TemporaryFolder folder;
  FilePanels panels;
};

TEST_F(FilePanelsTest, AFolderIsChosenFromWhereItBegins) {
  const FileURL inner = folder.file("inner");
  std::filesystem::create_directories(inner.path());
  next([&](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Choose Screenshot Folder"));
    EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(dialog.testOption(QFileDialog::ShowDirsOnly));
    EXPECT_EQ(dialog.labelText(QFileDialog::Accept), QStringLiteral("Choose"));
    EXPECT_EQ(dialog.directory().absolutePath(), folder.url().displayPath());
    EXPECT_TRUE(says(dialog, QStringLiteral("Choose where they are saved")));
    choose(dialog, QStringLiteral("inner"));
  });
  EXPECT_EQ(panels.chooseFolder({folder.url(), QStringLiteral("Choose where they are saved")}), inner);
}

TEST_F(FilePanelsTest, WithoutAChoiceThereIsNone) {
  next([](QFileDialog& dialog) { dialog.reject(); });
  EXPECT_EQ(panels.chooseFolder({folder.url(), {}}), std::nullopt);
  next([](QFileDialog& dialog) { dialog.reject(); });
  EXPECT_EQ(panels.chooseDestination({folder.url(), "1.png", "png"}), std::nullopt);
}

TEST_F(FilePanelsTest, ADestinationBeginsWithThePresentNameAndIsOfTheSameType) {
  next([&](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Move and Rename Screenshot"));
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(dialog.labelText(QFileDialog::Accept), QStringLiteral("Move"));
    EXPECT_EQ(dialog.defaultSuffix(), QStringLiteral("png"));
    EXPECT_EQ(dialog.nameFilters().size(), 1);
    EXPECT_TRUE(dialog.nameFilters().first().contains(QStringLiteral("*.png")));
    EXPECT_EQ(dialog.findChild<QLineEdit*>()->text(), QStringLiteral("1.png"));
    EXPECT_TRUE(says(dialog, QStringLiteral("The screenshot will be kept permanently at the location you choose.")));
    choose(dialog, QStringLiteral("Receipt"));
  });
  EXPECT_EQ(panels.chooseDestination({folder.url(), "1.png", "png"}), folder.file("Receipt.png"));
}

TEST_F(FilePanelsTest, NothingIsOfferedToBeReplaced) {
  testing::writeFile(folder.file("taken.png"), "picture");
  next([&](QFileDialog& dialog) {
    EXPECT_TRUE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
    choose(dialog, QStringLiteral("taken.png"));
  });
  EXPECT_EQ(panels.chooseDestination({folder.url(), "1.png", "png"}), folder.file("taken.png"));
}

TEST_F(FilePanelsTest, AnExtensionThatNobodyKnowsLimitsNothing) {
  for (const char* extension : {"", "nobody-knows-this"}) {
    next([](QFileDialog& dialog) { EXPECT_EQ(dialog.defaultSuffix(), QString()); });
    panels.chooseDestination({folder.url(), "1", extension});
  }
}

}  // namespace
}  // namespace quillmere
