#include <benchmark/benchmark.h>
#include <QtCore/QCoreApplication>
#include <chrono>
#include <cstdio>
#include <fstream>

#include "Limits.h"
#include "LiveWorld.h"
#include "foundation/ManualExecutor.h"
#include "model/AppModel.h"

using namespace quillmere;

namespace {

using Clock = std::chrono::steady_clock;

/// Runs background work when told to, and the main thread's half of it apart from that.
class HalvesExecutor final : public Executor {
 public:
  void post(std::function<void()> work) override { manual_.post(std::move(work)); }
  DelayID startDelay(Duration delay, DelayEnd end) override { return manual_.startDelay(delay, std::move(end)); }
  void cancelDelay(DelayID delay) override { manual_.cancelDelay(delay); }
  Instant instant() const override { return manual_.instant(); }
  void runInBackground(std::function<void()> work, std::function<void()> done) override {
    work_ = std::move(work);
    done_ = std::move(done);
  }
  void runBackgroundHalf() { std::exchange(work_, nullptr)(); }
  void runMainHalf() { std::exchange(done_, nullptr)(); }

 private:
  ManualExecutor manual_;
  std::function<void()> work_;
  std::function<void()> done_;
};

/// A model with so many permanent records, each with its file in the watched folder.
class World {
 public:
  explicit World(int records) {
    std::vector<ScreenshotItem> items;
    for (int i = 0; i < records; ++i) {
      ScreenshotItem item;
      item.id = UUID::createUuid();
      item.url = world_.shot(i);
      std::ofstream(item.url.path()) << i;
      item.state = ScreenshotItem::State::permanent;
      items.push_back(std::move(item));
    }
    world_.makeModel(std::move(items), &executor_);
    model().start();
    // The first run makes the bookmarks and reads the identities.
    executor_.runBackgroundHalf();
    executor_.runMainHalf();
  }

  AppModel& model() { return world_.model(); }
  HalvesExecutor& executor() { return executor_; }

 private:
  HalvesExecutor executor_;
  LiveWorld world_;
};

World& world(int records) {
  static std::map<int, std::unique_ptr<World>> worlds;
  auto& made = worlds[records];
  if (!made) made = std::make_unique<World>(records);
  return *made;
}

enum class Phase { snapshot, look, apply };

/// One full run with every file in place; only one of its phases is timed.
void Reconcile(benchmark::State& state, int records, Phase timed) {
  World& all = world(records);
  for (auto _ : state) {
    const auto timeOf = [&](Phase phase, const std::function<void()>& work) {
      const auto start = Clock::now();
      work();
      if (phase == timed) state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    };
    timeOf(Phase::snapshot, [&] { all.model().reconcile({}); });
    timeOf(Phase::look, [&] { all.executor().runBackgroundHalf(); });
    timeOf(Phase::apply, [&] { all.executor().runMainHalf(); });
    if (all.model().items().size() != static_cast<size_t>(records)) state.SkipWithError("records");
  }
}
void Snapshot10000(benchmark::State& state) {
  Reconcile(state, 10'000, Phase::snapshot);
}
void Look10000(benchmark::State& state) {
  Reconcile(state, 10'000, Phase::look);
}
void Apply10000(benchmark::State& state) {
  Reconcile(state, 10'000, Phase::apply);
}
void Snapshot100000(benchmark::State& state) {
  Reconcile(state, 100'000, Phase::snapshot);
}
void Look100000(benchmark::State& state) {
  Reconcile(state, 100'000, Phase::look);
}
void Apply100000(benchmark::State& state) {
  Reconcile(state, 100'000, Phase::apply);
}
BENCHMARK(Snapshot10000)->UseManualTime()->Iterations(2);
BENCHMARK(Look10000)->UseManualTime()->Iterations(1);
BENCHMARK(Apply10000)->UseManualTime()->Iterations(2);
BENCHMARK(Snapshot100000)->UseManualTime()->Iterations(1);
BENCHMARK(Look100000)->UseManualTime()->Iterations(1);
BENCHMARK(Apply100000)->UseManualTime()->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  // Times are those of the main thread, but for the look.
  return runWithLimits(argc, argv, {}, {{"Snapshot10000", 8}, {"Apply10000", 8}});
}
