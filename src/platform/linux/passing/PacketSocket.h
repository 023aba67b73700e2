#pragma once

#include <cstddef>
#include <optional>

#include "platform/linux/passing/Descriptor.h"

namespace quillmere {

/// One end of a pair of sockets that keep packets apart.
class PacketSocket {
 public:
  PacketSocket() = default;
  explicit PacketSocket(Descriptor end) : end_(std::move(end)) {}
  struct Pair;
  /// Neither is inherited by other programs. `one` never waits: a message for which there is no room is not sent.
  static std::optional<Pair> pair();

  int number() const { return end_.number(); }

  /// False when the other end is gone.
  template <typename Message>
  bool send(const Message& message, int descriptor = -1) {
    return sendBytes(&message, sizeof message, descriptor);
  }
  /// None when the other end is gone, or sent anything but one such message with at most one descriptor. Waits.
  template <typename Message>
  std::optional<Message> receive(Descriptor* descriptor = nullptr) {
    Message message;
    if (!receiveBytes(&message, sizeof message, descriptor)) return std::nullopt;
    return message;
  }

 private:
  bool sendBytes(const void* bytes, size_t size, int descriptor);
  bool receiveBytes(void* bytes, size_t size, Descriptor* descriptor);

  Descriptor end_;
};

struct PacketSocket::Pair {
  PacketSocket one;
  PacketSocket other;
};

}  // namespace quillmere
