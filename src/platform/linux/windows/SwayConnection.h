#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/windows/LocalStream.h"
#include "reading/WindowStack.h"

namespace quillmere {

/// Asks sway which windows it shows, and hears when that changes, as sway-ipc(7) describes it. Of one thread, but for
/// `hangUp`.
class SwayConnection {
 public:
  /// By the socket that SWAYSOCK names. None where nobody listens there; that is not waited for.
  static std::optional<SwayConnection> ofSession();
  static std::optional<SwayConnection> at(const std::string& socket);

  /// Asks to be told of changes. False where sway does not answer.
  bool subscribe() const;
  /// Can be read when something may have changed.
  int descriptor() const { return events_.number(); }
  /// One message: whether there was one.
  bool hear() const;
  /// None where there is no answer, or none that can be understood.
  std::optional<WindowStack> read() const;
  /// Whoever waits for sway waits no more. Any thread.
  void hangUp() const;

 private:
  SwayConnection(LocalStream questions, LocalStream events)
      : questions_(std::move(questions)), events_(std::move(events)) {}

  LocalStream questions_;
  LocalStream events_;
};

}  // namespace quillmere
