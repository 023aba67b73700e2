#include "inbox/InboxListModel.h"

#include <QtCore/QLocale>
#include <QtGui/QImage>
#include <QtTest/QAbstractItemModelTester>

#include "fakes/DecodedPictures.h"
#include "fakes/FakeSharedThumbnails.h"
#include "foundation/Localized.h"
#include "inbox/InboxFixture.h"

namespace quillmere {
namespace {

using testing::State;

/// What the list told its views, in words.
class InboxListModelTest : public testing::InboxFixture {
 protected:
  void openList() {
    rows = std::make_unique<InboxListModel>(*presentation);
    tester =
        std::make_unique<QAbstractItemModelTester>(rows.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    executor.drain();
    const auto note = [this](const char* what) {
      return [this, what](const QModelIndex&, int first, int last) {
        told.push_back(what + std::to_string(first) + (last == first ? "" : "-" + std::to_string(last)));
      };
    };
    QObject::connect(rows.get(), &QAbstractItemModel::rowsInserted, note("inserted "));
    QObject::connect(rows.get(), &QAbstractItemModel::rowsRemoved, note("removed "));
    QObject::connect(rows.get(), &QAbstractItemModel::modelReset, [this] { told.emplace_back("reset"); });
    QObject::connect(rows.get(), &QAbstractItemModel::dataChanged,
                     [this](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
                       if (roles == QList<int>{InboxListModel::thumbnailRole}) return;
                       told.push_back("changed " + std::to_string(first.row()) +
                                      (last == first ? "" : "-" + std::to_string(last.row())));
                     });
    told.clear();
  }
  QString text(int row, int role) const { return rows->data(rows->index(row), role).toString(); }
  std::vector<QString> names() const {
    std::vector<QString> result;
    for (int row = 0; row < rows->rowCount(); ++row) result.push_back(text(row, InboxListModel::nameRole));
    return result;
  }
  static std::vector<QString> list(std::initializer_list<const char*> names) {
    std::vector<QString> result;
    for (const char* name : names) result.push_back(QLatin1String(name));
    return result;
  }

  std::unique_ptr<InboxListModel> rows;
  std::unique_ptr<QAbstractItemModelTester> tester;
  void TearDown() override {
    tester.reset();
    rows.reset();
    InboxFixture::TearDown();
  }

  std::vector<std::string> told;
};

TEST_F(InboxListModelTest, ShowsTheRecordsNewestFirst) {
  arrive("1.png");
  arrive("2.png");
  openList();
  EXPECT_EQ(names(), list({"2.png", "1.png"}));
}

TEST_F(InboxListModelTest, AnArrivalIsOneRowAtTheTop) {
  arrive("1.png");
  openList();
  arrive("2.png");
  EXPECT_EQ(told.front(), "inserted 0");
  EXPECT_EQ(std::count(told.begin(), told.end(), "inserted 0"), 1);
  EXPECT_EQ(std::count(told.begin(), told.end(), "reset"), 0);
  EXPECT_EQ(names(), list({"2.png", "1.png"}));
}

TEST_F(InboxListModelTest, AChangeIsToldOfItsRowAlone) {
  const UUID first = arrive("1.png");
  arrive("2.png");
  openList();
  model->keepPrompt(first).detach();
  EXPECT_THAT(told, ::testing::Each("changed 1"));
  EXPECT_FALSE(told.empty());
}

TEST_F(InboxListModelTest, RemovedRowsGoFromTheLastOn) {
  const UUID first = arrive("1.png");
  arrive("2.png");
  const UUID third = arrive("3.png");
  arrive("4.png");
  openList();
  model->removeRecords({first, third});
  EXPECT_EQ(told, (std::vector<std::string>{"removed 3", "removed 1"}));
  EXPECT_EQ(names(), list({"4.png", "2.png"}));
}

TEST_F(InboxListModelTest, EverythingRemovedLeavesAnEmptyList) {
  const UUIDSet all{arrive("1.png"), arrive("2.png"), arrive("3.png")};
  openList();
  model->removeRecords(all);
  EXPECT_EQ(rows->rowCount(), 0);
  arrive("4.png");
  EXPECT_EQ(names(), list({"4.png"}));
}

TEST_F(InboxListModelTest, ARowThatIsNotThereHasNoData) {
  arrive("1.png");
  openList();
  EXPECT_FALSE(rows->data(QModelIndex(), InboxListModel::nameRole).isValid());
  EXPECT_FALSE(rows->data(rows->index(0), Qt::UserRole + 100).isValid());
  EXPECT_EQ(rows->rowCount(rows->index(0)), 0);
}

TEST_F(InboxListModelTest, TheStatusAndTheSymbolFollowTheDecision) {
  const UUID id = arrive("1.png");
  openList();
  EXPECT_TRUE(text(0, InboxListModel::statusRole).startsWith(statusText(State::pending)));
  EXPECT_EQ(text(0, InboxListModel::symbolRole), QStringLiteral("circle.dashed"));
  model->markTemporary(id, TemporaryDuration::oneHour).detach();
  EXPECT_TRUE(text(0, InboxListModel::statusRole).startsWith(statusText(State::temporary)));
  EXPECT_EQ(text(0, InboxListModel::symbolRole), QStringLiteral("clock"));
  model->keepBatch({id});
  EXPECT_TRUE(text(0, InboxListModel::statusRole).startsWith(statusText(State::permanent)));
  EXPECT_EQ(text(0, InboxListModel::symbolRole), QStringLiteral("checkmark.circle"));
  EXPECT_EQ(rows->data(rows->index(0), InboxListModel::idRole).value<UUID>(), id);
}

TEST_F(InboxListModelTest, ATemporaryScreenshotIsSpokenWithItsEnd) {
  const UUID id = arrive("1.png");
  openList();
  model->markTemporary(id, TemporaryDuration::oneHour).detach();
  const QString expiry = QLocale().toString(item(id).expiresAt->toDateTime().toLocalTime(), QLocale::ShortFormat);
  EXPECT_TRUE(text(0, Qt::AccessibleDescriptionRole).contains(expiry));
  EXPECT_EQ(text(0, Qt::AccessibleTextRole), QStringLiteral("1.png"));
}

TEST_F(InboxListModelTest, AFileThatIsAwayIsUnavailable) {
  const UUID id = arrive("1.png");
  arrive("2.png");
  openList();
  EXPECT_FALSE(rows->data(rows->index(1), InboxListModel::unavailableRole).toBool());
  makeUnavailable(id);
  EXPECT_TRUE(rows->data(rows->index(1), InboxListModel::unavailableRole).toBool());
  EXPECT_EQ(text(1, InboxListModel::symbolRole), QStringLiteral("exclamationmark.triangle.fill"));
  EXPECT_TRUE(text(1, InboxListModel::statusRole).startsWith(localized("Unavailable")));
  EXPECT_EQ(std::count(told.begin(), told.end(), "changed 1"), 1) << "and nothing of the other row";
}

// --- The filter ---

TEST_F(InboxListModelTest, AStatusLetsItsRecordsThrough) {
  const UUID first = arrive("1.png");
  arrive("2.png");
  const UUID third = arrive("3.png");
  model->keepBatch({first, third});
  openList();
  presentation->setFilter({{}, InboxFilter::Scope::saved});
  EXPECT_EQ(names(), list({"3.png", "1.png"}));
  presentation->setFilter({{}, InboxFilter::Scope::pending});
  EXPECT_EQ(names(), list({"2.png"}));
  presentation->setFilter({});
  EXPECT_EQ(names(), list({"3.png", "2.png", "1.png"}));
}

TEST_F(InboxListModelTest, ALostFileLeavesItsStatusForTheUnavailableOnes) {
  const UUID first = arrive("1.png");
  arrive("2.png");
  model->keepBatch({first});
  openList();
  presentation->setFilter({{}, InboxFilter::Scope::saved});
  makeUnavailable(first);
  EXPECT_EQ(names(), list({}));
  presentation->setFilter({{}, InboxFilter::Scope::unavailable});
  EXPECT_EQ(names(), list({"1.png"}));
}

TEST_F(InboxListModelTest, ATextLetsThroughWhatHasItInAnyField) {
  arrive("Invoice.png");
  const UUID read = arriveRead("2.png");
  arrive("3.png");
  openList();
  presentation->setFilter({QStringLiteral(" invoice "), InboxFilter::Scope::all});
  executor.drain();
  EXPECT_EQ(names(), list({"Invoice.png"}));
  presentation->setFilter({QStringLiteral("TOTAL"), InboxFilter::Scope::all});
  executor.drain();
  EXPECT_EQ(names(), list({"2.png"}));
  presentation->setFilter({QStringLiteral("   "), InboxFilter::Scope::all});
  EXPECT_EQ(rows->rowCount(), 3) << "blanks are no text";
  presentation->setFilter({QStringLiteral("total"), InboxFilter::Scope::saved});
  executor.drain();
  EXPECT_EQ(rows->rowCount(), 0);
  model->keepBatch({read});
  EXPECT_EQ(names(), list({"2.png"})) << "once it passes both";
}

TEST_F(InboxListModelTest, WhileASearchRunsTheRowsStay) {
  arrive("1.png");
  arrive("2.png");
  openList();
  executor.holdBackground();
  presentation->setFilter({QStringLiteral("1"), InboxFilter::Scope::all});
  EXPECT_EQ(rows->rowCount(), 2);
  EXPECT_TRUE(rows->filter().isOff());
  while (executor.heldBackground() > 0) executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(names(), list({"1.png"}));
  EXPECT_EQ(rows->filter(), *presentation->filter);
}

TEST_F(InboxListModelTest, OfTwoSearchesTheLaterOneCounts) {
  arrive("11.png");
  arrive("12.png");
  openList();
  executor.holdBackground();
  presentation->setFilter({QStringLiteral("1"), InboxFilter::Scope::all});
  presentation->setFilter({QStringLiteral("12"), InboxFilter::Scope::all});
  while (executor.heldBackground() > 0) executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(names(), list({"12.png"}));
}

TEST_F(InboxListModelTest, ASearchMayOutliveTheList) {
  arrive("1.png");
  openList();
  executor.holdBackground();
  presentation->setFilter({QStringLiteral("1"), InboxFilter::Scope::all});
  tester.reset();
  rows.reset();
  while (executor.heldBackground() > 0) executor.runHeldBackground();
  executor.drain();
}

TEST_F(InboxListModelTest, InASearchArrivalsAndRenamesComeAndGoByTheirNames) {
  const UUID first = arrive("invoice 1.png");
  arrive("other.png");
  openList();
  presentation->setFilter({QStringLiteral("invoice"), InboxFilter::Scope::all});
  executor.drain();
  arrive("invoice 2.png");
  arrive("different.png");
  EXPECT_EQ(names(), list({"invoice 2.png", "invoice 1.png"}));
  finish(model->rename(first, QStringLiteral("bill"), ErrorScope::inbox));
  EXPECT_EQ(names(), list({"invoice 2.png"}));
  finish(model->rename(first, QStringLiteral("INVOICE 3"), ErrorScope::inbox));
  EXPECT_EQ(names(), list({"invoice 2.png", "INVOICE 3.png"})) << "where it was taken";
}

TEST_F(InboxListModelTest, ManyPlacesAtOnceAreToldAsOneChangeOfAll) {
  UUIDSet odd;
  for (int i = 0; i < 100; ++i) {
    const UUID id = arrive(std::to_string(i) + ".png");
    if (i % 2 == 1) odd.insert(id);
  }
  openList();
  model->removeRecords(odd);
  EXPECT_EQ(told, std::vector<std::string>{"reset"});
  EXPECT_EQ(rows->rowCount(), 50);
}

TEST_F(InboxListModelTest, ADecisionAboutManyIsOneChange) {
  std::vector<UUID> ids;
  for (int i = 0; i < 100; ++i) ids.push_back(arrive(std::to_string(i) + ".png"));
  openList();
  presentation->setFilter({{}, InboxFilter::Scope::pending});
  told.clear();
  model->keepBatch(ids);
  EXPECT_EQ(told, std::vector<std::string>{"reset"});
  EXPECT_EQ(rows->rowCount(), 0);
  presentation->setFilter({});
  told.clear();
  model->keepBatch({arrive("new.png")});
  EXPECT_EQ(std::count(told.begin(), told.end(), "reset"), 0);
}

TEST_F(InboxListModelTest, ARowIsFoundByItsRecord) {
  const UUID first = arrive("1.png");
  const UUID second = arrive("2.png");
  openList();
  EXPECT_EQ(rows->row(first), 1);
  EXPECT_EQ(rows->row(second), 0);
  presentation->setFilter({QStringLiteral("1"), InboxFilter::Scope::all});
  executor.drain();
  EXPECT_EQ(rows->row(first), 0);
  EXPECT_EQ(rows->row(second), std::nullopt);
}

// --- Pictures ---

TEST_F(InboxListModelTest, APictureComesLaterAndItsRowIsTold) {
  arrive("1.png");
  QImage picture(300, 200, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(shots.appending("1.png").displayPath()));
  rows = std::make_unique<InboxListModel>(*presentation);
  std::vector<int> pictured;
  QObject::connect(rows.get(), &QAbstractItemModel::dataChanged,
                   [&](const QModelIndex& index, const QModelIndex&, const QList<int>& roles) {
                     if (roles == QList<int>{InboxListModel::thumbnailRole}) pictured.push_back(index.row());
                   });
  EXPECT_FALSE(rows->data(rows->index(0), InboxListModel::thumbnailRole).isValid());
  arrive("2.png");
  executor.drain();
  EXPECT_EQ(pictured, std::vector<int>{1}) << "where the row is by then";
  const auto shown = rows->data(rows->index(1), InboxListModel::thumbnailRole).value<QImage>();
  EXPECT_EQ(shown.width(), InboxListModel::kThumbnailPixels);
}

TEST_F(InboxListModelTest, APictureThatCannotBeReadIsAskedForOnce) {
  arrive("1.png");
  rows = std::make_unique<InboxListModel>(*presentation);
  executor.holdBackground();
  for (int i = 0; i < 3; ++i) rows->data(rows->index(0), InboxListModel::thumbnailRole);
  EXPECT_EQ(executor.heldBackground(), 1u);
  executor.runHeldBackground();
  rows->data(rows->index(0), InboxListModel::thumbnailRole);
  EXPECT_EQ(executor.heldBackground(), 0u);
}

TEST_F(InboxListModelTest, OnlyOfScreenshotsThatWereKeptAThumbnailIsLeftToOtherPrograms) {
  const UUID kept = arrive("kept.png");
  const UUID temporary = arrive("temporary.png");
  arrive("pending.png");
  QImage picture(300, 200, QImage::Format_RGB32);
  picture.fill(Qt::red);
  for (const char* name : {"kept.png", "temporary.png", "pending.png"}) {
    ASSERT_TRUE(picture.save(shots.appending(name).displayPath()));
  }
  model->keepBatch({kept});
  model->markTemporary(temporary, TemporaryDuration::oneHour).detach();
  const auto shared = std::make_shared<testing::FakeSharedThumbnails>();
  ThumbnailLoader sharer(
      executor, testing::decodedPictures(), [](const FileURL&) { return false; }, shared);
  close();
  services.thumbnails = &sharer;
  open();
  rows = std::make_unique<InboxListModel>(*presentation);
  for (int row = 0; row < 3; ++row) rows->data(rows->index(row), InboxListModel::thumbnailRole);
  executor.drain();
  for (int row = 0; row < 3; ++row) {
    EXPECT_TRUE(rows->data(rows->index(row), InboxListModel::thumbnailRole).isValid()) << row;
  }
  EXPECT_THAT(shared->asked, ::testing::UnorderedElementsAre("kept.png 128", "temporary.png 128", "pending.png 128"));
  EXPECT_EQ(shared->keptNames(), std::vector<std::string>{"kept.png"});
}

TEST_F(InboxListModelTest, ALoadMayOutliveItsRowAndTheList) {
  const UUID first = arrive("1.png");
  arrive("2.png");
  rows = std::make_unique<InboxListModel>(*presentation);
  executor.holdBackground();
  rows->data(rows->index(0), InboxListModel::thumbnailRole);
  rows->data(rows->index(1), InboxListModel::thumbnailRole);
  model->removeRecords({first});
  rows.reset();
  executor.runHeldBackground();
}

TEST_F(InboxListModelTest, TheListMayBeClosedWhileTheModelGoesOn) {
  openList();
  tester.reset();
  rows.reset();
  arrive("1.png");
  EXPECT_TRUE(told.empty());
}

}  // namespace
}  // namespace quillmere
