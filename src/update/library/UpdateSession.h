#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "update/library/UpdateFeed.h"
#include "update/library/UpdateInstaller.h"
#include "update/library/UpdateTransport.h"
#include "update/library/UpdateWindows.h"

namespace quillmere {

/// One update from its check to the program's new start. Nothing is downloaded and nothing installed without the
/// person's word, and nothing that isn't the maker's gets to an installer. Main thread.
class UpdateSession {
 public:
  enum class State { idle, checking, found, downloading, ready, installing };
  enum class By { person, schedule };  ///< by schedule only what can be answered is shown

  struct Program {
    VersionNumber version;
    QUrl feed;
    FeedSignature maker;
    FileURL packages;  ///< the folder that packages are stored in
  };
  struct World {
    Executor& executor;
    UpdateTransport& transport;
    UpdateInstaller& installer;
    UpdateWindows& windows;
    std::function<Date()> now;
    std::function<void()> willShow;           ///< before the first window of a session
    std::function<void()> willFinish;         ///< after its last
    std::function<void(bool)> setInstalling;  ///< the program is about to end for it, or is not after all
    /// Has the program started anew when this one ends, and ends this one. False where that can't be
    /// or the person has this one go on.
    std::function<bool(const FileURL& program)> relaunch;
  };
  UpdateSession(Program program, World world);
  ~UpdateSession();

  State state() const { return state_; }
  /// While one is under way its window comes to the front instead.
  void check(By by);

  std::function<void(State)> changed;

  static constexpr Duration kLongestFeed = std::chrono::seconds(60);
  static constexpr Duration kLongestPackage = std::chrono::hours(6);

 private:
  void enter(State state);
  void show(const UpdateNotice& notice, void (UpdateSession::*onAction)(), void (UpdateSession::*onSafe)());
  void finish();
  void fail(UpdateFailure failure);
  void takeFeed(std::optional<UpdateFailure> failure);
  void download();
  bool takePackage(const QByteArray& bytes);
  void checkPackage(std::optional<UpdateFailure> failure);
  void offerPackage();
  void install();
  void relaunch(std::optional<UpdateFailure> failure);

  Program program_;
  World world_;
  State state_ = State::idle;
  By by_ = By::person;
  bool isShown_ = false;
  QByteArray bytes_;  ///< of the feed, as far as it came
  qint64 received_ = 0;
  std::optional<UpdateFeed> feed_;
  std::unique_ptr<Transfer> transfer_;
  std::shared_ptr<PackageFile> package_;
  Lifetime lifetime_;
};

}  // namespace quillmere
