#include "inbox/SearchIndex.h"

#include <random>

#include "fakes/ModelFixture.h"
#include "inbox/InboxFilter.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Finding = Task<std::optional<std::vector<UUID>>>;
using Names = std::vector<std::string>;

class SearchIndexTest : public ModelFixture {
 protected:
  /// Launches with these texts, oldest first, in files named 1.png, 2.png and so on.
  void launchWith(const std::vector<std::string>& texts) {
    std::vector<ScreenshotItem> items;
    for (const std::string& text : texts) {
      const int number = static_cast<int>(items.size()) + 1;
      ScreenshotItem item = storedItem(number, std::to_string(number) + ".png", State::permanent);
      item.recognizedText = QByteArray::fromStdString(text);
      items.insert(items.begin(), std::move(item));
    }
    storeRecords(std::move(items));
    launchWatching();
    index = std::make_unique<SearchIndex>(*model, indexExecutor);
  }
  Finding begin(const char* text) { return index->find(QString::fromUtf8(text)); }
  static std::string describe(const Finding& finding) {
    return !finding.isDone() ? "runs" : finding.await_resume() ? "found" : "nothing";
  }
  Names names(const std::vector<UUID>& ids) const {
    Names result;
    for (const UUID& id : ids) result.push_back(item(id).url.stem());
    return result;
  }
  Names result(const Finding& finding) const {
    if (describe(finding) != "found") return {describe(finding)};
    return names(*finding.await_resume());
  }
  Names finding(const char* text) {
    const auto running = begin(text);
    indexExecutor.drain();
    return result(running);
  }
  /// Begins a search and stops before its work is done.
  Finding beginHeld(const char* text) {
    indexExecutor.drain();
    indexExecutor.holdBackground();
    auto running = begin(text);
    EXPECT_EQ(indexExecutor.heldBackground(), 1u);
    return running;
  }
  UUID idOf(int number) const { return uuid(number); }
  void rename(int number, const char* name) {
    ASSERT_TRUE(finish(model->rename(uuid(number), QString::fromUtf8(name), ErrorScope::inbox)));
  }

  /// The index's own, so that the model goes on while a search is held.
  ManualExecutor indexExecutor;
  std::unique_ptr<SearchIndex> index;
};

// --- What is found ---

TEST_F(SearchIndexTest, TellsTheRecordsInTheModelsOrder) {
  launchWith({"one", "two", "One and two"});
  EXPECT_THAT(finding("one"), ElementsAre("3", "1"));
  EXPECT_THAT(finding("TWO"), ElementsAre("3", "2"));
  EXPECT_THAT(finding("three"), IsEmpty());
}

TEST_F(SearchIndexTest, CaseAccentsAndBlanksAroundAreNothing) {
  launchWith({"a café", "resume"});
  EXPECT_THAT(finding("É"), ElementsAre("2", "1"));
  EXPECT_THAT(finding(" \n cafe\t"), ElementsAre("1"));
  EXPECT_THAT(finding("RÉSUMÉ"), ElementsAre("2"));
}

TEST_F(SearchIndexTest, AnEmptyTextFindsAll) {
  launchWith({"one", "two"});
  for (const char* text : {"", " \n ", "\u0301"}) EXPECT_THAT(finding(text), ElementsAre("2", "1")) << text;
}

TEST_F(SearchIndexTest, ThereMayBeNoRecords) {
  launchWith({});
  EXPECT_THAT(finding("one"), IsEmpty());
  EXPECT_THAT(finding(""), IsEmpty());
}

TEST_F(SearchIndexTest, WhatABlockIsNotSureOfIsAskedOfTheSlowWay) {
  launchWith({"Straße", "ß", std::string(100'000, 'x') + " end"});
  EXPECT_THAT(finding("s"), ElementsAre("1"));
  EXPECT_THAT(finding("ss"), ElementsAre("2", "1")) << "narrowed";
  EXPECT_THAT(finding("x end"), ElementsAre("3"));
}

TEST_F(SearchIndexTest, ManyRecordsAreFoundAsOneByOne) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(::testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const std::vector<std::string> words{"one ", "Öne", "ß", "s", "ch", "가", "각", "\n", "x", "Window"};
  const auto text = [&](unsigned most) {
    std::string made;
    for (unsigned i = static_cast<unsigned>(random() % (most + 1)); i > 0; --i) made += words[random() % words.size()];
    return made;
  };
  std::vector<std::string> texts(300);
  for (auto& each : texts) each = text(12);
  launchWith(texts);
  for (int i = 0; i < 60; ++i) {
    const QString sought = QString::fromStdString(text(3));
    const auto found = index->find(sought);
    indexExecutor.drain();
    std::vector<const ScreenshotItem*> items;
    model->items().forEach([&](const ScreenshotItem& item) { items.push_back(&item); });
    std::vector<UUID> expected;
    for (const auto* item : InboxFilter{sought}.apply(items, {})) expected.push_back(item->id);
    ASSERT_EQ(found.await_resume(), expected) << sought.toStdString();
    for (const auto* item : items) {
      ASSERT_EQ(index->contains(*item, sought), std::count(expected.begin(), expected.end(), item->id) == 1);
    }
  }
}

TEST_F(SearchIndexTest, ALongerWordNarrowsAndAShorterOneWidens) {
  launchWith({"on", "one", "ones"});
  EXPECT_THAT(finding("on"), ElementsAre("3", "2", "1"));
  EXPECT_THAT(finding("one"), ElementsAre("3", "2"));
  EXPECT_THAT(finding("ones"), ElementsAre("3"));
  EXPECT_THAT(finding("one"), ElementsAre("3", "2"));
  EXPECT_THAT(finding("s"), ElementsAre("3"));
  EXPECT_THAT(finding("n"), ElementsAre("3", "2", "1"));
}

// --- Following the model ---

TEST_F(SearchIndexTest, FollowsArrivalsWithTheTextReadFromThem) {
  launchWith({"one"});
  EXPECT_THAT(finding("one"), ElementsAre("1"));
  analyzer.text = QStringLiteral("ones");
  arrive("a.png");
  indexExecutor.drain();
  EXPECT_THAT(finding("one"), ElementsAre("a", "1"));
  EXPECT_THAT(finding("ones"), ElementsAre("a"));
}

TEST_F(SearchIndexTest, FollowsADescription) {
  analyzer.holdsDescriptions = true;
  launchWith({"one", "two"});
  EXPECT_THAT(finding("invoice"), IsEmpty());
  FakeAnalyzer::answer(analyzer.descriptions.front(),
                       DescribeOutcome(ScreenshotAnalysisResult{QStringLiteral("An invoice."), QString()}));
  EXPECT_EQ(finding("invoice"), Names{analyzer.descriptions.front()->url.stem()});
}

TEST_F(SearchIndexTest, FollowsARename) {
  launchWith({"one", "two"});
  EXPECT_THAT(finding("receipt"), IsEmpty());
  rename(1, "Receipt");
  EXPECT_THAT(finding("receipt"), ElementsAre("Receipt"));
  EXPECT_THAT(finding("receipt.png"), ElementsAre("Receipt"));
  EXPECT_THAT(finding("1.png"), IsEmpty());
}

TEST_F(SearchIndexTest, FollowsRemovals) {
  launchWith({"one", "one", "one", "one"});
  EXPECT_THAT(finding("one"), ElementsAre("4", "3", "2", "1"));
  model->removeRecords({idOf(1), idOf(3)});
  EXPECT_THAT(finding("one"), ElementsAre("4", "2"));
  model->removeRecords({idOf(2), idOf(4)});
  EXPECT_THAT(finding("one"), IsEmpty());
  arrive("one.png");
  EXPECT_THAT(finding("one"), ElementsAre("one"));
}

TEST_F(SearchIndexTest, OnlyTextsThatChangedAreFoldedAnew) {
  launchWith({"one", "two"});
  EXPECT_THAT(finding("one"), ElementsAre("1"));
  indexExecutor.holdBackground();
  model->markTemporary(idOf(1), TemporaryDuration::oneHour).detach();
  const size_t before = indexExecutor.heldBackground();
  rename(2, "Two");
  EXPECT_EQ(indexExecutor.heldBackground(), before + 1) << "of the second alone, and nothing of the first before";
  indexExecutor.runHeldBackground();
  EXPECT_THAT(finding("one"), ElementsAre("1"));
}

TEST_F(SearchIndexTest, WhatChangedOftenTakesNoMoreMemory) {
  launchWith(std::vector<std::string>(40, std::string(5000, 'x')));
  EXPECT_EQ(finding("x").size(), 40u);
  const size_t before = index->memory();
  for (int round = 0; round < 3; ++round) {
    for (int number = 1; number <= 40; ++number) {
      rename(number, ("Name " + std::to_string(round) + " " + std::to_string(number)).c_str());
      if (number % 8 == 0) indexExecutor.drain();
    }
  }
  indexExecutor.drain();
  EXPECT_LT(index->memory(), 3 * before) << "at most half of what is kept is dead";
  EXPECT_EQ(finding("Name 2").size(), 40u);
  EXPECT_THAT(finding("Name 1 "), IsEmpty());
  EXPECT_THAT(finding("Name 2 27"), ElementsAre("Name 2 27"));
}

TEST_F(SearchIndexTest, FollowsAlthoughAnotherChangesTheModelFirst) {
  launchWith({"one", "one"});
  bool hasRemoved = false;
  const Connection meddler = model->changed.connect([&](const ModelChange& change) {
    if (change.rows != ModelChange::Rows::inserted || hasRemoved) return;
    hasRemoved = true;
    model->removeRecords({idOf(1)});
  });
  EXPECT_THAT(finding("one"), ElementsAre("2", "1"));
  arrive("one more.png");
  ASSERT_TRUE(hasRemoved);
  EXPECT_THAT(finding("one"), ElementsAre("one more", "2"));
}

// --- While a search runs ---

TEST_F(SearchIndexTest, WhatCameMeanwhileIsJudged) {
  launchWith({"one", "two"});
  index->prepare();
  const auto running = beginHeld("one");
  arrive("one more.png");
  arrive("other.png");
  EXPECT_EQ(describe(running), "runs");
  indexExecutor.runHeldBackground();
  EXPECT_THAT(result(running), ElementsAre("one more", "1"));
}

TEST_F(SearchIndexTest, WhatChangedMeanwhileIsJudgedAsItIsThen) {
  launchWith({"x", "one", "x", "x"});
  index->prepare();
  const auto running = beginHeld("one");
  rename(1, "One");
  rename(3, "one three");
  rename(3, "three");
  indexExecutor.runHeldBackground();
  EXPECT_THAT(result(running), ElementsAre("2", "One"));
  const auto next = beginHeld("one");
  rename(1, "Two");
  rename(3, "one again");
  indexExecutor.runHeldBackground();
  EXPECT_THAT(result(next), ElementsAre("one again", "2"));
}

TEST_F(SearchIndexTest, WhatWentMeanwhileIsNotFound) {
  launchWith({"one", "one", "one"});
  index->prepare();
  const auto running = beginHeld("one");
  model->removeRecords({idOf(2)});
  indexExecutor.runHeldBackground();
  EXPECT_THAT(result(running), ElementsAre("3", "1"));
}

/// Lets each piece of background work be followed by a change of the test's.
class OneByOne final : public Executor {
 public:
  explicit OneByOne(ManualExecutor& other) : other_(other) {}
  void post(std::function<void()> work) override { other_.post(std::move(work)); }
  DelayID startDelay(Duration delay, DelayEnd end) override { return other_.startDelay(delay, std::move(end)); }
  void cancelDelay(DelayID delay) override { other_.cancelDelay(delay); }
  Instant instant() const override { return other_.instant(); }
  void runInBackground(std::function<void()> work, std::function<void()> done) override {
    other_.runInBackground(std::move(work), [this, done = std::move(done)] {
      if (between) between();
      done();
    });
  }
  std::function<void()> between;

 private:
  ManualExecutor& other_;
};

TEST_F(SearchIndexTest, AtAnyPointOfASearchAChangeCounts) {
  int runningAtAll = 0;
  for (int moment = 0; moment < 5; ++moment) {
    SCOPED_TRACE(moment);
    index.reset();
    launchWith({"one", "two", "one", "one"});
    OneByOne executorOfIndex(indexExecutor);
    index = std::make_unique<SearchIndex>(*model, executorOfIndex);
    std::optional<Finding> running;
    bool hasChanged = false;
    bool wasRunning = false;
    const auto changeAll = [&] {
      if (std::exchange(hasChanged, true)) return;
      wasRunning = !running || !running->isDone();
      rename(1, "Uno");
      rename(2, "one two");
      model->removeRecords({idOf(3)});
      arrive("one at last.png");
    };
    int left = moment;
    executorOfIndex.between = [&] {
      if (left-- == 0) changeAll();
    };
    running = begin("one");
    indexExecutor.drain();
    changeAll();
    const Names now{"one at last", "4", "one two", "Uno"};
    EXPECT_EQ(describe(*running), "found");
    if (wasRunning) {
      EXPECT_EQ(result(*running), now);
    }
    runningAtAll += wasRunning ? 1 : 0;
    indexExecutor.drain();
    EXPECT_EQ(finding("one"), now);
    index.reset();
    for (const char* name : {"Uno.png", "one two.png", "one at last.png"})
      std::filesystem::remove(shots.appending(name).path());
  }
  EXPECT_GE(runningAtAll, 3) << "while letters are learned, texts folded and searched";
}

TEST_F(SearchIndexTest, ASearchThatWasBegunEarlyWaitsForTheFolding) {
  launchWith({"one", "two"});
  indexExecutor.holdBackground();
  const auto running = begin("one");
  rename(2, "one");
  EXPECT_EQ(describe(running), "runs");
  indexExecutor.runHeldBackground();
  EXPECT_THAT(result(running), ElementsAre("one", "1"));
}

TEST_F(SearchIndexTest, ACancelledSearchFindsNothingAndTheNextIsWhole) {
  launchWith({"one", "two"});
  index->prepare();
  const auto first = beginHeld("o");
  const auto second = begin("on");
  first.cancel();
  indexExecutor.runHeldBackground();
  EXPECT_EQ(describe(first), "nothing");
  EXPECT_THAT(result(second), ElementsAre("1"));
  EXPECT_THAT(finding("one"), ElementsAre("1"));
}

TEST_F(SearchIndexTest, ASearchIsCancelledWhileItWaitsForTheFolding) {
  launchWith({"one"});
  indexExecutor.holdBackground();
  const auto running = begin("one");
  running.cancel();
  indexExecutor.runHeldBackground();
  EXPECT_EQ(describe(running), "nothing");
}

TEST_F(SearchIndexTest, TwoSearchesAtOnceEachAnswerForThemselves) {
  launchWith({"one", "two", "one two"});
  index->prepare();
  const auto one = beginHeld("one");
  const auto two = begin("two");
  indexExecutor.runHeldBackground();
  EXPECT_THAT(result(one), ElementsAre("3", "1"));
  EXPECT_THAT(result(two), ElementsAre("3", "2"));
}

// --- Its life ---

TEST_F(SearchIndexTest, NothingIsKeptBeforeItIsNeededAndAfterItIsReleased) {
  launchWith({"one"});
  arrive("a.png");
  indexExecutor.drain();
  indexExecutor.holdBackground();
  EXPECT_EQ(index->memory(), 0u);
  rename(1, "Uno");
  EXPECT_EQ(indexExecutor.heldBackground(), 0u);
  indexExecutor.runHeldBackground();
  index->prepare();
  index->prepare();
  indexExecutor.drain();
  EXPECT_GT(index->memory(), 0u);
  index->release();
  index->release();
  EXPECT_EQ(index->memory(), 0u);
  indexExecutor.drain();
  indexExecutor.holdBackground();
  rename(1, "Eins");
  EXPECT_EQ(indexExecutor.heldBackground(), 0u) << "the model is not followed any more";
  indexExecutor.runHeldBackground();
  EXPECT_THAT(finding("one"), ElementsAre("Eins"));
}

TEST_F(SearchIndexTest, ARunningSearchEndsWithNothingWhenAllIsReleased) {
  launchWith({"one"});
  index->prepare();
  const auto running = beginHeld("one");
  index->release();
  indexExecutor.runHeldBackground();
  EXPECT_EQ(describe(running), "nothing");
  indexExecutor.holdBackground();
  const auto waiting = begin("one");
  index->release();
  index->prepare();
  indexExecutor.runHeldBackground();
  EXPECT_EQ(describe(waiting), "nothing");
  EXPECT_THAT(finding("one"), ElementsAre("1"));
}

TEST_F(SearchIndexTest, TheIndexMayGoWhileASearchRuns) {
  launchWith({"one"});
  indexExecutor.holdBackground();
  const auto folding = begin("one");
  index.reset();
  indexExecutor.runHeldBackground();
  EXPECT_EQ(describe(folding), "nothing");
  index = std::make_unique<SearchIndex>(*model, indexExecutor);
  index->prepare();
  const auto searching = beginHeld("one");
  index.reset();
  indexExecutor.runHeldBackground();
  EXPECT_EQ(describe(searching), "nothing");
}

TEST_F(SearchIndexTest, ARecordIsJudgedAloneByTheSameRule) {
  launchWith({"a café"});
  const ScreenshotItem one = item(idOf(1));
  EXPECT_TRUE(index->contains(one, QStringLiteral(" CAFE ")));
  EXPECT_TRUE(index->contains(one, QStringLiteral("1.PNG")));
  EXPECT_TRUE(index->contains(one, QString()));
  EXPECT_FALSE(index->contains(one, QStringLiteral("cafes")));
  index->prepare();
  indexExecutor.drain();
  EXPECT_TRUE(index->contains(one, QStringLiteral("cafe")));
  EXPECT_FALSE(index->contains(one, QStringLiteral("tea")));
}

}  // namespace
}  // namespace quillmere::testing
