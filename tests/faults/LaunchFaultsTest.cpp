#include <gtest/gtest.h>
#include <set>

#include "faults/LiveModel.h"
#include "faults/Whereabouts.h"
#include "support/ChildProcess.h"

namespace quillmere::testing {
namespace {

/// The records of every list and every copy of one in the folder.
std::set<std::string> recordsKept(const FileURL& folder) {
  std::set<std::string> ids;
  for (const std::string& name : namesIn(folder)) {
    std::string bytes = readBytes(folder.appending(name));
    if (const auto list = decodeList(bytes)) {
      for (const ScreenshotItem& item : list->items) ids.insert(uuidText(item.id));
    }
  }
  return ids;
}

TEST(LaunchFaults, CallThatFailsLosesNoFileAndNoRecord) {
  int cases = 0;
  for (const int error : kErrors) {
    for (size_t number = 1;; ++number) {
      LiveModel live(LiveModel::State::temporary);
      std::vector<FaultyCalls::Made> made;
      {
        FaultyCalls faults(privateHome());
        faults.fail(number, error);
        live.launch();
        made = faults.made();
      }
      if (made.size() < number) {
        EXPECT_GT(number, 20u) << "calls of the launch are not seen";
        break;
      }
      ++cases;
      SCOPED_TRACE(describe(made[number - 1], error));
      EXPECT_EQ(namesIn(live.shots).size(), 3u);
      const bool isListUnread = live.model->items().empty();
      if (!isListUnread) {
        EXPECT_EQ(live.model->items().size(), 3u);
        EXPECT_TRUE(live.model->expirationScheduler().expirations().contains(live.id));
        ASSERT_TRUE(live.record());
        EXPECT_EQ(live.record()->state, LiveModel::State::temporary);
      }
      // What could not be read is beside it, or is not written over.
      live.model->saveNow();
      EXPECT_EQ(recordsKept(live.listFile.parent()).size(), 3u);
      // The next launch, or the expiry, finds everything as usual.
      if (isListUnread) continue;
      live.launch();
      live.advance(LiveModel::kLifetime + 1);
      EXPECT_FALSE(live.record());
      EXPECT_EQ(live.model->items().size(), 2u);
      const Whereabouts found = findPicture(LiveModel::bytesOf(1), live.oldPlace, live.newPlace, homeTrash(),
                                            {"Screenshot 2.png", "Screenshot 3.png"});
      EXPECT_EQ(found.copies, std::vector{Place::trash});
    }
  }
  ::testing::Test::RecordProperty("cases", cases);
}

TEST(LaunchFaults, ListThatCannotBeSeenIsNotWrittenOver) {
  for (const int error : {EACCES, EIO}) {
    LiveModel live(LiveModel::State::permanent);
    {
      FaultyCalls faults(privateHome());
      for (const Call call : {Call::status, Call::access, Call::open, Call::resolvePath}) {
        faults.failEvery(call, error, "screenshots.json");
      }
      live.launch();
    }
    live.model->saveNow();
    EXPECT_EQ(recordsKept(live.listFile.parent()).size(), 3u) << ::strerrorname_np(error);
  }
}

TEST(ReconciliationFaults, PictureThatCannotBeSeenKeepsItsRecord) {
  for (const int error : {EACCES, EIO}) {
    SCOPED_TRACE(::strerrorname_np(error));
    LiveModel live(LiveModel::State::temporary);
    {
      FaultyCalls faults(privateHome());
      for (const Call call : {Call::status, Call::access, Call::open, Call::resolvePath}) {
        faults.failEvery(call, error, LiveModel::kOldName);
      }
      live.model->reconcile({});
      live.executor.drain();
    }
    EXPECT_TRUE(live.record()) << "the file still stands in the folder";
    EXPECT_TRUE(live.model->unavailableItemIDs->contains(live.id));
    live.model->reconcile({});
    live.executor.drain();
    EXPECT_FALSE(live.model->unavailableItemIDs->contains(live.id));
  }
}

TEST(ReconciliationFaults, CallThatFailsKeepsEveryRecord) {
  int cases = 0;
  for (const int error : kErrors) {
    for (size_t number = 1;; ++number) {
      LiveModel live(LiveModel::State::temporary);
      std::vector<FaultyCalls::Made> made;
      {
        FaultyCalls faults(privateHome());
        faults.fail(number, error);
        live.model->reconcile({});
        live.executor.drain();
        made = faults.made();
      }
      if (made.size() < number) break;
      ++cases;
      SCOPED_TRACE(describe(made[number - 1], error));
      ASSERT_TRUE(live.record());
      EXPECT_EQ(live.record()->url, live.oldPlace);
      EXPECT_EQ(live.record()->state, LiveModel::State::temporary);
      EXPECT_EQ(live.model->items().size(), 3u);
      EXPECT_TRUE(live.savedRecords());
    }
  }
  ::testing::Test::RecordProperty("cases", cases);
}

}  // namespace
}  // namespace quillmere::testing
