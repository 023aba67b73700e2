// Preloaded into the program: flushing takes as many seconds as the file QUILLMERE_FLUSH_SECONDS says, read anew all
// the time, so that a journey freezes a disk and lets it go again. Where it is waited is the thread that asked.

#include <dlfcn.h>
#include <unistd.h>
#include <cstdio>
#include <cstdlib>

namespace {

double secondsWanted() {
  const char* place = std::getenv("QUILLMERE_FLUSH_SECONDS");
  std::FILE* file = place ? std::fopen(place, "re") : nullptr;
  if (!file) return 0;
  double seconds = 0;
  if (std::fscanf(file, "%lf", &seconds) != 1) seconds = 0;
  std::fclose(file);
  return seconds;
}

void waitForDisk() {
  constexpr double kStep = 0.01;
  for (double waited = 0; waited < secondsWanted(); waited += kStep) ::usleep(static_cast<useconds_t>(kStep * 1e6));
}

using Flush = int (*)(int);
Flush real(const char* name) {
  return reinterpret_cast<Flush>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int fsync(int descriptor) {
  static const Flush flush = real("fsync");
  waitForDisk();
  return flush(descriptor);
}

int fdatasync(int descriptor) {
  static const Flush flush = real("fdatasync");
  waitForDisk();
  return flush(descriptor);
}
}
