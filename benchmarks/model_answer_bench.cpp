#include <benchmark/benchmark.h>
#include <QtCore/QStringList>
#include <random>

#include "Limits.h"
#include "description/KnownWords.h"
#include "description/ModelAnswer.h"

using namespace quillmere;

namespace {

constexpr int kWords = 5000;

QString word(std::mt19937& random) {
  QString result;
  const auto length = 5 + random() % 8;
  for (unsigned i = 0; i < length; ++i) result += QChar(static_cast<char16_t>('a' + random() % 26));
  return result;
}

/// A screen full of text: all words begin with one of few letters, as in a long list of names.
const QString& text() {
  static const QString all = [] {
    std::mt19937 random(1);
    QStringList words;
    for (int i = 0; i < kWords; ++i) words << QStringLiteral("s") + word(random);
    return words.join(QLatin1Char(' '));
  }();
  return all;
}

/// Twelve words that are looked for among all of them.
void CheckNameOfTwelveWords(benchmark::State& state) {
  const KnownWords known(text());
  std::mt19937 random(2);
  std::vector<QString> name;
  for (int i = 0; i < 12; ++i) name.push_back(QStringLiteral("s") + word(random));
  for (auto _ : state) {
    for (const QString& one : name) benchmark::DoNotOptimize(known.spellCheck(one));
  }
  if (known.size() < kWords * 9 / 10) state.SkipWithError("too few words");
}
BENCHMARK(CheckNameOfTwelveWords)->UseRealTime();

void KnowWords(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(KnownWords(text()));
}
BENCHMARK(KnowWords)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  return runWithLimits(argc, argv, {}, {{"CheckNameOfTwelveWords", 2}});
}
