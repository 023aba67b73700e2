#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/passing/Descriptor.h"

namespace quillmere {

/// A connection to a local socket whose other end may stop answering: nothing waits for it longer than two seconds.
class LocalStream {
 public:
  /// None where nobody listens at the path.
  static std::optional<LocalStream> connectedTo(const std::string& path);

  bool send(std::string_view bytes) const;
  /// Exactly so many bytes; none where they do not come.
  std::optional<std::string> receive(size_t count) const;
  /// Whoever waits for the other end waits no more, and nothing more is sent or received. Any thread.
  void hangUp() const;
  int number() const { return socket_.number(); }

 private:
  explicit LocalStream(Descriptor socket) : socket_(std::move(socket)) {}

  Descriptor socket_;
};

}  // namespace quillmere
