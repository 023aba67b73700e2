#include "shell/FilePanels.h"

#include <gtest/gtest.h>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

class FilePanelsTest : public ::testing::Test {
 protected:
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
    EXPECT_TRUE(dialog.testOption(QFileDialog::DontUseNativeDialog)) << "no other look by a theme of the desktop";
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

/// The desktop, whose dialogs end as the test says.
class FakeDesktop final : public DesktopFileDialogs {
 public:
  std::unique_ptr<Dialog> open(const FileDialogRequest& request,
                               std::function<void(const FileDialogEnd&)> ended) override {
    requests.push_back(request);
    if (!hasDialogs) return nullptr;
    struct Open final : Dialog {
      explicit Open(int& left) : open(left) { ++open; }
      ~Open() override { --open; }
      Open(const Open&) = delete;
      Open& operator=(const Open&) = delete;
      int& open;
    };
    QTimer::singleShot(0, [this, ended = std::move(ended)] {
      if (meanwhile) meanwhile();
      ended(end);
    });
    return std::make_unique<Open>(openDialogs);
  }

  bool hasDialogs = true;
  FileDialogEnd end;
  std::function<void()> meanwhile;
  std::vector<FileDialogRequest> requests;
  int openDialogs = 0;
};

class DesktopFilePanelsTest : public FilePanelsTest {
 protected:
  void choose(const FileURL& url) { desktop.end = {FileDialogEnd::Kind::chosen, url}; }
  FakeDesktop desktop;
  FilePanels panels{&desktop};
};

TEST_F(DesktopFilePanelsTest, TheDesktopsOwnDialogIsAskedFirstWithEverythingItNeeds) {
  choose(folder.file("inner"));
  EXPECT_EQ(panels.chooseFolder({folder.url(), QStringLiteral("Quillmere will watch it.")}), folder.file("inner"));
  const FileDialogRequest& request = desktop.requests.front();
  EXPECT_EQ(request.kind, FileDialogRequest::Kind::folder);
  EXPECT_EQ(request.title, QStringLiteral("Choose Screenshot Folder – Quillmere will watch it."));
  EXPECT_EQ(request.accept, QStringLiteral("Choose"));
  EXPECT_EQ(request.directory, folder.url());
  EXPECT_EQ(desktop.openDialogs, 0) << "closed when it is over";
}

TEST_F(DesktopFilePanelsTest, ADestinationHasANameAndAType) {
  choose(folder.file("Receipt.png"));
  EXPECT_EQ(panels.chooseDestination({folder.url(), "1.png", "png"}), folder.file("Receipt.png"));
  const FileDialogRequest& request = desktop.requests.front();
  EXPECT_EQ(request.kind, FileDialogRequest::Kind::destination);
  EXPECT_EQ(request.name, QStringLiteral("1.png"));
  EXPECT_TRUE(request.globs.contains(QStringLiteral("*.png")));
  EXPECT_FALSE(request.typeName.isEmpty());
  panels.chooseDestination({folder.url(), "1", ""});
  EXPECT_TRUE(desktop.requests.back().globs.isEmpty());
}

TEST_F(DesktopFilePanelsTest, AnExtensionThatWasNotTypedComesByItself) {
  choose(folder.file("Receipt"));
  EXPECT_EQ(panels.chooseDestination({folder.url(), "1.png", "png"}), folder.file("Receipt.png"));
  choose(folder.file("Receipt.jpg"));
  EXPECT_EQ(panels.chooseDestination({folder.url(), "1.png", "png"}), folder.file("Receipt.jpg"));
}

TEST_F(DesktopFilePanelsTest, WhoCancelsIsNotAskedAgain) {
  desktop.end.kind = FileDialogEnd::Kind::cancelled;
  EXPECT_EQ(panels.chooseFolder({folder.url(), {}}), std::nullopt);
  EXPECT_EQ(panels.chooseDestination({folder.url(), "1.png", "png"}), std::nullopt);
  EXPECT_EQ(desktop.requests.size(), 2U);
}

TEST_F(DesktopFilePanelsTest, AnOwnDialogComesWhereTheDesktopHasNoneOrLosesIt) {
  for (const bool hasDialogs : {false, true}) {
    desktop.hasDialogs = hasDialogs;
    bool isSeen = false;
    // Behind the turn in which the desktop gives up.
    QTimer::singleShot(50, [&] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      ASSERT_TRUE(dialog);
      isSeen = true;
      dialog->reject();
    });
    EXPECT_EQ(panels.chooseFolder({folder.url(), {}}), std::nullopt);
    EXPECT_TRUE(isSeen);
  }
}

TEST_F(DesktopFilePanelsTest, APanelAskedForOverAPopoverBelongsToItsWindow) {
  QWidget window;
  QDialog popover(&window);
  window.show();
  popover.show();
  popover.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&popover));
  desktop.end.kind = FileDialogEnd::Kind::cancelled;
  panels.chooseFolder({folder.url(), {}});
  EXPECT_EQ(desktop.requests.front().owner, window.winId());
  desktop.hasDialogs = false;
  next([&](QFileDialog& dialog) { EXPECT_EQ(dialog.parentWidget(), &window); });
  panels.chooseFolder({folder.url(), {}});
}

TEST_F(DesktopFilePanelsTest, OnlyTheWindowThatAskedWaitsForTheDesktop) {
  QPushButton owner, other;
  int ownClicks = 0, otherClicks = 0;
  QObject::connect(&owner, &QPushButton::clicked, [&] { ++ownClicks; });
  QObject::connect(&other, &QPushButton::clicked, [&] { ++otherClicks; });
  other.show();
  owner.show();
  owner.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&owner));
  desktop.meanwhile = [&] {
    for (QPushButton* each : {&owner, &other}) QTest::mouseClick(each->windowHandle(), Qt::LeftButton, {}, {3, 3});
  };
  desktop.end.kind = FileDialogEnd::Kind::cancelled;
  panels.chooseFolder({folder.url(), {}});
  EXPECT_EQ(ownClicks, 0);
  EXPECT_EQ(otherClicks, 1);
  EXPECT_EQ(desktop.requests.front().owner, owner.winId());
  QTest::mouseClick(owner.windowHandle(), Qt::LeftButton, {}, {3, 3});
  EXPECT_EQ(ownClicks, 1) << "afterwards it is free again";
}

}  // namespace
}  // namespace quillmere
