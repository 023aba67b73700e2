// The Inbox with long lists, on the live model: opening it, typing in its search, going through it by the page. What a
// person waits for is measured whole: from the key to the list painted.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <QtCore/QElapsedTimer>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollBar>
#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <random>

#include "Limits.h"
#include "LiveWorld.h"
#include "controls/ApplicationAppearance.h"
#include "inbox/InboxListView.h"
#include "inbox/InboxWindow.h"
#include "inbox/SearchField.h"

using namespace quillmere;

namespace {

class NoSharing final : public Sharing {
 public:
  Task<std::vector<ShareTarget>> targets(QStringList) override { co_return {}; }
  Task<bool> share(std::vector<PreparedTransfer>, QString) override { co_return false; }
};
class NoFileManager final : public FileRevealing {
 public:
  void reveal(const FileURL&) override {}
};

/// 1.5 kB of words, of which one stands in one record of a hundred.
QByteArray recognisedText(std::mt19937& random, int record) {
  static const std::vector<QByteArray> kWords = [] {
    std::mt19937 letters(1);
    std::vector<QByteArray> words;
    for (int i = 0; i < 4000; ++i) {
      QByteArray word;
      for (size_t left = 2 + letters() % 9; left > 0; --left) word += static_cast<char>('a' + letters() % 26);
      words.push_back(word);
    }
    return words;
  }();
  QByteArray text;
  while (text.size() < 1500) text += kWords[random() % kWords.size()] + ' ';
  if (record % 100 == 7) text += "Rechnungsnummer";
  if (record % 100 == 8) text += "Rechnungsdatum";
  return text;
}

/// A model with so many permanent records over the live services; made once for each size.
class World {
 public:
  explicit World(int records) {
    std::mt19937 random(7);
    std::vector<ScreenshotItem> items;
    items.reserve(static_cast<size_t>(records));
    for (int i = 0; i < records; ++i) {
      ScreenshotItem item;
      item.id = UUID::createUuid();
      item.url = world_.shot(i);
      std::ofstream(item.url.path()) << i;
      item.state = ScreenshotItem::State::permanent;
      item.recognizedText = recognisedText(random, i);
      item.imageDescription = QByteArray("A window of a program.");
      item.suggestedName = QByteArray("window");
      items.push_back(std::move(item));
    }
    world_.makeModel(std::move(items));
    model().start();
    settle([this] { return !model().isReconciling(); });
    thumbnails_ =
        std::make_unique<ThumbnailLoader>(world_.executor(), world_.pictures(), [](const FileURL&) { return false; });
    services_ = {thumbnails_.get(), &world_.executor(), &sharing_, &fileManager_, &defaults_};
  }

  static World& of(int records) {
    static std::map<int, std::unique_ptr<World>> worlds;
    auto& world = worlds[records];
    if (!world) world = std::make_unique<World>(records);
    return *world;
  }

  AppModel& model() { return world_.model(); }
  const InboxServices& services() const { return services_; }

  template <typename Condition>
  static void settle(Condition isDone) {
    while (!isDone()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
  }

 private:
  LiveWorld world_;
  NoSharing sharing_;
  NoFileManager fileManager_;
  UserDefaults defaults_{world_.home().appending("inbox.json").displayPath()};
  std::unique_ptr<ThumbnailLoader> thumbnails_;
  InboxServices services_;
};

template <typename Kind>
Kind& childOf(const QWidget& parent) {
  for (auto* child : parent.findChildren<QWidget*>()) {
    if (auto* found = dynamic_cast<Kind*>(child)) return *found;
  }
  std::abort();
}

/// In use, not what the C library keeps for later.
double usedMegabytes() {
  const auto heap = mallinfo2();
  return static_cast<double>(heap.uordblks + heap.hblkhd) / 1e6;
}

/// That an Inbox took when it was opened, by the number of records.
std::map<int, double> mostMegabytes;

/// Told when a widget has been painted.
class PaintWatch final : public QObject {
 public:
  explicit PaintWatch(QWidget& widget) { widget.installEventFilter(this); }
  int paints = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints;
    return false;
  }
};

void OpenInbox(benchmark::State& state) {
  World& world = World::of(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    const double before = usedMegabytes();
    QElapsedTimer clock;
    clock.start();
    auto window = std::make_unique<InboxWindow>(world.model(), world.services());
    PaintWatch watch(*childOf<InboxListView>(*window).viewport());
    window->show();
    World::settle([&] { return watch.paints > 0; });
    state.SetIterationTime(static_cast<double>(clock.nsecsElapsed()) / 1e9);
    double& most = mostMegabytes[static_cast<int>(state.range(0))];
    most = std::max(most, usedMegabytes() - before);
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

/// An Inbox whose texts are ready to be searched.
struct Search {
  explicit Search(World& world) : window(world.model(), world.services()), list(childOf<InboxListView>(window)) {
    window.resize(1040, 680);
    window.show();
    childOf<SearchField>(window).setFocus();
    type(QStringLiteral("warm"));
  }
  bool isDone() const {
    const auto* rows = static_cast<const InboxListModel*>(list.model());
    return rows->filter() == *window.presentation().filter;
  }
  /// From the text to its rows painted.
  double type(const QString& text) {
    PaintWatch watch(*list.viewport());
    QElapsedTimer clock;
    clock.start();
    childOf<SearchField>(window).setText(text);
    World::settle([&] { return isDone(); });
    QCoreApplication::processEvents();
    if (list.isVisible()) list.viewport()->repaint();
    return static_cast<double>(clock.nsecsElapsed()) / 1e9;
  }
  mutable InboxWindow window;
  InboxListView& list;
};

void TypeAKey(benchmark::State& state, const char* word) {
  Search search(World::of(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    search.type(QString());
    state.SetIterationTime(search.type(QString::fromUtf8(word)));
  }
}

void TypeAnotherLetter(benchmark::State& state) {
  Search search(World::of(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    search.type(QStringLiteral("rechnungs"));
    state.SetIterationTime(search.type(QStringLiteral("rechnungsn")));
  }
}

/// The floor: the same bytes gone through by the C library.
void SeekBytes(benchmark::State& state) {
  const AppModel& model = World::of(static_cast<int>(state.range(0))).model();
  QByteArray all;
  model.items().forEach([&](const ScreenshotItem& item) { all += item.recognizedText->toLower(); });
  for (auto _ : state) {
    QElapsedTimer clock;
    clock.start();
    const char* place = all.constData();
    const char* end = place + all.size();
    int hits = 0;
    while (const void* hit = memmem(place, static_cast<size_t>(end - place), "rechnungsn", 10)) {
      ++hits;
      place = static_cast<const char*>(hit) + 1;
    }
    benchmark::DoNotOptimize(hits);
    state.SetIterationTime(static_cast<double>(clock.nsecsElapsed()) / 1e9);
  }
}

/// The peer: what a list with a search of Qt's own means would do.
void SeekWithoutCase(benchmark::State& state) {
  const AppModel& model = World::of(static_cast<int>(state.range(0))).model();
  std::vector<QString> texts;
  model.items().forEach([&](const ScreenshotItem& item) { texts.push_back(QString::fromUtf8(*item.recognizedText)); });
  for (auto _ : state) {
    QElapsedTimer clock;
    clock.start();
    int hits = 0;
    for (const QString& text : texts) hits += text.contains(QLatin1String("rechnungsn"), Qt::CaseInsensitive);
    benchmark::DoNotOptimize(hits);
    state.SetIterationTime(static_cast<double>(clock.nsecsElapsed()) / 1e9);
  }
}

/// A page further and painted; the slowest of a hundred, which is the 99th percentile.
void ScrollAPage(benchmark::State& state) {
  World& world = World::of(static_cast<int>(state.range(0)));
  InboxWindow window(world.model(), world.services());
  window.resize(1040, 680);
  window.show();
  InboxListView& list = childOf<InboxListView>(window);
  World::settle([&] { return list.isVisible(); });
  for (auto _ : state) {
    std::vector<double> frames;
    for (int page = 0; page < 100; ++page) {
      QElapsedTimer clock;
      clock.start();
      list.verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
      list.viewport()->repaint();
      frames.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e9);
      QCoreApplication::processEvents();
    }
    std::sort(frames.begin(), frames.end());
    state.SetIterationTime(frames[98]);
    list.verticalScrollBar()->setValue(0);
  }
}

BENCHMARK(OpenInbox)->Arg(0)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(TypeAKey, rare, "rechnungsn")
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(TypeAKey, letter, "e")->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(TypeAKey, nowhere, "zzqqzz")->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(TypeAnotherLetter)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SeekBytes)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SeekWithoutCase)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ScrollAPage)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_SCALE_FACTOR", "2");
  QApplication application(argc, argv);
  const ApplicationAppearance look;
  const int status = runWithLimits(argc, argv, {},
                                   {// Less than 1.5 times an empty one and 30 ms.
                                    {"OpenInbox/100000", 30},
                                    {"TypeAKey/rare/10000", 6},
                                    {"TypeAKey/rare/100000", 60},
                                    {"TypeAKey/letter/10000", 6},
                                    {"TypeAKey/letter/100000", 60},
                                    {"TypeAnotherLetter/10000", 1},
                                    {"TypeAnotherLetter/100000", 10},
                                    {"ScrollAPage/100000", 8}});
  for (const auto& [records, most] : mostMegabytes) {
    std::printf("OpenInbox/%d took %.1f MB at most, limit 40 MB\n", records, most);
  }
  return status;
}
