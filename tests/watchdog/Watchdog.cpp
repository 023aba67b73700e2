// Loaded before the program's libraries (LD_PRELOAD), sees how long its main thread keeps away from its event loop:
// each turn of the loop by the clock, less the time in which the thread could have run but had no processor. A turn
// that takes longer than it may has its stack taken. The program itself knows nothing of it; tests/journeys/stalls.py
// reads the report, whose path is in QUILLMERE_WATCHDOG_REPORT.

#include <execinfo.h>
#include <fcntl.h>
#include <glib.h>
#include <link.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

using Nanoseconds = uint64_t;

constexpr Nanoseconds kMillisecond = 1'000'000;
constexpr Nanoseconds kLong = 8 * kMillisecond;
constexpr Nanoseconds kBetweenStacks = 3 * kMillisecond;
constexpr size_t kMostTurns = 8'000'000;
constexpr size_t kMostStacks = 40'000;
constexpr size_t kDeepest = 40;

struct Turn {
  Nanoseconds begin;
  Nanoseconds taken;
  Nanoseconds held;
};
struct Stack {
  size_t turn;
  Nanoseconds moment;
  int depth;
  std::array<void*, kDeepest> frames;
};

/// Memory that is not touched before it is needed, and never moved: a signal may come at any time.
template <typename T>
T* room(size_t count) {
  void* memory =
      ::mmap(nullptr, count * sizeof(T), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) std::abort();
  return static_cast<T*>(memory);
}

Nanoseconds now() {
  timespec moment{};
  ::clock_gettime(CLOCK_MONOTONIC, &moment);
  return static_cast<Nanoseconds>(moment.tv_sec) * 1'000'000'000 + static_cast<Nanoseconds>(moment.tv_nsec);
}

int signalNumber() {
  return SIGRTMAX - 3;
}

struct Watch {
  std::string report;
  pid_t thread = 0;
  int schedule = -1;
  Turn* turns = nullptr;
  Stack* stacks = nullptr;
  std::atomic<size_t> turnCount = 0;
  std::atomic<size_t> stackCount = 0;
  std::atomic<Nanoseconds> turnBegin = 0;  ///< none while the loop waits
  Nanoseconds waitedAtBegin = 0;
  std::atomic<bool> hasEnded = false;
  pthread_t watcher{};
};
Watch* watch = nullptr;

/// How long the main thread has waited for a processor, ever.
Nanoseconds waited() {
  std::array<char, 96> text{};
  if (::pread(watch->schedule, text.data(), text.size() - 1, 0) <= 0) return 0;
  char* rest = nullptr;
  std::strtoull(text.data(), &rest, 10);
  return std::strtoull(rest, nullptr, 10);
}

void beginTurn() {
  watch->waitedAtBegin = waited();
  watch->turnBegin = now();
}

void endTurn() {
  const Nanoseconds begin = watch->turnBegin.exchange(0);
  if (begin == 0) return;
  const Nanoseconds taken = now() - begin;
  const Nanoseconds away = waited() - watch->waitedAtBegin;
  const size_t index = watch->turnCount;
  if (index == kMostTurns) return;
  watch->turns[index] = {begin, taken, taken > away ? taken - away : 0};
  watch->turnCount = index + 1;
}

gint pollBetweenTurns(GPollFD* descriptors, guint count, gint timeout) {
  const bool isMainThread = ::syscall(SYS_gettid) == watch->thread;
  if (isMainThread) endTurn();
  const gint ready = g_poll(descriptors, count, timeout);
  const int error = errno;
  if (isMainThread) beginTurn();
  errno = error;
  return ready;
}

void takeStack(int) {
  const int error = errno;
  const size_t index = watch->stackCount;
  if (index < kMostStacks && watch->turnBegin != 0) {
    Stack& stack = watch->stacks[index];
    stack.turn = watch->turnCount;
    stack.moment = now();
    stack.depth = ::backtrace(stack.frames.data(), kDeepest);
    watch->stackCount = index + 1;
  }
  errno = error;
}

void* look(void*) {
  Nanoseconds last = 0;
  while (!watch->hasEnded) {
    const timespec pause{0, static_cast<long>(kMillisecond)};
    ::clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr);
    const Nanoseconds begin = watch->turnBegin;
    const Nanoseconds moment = now();
    if (begin == 0 || moment - begin < kLong || moment - last < kBetweenStacks) continue;
    last = moment;
    ::syscall(SYS_tgkill, ::getpid(), watch->thread, signalNumber());
  }
  return nullptr;
}

void writeReport() {
  std::FILE* file = std::fopen(watch->report.c_str(), "w");
  if (!file) return;
  const auto tellModule = [](dl_phdr_info* module, size_t, void* out) {
    const bool isProgram = module->dlpi_name == nullptr || *module->dlpi_name == '\0';
    Nanoseconds end = 0;
    for (int i = 0; i < module->dlpi_phnum; ++i) {
      const auto& part = module->dlpi_phdr[i];
      if (part.p_type == PT_LOAD && part.p_vaddr + part.p_memsz > end) end = part.p_vaddr + part.p_memsz;
    }
    std::fprintf(static_cast<std::FILE*>(out), "module %lx %lx %s\n", static_cast<unsigned long>(module->dlpi_addr),
                 static_cast<unsigned long>(module->dlpi_addr + end), isProgram ? "-" : module->dlpi_name);
    return 0;
  };
  ::dl_iterate_phdr(tellModule, file);
  for (size_t i = 0; i < watch->turnCount; ++i) {
    const Turn& turn = watch->turns[i];
    std::fprintf(file, "turn %lu %lu %lu\n", turn.begin / 1000, turn.taken / 1000, turn.held / 1000);
  }
  for (size_t i = 0; i < watch->stackCount; ++i) {
    const Stack& stack = watch->stacks[i];
    std::fprintf(file, "stack %zu %lu", stack.turn, stack.moment / 1000);
    for (int frame = 0; frame < stack.depth; ++frame)
      std::fprintf(file, " %p", stack.frames[static_cast<size_t>(frame)]);
    std::fputc('\n', file);
  }
  std::fclose(file);
}

__attribute__((constructor)) void begin() {
  const char* report = std::getenv("QUILLMERE_WATCHDOG_REPORT");
  // What the program starts is not watched.
  ::unsetenv("LD_PRELOAD");
  if (!report || *report == '\0') return;
  watch = new Watch;
  watch->report = report;
  ::unsetenv("QUILLMERE_WATCHDOG_REPORT");
  watch->thread = static_cast<pid_t>(::syscall(SYS_gettid));
  watch->schedule = ::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
  watch->turns = room<Turn>(kMostTurns);
  watch->stacks = room<Stack>(kMostStacks);
  std::array<void*, 2> frames{};
  ::backtrace(frames.data(), frames.size());  // loads what it needs, which the signal must not
  struct sigaction action {};
  action.sa_handler = takeStack;
  action.sa_flags = SA_RESTART;
  ::sigaction(signalNumber(), &action, nullptr);
  g_main_context_set_poll_func(g_main_context_default(), pollBetweenTurns);
  beginTurn();  // the first one is the start, up to the loop
  ::pthread_create(&watch->watcher, nullptr, look, nullptr);
}

__attribute__((destructor)) void end() {
  if (!watch) return;
  watch->hasEnded = true;
  ::pthread_join(watch->watcher, nullptr);
  endTurn();
  writeReport();
}

}  // namespace
