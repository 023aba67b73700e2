#pragma once

#include <xcb/xcb.h>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/linux/passing/Descriptor.h"
#include "platform/linux/windows/WindowHistory.h"
#include "platform/linux/windows/WindowWatch.h"

namespace quillmere {
class X11WindowReader;

/// Follows which windows an X server shows, on a thread and a connection of its own: a server that is busy, or kept by
/// some program, holds nobody up. Sleeps until something changes.
class X11WindowWatch final : public WindowWatch {
 public:
  /// Of the display that the environment names; follows nothing where there is none. Windows of the client whose
  /// identifiers begin with `ownBase` are left out.
  explicit X11WindowWatch(std::function<Date()> now, uint32_t ownBase = 0);
  ~X11WindowWatch() override;
  X11WindowWatch(const X11WindowWatch&) = delete;
  X11WindowWatch& operator=(const X11WindowWatch&) = delete;

  /// How the identifiers of this application's own windows begin; 0 where it has none here.
  static uint32_t baseOfApplication();

  std::vector<WindowStack> states() const override;
  /// The server tells everything.
  void lookAgain() override {}

 private:
  using Clock = std::chrono::steady_clock;
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };

  void run(int screen);
  void hearAll(X11WindowReader& reader);
  void note(const WindowStack& shown, Date since);
  bool waitForEvents(std::optional<Clock::time_point> until) const;

  std::function<Date()> now_;
  uint32_t ownBase_;
  Descriptor wake_;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  mutable std::mutex mutex_;
  mutable WindowHistory history_;

  // Of the thread alone.
  WindowStack shown_;
  bool isReadingDue_ = false;
  bool isMoved_ = false;
  Clock::time_point firstChange_, lastChange_;
  Date changedAt_;

  std::thread thread_;
};

}  // namespace quillmere
