#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/linux/passing/Descriptor.h"

namespace quillmere {

/// One end of a pair of sockets that keep packets apart.
class PacketSocket {
 public:
  static constexpr size_t kMostDescriptors = 32;

  PacketSocket() = default;
  explicit PacketSocket(Descriptor end) : end_(std::move(end)) {}
  struct Pair;
  /// Neither is inherited by other programs. `one` never waits: a message for which there is no room is not sent.
  static std::optional<Pair> pair();

  int number() const { return end_.number(); }

  /// False when the other end is gone.
  template <typename Message>
  bool send(const Message& message, int descriptor = -1) {
    return sendBytes(&message, sizeof message, &descriptor, descriptor >= 0 ? 1 : 0);
  }
  /// With at most `kMostDescriptors`.
  template <typename Message>
  bool sendWith(const Message& message, const std::vector<int>& descriptors) {
    return sendBytes(&message, sizeof message, descriptors.data(), descriptors.size());
  }
  /// None when the other end is gone, or sent anything but one such message with at most one descriptor. Waits.
  template <typename Message>
  std::optional<Message> receive(Descriptor* descriptor = nullptr) {
    std::vector<Descriptor> came;
    auto message = receiveWith<Message>(came, descriptor ? 1 : 0);
    if (message && !came.empty()) *descriptor = std::move(came.front());
    return message;
  }
  /// The same with at most `most` descriptors.
  template <typename Message>
  std::optional<Message> receiveWith(std::vector<Descriptor>& descriptors, size_t most) {
    Message message;
    if (!receiveBytes(&message, sizeof message, descriptors) || descriptors.size() > most) return std::nullopt;
    return message;
  }

 private:
  bool sendBytes(const void* bytes, size_t size, const int* descriptors, size_t count);
  bool receiveBytes(void* bytes, size_t size, std::vector<Descriptor>& descriptors);

  Descriptor end_;
};

struct PacketSocket::Pair {
  PacketSocket one;
  PacketSocket other;
};

}  // namespace quillmere
