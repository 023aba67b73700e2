#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>
#include <cstdio>
#include <filesystem>

#include "Limits.h"
#include "monitor/FolderScan.h"

using namespace quillmere;

namespace {

constexpr int kFiles = 100'000;

const FileURL& folder() {
  static const FileURL url = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillmere-bench-XXXXXX").string();
    const std::string path = mkdtemp(pattern.data());
    for (int i = 0; i < kFiles; ++i) {
      ::close(::open((path + "/Screenshot from 2026-01-02 03-04-" + std::to_string(i) + ".png").c_str(),
                     O_WRONLY | O_CREAT, 0600));
    }
    return FileURL::fromPath(path);
  }();
  return url;
}

Snapshot fullScan() {
  Snapshot snapshot;
  snapshot.directory = folder();
  snapshot.full = true;
  snapshot.services.isVolumeMounted = [](const FileURL&) { return true; };
  return snapshot;
}

/// The floor: reading the folder's names.
void ReadDirectory(benchmark::State& state) {
  for (auto _ : state) {
    DIR* stream = ::opendir(folder().c_str());
    int count = 0;
    while (const dirent* entry = ::readdir(stream)) count += entry->d_name[0] != '.';
    ::closedir(stream);
    if (count != kFiles) state.SkipWithError("count");
  }
}
BENCHMARK(ReadDirectory)->UseRealTime();

/// Every file is known, as in the scan that each minute and each event brings.
void FullScanOfKnownFiles(benchmark::State& state) {
  static const Snapshot snapshot = [] {
    Snapshot baseline = fullScan();
    baseline.baselineStart = Date{1e12};
    Snapshot known = fullScan();
    known.known = std::make_shared<URLSet>(performScan(baseline).baseline);
    return known;
  }();
  for (auto _ : state) {
    const ScanResult result = performScan(snapshot);
    if (!result.observations || !result.observations->empty() || !result.removed.empty()) state.SkipWithError("scan");
  }
}
BENCHMARK(FullScanOfKnownFiles)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  std::printf("%d files\n", kFiles);
  folder();
  const int status = runWithLimits(argc, argv, {{"FullScanOfKnownFiles", "ReadDirectory", 1.5}}, {});
  std::filesystem::remove_all(folder().path());
  return status;
}
