#include "platform/linux/announcing/SpeechService.h"

#include <signal.h>
#include <speech-dispatcher/libspeechd.h>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace quillmere {
namespace {

struct Message {
  QByteArray text;
  SPDPriority priority;
};

/// A connection for each: a service that was started anew in between is found again, and one that nobody talks to any
/// more can end.
void speak(const Message& message) {
  char* error = nullptr;
  // A reader that speaks has started it. Started from here it would inherit that signals are blocked.
  constexpr int kStartsService = 0;
  SPDConnection* connection =
      spd_open2("quillmere", "announcer", nullptr, SPD_MODE_SINGLE, nullptr, kStartsService, &error);
  std::free(error);  // the library's way
  if (!connection) return;
  spd_say(connection, message.priority, message.text.constData());
  spd_close(connection);
}

/// The library writes to a service that may just have gone, which would end the program.
void blockBrokenPipe() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

}  // namespace

/// Shared with the thread, which may outlive its owner.
struct SpeechService::Queue {
  std::mutex lock;
  std::deque<Message> messages;
  bool isBeingSpoken = false;  ///< the thread runs
};

SpeechService::SpeechService() : queue_(std::make_shared<Queue>()) {}

SpeechService::~SpeechService() {
  const std::lock_guard guard(queue_->lock);
  queue_->messages.clear();
}

void SpeechService::say(const QString& text, AnnouncementPriority priority) {
  constexpr size_t kMostWaiting = 8;
  // An important one is not interrupted and ends what is being said. A message waits for its turn and is never left
  // out; a plain text would end the one before it, and a notification would be dropped while anything is being said.
  const SPDPriority urgency = priority == AnnouncementPriority::high ? SPD_IMPORTANT : SPD_MESSAGE;
  const std::lock_guard guard(queue_->lock);
  queue_->messages.push_back({text.toUtf8(), urgency});
  if (queue_->messages.size() > kMostWaiting) queue_->messages.pop_front();
  if (std::exchange(queue_->isBeingSpoken, true)) return;
  // Nobody waits for it: a service that hangs must not keep the program from ending.
  std::thread(&SpeechService::speakAll, queue_).detach();
}

void SpeechService::speakAll(const std::shared_ptr<Queue>& queue) {
  blockBrokenPipe();
  while (true) {
    std::unique_lock guard(queue->lock);
    if (queue->messages.empty()) {
      queue->isBeingSpoken = false;
      return;
    }
    const Message message = std::move(queue->messages.front());
    queue->messages.pop_front();
    guard.unlock();
    speak(message);
  }
}

}  // namespace quillmere
