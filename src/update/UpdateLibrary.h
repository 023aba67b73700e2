#pragma once

#include <functional>
#include <optional>

#include "foundation/UserDefaults.h"
#include "update/SoftwareUpdateModel.h"
#include "update/UpdateConfiguration.h"
#include "update/UpdateInterface.h"

namespace quillmere {

/// The library that updates the program, where one is configured: all that reaches the network or reads what came from
/// there is in it and not in the program. Without it, or with one of another interface, the model stays as it is and
/// nothing can be checked. Main thread.
class UpdateLibrary {
 public:
  /// What the updater may have the program do.
  struct Services {
    std::function<void()> borrowActivation;  ///< a window of its own is about to show
    std::function<void()> repayActivation;
    /// An update is in place and starts as soon as the program has gone. False when it goes on after all.
    std::function<bool()> quit;
  };
  UpdateLibrary(SoftwareUpdateModel& model, UserDefaults& defaults, Services services);
  /// Ends what is under way. The library stays in memory: Qt keeps data of every library that it has seen.
  ~UpdateLibrary();
  UpdateLibrary(const UpdateLibrary&) = delete;
  UpdateLibrary& operator=(const UpdateLibrary&) = delete;

  /// Whether there is one now. Asked once.
  bool load(const std::optional<UpdateConfiguration>& configuration);

  static constexpr const char* kAutomaticKey = "quillmere.update-automatic";
  static constexpr const char* kLastCheckKey = "quillmere.update-last-check";

 private:
  QuillmereUpdateHost makeHost();
  void letGoOfModel();

  SoftwareUpdateModel& model_;
  UserDefaults& defaults_;
  Services services_;
  QuillmereUpdateHost host_;
  const QuillmereUpdateFunctions* functions_ = nullptr;
  QuillmereUpdater* updater_ = nullptr;
};

}  // namespace quillmere
