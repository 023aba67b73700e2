#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace quillmere {

/// Keeps one observer connected to a `Signal` for as long as it lives. May outlive the signal.
class Connection {
 public:
  Connection() = default;
  explicit Connection(std::function<void()> disconnect) : disconnect_(std::move(disconnect)) {}
  Connection(Connection&& other) noexcept : disconnect_(std::exchange(other.disconnect_, nullptr)) {}
  Connection& operator=(Connection&& other) noexcept {
    if (this != &other) {
      reset();
      disconnect_ = std::exchange(other.disconnect_, nullptr);
    }
    return *this;
  }
  ~Connection() { reset(); }

  explicit operator bool() const { return disconnect_ != nullptr; }
  void reset() {
    if (const auto disconnect = std::exchange(disconnect_, nullptr)) disconnect();
  }

 private:
  std::function<void()> disconnect_;
};

/// Tells observers of an event, in the order in which they connected. Main thread only. An observer may connect or
/// disconnect anyone, itself included, while it is being told.
template <typename... Args>
class Signal {
 public:
  using Observer = std::function<void(Args...)>;

  [[nodiscard]] Connection connect(Observer observer) {
    auto slot = std::make_shared<Slot>(Slot{std::move(observer)});
    slots_->push_back(slot);
    return Connection([weakSlots = std::weak_ptr(slots_), weakSlot = std::weak_ptr(slot)] {
      const auto slots = weakSlots.lock();
      const auto gone = weakSlot.lock();
      if (!slots || !gone) return;
      gone->isConnected = false;
      std::erase(*slots, gone);
    });
  }

  void operator()(Args... args) const {
    const auto present = *slots_;
    for (const auto& slot : present) {
      if (slot->isConnected) slot->observer(args...);
    }
  }

 private:
  struct Slot {
    Observer observer;
    bool isConnected = true;  ///< apart from the observer, which may be running when it is disconnected
  };
  using Slots = std::vector<std::shared_ptr<Slot>>;
  std::shared_ptr<Slots> slots_ = std::make_shared<Slots>();
};

}  // namespace quillmere
