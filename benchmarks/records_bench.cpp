#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <rapidjson/document.h>
#include <unistd.h>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>

#include "Limits.h"
#include "foundation/FileCopy.h"
#include "foundation/FileStatus.h"
#include "records/ScreenshotCoding.h"
#include "records/ScreenshotListWriter.h"
#include "records/ScreenshotRecordStore.h"

using namespace quillmere;

namespace {

constexpr size_t kRecords = 10'000;
constexpr size_t kTextBytes = 1'500;

std::string words(std::mt19937& random, size_t bytes) {
  std::string text;
  while (text.size() < bytes) {
    for (auto length = 2 + random() % 9; length > 0; --length) text.push_back(static_cast<char>('a' + random() % 26));
    text.push_back(random() % 12 == 0 ? '\n' : ' ');
  }
  text.resize(bytes);
  return text;
}

/// A list like one of a year's use: every record with its text, bookmark and identity.
ScreenshotList makeList(size_t count = kRecords, size_t textBytes = kTextBytes) {
  std::mt19937 random(1);
  std::vector<ScreenshotItem> items(count);
  for (size_t i = 0; i < items.size(); ++i) {
    ScreenshotItem& item = items[i];
    item.id = UUID::createUuid();
    item.url = FileURL::fromPath("/home/someone/Pictures/Screenshots/Screenshot from 2026-01-02 03-04-" +
                                 std::to_string(i) + ".png");
    item.createdAt = Date{8e8 + static_cast<double>(i) * 61.123456};
    item.state = ScreenshotItem::State::permanent;
    item.recognizedText = QByteArray::fromStdString(words(random, textBytes));
    item.imageDescription = QByteArray::fromStdString(words(random, 120));
    item.suggestedName = QByteArray::fromStdString(words(random, 40));
    item.fileBookmark = QByteArray::fromStdString(words(random, 200));
    item.fileIdentity = FileIdentity{"2f1c6c1e-66a2-4a52-9d0c-0f5be3a1e1aa", 4'000'000 + i, item.createdAt, 345'678};
  }
  return ScreenshotList(std::move(items));
}

const std::string& folder() {
  static const std::string path = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillmere-bench-XXXXXX").string();
    return std::string(mkdtemp(pattern.data()));
  }();
  return path;
}

FileURL listFile() {
  return FileURL::fromPath(folder() + "/screenshots.json");
}

const std::string& encodedList() {
  static const std::string bytes = [] {
    ScreenshotList list = makeList();
    ScreenshotListWriter writer;
    writer.save(list, listFile());
    return *readFile(listFile());
  }();
  return bytes;
}

/// The floor: the same bytes into a temporary, flushed, renamed, the folder flushed.
void WriteSafely(benchmark::State& state) {
  const std::string& bytes = encodedList();
  const std::string temporary = folder() + "/floor.saving";
  const std::string target = folder() + "/floor.json";
  for (auto _ : state) {
    const int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (!writeAll(descriptor, bytes.data(), bytes.size()) || ::fsync(descriptor) != 0) state.SkipWithError("write");
    ::close(descriptor);
    if (std::rename(temporary.c_str(), target.c_str()) != 0) state.SkipWithError("rename");
    const int parent = ::open(folder().c_str(), O_RDONLY | O_DIRECTORY);
    ::fsync(parent);
    ::close(parent);
  }
}
BENCHMARK(WriteSafely)->UseRealTime();

/// A decision: one record changes, the whole list is saved.
void SaveAfterOneDecision(benchmark::State& state) {
  static ScreenshotList list = makeList();
  static ScreenshotListWriter writer;
  static const bool isWarm = writer.save(list, listFile());
  if (!isWarm) state.SkipWithError("save");
  size_t next = 0;
  for (auto _ : state) {
    list.update(next++ % list.size(), [&](ScreenshotItem& item) { item.expiresAt = Date{static_cast<double>(next)}; });
    if (!writer.save(list, listFile())) state.SkipWithError("save");
  }
  state.counters["encoded"] = static_cast<double>(writer.encodedCount());
}
BENCHMARK(SaveAfterOneDecision)->UseRealTime();

/// What the main thread does for a save in the background: it takes the records as they are, changes one meanwhile, and
/// lets the old ones go. The rest is the disk's.
void HoldTheMainThread(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  constexpr size_t kShortText = 100;  // of the texts nothing is read here
  ScreenshotList list = makeList(static_cast<size_t>(state.range(0)), kShortText);
  ScreenshotListWriter writer;
  if (!writer.save(list, listFile())) state.SkipWithError("save");
  size_t next = 0;
  double longest = 0;
  const auto decide = [&] {
    list.update(next++ * 997 % list.size(),
                [&](ScreenshotItem& item) { item.expiresAt = Date{static_cast<double>(next)}; });
  };
  for (auto _ : state) {
    auto start = Clock::now();
    decide();
    auto snapshot = list.snapshot();
    decide();
    auto held = Clock::now() - start;
    if (!writer.save(snapshot, listFile())) state.SkipWithError("save");
    start = Clock::now();
    snapshot = {};
    writer.forgetPrevious();
    held += Clock::now() - start;
    const double seconds = std::chrono::duration<double>(held).count();
    longest = std::max(longest, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["longest_us"] = longest * 1e6;
}
BENCHMARK(HoldTheMainThread)->Arg(10'000)->Arg(100'000)->UseManualTime()->Iterations(30)->Unit(benchmark::kMicrosecond);

void Load(benchmark::State& state) {
  encodedList();
  const ScreenshotRecordStore store{listFile()};
  for (auto _ : state) {
    const auto loaded = store.load(Date{});
    if (loaded.items.size() != kRecords) state.SkipWithError("load");
  }
}
BENCHMARK(Load)->UseRealTime();

/// The floor of loading: reading the file and parsing it in place.
void ParseInPlace(benchmark::State& state) {
  encodedList();
  for (auto _ : state) {
    std::string bytes = *readFile(listFile());
    rapidjson::Document document;
    document.ParseInsitu(bytes.data());
    benchmark::DoNotOptimize(document.IsObject());
  }
}
BENCHMARK(ParseInPlace)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  std::printf("%zu records, %.1f MB\n", kRecords, static_cast<double>(encodedList().size()) / 1e6);
  const int status = runWithLimits(argc, argv, {{"SaveAfterOneDecision", "WriteSafely", 1.3}},
                                   {{"Load", 60}, {"HoldTheMainThread/100000", 1}});
  std::filesystem::remove_all(folder());
  return status;
}
