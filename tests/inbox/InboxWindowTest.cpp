#include "inbox/InboxWindow.h"

#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>

#include "controls/Alert.h"
#include "inbox/InboxDetail.h"
#include "inbox/InboxFixture.h"
#include "inbox/InboxListView.h"
#include "inbox/MessageView.h"
#include "inbox/NameField.h"
#include "inbox/QuickLookWindow.h"
#include "inbox/ScreenshotNameEditor.h"
#include "inbox/ScreenshotSelectionView.h"
#include "inbox/SearchField.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

template <typename Kind>
Kind* findChild(const QWidget& parent) {
  for (auto* child : parent.findChildren<QWidget*>()) {
    if (auto* found = dynamic_cast<Kind*>(child)) return found;
  }
  return nullptr;
}

class InboxWindowTest : public testing::InboxFixture {
 protected:
  void SetUp() override {
    services.thumbnails = &thumbnails;
    services.sharing = &sharing;
  }
  void TearDown() override {
    window.reset();
    InboxFixture::TearDown();
  }
  void openWindow() {
    services.defaults = defaults.get();
    window = std::make_unique<InboxWindow>(*model, services);
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    window->takeKeyboard();
    settle();
  }
  void settle() {
    executor.drain();
    QCoreApplication::processEvents();
  }
  InboxListView& list() const { return *findChild<InboxListView>(*window); }
  void select(int row) {
    list().setCurrentIndex(list().model()->index(row, 0));
    settle();
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : window.get();
    QTest::keyClick(target, key, modifiers);
    settle();
  }
  /// The title of the page, or what is on it.
  QString page() const {
    for (auto* stack : window->findChildren<QStackedWidget*>()) {
      QWidget* page = stack->currentWidget();
      if (dynamic_cast<InboxDetail*>(page)) return QStringLiteral("one screenshot");
      if (dynamic_cast<ScreenshotSelectionView*>(page)) return QStringLiteral("several");
      if (!dynamic_cast<MessageView*>(page)) continue;
      for (const auto* label : page->findChildren<QLabel*>()) {
        if (!label->text().isEmpty()) return label->text();
      }
    }
    return {};
  }
  bool shows(const QString& text) const {
    for (const auto* label : window->findChildren<QLabel*>()) {
      if (label->isVisible() && label->text() == text) return true;
    }
    return false;
  }
  QAction* menuItem(const QString& title, const QString& text) const {
    for (const QAction* menu : findChild<QMenuBar>(*window)->actions()) {
      if (menu->text() != title) continue;
      for (QAction* item : menu->menu()->actions()) {
        if (item->text() == text) return item;
      }
    }
    return nullptr;
  }
  Alert* question() const { return dynamic_cast<Alert*>(QApplication::activeModalWidget()); }

  std::unique_ptr<InboxWindow> window;
};

TEST_F(InboxWindowTest, BeforeTheFirstFolderItAsksForOne) {
  launch();
  openWindow();
  EXPECT_EQ(page(), QStringLiteral("Choose Your Screenshot Folder"));
  EXPECT_FALSE(list().isVisible()) << "there is nothing to list";
  chooser.answer = shots;
  for (auto* button : window->findChildren<QPushButton*>()) {
    if (button->isVisible() && button->text() == QStringLiteral("Choose Screenshot Folder…")) button->click();
  }
  settle();
  EXPECT_EQ(page(), QStringLiteral("No Screenshots Yet"));
  EXPECT_TRUE(list().isVisible());
}

TEST_F(InboxWindowTest, RecordsFromBeforeAreListedThoughTheFolderIsNotChosen) {
  storeRecords({storedItem(1, "1.png")});
  launch();
  openWindow();
  EXPECT_EQ(page(), QStringLiteral("Choose Your Screenshot Folder"));
  EXPECT_TRUE(list().isVisible());
}

TEST_F(InboxWindowTest, WhatIsSelectedIsShownAtOnce) {
  launchWatching();
  const UUID first = arrive("1.png");
  const UUID second = arrive("2.png");
  openWindow();
  EXPECT_EQ(page(), QStringLiteral("No Screenshot Selected"));
  list().setCurrentIndex(list().model()->index(1, 0));
  EXPECT_EQ(page(), QStringLiteral("one screenshot"));
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{first});
  list().selectAll();
  EXPECT_EQ(*model->selectedItemIDs, (UUIDSet{first, second}));
  EXPECT_EQ(page(), QStringLiteral("several"));
  model->removeRecords({first});
  EXPECT_EQ(page(), QStringLiteral("one screenshot"));
  model->removeRecords({second});
  settle();
  EXPECT_EQ(page(), QStringLiteral("No Screenshots Yet"));
}

TEST_F(InboxWindowTest, AnErrorIsShownOnceAfterWhatFailedIsOver) {
  launchWatching();
  openWindow();
  int alerts = 0;
  model->show(ErrorScope::inbox, QStringLiteral("Couldn’t Move"), QStringLiteral("The disk is full."));
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QTimer::singleShot(0, [&] {
    auto* box = dynamic_cast<Alert*>(QApplication::activeModalWidget());
    ASSERT_TRUE(box);
    ++alerts;
    EXPECT_EQ(box->content().heading, QStringLiteral("Couldn’t Move"));
    EXPECT_EQ(box->content().message, QStringLiteral("The disk is full."));
    EXPECT_FALSE(*model->inboxError) << "told, it is over";
    box->accept();
  });
  ASSERT_TRUE(testing::runLoopUntil([&] { return alerts == 1; }));
  QCoreApplication::processEvents();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(InboxWindowTest, ClosingIsToldAndKeepsTheSelection) {
  launchWatching();
  const UUID id = arrive("1.png");
  openWindow();
  select(0);
  int closed = 0;
  window->onClosed = [&] { ++closed; };
  window->close();
  EXPECT_EQ(closed, 1);
  window.reset();
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{id});
}

TEST_F(InboxWindowTest, ItComesBackWhereItWasClosed) {
  launchWatching();
  openWindow();
  window->setGeometry(60, 50, 700, 500);
  settle();
  window->close();
  openWindow();
  EXPECT_EQ(window->geometry(), QRect(60, 50, 700, 500));
}

// --- Keys ---

TEST_F(InboxWindowTest, DeleteAsksAndReturnLeavesTheFile) {
  launchWatching();
  const UUID id = arrive("1.png");
  openWindow();
  select(0);
  for (const auto& [key, modifiers] : {std::pair(Qt::Key_Delete, Qt::KeyboardModifiers()),
                                       std::pair(Qt::Key_Backspace, Qt::KeyboardModifiers(Qt::ControlModifier))}) {
    press(key, modifiers);
    ASSERT_TRUE(question());
    EXPECT_EQ(question()->content().heading, QStringLiteral("Move Screenshot to Trash?"));
    QTest::keyClick(question(), Qt::Key_Return);
    settle();
    EXPECT_FALSE(question());
    EXPECT_TRUE(model->items().find(id));
    // As a window manager does.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }
}

TEST_F(InboxWindowTest, TabAndSpaceConfirm) {
  launchWatching();
  const UUID id = arrive("1.png");
  openWindow();
  select(0);
  press(Qt::Key_Delete);
  ASSERT_TRUE(question());
  QTest::keyClick(question()->focusWidget() ? question()->focusWidget() : question(), Qt::Key_Tab);
  QTest::keyClick(question()->focusWidget(), Qt::Key_Space);
  settle();
  EXPECT_FALSE(model->items().find(id));
  EXPECT_EQ(files.trashCalls, 1);
}

TEST_F(InboxWindowTest, ShiftAndDeleteDeletesOnlyWhereThatIsShown) {
  launchWatching();
  arrive("1.png");
  openWindow();
  select(0);
  press(Qt::Key_Delete, Qt::ShiftModifier);
  EXPECT_FALSE(question());
  model->setShowsDeleteImmediately(true);
  settle();
  press(Qt::Key_Delete, Qt::ShiftModifier);
  ASSERT_TRUE(question());
  EXPECT_EQ(question()->content().heading, QStringLiteral("Delete Screenshot?"));
  QTest::keyClick(question(), Qt::Key_Escape);
  settle();
}

TEST_F(InboxWindowTest, WhileANameIsEditedNoKeyIsACommand) {
  launchWatching();
  const UUID id = arrive("1.png");
  model->setShowsDeleteImmediately(true);
  openWindow();
  select(0);
  press(Qt::Key_F2);
  ASSERT_TRUE(dynamic_cast<NameField*>(QApplication::focusWidget()));
  for (const auto& [key, modifiers] : {std::pair(Qt::Key_Delete, Qt::KeyboardModifiers()),
                                       std::pair(Qt::Key_Backspace, Qt::KeyboardModifiers(Qt::ControlModifier)),
                                       std::pair(Qt::Key_Delete, Qt::KeyboardModifiers(Qt::ShiftModifier)),
                                       std::pair(Qt::Key_Space, Qt::KeyboardModifiers()),
                                       std::pair(Qt::Key_Y, Qt::KeyboardModifiers(Qt::ControlModifier)),
                                       std::pair(Qt::Key_K, Qt::KeyboardModifiers(Qt::ControlModifier)),
                                       std::pair(Qt::Key_F, Qt::KeyboardModifiers(Qt::ControlModifier)),
                                       std::pair(Qt::Key_W, Qt::KeyboardModifiers(Qt::ControlModifier)),
                                       std::pair(Qt::Key_F2, Qt::KeyboardModifiers())}) {
    press(key, modifiers);
    ASSERT_TRUE(dynamic_cast<NameField*>(QApplication::focusWidget()))
        << QKeySequence(key | modifiers).toString().toStdString();
    ASSERT_FALSE(question());
  }
  EXPECT_TRUE(window->isVisible());
  press(Qt::Key_Escape);
  EXPECT_FALSE(*window->presentation().renameSession);
  EXPECT_EQ(item(id).url.displayName(), QStringLiteral("1.png"));
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{id}) << "the field took Escape";
}

TEST_F(InboxWindowTest, ADoubleClickOnTheNameRenamesThere) {
  launchWatching();
  arrive("1.png");
  openWindow();
  select(0);
  auto* name = findChild<ScreenshotNameEditor>(*window);
  ASSERT_TRUE(name);
  QTest::mouseDClick(name, Qt::LeftButton, {}, name->label().geometry().center());
  settle();
  ASSERT_TRUE(name->field());
  EXPECT_EQ(QApplication::focusWidget(), name->field());
  press(Qt::Key_Escape);
  EXPECT_FALSE(name->field());
  press(Qt::Key_F2);
  EXPECT_FALSE(name->field()) << "where the keyboard is";
  EXPECT_TRUE(dynamic_cast<NameField*>(QApplication::focusWidget()));
}

TEST_F(InboxWindowTest, ItsMenusCloseWithIt) {
  launchWatching();
  const UUID id = arrive("1.png");
  openWindow();
  select(0);
  bool wasOpen = false;
  QTimer::singleShot(0, [&] {
    wasOpen = QApplication::activePopupWidget() != nullptr;
    window->close();
  });
  list().onContextMenu({id}, window->geometry().center());
  EXPECT_TRUE(wasOpen);
  EXPECT_FALSE(QApplication::activePopupWidget());
}

TEST_F(InboxWindowTest, ASheetDimsTheCommandsAndFind) {
  launchWatching();
  arrive("1.png");
  openWindow();
  select(0);
  EXPECT_TRUE(menuItem(QStringLiteral("Screenshot"), QStringLiteral("Keep"))->isEnabled());
  press(Qt::Key_Delete);
  ASSERT_TRUE(question());
  for (const char* text : {"Keep", "Rename", "Quick Look", "Copy Screenshot", "Move to Trash", "Remove from Inbox"}) {
    EXPECT_FALSE(menuItem(QStringLiteral("Screenshot"), QLatin1String(text))->isEnabled()) << text;
  }
  EXPECT_FALSE(menuItem(QStringLiteral("Edit"), QStringLiteral("Find"))->isEnabled());
  QTest::keyClick(question(), Qt::Key_Escape);
  settle();
  EXPECT_TRUE(menuItem(QStringLiteral("Screenshot"), QStringLiteral("Keep"))->isEnabled());
  EXPECT_TRUE(menuItem(QStringLiteral("Edit"), QStringLiteral("Find"))->isEnabled());
}

TEST_F(InboxWindowTest, EscapeEndsTheSearchThenTheSelection) {
  launchWatching();
  const UUID id = arrive("invoice.png");
  arrive("2.png");
  openWindow();
  press(Qt::Key_F, Qt::ControlModifier);
  auto* search = dynamic_cast<SearchField*>(QApplication::focusWidget());
  ASSERT_TRUE(search);
  QTest::keyClicks(search, QStringLiteral("invoice"));
  settle();
  EXPECT_EQ(list().model()->rowCount(), 1);
  press(Qt::Key_Return);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{id});
  press(Qt::Key_Escape);
  EXPECT_EQ(list().model()->rowCount(), 2);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{id});
  press(Qt::Key_Escape);
  EXPECT_TRUE(model->selectedItemIDs->empty());
}

TEST_F(InboxWindowTest, TheFilesMenuHasTheProgramsOwnKeys) {
  launchWatching();
  openWindow();
  int settings = 0;
  int quits = 0;
  window->setProgram({.openSettings = [&] { ++settings; }, .quit = [&] { ++quits; }});
  press(Qt::Key_Comma, Qt::ControlModifier);
  press(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(settings, 1);
  EXPECT_EQ(quits, 1);
  press(Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(window->isVisible());
}

TEST_F(InboxWindowTest, TheMenusHaveWhatIsTheProgramsOwn) {
  launchWatching();
  openWindow();
  const QString file = QStringLiteral("File");
  const QString help = QStringLiteral("Help");
  const QString check = QStringLiteral("Check for Updates…");
  menuItem(file, QStringLiteral("About Quillmere"))->trigger();  // nobody is there to open it
  std::string done;
  bool canCheck = false;
  window->setProgram({.openAbout = [&] { done += "about "; },
                      .openWelcome = [&] { done += "welcome "; },
                      .checkForUpdates = [&] { done += "updates "; },
                      .canCheckForUpdates = [&] { return canCheck; },
                      .openHelp = [&] { done += "help "; },
                      .openSupport = [&] { done += "support "; },
                      .writeToSupport = [&] { done += "mail "; }});
  EXPECT_FALSE(menuItem(file, check)->isEnabled());
  canCheck = true;
  window->refreshMenus();
  EXPECT_TRUE(menuItem(file, check)->isEnabled());
  for (const QString& item : {QStringLiteral("About Quillmere"), check}) menuItem(file, item)->trigger();
  for (const QString& item : {QStringLiteral("Welcome to Quillmere"), QStringLiteral("Quillmere Help"),
                              QStringLiteral("Quillmere Support Website"), QStringLiteral("Contact Support…")}) {
    menuItem(help, item)->trigger();
  }
  EXPECT_EQ(done, "about updates welcome help support mail ");
}

TEST_F(InboxWindowTest, KeysThatEditTheSearchAreNoCommands) {
  launchWatching();
  const UUID id = arrive("1.png");
  openWindow();
  select(0);
  press(Qt::Key_F, Qt::ControlModifier);
  auto* search = dynamic_cast<SearchField*>(QApplication::focusWidget());
  ASSERT_TRUE(search);
  QTest::keyClicks(search, QStringLiteral("one two"));
  settle();
  press(Qt::Key_Backspace, Qt::ControlModifier);
  EXPECT_FALSE(question());
  EXPECT_EQ(search->text(), QStringLiteral("one "));
  for (const int key : {Qt::Key_Delete, Qt::Key_F2, Qt::Key_Space}) press(static_cast<Qt::Key>(key));
  press(Qt::Key_Y, Qt::ControlModifier);
  EXPECT_FALSE(question());
  EXPECT_FALSE(*window->presentation().renameSession);
  EXPECT_FALSE(*window->presentation().quickLookURL);
  EXPECT_TRUE(model->items().find(id));
}

TEST_F(InboxWindowTest, ClosingEndsTheSheetToo) {
  launchWatching();
  const UUID id = arriveRead("1.png");
  openWindow();
  select(0);
  window->presentation().showRecognizedText(item(id));
  ASSERT_TRUE(QApplication::activeModalWidget());
  window->close();
  settle();
  EXPECT_FALSE(QApplication::activeModalWidget());
  EXPECT_FALSE(window->presentation().isShowingModal());
}

// --- Quick Look ---

TEST_F(InboxWindowTest, QuickLookFollowsTheArrowsAndEndsWithItsRecord) {
  launchWatching();
  const UUID first = arrive("1.png");
  const UUID second = arrive("2.png");
  openWindow();
  select(0);
  press(Qt::Key_Space);
  ASSERT_TRUE(*window->presentation().quickLookURL);
  EXPECT_EQ(**window->presentation().quickLookURL, item(second).url);
  auto* look = findChild<QuickLookWindow>(*window);
  ASSERT_TRUE(look);
  EXPECT_TRUE(look->isVisible());
  QTest::keyClick(look, Qt::Key_Down);
  settle();
  EXPECT_EQ(**window->presentation().quickLookURL, item(first).url);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{first});
  finish(model->rename(first, QStringLiteral("renamed"), ErrorScope::inbox));
  settle();
  EXPECT_EQ(**window->presentation().quickLookURL, item(first).url);
  EXPECT_TRUE(look->isVisible());
  model->removeRecords({first, second});
  settle();
  EXPECT_FALSE(*window->presentation().quickLookURL);
  EXPECT_FALSE(look->isVisible());
}

// --- Names from outside ---

TEST_F(InboxWindowTest, NamesThatAreMarkupOrNoTextGoThroughEverything) {
  launchWatching();
  const std::vector<std::string> names{
      "<b>bold<img src='x'>.png", "two\nlines.png", "\xe2\x80\xaegnp.exe.png",      "-rf.png", "bad \xff\xfe bytes.png",
      "& && tab\t.png",           "%@ %lld %s.png", std::string(251, 'x') + ".png", "   .png", "a#b?c%41.png"};
  std::vector<UUID> ids;
  for (const std::string& name : names) ids.push_back(arrive(name));
  openWindow();
  for (size_t i = 0; i < ids.size(); ++i) {
    SCOPED_TRACE(names[i]);
    const FileURL url = item(ids[i]).url;
    model->setSelectedItemIDs({ids[i]});
    settle();
    EXPECT_EQ(page(), QStringLiteral("one screenshot"));
    press(Qt::Key_F2);
    ASSERT_TRUE(*window->presentation().renameSession);
    press(Qt::Key_Return);
    EXPECT_EQ(item(ids[i]).url, url) << "left as it was shown, it stays as it is";
    press(Qt::Key_Delete);
    ASSERT_TRUE(question());
    QTest::keyClick(question(), Qt::Key_Escape);
    settle();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    window->presentation().setQuickLookURL(url);
    settle();
    window->presentation().setQuickLookURL(std::nullopt);
    settle();
    window->presentation().setFilter({url.displayStem(), InboxFilter::Scope::all});
    settle();
    EXPECT_GE(list().model()->rowCount(), 1);
    window->presentation().setFilter({});
    settle();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    window->takeKeyboard();
  }
}

TEST_F(InboxWindowTest, NamesThatCannotBeAreNotTaken) {
  launchWatching();
  const UUID id = arrive("shot.png");
  const UUID other = arrive("other.png");
  openWindow();
  for (const QString& name : {QStringLiteral(".."), QStringLiteral("/"), QStringLiteral("../other"),
                              QStringLiteral("other"), QString(300, QLatin1Char('w')), QString(300, QChar(0x4e2d)),
                              QStringLiteral("a/b"), QString(QChar(0)), QStringLiteral(".hidden")}) {
    const auto before = item(id);
    window->presentation().beginRename(before);
    auto session = **window->presentation().renameSession;
    session.text = name;
    finish(window->presentation().commitRename(session));
    settle();
    if (auto* alert = question()) alert->reject();
    EXPECT_EQ(item(id).url.parent(), shots) << name.toStdString();
    EXPECT_TRUE(std::filesystem::exists(item(id).url.path())) << name.toStdString();
    EXPECT_EQ(item(other).url.displayName(), QStringLiteral("other.png"));
    EXPECT_LE(item(id).url.lastPathComponent().size(), 255u);
  }
}

}  // namespace
}  // namespace quillmere
