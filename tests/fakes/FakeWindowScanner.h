#pragma once

#include <memory>
#include <vector>

#include "reading/WindowScan.h"

namespace quillmere::testing {

/// Leaves every scan open until the test answers it.
class FakeWindowScanner {
 public:
  FakeWindowScanner() = default;
  FakeWindowScanner(const FakeWindowScanner&) = delete;
  FakeWindowScanner& operator=(const FakeWindowScanner&) = delete;
  /// What was never answered ends with it: a scan that is open and its call hold each other.
  ~FakeWindowScanner() {
    for (const auto& call : calls) std::exchange(call->waiter, nullptr).reset();
  }

  using Outcome = Result<ImageOperations::WindowScan, ImageOperations::OperationError>;
  struct Call {
    FileURL url;
    std::optional<KnownWindows> known;
    std::optional<Outcome> outcome;
    std::shared_ptr<Continuation> waiter;
  };

  Task<Outcome> scan(FileURL url, std::optional<KnownWindows> known = {});
  void answer(size_t index, Outcome outcome);
  /// The picture with one window in it, or with none.
  void answer(size_t index, const QImage& image, std::optional<QRectF> window);

  std::vector<std::shared_ptr<Call>> calls;

 private:
  struct Open {
    std::shared_ptr<Call> call;
    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> task) { call->waiter = std::make_shared<Continuation>(task); }
    void await_resume() const {}
  };
};

}  // namespace quillmere::testing
