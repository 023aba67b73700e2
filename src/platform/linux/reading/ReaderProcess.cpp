#include "platform/linux/reading/ReaderProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <fstream>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

namespace quillmere {
namespace {

using ReaderMessages::Answer;
using ReaderMessages::Greeting;
using ReaderMessages::Request;
using ReaderMessages::Signals;
using ReaderMessages::Step;
using ReaderMessages::Work;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// How often a wish to stop is looked for.
constexpr milliseconds kLook(20);
/// How often a silent reader is looked at.
constexpr milliseconds kSilence(500);

Signals* newSignals(const Descriptor& memory) {
  if (!memory || ::ftruncate(memory.number(), sizeof(Signals)) != 0) return nullptr;
  void* page = ::mmap(nullptr, sizeof(Signals), PROT_READ | PROT_WRITE, MAP_SHARED, memory.number(), 0);
  return page == MAP_FAILED ? nullptr : new (page) Signals{};
}

/// The child has its own copies under the numbers that both know. Each is moved out of the way first, where it would
/// be overwritten.
class Inheritance {
 public:
  Inheritance() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigemptyset(&none);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  }
  Inheritance(const Inheritance&) = delete;
  Inheritance& operator=(const Inheritance&) = delete;
  ~Inheritance() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  void give(int descriptor, int number) { posix_spawn_file_actions_adddup2(&actions_, descriptor, number); }
  pid_t spawn(const char* program, const char* task) const {
    std::array<char*, 3> arguments{const_cast<char*>(program), const_cast<char*>(task), nullptr};
    pid_t child = -1;
    return ::posix_spawn(&child, program, &actions_, &attributes_, arguments.data(), environ) == 0 ? child : -1;
  }

 private:
  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
};

/// Above the numbers that the child knows.
Descriptor outOfTheWay(int descriptor) {
  constexpr int kFree = ReaderMessages::kSignals + 1;
  return Descriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, kFree));
}

milliseconds left(Clock::time_point end) {
  return std::max(milliseconds(0), std::chrono::duration_cast<milliseconds>(end - Clock::now()));
}

bool isStep(const Answer& answer, Step step) {
  return answer.step == static_cast<uint32_t>(step);
}

}  // namespace

/// The process, and the thread that started it and waits for its end: the kernel ends a child when that thread goes. It
/// is nobody's to wait for, since a process that a disk holds cannot even be killed.
class ReaderProcess::Child {
 public:
  /// Null also where there is no thread left.
  static std::shared_ptr<Child> start(const std::string& program, const char* task, Descriptor socket,
                                      Descriptor signals) try {
    auto child = std::make_shared<Child>();
    std::thread([child, program, task, socket = std::move(socket), signals = std::move(signals)]() mutable {
      Inheritance inheritance;
      inheritance.give(socket.number(), ReaderMessages::kSocket);
      inheritance.give(signals.number(), ReaderMessages::kSignals);
      child->setStarted(inheritance.spawn(program.c_str(), task));
      // Only the child has them now, so that its end is seen.
      socket = Descriptor();
      signals = Descriptor();
      child->awaitEnd();
    }).detach();
    std::unique_lock lock(child->mutex_);
    child->changed_.wait(lock, [&] { return child->isStarted_; });
    return child->process_ > 0 ? child : nullptr;
  } catch (const std::system_error&) {
    return nullptr;
  }

  void kill() {
    const std::lock_guard lock(mutex_);
    if (process_ > 0) ::kill(process_, SIGKILL);
  }
  pid_t process() const {
    const std::lock_guard lock(mutex_);
    return process_;
  }
  /// Somebody has halted it, and may never let it go on.
  bool isHalted() const {
    const std::lock_guard lock(mutex_);
    if (process_ <= 0) return false;
    std::ifstream file("/proc/" + std::to_string(process_) + "/stat");
    std::string line;
    std::getline(file, line);
    // Behind the program's name, which may have any letter in it.
    const size_t name = line.rfind(')');
    return name != std::string::npos && name + 2 < line.size() && (line[name + 2] == 'T' || line[name + 2] == 't');
  }

 private:
  void setStarted(pid_t process) {
    const std::lock_guard lock(mutex_);
    process_ = process;
    isStarted_ = true;
    changed_.notify_all();
  }
  void awaitEnd() {
    const pid_t process = this->process();
    if (process <= 0) return;
    // Its number is nobody else's until it was fetched, and is not used any more then.
    siginfo_t end{};
    while (::waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    const std::lock_guard lock(mutex_);
    ::waitpid(process, nullptr, WNOHANG);
    process_ = 0;
  }

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool isStarted_ = false;
  pid_t process_ = -1;
};

std::unique_ptr<ReaderProcess> ReaderProcess::start(const std::string& program, const char* task,
                                                    const Patience& patience, const std::atomic<bool>& isStopped) {
  auto sockets = PacketSocket::pair();
  Descriptor page(::memfd_create("signals", MFD_CLOEXEC));
  Signals* signals = newSignals(page);
  if (!sockets || !signals) return nullptr;
  auto child = Child::start(program, task, outOfTheWay(sockets->other.number()), outOfTheWay(page.number()));
  sockets->other = PacketSocket();
  std::unique_ptr<ReaderProcess> process(
      new ReaderProcess(std::move(sockets->one), signals, std::move(child), patience));
  if (!process->child_ || process->wait(patience.start, &isStopped) != Wait::ready) return nullptr;
  const auto greeting = process->socket_.receive<Greeting>();
  const bool isOurs =
      greeting && greeting->magic == ReaderMessages::kMagic && greeting->version == ReaderMessages::kVersion;
  if (!isOurs) return nullptr;
  process->missing_ = greeting->missing;
  return process;
}

ReaderProcess::ReaderProcess(PacketSocket socket, Signals* signals, std::shared_ptr<Child> child, Patience patience)
    : socket_(std::move(socket)), signals_(signals), child_(std::move(child)), patience_(patience) {}

ReaderProcess::~ReaderProcess() {
  kill();
  ::munmap(signals_, sizeof(Signals));
}

void ReaderProcess::kill() {
  if (child_) child_->kill();
}

pid_t ReaderProcess::process() const {
  return child_ ? child_->process() : -1;
}

ReaderProcess::Outcome ReaderProcess::ask(const Request& request, const std::vector<int>& files, PictureMemory* memory,
                                          const std::atomic<bool>& isStopped) {
  signals_->isStopped = false;
  if (!hasSaidNothing()) return {End::lied};
  if (!socket_.sendWith(request, files)) return {End::gone};
  const auto& patience = request.work == static_cast<uint32_t>(Work::text) ? patience_.texts : patience_.work;
  milliseconds atMost = patience_.file;
  bool hasBegun = false;
  std::optional<PictureMemory::Share> share;
  while (true) {
    switch (wait(atMost, &isStopped)) {
      case Wait::ready:
        break;
      case Wait::late:
        return {End::outlived};
      case Wait::stopped:
        return {End::stopped};
      case Wait::halted:
        return {End::gone};
    }
    Descriptor passed;
    // A reader that ends has nothing more to say; one that says anything else than what it should, lies.
    std::array<char, 1> peeked{};
    if (::recv(socket_.number(), peeked.data(), peeked.size(), MSG_PEEK | MSG_DONTWAIT) <= 0)
      return {hasBegun ? End::died : End::gone};
    const auto answer = socket_.receive<Answer>(&passed);
    if (!answer) return {End::lied};
    if (isStep(*answer, Step::done)) return {End::answered, *answer, std::move(passed)};
    if (!isStep(*answer, Step::begun) || hasBegun || passed) return {End::lied};
    hasBegun = true;
    if (answer->memory > 0) {
      if (memory) share.emplace(*memory, answer->memory);
      if (!socket_.send(ReaderMessages::Turn())) return {End::gone};
    }
    atMost = patience;
  }
}

std::optional<ReaderMessages::Verdicts> ReaderProcess::judge(const std::vector<int>& files) {
  const Request request{.work = static_cast<uint32_t>(Work::wholenesses)};
  if (!hasSaidNothing() || !socket_.sendWith(request, files)) return std::nullopt;
  if (wait(patience_.many, nullptr) != Wait::ready) return std::nullopt;
  const auto verdicts = socket_.receive<ReaderMessages::Verdicts>();
  return verdicts && verdicts->magic == ReaderMessages::kMagic ? verdicts : std::nullopt;
}

/// What comes before it was asked is no answer.
bool ReaderProcess::hasSaidNothing() const {
  std::array<char, 1> early{};
  return ::recv(socket_.number(), early.data(), early.size(), MSG_PEEK | MSG_DONTWAIT) <= 0;
}

/// Looks now and then whether anybody still waits. One that is told to stop has a while to do so, and stays of use. One
/// that was halted is of none.
ReaderProcess::Wait ReaderProcess::wait(milliseconds atMost, const std::atomic<bool>* isStopped) {
  auto end = Clock::now() + atMost;
  auto look = Clock::now() + kSilence;
  bool isTold = false;
  while (true) {
    if (isStopped && !isTold && *isStopped) {
      isTold = true;
      signals_->isStopped = true;
      end = std::min(end, Clock::now() + patience_.stop);
    }
    pollfd socket{socket_.number(), POLLIN, 0};
    const int count = ::poll(&socket, 1, static_cast<int>(std::min(left(end), isTold ? atMost : kLook).count()));
    if (count > 0) return Wait::ready;
    if (count < 0 && errno != EINTR) return Wait::late;
    const auto now = Clock::now();
    if (now >= end) return isTold ? Wait::stopped : Wait::late;
    if (now < look) continue;
    if (child_->isHalted()) return Wait::halted;
    look = now + kSilence;
  }
}

}  // namespace quillmere
