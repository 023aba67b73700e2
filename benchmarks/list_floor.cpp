// What nobody can do without who starts with a list: `list_floor LIST` reads it, once so that the disk is out of it and
// then again, and prints the seconds of that.

#include <chrono>
#include <cstdio>

#include "records/ScreenshotRecordStore.h"

using namespace quillmere;

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const ScreenshotRecordStore store{FileURL::fromPath(std::string_view(argv[1]))};
  double taken = 0;
  for (int turn = 0; turn < 2; ++turn) {
    const auto begin = std::chrono::steady_clock::now();
    if (store.load(Date{0}).items.empty()) return 1;
    taken = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }
  std::printf("%.3f\n", taken);
  return 0;
}
