#pragma once

#include <functional>

#include "foundation/Executor.h"
#include "model/AppModel.h"

namespace quillmere {

/// Whether a crop can still take the place of the file that it was read from. What the model tells counts at once; that
/// the file itself is still the same it looks up every second, in the background, and never twice at a time: a disk
/// that takes long is asked once.
class ReplaceabilityWatch {
 public:
  static constexpr Duration kPause = seconds(1);

  /// `opened` is where the record's file was when it was read, and `readFrom` what it was then.
  ReplaceabilityWatch(AppModel& model, Executor& executor, UUID id, FileURL opened, FileStamp readFrom);
  ~ReplaceabilityWatch();

  bool isReplaceable() const { return isSame_ && isKnown_; }
  /// `isReplaceable` has become another.
  std::function<void()> onChanged;
  /// Looks at the file now, or waits for the look that is under way.
  Task<bool> look();

 private:
  void follow();
  void set(bool isSame, bool isKnown);
  static Task<bool> runLook(Weak<ReplaceabilityWatch> self);
  static Task<> watch(Weak<ReplaceabilityWatch> self);

  AppModel& model_;
  Executor& executor_;
  const UUID id_;
  const FileURL opened_;
  const FileStamp readFrom_;
  bool isSame_ = true;   ///< when it was looked at last
  bool isKnown_ = true;  ///< as the model has it
  Task<bool> looking_;
  Task<> watching_;
  Connection changes_;
  Lifetime lifetime_;
};

}  // namespace quillmere
