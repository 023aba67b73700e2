#include "platform/linux/files/LiveFolderEventSource.h"

#include <sys/inotify.h>
#include <unistd.h>
#include <QtCore/QSocketNotifier>
#include <array>
#include <set>
#include <string>
#include <thread>
#include <unordered_map>

#include "platform/linux/files/SyncClientNames.h"

namespace quillmere {
namespace {

constexpr uint32_t kLost = IN_MOVE_SELF | IN_DELETE_SELF | IN_UNMOUNT | IN_IGNORED;
/// Not IN_MODIFY: a file that grows would ask for a scan at every write, and the pending looks see it anyway.
constexpr uint32_t kMask = IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ATTRIB |
                           IN_MOVE_SELF | IN_DELETE_SELF | IN_ONLYDIR;

class InotifyWatch final : public FolderEventWatch {
 public:
  InotifyWatch(int descriptor, std::function<void(FolderEvent)> onEvent)
      : descriptor_(descriptor), notifier_(descriptor, QSocketNotifier::Read), onEvent_(std::move(onEvent)) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { readEvents(); });
  }
  ~InotifyWatch() override {
    notifier_.setEnabled(false);
    // The kernel first waits until nobody looks at the marks any more, on a busy machine for half a second.
    std::thread([descriptor = descriptor_] { ::close(descriptor); }).detach();
  }
  bool hasMovedOut(const std::string& name) const override { return movedOut_.contains(name); }
  bool wasSynced(const std::string& name) const override { return synced_.contains(name); }

 private:
  void readEvents() {
    alignas(inotify_event) std::array<char, 64 * 1024> buffer{};
    uint32_t seen = 0;
    for (ssize_t count = 0; (count = ::read(descriptor_, buffer.data(), buffer.size())) > 0;) {
      for (const char* at = buffer.data(); at < buffer.data() + count;) {
        const auto* event = reinterpret_cast<const inotify_event*>(at);
        seen |= event->mask;
        if (event->len > 0) follow(*event);
        at += sizeof(inotify_event) + event->len;
      }
    }
    if (seen == 0) return;
    // The handler may end this watch, and with it the function that is running.
    const auto onEvent = onEvent_;
    onEvent((seen & kLost) != 0 ? FolderEvent::lost : FolderEvent::changed);
  }

  /// The kernel tells of a rename in the folder as of two moves with one cookie.
  void follow(const inotify_event& event) {
    constexpr size_t kMost = 10'000;
    const std::string name = event.name;
    // Attributes and dates are set afterwards, too.
    if ((event.mask & (IN_MOVED_FROM | IN_MOVED_TO | IN_CREATE | IN_DELETE)) != 0) synced_.erase(name);
    if ((event.mask & IN_MOVED_FROM) != 0) {
      if (namesByCookie_.size() >= kMost) {
        movedOut_.clear();
        namesByCookie_.clear();
      }
      movedOut_.insert(name);
      namesByCookie_[event.cookie] = name;
      return;
    }
    if ((event.mask & IN_MOVED_TO) != 0) {
      if (const auto from = namesByCookie_.extract(event.cookie)) {
        if (synced_.size() >= kMost) synced_.clear();
        if (isNameWhileReceived(from.mapped(), name)) synced_.insert(name);
        movedOut_.erase(from.mapped());
      }
    }
    if ((event.mask & (IN_MOVED_TO | IN_CREATE | IN_DELETE)) != 0) movedOut_.erase(name);
  }

  int descriptor_;
  std::set<std::string> movedOut_;
  std::unordered_map<uint32_t, std::string> namesByCookie_;  // by the cookies of their moves
  std::set<std::string> synced_;
  QSocketNotifier notifier_;
  std::function<void(FolderEvent)> onEvent_;
};

}  // namespace

std::unique_ptr<FolderEventWatch> LiveFolderEventSource::open(const FileURL& folder,
                                                              std::function<void(FolderEvent)> onEvent) {
  const int descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (descriptor < 0) return nullptr;
  if (::inotify_add_watch(descriptor, folder.c_str(), kMask) < 0) {
    ::close(descriptor);
    return nullptr;
  }
  return std::make_unique<InotifyWatch>(descriptor, std::move(onEvent));
}

}  // namespace quillmere
