#pragma once

#include <memory>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "update/library/UpdateWindow.h"

namespace quillmere {

/// Shows one window at a time.
class LiveUpdateWindows final : public UpdateWindows {
 public:
  explicit LiveUpdateWindows(Executor& executor) : executor_(executor) {}
  ~LiveUpdateWindows() override;

  void show(const UpdateNotice& notice, std::function<void(Answer)> answered) override;
  void setProgress(qint64 done, qint64 whole) override;
  void bringForward() override;
  void close() override;

 private:
  struct Later {
    void operator()(UpdateWindow* window) const;
  };
  Executor& executor_;
  std::unique_ptr<UpdateWindow, Later> window_;
  Lifetime lifetime_;
};

}  // namespace quillmere
