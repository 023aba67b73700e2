#include "inbox/InboxListModel.h"

#include <QtCore/QLocale>
#include <QtGui/QImage>
#include <QtTest/QAbstractItemModelTester>

#include "fakes/ModelFixture.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

using testing::State;

/// What the list told its views, in words.
class InboxListModelTest : public testing::ModelFixture {
 protected:
  void open() {
    rows = std::make_unique<InboxListModel>(*model, thumbnails);
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

  ThumbnailLoader thumbnails{executor, [](const FileURL&) { return false; }};
  std::unique_ptr<InboxListModel> rows;
  std::unique_ptr<QAbstractItemModelTester> tester;
  std::vector<std::string> told;
};

TEST_F(InboxListModelTest, ShowsTheRecordsNewestFirst) {
  launchWatching();
  arrive("1.png");
  arrive("2.png");
  open();
  EXPECT_EQ(names(), list({"2.png", "1.png"}));
}

TEST_F(InboxListModelTest, AnArrivalIsOneRowAtTheTop) {
  launchWatching();
  arrive("1.png");
  open();
  arrive("2.png");
  EXPECT_EQ(told.front(), "inserted 0");
  EXPECT_EQ(std::count(told.begin(), told.end(), "inserted 0"), 1);
  EXPECT_EQ(std::count(told.begin(), told.end(), "reset"), 0);
  EXPECT_EQ(names(), list({"2.png", "1.png"}));
}

TEST_F(InboxListModelTest, AChangeIsToldOfItsRowAlone) {
  launchWatching();
  const UUID first = arrive("1.png");
  arrive("2.png");
  open();
  model->keepPrompt(first).detach();
  EXPECT_THAT(told, ::testing::Each("changed 1"));
  EXPECT_FALSE(told.empty());
}

TEST_F(InboxListModelTest, RemovedRowsGoFromTheLastOn) {
  launchWatching();
  const UUID first = arrive("1.png");
  arrive("2.png");
  const UUID third = arrive("3.png");
  arrive("4.png");
  open();
  model->removeRecords({first, third});
  EXPECT_EQ(told, (std::vector<std::string>{"removed 3", "removed 1"}));
  EXPECT_EQ(names(), list({"4.png", "2.png"}));
}

TEST_F(InboxListModelTest, EverythingRemovedLeavesAnEmptyList) {
  launchWatching();
  const UUIDSet all{arrive("1.png"), arrive("2.png"), arrive("3.png")};
  open();
  model->removeRecords(all);
  EXPECT_EQ(rows->rowCount(), 0);
  arrive("4.png");
  EXPECT_EQ(names(), list({"4.png"}));
}

TEST_F(InboxListModelTest, ARowThatIsNotThereHasNoData) {
  launchWatching();
  arrive("1.png");
  open();
  EXPECT_FALSE(rows->data(QModelIndex(), InboxListModel::nameRole).isValid());
  EXPECT_FALSE(rows->data(rows->index(0), Qt::UserRole + 100).isValid());
  EXPECT_EQ(rows->rowCount(rows->index(0)), 0);
}

TEST_F(InboxListModelTest, TheStatusAndTheSymbolFollowTheDecision) {
  launchWatching();
  const UUID id = arrive("1.png");
  open();
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
  launchWatching();
  const UUID id = arrive("1.png");
  open();
  model->markTemporary(id, TemporaryDuration::oneHour).detach();
  const QString expiry = QLocale().toString(item(id).expiresAt->toDateTime().toLocalTime(), QLocale::ShortFormat);
  EXPECT_TRUE(text(0, Qt::AccessibleDescriptionRole).contains(expiry));
  EXPECT_EQ(text(0, Qt::AccessibleTextRole), QStringLiteral("1.png"));
}

TEST_F(InboxListModelTest, AFileThatIsAwayIsUnavailable) {
  launchWatching();
  const UUID id = arrive("1.png");
  arrive("2.png");
  open();
  EXPECT_FALSE(rows->data(rows->index(1), InboxListModel::unavailableRole).toBool());
  makeUnavailable(id);
  EXPECT_TRUE(rows->data(rows->index(1), InboxListModel::unavailableRole).toBool());
  EXPECT_EQ(text(1, InboxListModel::symbolRole), QStringLiteral("exclamationmark.triangle.fill"));
  EXPECT_TRUE(text(1, InboxListModel::statusRole).startsWith(localized("Unavailable")));
  EXPECT_EQ(std::count(told.begin(), told.end(), "changed 0-1"), 1);
}

// --- Pictures ---

TEST_F(InboxListModelTest, APictureComesLaterAndItsRowIsTold) {
  launchWatching();
  arrive("1.png");
  QImage picture(300, 200, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(shots.appending("1.png").displayPath()));
  rows = std::make_unique<InboxListModel>(*model, thumbnails);
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
  launchWatching();
  arrive("1.png");
  rows = std::make_unique<InboxListModel>(*model, thumbnails);
  executor.holdBackground();
  for (int i = 0; i < 3; ++i) rows->data(rows->index(0), InboxListModel::thumbnailRole);
  EXPECT_EQ(executor.heldBackground(), 1u);
  executor.runHeldBackground();
  rows->data(rows->index(0), InboxListModel::thumbnailRole);
  EXPECT_EQ(executor.heldBackground(), 0u);
}

TEST_F(InboxListModelTest, ALoadMayOutliveItsRowAndTheList) {
  launchWatching();
  const UUID first = arrive("1.png");
  arrive("2.png");
  rows = std::make_unique<InboxListModel>(*model, thumbnails);
  executor.holdBackground();
  rows->data(rows->index(0), InboxListModel::thumbnailRole);
  rows->data(rows->index(1), InboxListModel::thumbnailRole);
  model->removeRecords({first});
  rows.reset();
  executor.runHeldBackground();
}

TEST_F(InboxListModelTest, TheListMayBeClosedWhileTheModelGoesOn) {
  launchWatching();
  open();
  tester.reset();
  rows.reset();
  arrive("1.png");
  EXPECT_TRUE(told.empty());
}

}  // namespace
}  // namespace quillmere
