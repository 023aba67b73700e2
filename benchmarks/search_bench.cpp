#include <benchmark/benchmark.h>
#include <string.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QStandardPaths>
#include <chrono>
#include <cstdio>
#include <random>

#include "Limits.h"
#include "LiveWorld.h"
#include "inbox/SearchIndex.h"

using namespace quillmere;

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kLetters = 1500;

/// As long as words of English are, made of letters that are as frequent.
QString word(std::mt19937& random) {
  static const QString letters = QStringLiteral(
      "eeeeeeeeeeeetttttttttaaaaaaaaooooooooiiiiiiinnnnnnnsssssshhhhhhrrrrrr"
      "ddddlllluuucccmmwwffggyyppbbvk");
  QString made;
  for (unsigned i = 2 + static_cast<unsigned>(random() % 9); i > 0; --i) {
    made += letters[static_cast<qsizetype>(random() % static_cast<unsigned>(letters.size()))];
  }
  return made;
}

/// A model with so many records, each of which has a page of text. "Settings" is in one of four, "quokka" in five.
class World {
 public:
  explicit World(int records) {
    std::mt19937 random(7);
    std::vector<QString> words;
    for (int i = 0; i < 20'000; ++i) words.push_back(word(random));
    std::vector<ScreenshotItem> items;
    for (int i = 0; i < records; ++i) {
      QString text;
      while (text.size() < kLetters) text += words[random() % words.size()] + (random() % 8 == 0 ? u'\n' : u' ');
      if (i % 4 == 0) text.insert(static_cast<qsizetype>(random() % kLetters), QStringLiteral(" Settings "));
      if (i % (records / 5) == 0) text.insert(static_cast<qsizetype>(random() % kLetters), QStringLiteral(" quokka "));
      texts.push_back(text);
      ScreenshotItem item;
      item.id = UUID::createUuid();
      item.url = world_.shot(i);
      item.state = ScreenshotItem::State::permanent;
      item.recognizedText = text.toUtf8();
      items.push_back(std::move(item));
    }
    world_.makeModel(std::move(items));
    const auto start = Clock::now();
    index = std::make_unique<SearchIndex>(world_.model(), world_.executor());
    find(QStringLiteral("quokka"));
    const double time = std::chrono::duration<double, std::micro>(Clock::now() - start).count();
    std::printf("%d records: folded and first found in %.1f us a record, kept in %.0f bytes a record\n", records,
                time / records, static_cast<double>(index->memory()) / records);
    const TextFolding folding(searchLocale());
    for (const QString& text : texts) folded.push_back(folding.fold(text).bytes);
  }
  size_t find(const QString& text) {
    const auto finding = index->find(text);
    while (!finding.isDone()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return finding.await_resume()->size();
  }

  std::vector<QString> texts;
  std::vector<std::string> folded;

 private:
  LiveWorld world_;

 public:
  std::unique_ptr<SearchIndex> index;
};

World& world(int records) {
  static std::map<int, std::unique_ptr<World>> worlds;
  auto& made = worlds[records];
  if (!made) made = std::make_unique<World>(records);
  return *made;
}

/// What is typed before, and what is looked for then. Between two searches for one text stands one for another, which
/// narrows nothing.
void Key(benchmark::State& state, int records, const char* before, const char* text) {
  World& all = world(records);
  const QString sought = QString::fromUtf8(text);
  for (auto _ : state) {
    all.find(QString::fromUtf8(before));
    const auto start = Clock::now();
    const size_t found = all.find(sought);
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    benchmark::DoNotOptimize(found);
  }
}
void Memmem(benchmark::State& state, int records, const char* text) {
  World& all = world(records);
  const std::string sought = TextFolding(searchLocale()).fold(QString::fromUtf8(text)).bytes;
  for (auto _ : state) {
    size_t found = 0;
    for (const std::string& bytes : all.folded) {
      found += memmem(bytes.data(), bytes.size(), sought.data(), sought.size()) ? 1 : 0;
    }
    benchmark::DoNotOptimize(found);
  }
}
void QtContains(benchmark::State& state, int records, const char* text) {
  World& all = world(records);
  const QString sought = QString::fromUtf8(text);
  for (auto _ : state) {
    size_t found = 0;
    for (const QString& each : all.texts) found += each.contains(sought, Qt::CaseInsensitive) ? 1 : 0;
    benchmark::DoNotOptimize(found);
  }
}
/// Of a hundredth of the records.
void IcuOfAHundredth(benchmark::State& state, int records, const char* text) {
  World& all = world(records);
  for (auto _ : state) {
    TextSearch search(searchCollator(searchLocale()), QString::fromUtf8(text));
    size_t found = 0;
    for (size_t i = 0; i < all.texts.size(); i += 100) found += search.isIn(all.texts[i]) ? 1 : 0;
    benchmark::DoNotOptimize(found);
  }
}

struct Case {
  const char* name;
  const char* before;
  const char* text;
};
constexpr Case kCases[] = {
    {"Rare", "zz", "quokka"},        {"Frequent", "zz", "settings"},      {"OneLetter", "zz", "e"},
    {"NoMatch", "zz", "xylophone"},  {"LengthenedRare", "quok", "quokk"}, {"LengthenedFrequent", "settin", "setting"},
    {"LengthenedLetter", "e", "en"}, {"LengthenedToNothing", "e", "ez"}};

}  // namespace

int main(int argc, char** argv) {
  QStandardPaths::setTestModeEnabled(true);
  const QCoreApplication application(argc, argv);
  std::vector<TimeLimit> limits;
  for (const int records : {10'000, 100'000}) {
    const std::string count = std::to_string(records);
    for (const Case& each : kCases) {
      benchmark::RegisterBenchmark((each.name + count).c_str(), Key, records, each.before, each.text)->UseManualTime();
      const bool isLengthened = std::string_view(each.name).starts_with("Lengthened");
      limits.push_back({each.name + count, (isLengthened ? 1.0 : 6.0) * records / 10'000});
      if (isLengthened) continue;
      benchmark::RegisterBenchmark(("Memmem" + (each.name + count)).c_str(), Memmem, records, each.text);
      benchmark::RegisterBenchmark(("QtContains" + (each.name + count)).c_str(), QtContains, records, each.text);
    }
    benchmark::RegisterBenchmark(("IcuOfAHundredthNoMatch" + count).c_str(), IcuOfAHundredth, records, "xylophone");
  }
  return runWithLimits(argc, argv, {}, limits);
}
