#include "inbox/InboxListView.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <random>

#include "inbox/InboxFixture.h"
#include "inbox/NameField.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

/// A list of its own in a window that is active.
class InboxListViewTest : public testing::InboxFixture {
 protected:
  void show() {
    rows = std::make_unique<InboxListModel>(*presentation);
    view = std::make_unique<InboxListView>(*presentation, *rows, nullptr);
    view->onOpen = [this] { ++opened; };
    view->onDrag = [this](const std::vector<UUID>& ids) { dragged = ids; };
    view->onContextMenu = [this](const std::vector<UUID>& ids, QPoint) { menuIDs = ids; };
    view->resize(340, 400);
    view->show();
    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    view->setFocus();
    executor.drain();
  }
  void TearDown() override {
    view.reset();
    rows.reset();
    InboxFixture::TearDown();
  }
  /// Until the pictures of what is seen are there and painted.
  void settle() {
    for (int i = 0; i < 3; ++i) {
      QTest::qWait(20);
      executor.drain();
    }
    QTest::qWait(20);
  }
  void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(view.get(), static_cast<Qt::Key>(key), modifiers);
  }
  void click(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, view->visualRect(rows->index(row)).center());
  }
  UUIDSet shownAsSelected() const {
    UUIDSet ids;
    for (const QModelIndex& row : view->selectionModel()->selectedIndexes()) ids.insert(rows->id(row.row()));
    return ids;
  }
  std::vector<UUID> arriveMany(int count) {
    std::vector<UUID> ids;
    for (int i = 1; i <= count; ++i) ids.push_back(arrive(std::to_string(i) + ".png"));
    return ids;
  }

  std::unique_ptr<InboxListModel> rows;
  std::unique_ptr<InboxListView> view;
  int opened = 0;
  std::vector<UUID> dragged;
  std::vector<UUID> menuIDs;
};

TEST_F(InboxListViewTest, ARowThatIsPulledIsDragged) {
  const auto ids = arriveMany(3);
  show();
  const auto pull = [&](int row) {
    dragged.clear();
    const QPoint from = view->visualRect(rows->index(row)).center();
    QTest::mousePress(view->viewport(), Qt::LeftButton, {}, from);
    for (int step = 1; step <= 4; ++step) {
      const QPoint to = from - QPoint(step * QApplication::startDragDistance(), 0);
      QMouseEvent move(QEvent::MouseMove, to, view->viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
      QApplication::sendEvent(view->viewport(), &move);
    }
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, from);
  };
  pull(1);
  EXPECT_EQ(dragged, std::vector<UUID>{ids[1]}) << "it need not be chosen before";
  view->selectAll();
  pull(2);
  EXPECT_EQ(dragged, (std::vector<UUID>{ids[2], ids[1], ids[0]})) << "in the order of the list";
}

// --- The selection ---

TEST_F(InboxListViewTest, WhatIsClickedIsWhatTheModelHoldsAsSelected) {
  const auto ids = arriveMany(4);  // the last one is on top
  show();
  click(0);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[3]});
  click(2, Qt::ShiftModifier);
  EXPECT_EQ(*model->selectedItemIDs, (UUIDSet{ids[3], ids[2], ids[1]}));
  click(1, Qt::ControlModifier);
  EXPECT_EQ(*model->selectedItemIDs, (UUIDSet{ids[3], ids[1]}));
}

TEST_F(InboxListViewTest, WhatTheModelSelectsIsSelectedInTheListAndInSight) {
  const auto ids = arriveMany(40);
  show();
  model->setSelectedItemIDs({ids[0]});
  EXPECT_EQ(shownAsSelected(), UUIDSet{ids[0]});
  EXPECT_TRUE(view->isInSight(ids[0])) << "the last row of forty";
  model->setSelectedItemIDs({ids[3], ids[4], ids[9]});
  EXPECT_EQ(shownAsSelected(), (UUIDSet{ids[3], ids[4], ids[9]}));
  model->setSelectedItemIDs({});
  EXPECT_TRUE(shownAsSelected().empty());
}

TEST_F(InboxListViewTest, AListThatOpensShowsTheSelectionThatThereIs) {
  const auto ids = arriveMany(3);
  model->setSelectedItemIDs({ids[1]});
  show();
  EXPECT_EQ(shownAsSelected(), UUIDSet{ids[1]});
}

TEST_F(InboxListViewTest, ARecordThatLeavesTakesItsSelectionAndTheKeyboardGoesToTheNextRow) {
  const auto ids = arriveMany(4);
  show();
  click(1);
  model->removeRecords({ids[2]});
  EXPECT_TRUE(model->selectedItemIDs->empty());
  EXPECT_TRUE(shownAsSelected().empty());
  EXPECT_EQ(rows->id(view->currentIndex().row()), ids[1]) << "the one below it";
  press(Qt::Key_Down);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[1]}) << "the arrow takes the row that the keyboard is on";
  press(Qt::Key_Down);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[0]});
  model->removeRecords({ids[0]});
  EXPECT_EQ(rows->id(view->currentIndex().row()), ids[1]) << "below the last there is none";
}

TEST_F(InboxListViewTest, TheKeysToAnEndSelectTheRowThereAlsoWhereTheKeyboardIsOnIt) {
  const auto ids = arriveMany(3);
  show();
  for (const auto& [key, row] : {std::pair(Qt::Key_Home, 0), {Qt::Key_PageUp, 0}, {Qt::Key_End, 2}}) {
    click(row);
    model->setSelectedItemIDs({});
    press(key);
    EXPECT_EQ(*model->selectedItemIDs, UUIDSet{rows->id(row)}) << key;
  }
}

TEST_F(InboxListViewTest, ManyThatLeaveAtOnceLeaveTheKeyboardAtTheNextThatStays) {
  const auto ids = arriveMany(100);
  show();
  click(0);
  UUIDSet odd;
  for (size_t i = 1; i < ids.size(); i += 2) odd.insert(ids[i]);
  ASSERT_EQ(rows->id(0), ids[99]);
  model->removeRecords(odd);
  EXPECT_EQ(rows->rowCount(), 50);
  EXPECT_EQ(rows->id(view->currentIndex().row()), ids[98]);
  EXPECT_TRUE(model->selectedItemIDs->empty());
}

TEST_F(InboxListViewTest, AnArrivalLeavesTheSelectionAsItIs) {
  const auto ids = arriveMany(2);
  show();
  click(1);
  arrive("3.png");
  EXPECT_EQ(shownAsSelected(), UUIDSet{ids[0]});
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[0]});
}

TEST_F(InboxListViewTest, WhatTheFilterHidesIsNotSelected) {
  const auto ids = arriveMany(3);
  model->keepBatch({ids[1]});
  show();
  view->selectAll();
  presentation->setFilter({{}, InboxFilter::Scope::saved});
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[1]});
  EXPECT_EQ(shownAsSelected(), UUIDSet{ids[1]});
  presentation->setFilter({});
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[1]}) << "and stays out of it";
}

TEST_F(InboxListViewTest, ADecisionThatTakesARowOutOfTheFilterTakesItOutOfTheSelection) {
  const auto ids = arriveMany(2);
  show();
  presentation->setFilter({{}, InboxFilter::Scope::pending});
  view->selectAll();
  model->keepBatch({ids[0]});
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[1]});
  EXPECT_EQ(shownAsSelected(), UUIDSet{ids[1]});
}

TEST_F(InboxListViewTest, TenThousandAreSelectedAndLeave) {
  std::vector<ScreenshotItem> items(10000, storedItem(1, "1.png"));
  for (ScreenshotItem& item : items) item.id = UUID::createUuid();
  relaunchWith(items);
  show();
  view->selectAll();
  EXPECT_EQ(model->selectedItemIDs->size(), 10000u);
  UUIDSet odd;
  for (size_t i = 1; i < items.size(); i += 2) odd.insert(items[i].id);
  model->removeRecords(odd);
  EXPECT_EQ(model->selectedItemIDs->size(), 5000u);
  EXPECT_EQ(shownAsSelected(), *model->selectedItemIDs);
}

/// Whatever comes and goes, what is seen as selected, what the model holds as selected and what is there agree.
TEST_F(InboxListViewTest, TheTwoSelectionsNeverDisagree) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto upTo = [&](size_t end) { return std::uniform_int_distribution<size_t>(0, end - 1)(random); };
  std::vector<UUID> ids = arriveMany(8);
  int arrivals = 8;
  show();
  for (int step = 0; step < 1500; ++step) {
    const UUID id = ids[upTo(ids.size())];
    const size_t action = upTo(13);
    switch (action) {
      case 0:
        if (ids.size() < 30) ids.push_back(arrive(std::to_string(++arrivals) + ".png"));
        break;
      case 1:
        if (ids.size() > 3) {
          model->removeRecords({id});
          std::erase(ids, id);
        }
        break;
      case 2:
        model->keepBatch({id});
        break;
      case 3:
        model->markTemporaryBatch({id}, TemporaryDuration::oneHour);
        break;
      case 4:
        finish(model->rename(id, QStringLiteral("name ") + QString::number(step), ErrorScope::inbox));
        break;
      case 5:
        presentation->setFilter({{}, static_cast<InboxFilter::Scope>(upTo(5))});
        break;
      case 6:
        presentation->setFilter({QString::number(upTo(3)), InboxFilter::Scope::all});
        executor.drain();
        break;
      case 7:
        presentation->setFilter({});
        break;
      case 8:
        if (rows->rowCount() > 0) {
          click(static_cast<int>(upTo(static_cast<size_t>(std::min(rows->rowCount(), 6)))),
                upTo(2) == 0 ? Qt::ControlModifier : Qt::ShiftModifier);
        }
        break;
      case 9:
        model->setSelectedItemIDs({id, ids.front()});
        break;
      case 10:
        view->selectAll();
        break;
      case 11:
        press(upTo(2) == 0 ? Qt::Key_Down : Qt::Key_Up, upTo(2) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
        break;
      case 12:
        press(upTo(2) == 0 ? Qt::Key_Home : Qt::Key_PageDown);
        break;
      default:
        break;
    }
    for (const UUID& selected : *model->selectedItemIDs) {
      ASSERT_TRUE(model->items().find(selected)) << "step " << step << ", action " << action;
    }
    ASSERT_EQ(shownAsSelected(), *model->selectedItemIDs) << "step " << step << ", action " << action;
  }
}

TEST_F(InboxListViewTest, WhatIsSelectedWhileASearchRunsIsSelectedWhenItIsFound) {
  const UUID one = arrive("invoice.png");
  arrive("other.png");
  show();
  presentation->setFilter({QStringLiteral("other"), InboxFilter::Scope::all});
  executor.drain();
  executor.holdBackground();
  presentation->setFilter({QStringLiteral("invoice"), InboxFilter::Scope::all});
  presentation->select(one);
  while (executor.heldBackground() > 0) executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{one});
  EXPECT_EQ(shownAsSelected(), UUIDSet{one});
}

// --- What is painted ---

/// The areas that were painted, one for each time.
class PaintWatch final : public QObject {
 public:
  explicit PaintWatch(QWidget& widget) { widget.installEventFilter(this); }
  std::vector<QRect> areas;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) areas.push_back(static_cast<QPaintEvent*>(event)->region().boundingRect());
    return false;
  }
};

TEST_F(InboxListViewTest, OneChangeOfOneRecordPaintsItsRowAlone) {
  const auto ids = arriveMany(5);
  show();
  settle();
  PaintWatch watch(*view->viewport());
  model->keepBatch({ids[3]});
  ASSERT_TRUE(testing::runLoopUntil([&] { return !watch.areas.empty(); }));
  EXPECT_EQ(watch.areas, std::vector<QRect>{view->visualRect(rows->index(1))});
}

TEST_F(InboxListViewTest, AThousandChangesOfOneTurnArePaintedOnce) {
  const auto ids = arriveMany(5);
  show();
  settle();
  PaintWatch watch(*view->viewport());
  for (int i = 0; i < 1000; ++i) {
    finish(model->rename(ids[static_cast<size_t>(i) % 5], QStringLiteral("name ") + QString::number(i),
                         ErrorScope::inbox));
  }
  ASSERT_TRUE(testing::runLoopUntil([&] { return !watch.areas.empty(); }));
  EXPECT_EQ(watch.areas.size(), 1u);
}

TEST_F(InboxListViewTest, AChangeOutOfSightPaintsNothing) {
  const auto ids = arriveMany(60);
  show();
  settle();
  PaintWatch watch(*view->viewport());
  model->keepBatch({ids[0]});
  // What is asked for after it is painted with it.
  const QRect mark(3, 3, 1, 1);
  view->viewport()->update(mark);
  ASSERT_TRUE(testing::runLoopUntil([&] { return !watch.areas.empty(); }));
  EXPECT_EQ(watch.areas, std::vector<QRect>{mark});
}

// --- The keyboard ---

TEST_F(InboxListViewTest, SpaceAndReturnOpenAndAHeldKeyOnce) {
  arriveMany(2);
  show();
  click(0);
  press(Qt::Key_Space);
  press(Qt::Key_Return);
  EXPECT_EQ(opened, 2);
  QKeyEvent held(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
  QCoreApplication::sendEvent(view.get(), &held);
  EXPECT_EQ(opened, 2);
}

TEST_F(InboxListViewTest, TypingGoesToTheNameThatBeginsSo) {
  arrive("alpha.png");
  const UUID beta = arrive("beta.png");
  arrive("gamma.png");
  show();
  view->takeKeyboard();
  QTest::keyClicks(view.get(), QStringLiteral("be"));
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{beta});
}

TEST_F(InboxListViewTest, CopyIsNotTheTextOfARow) {
  arriveMany(2);
  show();
  click(0);
  QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
  QCoreApplication::sendEvent(view.get(), &copy);
  EXPECT_FALSE(copy.isAccepted());
}

TEST_F(InboxListViewTest, TheMenuIsOfTheRowOrOfTheSelectionThatItIsPartOf) {
  const auto ids = arriveMany(4);
  show();
  click(0);
  click(1, Qt::ControlModifier);
  EXPECT_EQ(view->idsAt(rows->index(1)), (std::vector<UUID>{ids[3], ids[2]})) << "in the order of the list";
  EXPECT_EQ(view->idsAt(rows->index(3)), std::vector<UUID>{ids[0]});
}

TEST_F(InboxListViewTest, OneStepSelectsTheNextRowAlone) {
  const auto ids = arriveMany(3);
  show();
  click(0);
  view->step(1);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[1]});
  view->step(5);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[0]});
  view->step(-9);
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{ids[2]});
}

// --- Renaming in place ---

TEST_F(InboxListViewTest, TheFieldStandsInTheRowAndTakesTheKeyboard) {
  const auto ids = arriveMany(3);
  show();
  click(1);
  presentation->placeForRename = [](const UUID&) { return InboxPresentation::RenamePlace::list; };
  presentation->beginRename(item(ids[1]));
  auto* field = dynamic_cast<NameField*>(view->focusWidget());
  ASSERT_TRUE(field);
  EXPECT_TRUE(view->visualRect(rows->index(1)).contains(field->geometry()));
  EXPECT_EQ(field->text(), QStringLiteral("2"));
  QTest::keyClicks(field, QStringLiteral("Invoice"));
  QTest::keyClick(field, Qt::Key_Return);
  executor.drain();
  EXPECT_EQ(item(ids[1]).url.displayName(), QStringLiteral("Invoice.png"));
  EXPECT_FALSE(*presentation->renameSession);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(view->hasFocus()) << "the keyboard is back on the list";
}

TEST_F(InboxListViewTest, ASecondRenameOfTheSameRowHasAFieldOfItsOwn) {
  const auto ids = arriveMany(2);
  show();
  presentation->placeForRename = [](const UUID&) { return InboxPresentation::RenamePlace::list; };
  presentation->beginRename(item(ids[0]));
  presentation->beginRename(item(ids[0]));
  auto* field = dynamic_cast<NameField*>(view->focusWidget());
  ASSERT_TRUE(field);
  QTest::keyClicks(field, QStringLiteral("Invoice"));
  QTest::keyClick(field, Qt::Key_Return);
  executor.drain();
  EXPECT_EQ(item(ids[0]).url.displayName(), QStringLiteral("Invoice.png"));
}

TEST_F(InboxListViewTest, TheFieldFollowsItsRow) {
  const auto ids = arriveMany(3);
  show();
  presentation->placeForRename = [](const UUID&) { return InboxPresentation::RenamePlace::list; };
  presentation->beginRename(item(ids[1]));
  auto* field = dynamic_cast<NameField*>(view->focusWidget());
  ASSERT_TRUE(field);
  arrive("4.png");
  QCoreApplication::processEvents();
  EXPECT_TRUE(view->visualRect(rows->index(2)).contains(field->geometry()));
}

}  // namespace
}  // namespace quillmere
