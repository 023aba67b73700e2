#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/Weak.h"
#include "model/AppModelDependencies.h"
#include "model/AsyncGate.h"

namespace quillmere {

/// The records as far as what their pictures show concerns them.
class CaptureRecords {
 public:
  virtual ~CaptureRecords() = default;
  virtual const ScreenshotItem* find(const UUID& id) const = 0;
  virtual void change(const UUID& id, const std::function<void(ScreenshotItem&)>& change) = 0;
  virtual void saveRecordsSoon() = 0;
};

/// The windows that the record knows its picture to show.
std::optional<KnownWindows> knownWindows(const ScreenshotItem& item);

/// Finds out which windows a new capture shows while the window system still tells, and keeps that with its record,
/// where Extract Window and the crop editor find it, after a restart too. One picture at a time, behind what a person
/// waits for. Main thread.
class WindowKnowledge {
 public:
  /// Until the popup has its picture.
  static constexpr Duration kDelay = std::chrono::milliseconds(300);
  /// Of a burst nobody extracts windows; the first ones are looked at.
  static constexpr size_t kMostWaiting = 32;

  /// Both outlive this.
  WindowKnowledge(const AppModelDependencies& dependencies, CaptureRecords& records);
  ~WindowKnowledge();

  /// A picture that was taken just now has this record.
  void noteCapture(const UUID& id);
  /// Done when everything is known of the record's picture that will be; it is the next one that is looked at.
  Task<> whenKnown(UUID id);

 private:
  struct Capture {
    UUID id;
    FileURL url;
    std::optional<FileIdentity> identity;
    Date closedAt;
    std::vector<WindowStack> states;
  };

  static Task<> run(Weak<WindowKnowledge> self);
  static Task<> runWait(Weak<WindowKnowledge> self, UUID id);
  void takeNewStates(Capture& capture) const;
  void keep(const Capture& capture, const KnownWindows& known);

  const AppModelDependencies& dependencies_;
  CaptureRecords& records_;
  std::deque<Capture> waiting_;
  /// Opened when the picture has been looked at; until then nobody gets in.
  UUIDMap<std::unique_ptr<AsyncGate>> looks_;
  bool isRunning_ = false;
  std::shared_ptr<std::atomic<bool>> isStopped_ = std::make_shared<std::atomic<bool>>(false);
  Lifetime lifetime_;
};

}  // namespace quillmere
